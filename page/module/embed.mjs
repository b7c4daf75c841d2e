// Puts the module and the licences of the libraries inside it into a C++ source file.
//
//   node embed.mjs MODULE.wasm OUT.cpp
import { readFileSync, writeFileSync } from 'node:fs';
import { gzipSync } from 'node:zlib';

const [module, output] = process.argv.slice(2);
const packages = ['libfmt-dev', 'nlohmann-json3-dev', 'wasi-libc', 'libc++-19-dev-wasm32'];

function licence(name) {
    return `${name}\n\n${readFileSync(`/usr/share/doc/${name}/copyright`, 'utf8').trim()}`;
}

// Base64 of what is packed with gzip.
function packed(bytes) {
    return gzipSync(bytes, { level: 9 }).toString('base64');
}

function constant(name, text) {
    const lines = text.match(/.{1,4096}/g).map((line) => `    "${line}"\n`);
    return `const std::string_view qz::tool::${name} =\n${lines.join('')};\n`;
}

writeFileSync(
    output,
    '#include "tools/base/report_page.h"\n\n' +
        constant('built_in_module', packed(readFileSync(module))) +
        constant('module_licences', packed(packages.map(licence).join(`\n\n${'-'.repeat(72)}\n\n`))),
);

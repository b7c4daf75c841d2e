// Puts the module into a C++ source file.
//
//   node embed.mjs MODULE.wasm OUT.cpp
import { readFileSync, writeFileSync } from 'node:fs';
import { gzipSync } from 'node:zlib';

const [module, output] = process.argv.slice(2);
const text = gzipSync(readFileSync(module), { level: 9 }).toString('base64');
const lines = text.match(/.{1,4096}/g).map((line) => `    "${line}"\n`);
writeFileSync(
    output,
    `#include "tools/base/report_page.h"\n\nconst std::string_view qz::tool::built_in_module =\n${lines.join('')};\n`,
);

// Bundles the page of `qz-isp report` and `qz-isp sweep --plot` into a C++ source file.
//
//   node build.mjs [--install] DIRECTORY
//
// Writes report_page.cpp and licences.txt into the directory, unless they are made. The packages that it takes are kept
// there too: with --install they come from the npm registry, and a failure is an error; without, only from npm's cache,
// and where they are missing the source file holds no page, so that the rest builds.
import { execFileSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { copyFileSync, existsSync, mkdirSync, readFileSync, readdirSync, renameSync, rmSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const sources = dirname(fileURLToPath(import.meta.url));
const install = process.argv[2] === '--install';
const directory = resolve(process.argv[install ? 3 : 2]);
const packages = join(directory, 'node_modules');
const output = join(directory, 'report_page.cpp');

function hash_of(files) {
    const hash = createHash('sha256');
    for (const file of files) hash.update(file).update(readFileSync(join(sources, file)));
    return hash.digest('hex');
}

// Whether the directory holds what was made from the same files.
function is_made(stamp, key) {
    const file = join(directory, stamp);
    return existsSync(file) && readFileSync(file, 'utf8') === key;
}

function install_packages() {
    const key = hash_of(['package-lock.json']);
    if (is_made('packages.key', key)) return;
    for (const file of ['package.json', 'package-lock.json']) copyFileSync(join(sources, file), join(directory, file));
    const options = [
        '--ignore-scripts',
        '--no-audit',
        '--no-fund',
        '--loglevel=error',
        '--fetch-retries=1',
        '--fetch-timeout=60000',
        install ? '--prefer-offline' : '--offline',
    ];
    execFileSync('npm', ['ci', ...options], {
        cwd: directory,
        stdio: ['ignore', 'ignore', install ? 'inherit' : 'ignore'],
    });
    writeFileSync(join(directory, 'packages.key'), key);
}

function bundle() {
    const esbuild = createRequire(join(directory, 'package.json'))('esbuild');
    const { outputFiles } = esbuild.buildSync({
        entryPoints: [join(sources, 'page.js'), join(sources, 'report.css')],
        bundle: true,
        minify: true,
        write: false,
        outdir: directory,
        format: 'iife',
        target: 'es2020',
        charset: 'ascii',
        legalComments: 'none', // the licences are in the page in full
        nodePaths: [packages],
        define: { 'process.env.NODE_ENV': '"production"' },
    });
    const text_of = (ending) => outputFiles.find((file) => file.path.endsWith(ending)).text;
    return { script: text_of('.js'), style: text_of('.css') };
}

function licences() {
    const texts = [
        ['Apache ECharts', 'echarts/NOTICE', 'echarts/LICENSE', 'echarts/licenses/LICENSE-d3'],
        ['ZRender', 'zrender/LICENSE'],
        ['tslib', 'tslib/LICENSE.txt'],
    ];
    return texts
        .map(([name, ...files]) => [name, ...files.map((file) => readFileSync(join(packages, file), 'utf8').trim())])
        .map((parts) => parts.join('\n\n'))
        .join('\n\n' + '-'.repeat(72) + '\n\n');
}

function page() {
    const { script, style } = bundle();
    const text = licences();
    writeFileSync(join(directory, 'licences.txt'), text + '\n');
    const parts = { script, style, licences: text.replaceAll('&', '&amp;').replaceAll('<', '&lt;') };
    return readFileSync(join(sources, 'template.html'), 'utf8').replace(
        /<!-- (script|style|licences) -->/g,
        (_, name) => parts[name],
    );
}

function write_source(text) {
    const parts = text.split('<!-- data -->');
    if (parts.length !== 2 || text.includes(')qz"')) throw new Error('the page cannot be cut or quoted');
    const [before, after] = parts.map((part) => `R"qz(${part})qz"`);
    const source = `#include "tools/base/report_page.h"\n\nconst qz::tool::report_page qz::tool::built_in_page = {${before}, ${after}};\n`;
    writeFileSync(output + '.new', source);
    renameSync(output + '.new', output);
}

// The folders of what is bundled.
const files = ['.', 'live', 'module', 'sweep'].flatMap((folder) =>
    readdirSync(join(sources, folder), { withFileTypes: true })
        .filter((entry) => entry.isFile())
        .map(({ name }) => join(folder, name)),
);
const key = hash_of(files.sort());
if (existsSync(output) && is_made('page.key', key)) process.exit(0);
mkdirSync(directory, { recursive: true });
rmSync(join(directory, 'page.key'), { force: true });
try {
    install_packages();
    write_source(page());
    writeFileSync(join(directory, 'page.key'), key);
} catch (error) {
    console.error(`The page of qz-isp report could not be bundled: ${error.message}`);
    if (install) process.exit(1);
    console.error('Everything else builds. make report-bundle installs the npm packages that the page takes.');
    copyFileSync(join(sources, '../tools/base/report_no_page.cpp'), output);
}

// The live page beside the program: a control's change against `qz-isp run --set`, files in and out, the address.
import assert from 'node:assert/strict';
import { execFileSync, spawnSync } from 'node:child_process';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { join, resolve } from 'node:path';
import { after, before, test } from 'node:test';

const { chromium } = createRequire(join(process.cwd(), 'package.json'))('playwright-core');

const program = resolve(process.env.PROGRAM); // from any directory

function qz_isp(...options) {
    return execFileSync(program, options, { stdio: ['ignore', 'pipe', 'ignore'], maxBuffer: 2 ** 26 });
}

let browser;
before(async () => {
    browser = await chromium.launch({ executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium' });
});
after(() => browser?.close());

async function open_live(name, { width = 1280, address = '', options = [] } = {}) {
    const file = join(process.cwd(), `${name}.html`);
    qz_isp('report', file, ...options);
    const page = await browser.newPage({
        viewport: { width, height: 844 },
        isMobile: width < 500,
        acceptDownloads: true,
    });
    const troubles = [];
    page.on('console', (message) => troubles.push(message.text()));
    page.on('pageerror', (error) => troubles.push(error.message));
    page.on('request', (request) => request.url().startsWith(`file://${file}`) || troubles.push(request.url()));
    await page.goto(`file://${file}${address}`);
    await page.waitForSelector('.live .knob', { state: 'attached' });
    return { page, troubles };
}

// What the page says of a block's field, and what the program computes.
function field(page, block, name) {
    return page.$eval(
        `tr:has(#block-${block})`,
        (row, wanted) => {
            const place = [...row.querySelectorAll('td > div > *')].find(
                (each) => each.querySelector('b, mark')?.textContent === wanted,
            );
            return [...place.querySelectorAll('code')].at(-1).textContent.split(' ').map(Number);
        },
        name,
    );
}

// Every value of the record in the page against the program's.
async function expect_record(page, ...options) {
    const [frame] = JSON.parse(qz_isp('run', '--json', ...options)).frames;
    for (const { id, fields } of frame.blocks) {
        for (const [name, value] of Object.entries(fields))
            assert.deepEqual(await field(page, id, name), [value].flat(3), `block ${id} ${name} ${options.join(' ')}`);
    }
}

// Once what was turned is drawn.
function drawn(page) {
    return page.evaluate(
        () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(done)))),
    );
}

async function turn(page, name, value) {
    await page.evaluate(
        ([input, text]) => {
            const number = document.querySelector(`.knob[data-input="${input}"] input[type=number]`);
            number.value = text;
            number.dispatchEvent(new Event('input'));
        },
        [name, String(value)],
    );
    await drawn(page);
}

test('every value after a control has changed is the one of the program', async () => {
    const { page, troubles } = await open_live('live-values', { options: ['--frame', '2'] });
    await expect_record(page, '--frame', '2');
    const changes = [
        ['gain', 12.5],
        ['sharpness', -77],
        ['tuning_mode', 1],
        ['frame.size.width', 640],
        ['hue', 90],
        ['exposure.digital_gain', 1.75],
        ['lsc.enable', 0],
    ];
    const options = [];
    for (const [name, value] of changes) {
        await turn(page, name, value);
        options.push('--set', `${name}=${value}`);
        await expect_record(page, '--frame', '2', ...options);
    }
    // Beside those that the frame has.
    await page.check('.effects input[value=negative]');
    await page.check('.effects input[value=macc_2]');
    await drawn(page);
    await expect_record(page, '--frame', '2', ...options, '--set', 'effects=macc_2+macc_3+negative+vivid');
    assert.match(await page.textContent('.status'), /^\d+ values of .* not as in the frame of the scene$/);
    assert.ok((await page.locator('#blocks mark').count()) > 50);

    await page.click('text=Copy as command');
    await page.waitForFunction(() => document.querySelector('.status').textContent.includes('qz-isp run'));
    const command = await page.textContent('.status');
    assert.match(
        command,
        /qz-isp run --frame 2 --set gain=12\.5 --set sharpness=-77 .*--set effects=macc_2\+macc_3\+negative\+vivid$/,
    );

    await page.click('text=Reset all');
    await drawn(page);
    await expect_record(page, '--frame', '2');
    assert.equal(await page.locator('#blocks mark').count(), 0);
    assert.deepEqual(troubles, []);
});

test('a wrong value is told beside its control and changes nothing', async () => {
    const { page, troubles } = await open_live('live-wrong');
    for (const wrong of ['200', '1.5', '-129', '']) {
        await turn(page, 'sharpness', wrong);
        const number = page.locator('.knob[data-input=sharpness] input[type=number]');
        assert.equal(await number.getAttribute('aria-invalid'), 'true', wrong);
        assert.match(await number.evaluate((each) => each.validationMessage), /an integer from -128 to 127/);
        await expect_record(page);
    }
    assert.deepEqual(troubles, []);
});

test('with the keyboard alone, at the width of a phone', async () => {
    const { page, troubles } = await open_live('live-keyboard', { width: 390 });
    await page.focus('#controls summary');
    await page.keyboard.press('Enter');
    await page.focus('.knob[data-input=sharpness] input[type=range]');
    for (let i = 0; i < 3; ++i) await page.keyboard.press('ArrowRight');
    await drawn(page);
    const [frame] = JSON.parse(readFileSync(new URL('../../tools/sample/scene.json', import.meta.url))).frames.slice(
        -1,
    );
    await expect_record(page, '--set', `sharpness=${frame.sharpness + 3}`);
    await page.keyboard.press('Shift+Tab');
    await page.keyboard.press('Enter');
    await drawn(page);
    await expect_record(page);
    assert.ok((await page.evaluate(() => document.scrollingElement.scrollWidth - innerWidth)) <= 0);
    assert.deepEqual(troubles, []);
});

test('the address keeps the controls', async () => {
    const first = await open_live('live-address');
    await first.page.selectOption('#controls #frame', '1');
    await turn(first.page, 'gain', 3);
    await turn(first.page, 'colour.ccm[4]', 1.25);
    await first.page.waitForTimeout(500);
    const address = new URL(first.page.url()).hash;
    const { page, troubles } = await open_live('live-address', { address });
    await expect_record(page, '--frame', '1', '--set', 'gain=3', '--set', 'colour.ccm[4]=1.25');
    assert.deepEqual(troubles, []);
});

test('files are read as the program reads them, and what is saved is what is shown', async () => {
    const { page, troubles } = await open_live('live-files');
    await page.click('.files summary');
    const open = (name, contents) => page.setInputFiles('#open', { name, mimeType: '', buffer: Buffer.from(contents) });
    const refused = [
        ['broken.json', '{"records": [{"slot": "xnr", "rows": [1]}]}', '--tuning'],
        ['short.vuxb', Buffer.from('VUXB\0\0'), '--tuning'],
        ['wrong.json', '{"frames": [{"hue": 200}]}', '--scene'],
    ];
    mkdirSync('files', { recursive: true });
    for (const [name, contents, option] of refused) {
        await open(name, contents);
        await page.waitForSelector('.alert:not([hidden])');
        writeFileSync(join('files', name), contents);
        const { stderr } = spawnSync(program, ['run', '--quiet', option, name], { cwd: 'files' });
        assert.equal(`qz-isp: ${await page.textContent('.alert')}\n`, stderr.toString());
        await expect_record(page);
    }
    await open('own.json', '{"frames": [{"name": "own", "exposure": {"analog_gain": 2}, "edge_mode": 1}]}');
    await page.waitForFunction(() => document.querySelector('h1').textContent === 'own');
    assert.equal(await page.isHidden('.alert'), true);
    await turn(page, 'sharpness', 11);
    const saved = {};
    for (const what of ['container', 'source', 'scene']) {
        const [download] = await Promise.all([page.waitForEvent('download'), page.click(`[data-save=${what}]`)]);
        saved[what] = join('files', `saved-${download.suggestedFilename()}`);
        await download.saveAs(saved[what]);
    }
    await expect_record(page, '--scene', saved.scene, '--tuning', saved.container);
    await expect_record(page, '--scene', saved.scene, '--tuning', saved.source);
    assert.deepEqual(troubles, []);
});

test('another tuning is the reference, with the module and without', async () => {
    const tuning = JSON.parse(qz_isp('tuning', 'show', '--json', (qz_isp('sample', 'tuning', 'old.json'), 'old.json')));
    for (const record of tuning.records) record.rows?.forEach((row) => (row[1] += 1));
    writeFileSync('new.json', JSON.stringify(tuning));
    const options = ['--tuning', 'new.json', '--against', 'old.json', '--frame', '0'];
    const { page, troubles } = await open_live('live-against', { options });
    const changed = () =>
        page.$$eval('#blocks code mark', (marks) => marks.map((mark) => [mark.textContent, mark.title.slice(4)]));
    for (const gain of [1, 9.5]) {
        await turn(page, 'gain', gain);
        const values = (file) =>
            JSON.parse(
                qz_isp('run', '--json', '--frame', '0', '--tuning', file, '--set', `gain=${gain}`),
            ).frames[0].blocks.map(({ fields }) => Object.values(fields).flat(3));
        const [now, before] = [values('new.json'), values('old.json')];
        const expected = now.flatMap((block, b) =>
            block.map((value, i) => [String(value), String(before[b][i])]).filter(([one, other]) => one !== other),
        );
        assert.ok(expected.length > 0);
        assert.deepEqual(await changed(), expected);
        assert.match(await page.textContent('.status'), /not as in the frame of old\.json$/);
    }
    assert.deepEqual(troubles, []);
    qz_isp('report', '--static', 'against.html', ...options);
    const static_page = await browser.newPage();
    await static_page.goto(`file://${join(process.cwd(), 'against.html')}`);
    assert.ok((await static_page.locator('#blocks code mark').count()) > 0);
});

test('without the module the page is one of pictures', async () => {
    const file = join(process.cwd(), 'static.html');
    qz_isp('report', '--static', file);
    const page = await browser.newPage();
    await page.goto(`file://${file}`);
    await page.waitForSelector('.chart canvas');
    await page.waitForTimeout(300);
    assert.equal(await page.locator('#controls').count(), 0);
    assert.ok(!readFileSync(file, 'utf8').includes('id="module"'));
});

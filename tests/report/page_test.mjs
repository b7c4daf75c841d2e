// The pages of qz-isp report and qz-isp sweep --plot in headless Chromium, at the widths of a desktop and of a phone. Run in a directory that has
// playwright-core; PROGRAM names qz-isp. Leaves screenshots there.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { clipped, jumps } from '../../page/sweep/marks.js';

const { chromium } = createRequire(join(process.cwd(), 'package.json'))('playwright-core');
const widths = { desktop: 1280, phone: 390 };

function qz_isp(...options) {
    return execFileSync(process.env.PROGRAM, options, { stdio: ['ignore', 'pipe', 'ignore'], maxBuffer: 2 ** 26 });
}

let browser;
before(async () => {
    browser = await chromium.launch({ executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium' });
});
after(() => browser?.close());

// Opens a report and gives the page and what went wrong in it so far.
function open_report(device, name, ...options) {
    const file = join(process.cwd(), `${name}.html`);
    qz_isp('report', file, ...options);
    return open_page(device, file);
}

function open_plot(device, name, ...options) {
    const file = join(process.cwd(), `${name}.html`);
    qz_isp('sweep', '--plot', file, ...options);
    return open_page(device, file);
}

async function open_page(device, file) {
    const page = await browser.newPage({
        viewport: { width: widths[device], height: 844 },
        isMobile: device === 'phone',
    });
    const troubles = [];
    page.on('console', (message) => troubles.push(message.text()));
    page.on('pageerror', (error) => troubles.push(error.message));
    page.on('request', (request) => request.url() === `file://${file}` || troubles.push(`asks for ${request.url()}`));
    await page.goto(`file://${file}`);
    if (await page.$('#module')) await page.waitForSelector('.live .knob', { state: 'attached' });
    return { page, troubles };
}

// Labels of charts that show nothing: no canvas, or one of a single colour.
function empty_charts(page) {
    return page.$$eval('.chart', (charts) =>
        charts
            .filter((chart) => {
                const canvas = chart.querySelector('canvas');
                if (!canvas?.width) return true;
                // A copy, as browsers warn of canvases that are read time and again.
                const copy = new OffscreenCanvas(canvas.width, canvas.height).getContext('2d');
                copy.drawImage(canvas, 0, 0);
                const { data } = copy.getImageData(0, 0, canvas.width, canvas.height);
                return new Uint32Array(data.buffer).every((pixel, _, pixels) => pixel === pixels[0]);
            })
            .map((chart) => chart.ariaLabel),
    );
}

function overflow(page) {
    return page.evaluate(() => document.scrollingElement.scrollWidth - innerWidth);
}

// What a chart's tooltip says with the pointer at a place given as fractions of its width and height.
async function hover(page, label, x, y) {
    const chart = page.locator(`[aria-label="${label}"]`);
    await chart.evaluate((place) => place.scrollIntoView({ block: 'center' }));
    // Charts that come near are drawn.
    await page.evaluate(() => new Promise((done) => setTimeout(() => requestAnimationFrame(done), 100)));
    const box = await chart.boundingBox();
    await page.mouse.move(box.x + x * box.width, box.y + y * box.height);
    const tip = chart.locator(':scope > div').filter({ hasText: /row|gain|sector|entry|frame/ });
    await tip.waitFor({ timeout: 3000 });
    return tip.textContent();
}

for (const device of Object.keys(widths)) {
    test(`the sample on a ${device}`, async () => {
        const { page, troubles } = await open_report(device, `sample-${device}`, '--frame', 'all');
        const frames = JSON.parse(qz_isp('run', '--json', '--frame', 'all')).frames;
        const [first] = frames;
        assert.equal(await page.textContent('h1'), 'preview');
        assert.match(await page.textContent('header'), /\u00d77\.2 \(1843\).*5728 of \d{5}/);
        assert.equal(await page.locator('.blocks tbody tr').count(), first.blocks.length);
        // Gamma and its change, four shading tables, the sectors, a chart for each of 15 gain-indexed records.
        assert.equal(await page.locator('.chart').count(), 2 + 4 + 1 + 15);
        assert.deepEqual(await empty_charts(page), []);
        assert.ok((await overflow(page)) <= 0);

        const { tables } = first.blocks.find(({ name }) => name === 'lens_shading').fields;
        const seen = [];
        for (const [channel, x, y] of [
            [0, 0.3, 0.3],
            [3, 0.7, 0.8],
        ]) {
            const text = await hover(page, `Lens shading gains of channel ${channel}`, x, y);
            const [, row, column, entry] = text.match(/row (\d+), column (\d+).*entry (\d+)/).map(Number);
            assert.equal(entry, tables[channel][row][column], text);
            seen.push([row, column]);
        }
        assert.ok(seen[0][0] < seen[1][0] && seen[0][1] < seen[1][1], `rows and columns ${seen}`);

        const gamma = first.blocks.find(({ name }) => name === 'gamma_0').fields.table;
        const [, entry, value] = (await hover(page, 'Gamma tables', 0.5, 0.5)).match(
            /entry (\d+)channel 0: (\d+)channel/,
        );
        assert.equal(Number(value), gamma[entry]);
        assert.match(await hover(page, 'Values of xnr over the gain', 0.5, 0.5), /^gain \u00d7/);
        await page.screenshot({ path: `sample-${device}.png`, fullPage: true });

        if (device === 'phone' && (await page.$('.live'))) await page.click('#controls summary');
        await page.selectOption('#frame', { label: '2: video' });
        assert.equal(await page.textContent('h1'), 'video');
        assert.match(await page.textContent('#gamma'), /257 entries/);
        assert.deepEqual(await empty_charts(page), []);
        assert.deepEqual(troubles, []);
    });

    test(`a frame with nothing but a hostile name on a ${device}`, async () => {
        const name = `</title></script><img src=x onerror="document.title = 'hit'"><!--\u2028${'_'.repeat(200)}`;
        writeFileSync('bare.json', JSON.stringify({ frames: [{ name }] }));
        writeFileSync('empty.json', '{"records": []}');
        const { page, troubles } = await open_report(
            device,
            `bare-${device}`,
            '--scene',
            'bare.json',
            '--tuning',
            'empty.json',
        );
        assert.equal(await page.textContent('h1'), name);
        assert.equal(await page.locator('img').count(), 0);
        assert.match(await page.textContent('#shading'), /No lens shading block/);
        assert.match(await page.textContent('#tuning'), /No gain-indexed tuning record/);
        assert.match(
            await page.textContent('#colour tbody tr:last-child'),
            /15337.5\u00b01.00000.00000.00001.0000\u00d71.0000.0\u00b0/,
        );
        assert.equal(await page.locator('.chart').count(), 2);
        assert.deepEqual(await empty_charts(page), []);
        assert.ok((await overflow(page)) <= 0);
        assert.deepEqual(troubles, []);
    });

    test(`a sweep's plots on a ${device}`, async () => {
        const fields = 'block13.param0,block13.param1,block13.rows,block13.weight,xnr.param,bytes_used';
        const options = ['--over', 'nr_mode=0,1', '--over', 'sharpness=-100..100:40', '--over', 'gain=1..64*2'];
        const { page, troubles } = await open_plot(device, `plot-${device}`, ...options, '--fields', fields);
        const [head, ...rows] = String(qz_isp('sweep', ...options, '--fields', fields))
            .trim()
            .split('\n');
        const names = head.split(',');
        const row_of = (...inputs) => rows.find((row) => row.startsWith(`${inputs.join(',')},`)).split(',');

        assert.equal(await page.textContent('h1'), 'nr_mode \u00d7 sharpness \u00d7 gain');
        assert.match(await page.textContent('.fields summary'), /3 of 5/); // those that change, but not the weight
        assert.equal(await page.locator('.chart').count(), 3);
        assert.deepEqual(await empty_charts(page), []);
        assert.ok((await overflow(page)) <= 0);
        const told = await hover(page, 'block13.param0 over gain', 0.5, 0.5);
        const [, gain] = told.match(/^gain (\d+)/);
        for (const sharpness of [-100, -60, -20, 20, 60, 100]) {
            const value = row_of(0, sharpness, gain)[names.indexOf('block13.param0')];
            assert.ok(told.includes(`${String(sharpness).replace('-', '\u2212')}: ${value}`), told);
        }
        const [rows_at, weight] = row_of(0, 20, gain).slice(names.indexOf('block13.rows'));
        assert.match(told, new RegExp(`rows? ${rows_at}, weight ${weight.slice(0, 5)}`));

        // By the keyboard alone: another gain in the table, another place of nr_mode.
        await page.focus('#at');
        for (let i = 0; i < 3; ++i) await page.keyboard.press('ArrowRight');
        await page.selectOption('#line', { label: 'none' });
        await page.focus('#place-0');
        await page.keyboard.press('End');
        await page.focus('#place-1');
        await page.keyboard.press('End');
        const cells = await page.locator('#values tbody td').allTextContents();
        const expected = row_of(1, 100, 8);
        assert.deepEqual(cells.slice(0, 2), expected.slice(3, 5));
        assert.equal(cells[2], expected[names.indexOf('xnr.param')]);
        await page.selectOption('#x', { label: 'sharpness' });
        assert.equal(await page.locator('[aria-label="xnr.param over sharpness"]').count(), 1);
        await page.click('.fields summary');
        await page.click('text=bytes_used');
        assert.equal(await page.locator('.chart').count(), 4);
        assert.deepEqual(await empty_charts(page), []);
        await page.screenshot({ path: `plot-${device}.png`, fullPage: true });
        assert.deepEqual(troubles, []);
    });

    test(`plots of frames of hostile names on a ${device}`, async () => {
        const name = `</script><img src=x onerror="document.title = 'hit'"><!--${'_'.repeat(200)}`;
        writeFileSync('frames.json', JSON.stringify({ frames: [{ name, nr_mode: 2 }, {}] }));
        const options = ['--scene', 'frames.json', '--frame', 'all', '--fields', 'xnr.param,lens_shading.rows,xnr.set'];
        const { page, troubles } = await open_plot(device, `frames-${device}`, ...options, '--over', 'nr_mode=2');
        assert.equal(await page.locator('img').count(), 0);
        assert.ok((await hover(page, 'xnr.param over frame', 0.3, 0.5)).includes(name));
        assert.ok((await overflow(page)) <= 0);
        assert.deepEqual(troubles, []);
    });
}

test('jumps and clipped stretches of lines', () => {
    const ramp = [1, 2, 3, 4, 5, 6, 7, 8];
    const jump_cases = [
        [[1, 2, 3, 4, 50, 51, 52, 53, 54, 55], [4]],
        [[5, 5, 5, 5, 5, 90, 90, 90, 90, 90], [5]],
        [[1, 2, 4, 8, 16, 32, 64, 128, 256, 512], []],
        [[0, 0, 0, 9, 9, 9, 18, 18, 18, 27, 27, 27], []], // stairs
        [[0, 1, 1, 2, 2, 2, 3, 3, 4, 4], []],
        [[0, 100, 200, null, 5000, 5100, 5200, 5300, 5400], []],
        [[10, 10], []],
    ];
    for (const [values, expected] of jump_cases)
        assert.deepEqual(
            jumps(
                values,
                values.map((_, i) => i),
            ),
            expected,
            String(values),
        );
    // The same steps over uneven distances.
    assert.deepEqual(jumps([0, 10, 20, 120, 130, 140, 150, 160, 170, 180], [0, 1, 2, 12, 13, 14, 15, 16, 17, 18]), []);
    const clip_cases = [
        [[1, 2, 3, 7, 7, 7, 7, 7], [[3, 7]]],
        [[0, 0, 0, 4, 6, 5, 3, 2], [[0, 2]]],
        [[1, 2, 4, 4, 4, 5, 6, 7], []],
        [[1, 2, 4, 4, 4, 5, 6, 7], [[2, 4]], [0, 4]],
        [[1, 1, 1, 1, 2, 2, 2, 2], []],
        [[7, 7, 7, 7, 7, 7, 7, 7], []],
        [ramp, []],
    ];
    for (const [values, expected, limits] of clip_cases)
        assert.deepEqual(clipped(values, limits), expected, String(values));
});

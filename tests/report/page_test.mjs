// The page of qz-isp report in headless Chromium, at the widths of a desktop and of a phone. Run in a directory that has
// playwright-core; PROGRAM names qz-isp. Leaves screenshots there.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

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
async function open_report(device, name, ...options) {
    const file = join(process.cwd(), `${name}.html`);
    qz_isp('report', file, ...options);
    const page = await browser.newPage({
        viewport: { width: widths[device], height: 844 },
        isMobile: device === 'phone',
    });
    const troubles = [];
    page.on('console', (message) => troubles.push(message.text()));
    page.on('pageerror', (error) => troubles.push(error.message));
    page.on('request', (request) => request.url() === `file://${file}` || troubles.push(`asks for ${request.url()}`));
    await page.goto(`file://${file}`);
    return { page, troubles };
}

// Labels of charts that show nothing: no canvas, or one of a single colour.
function empty_charts(page) {
    return page.$$eval('.chart', (charts) =>
        charts
            .filter((chart) => {
                const canvas = chart.querySelector('canvas');
                if (!canvas?.width) return true;
                const { data } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
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
    await chart.scrollIntoViewIfNeeded();
    const box = await chart.boundingBox();
    await page.mouse.move(box.x + x * box.width, box.y + y * box.height);
    const tip = chart
        .locator('div')
        .filter({ hasText: /row|gain|sector|entry/ })
        .last();
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
}

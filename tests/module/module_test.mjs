// The WebAssembly module beside the program: the same bytes and the same messages. MODULE and PROGRAM name the two.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';
import { IspError, IspModule } from '../../page/module/host.js';

const read = (path) => readFileSync(new URL(`../../${path}`, import.meta.url), 'utf8');
const tuning = read('tools/sample/tuning.json');
const scene = read('tools/sample/scene.json');
const sample_frames = JSON.parse(scene).frames.length;

const isp = new IspModule(new WebAssembly.Module(readFileSync(process.env.MODULE)));

// The program with files that are handed over as standard input.
function qz_isp(options, input = '') {
    return spawnSync(process.env.PROGRAM, options, { input, maxBuffer: 2 ** 28 });
}

function sha256(bytes) {
    return createHash('sha256').update(bytes).digest('hex');
}

// Linear congruences, so that a failure can be had again.
function random_numbers(seed) {
    let state = seed;
    return (count) => {
        state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
        return Math.floor((state / 2 ** 32) * count);
    };
}

test('records and makernotes are those written down', () => {
    const expected = read('tests/sample_record.txt');
    const found = [];
    for (let frame = 0; frame < sample_frames; ++frame) {
        const record = isp.call('records', { tuning, scene, request: { frame: `${frame}` } });
        found.push(`: ${record.length} ${sha256(record)}`);
    }
    found.push(`makernote ${sha256(isp.call('makernote', { tuning, scene, request: { frame: 'all' } }))}`);
    const untuned = { tuning: '{"records": []}', scene: read('tests/untuned_frames.json') };
    found.push(`untuned ${sha256(isp.call('records', { ...untuned, request: { frame: 'all' } }))}`);
    found.push(`untuned makernote ${sha256(isp.call('makernote', { ...untuned, request: {} }))}`);
    const lines = expected.trimEnd().split('\n');
    assert.equal(lines.length, found.length);
    lines.forEach((line, i) => assert.ok(line.endsWith(found[i]), `${line}\n${found[i]}`));
});

test('frames with random inputs are those of the program', () => {
    const pick = random_numbers(1);
    const modes = ['nr_mode', 'edge_mode', 'tuning_mode', 'gamma_257', 'lsc.enable', 'block9_control'];
    const strengths = ['nr_strength', 'sharpness', 'brightness', 'contrast', 'saturation'];
    for (let i = 0; i < 100; ++i) {
        const settings = [
            `gain=${(2 ** (pick(1000) / 100)).toFixed(3)}`,
            `hue=${pick(256) - 128}`,
            `colour.saturation=${pick(400) / 100}`,
            `frame.size.width=${2 + pick(8000)}`,
            ...modes.map((name) => `${name}=${pick(4)}`),
            ...strengths.map((name) => `${name}=${pick(256) - 128}`),
            `tuning:xnr[0/0].rows[0].param=${pick(65536)}`,
        ];
        const frame = `${pick(sample_frames)}`;
        const record = isp.call('records', { tuning, scene, request: { frame, settings } });
        const options = settings.flatMap((setting) => ['--set', setting]);
        const program = qz_isp(['run', '--quiet', '--frame', frame, '--raw', '-', ...options]);
        assert.equal(program.status, 0, program.stderr.toString());
        assert.ok(program.stdout.equals(record), `frame ${frame} ${settings.join(' ')}`);
    }
});

test('containers and sources are those of the program', () => {
    const container = isp.call('container', { tuning, scene, request: {} });
    assert.ok(qz_isp(['tuning', 'pack', '-', '-'], tuning).stdout.equals(container));
    const source = isp.call('source', { tuning: container, scene, request: {} });
    assert.equal(
        new TextDecoder().decode(source),
        qz_isp(['tuning', 'show', '--json', '-'], container).stdout.toString(),
    );
});

test('what is refused is refused with the message of the program, and the next call works', () => {
    const name = 'standard input';
    const truncated = isp.call('container', { tuning, scene, request: {} }).slice(0, 1000);
    const tunings = ['{"records": [', '{"records": [{}]}', '{"recrods": []}', 'VUXB', new Uint8Array(40), truncated];
    const scenes = [
        '{}',
        '{"frames": [{"hue": 200}]}',
        '{"frames": [{"exposure": 1e400}]}',
        '{"frames": {"\0": 1}}',
        '',
    ];
    const cases = [
        ...tunings.map((bytes) => [{ tuning: bytes, scene }, ['--tuning', '-']]),
        ...scenes.map((bytes) => [{ tuning, scene: bytes }, ['--scene', '-']]),
    ];
    for (const [given, options] of cases) {
        const request = { tuning: name, scene: name };
        const input = options[0] === '--tuning' ? given.tuning : given.scene;
        const { status, stderr } = qz_isp(['run', '--quiet', ...options], input);
        assert.equal(status, 1);
        assert.throws(
            () => isp.call('records', { ...given, request }),
            (error) => error instanceof IspError && `qz-isp: ${error.message}\n` === stderr.toString(),
            stderr.toString(),
        );
        assert.ok(isp.call('records', { tuning, scene, request: {} }).length > 5000);
    }
});

test('a file that takes more memory than there is ends in a message', () => {
    const frames = `{"frames": [${'{},'.repeat(3e6)}{}]}`;
    const huge = { tuning, scene: frames, request: { frame: 'all' } };
    assert.throws(() => isp.call('report', huge), { message: 'out of memory' });
    assert.ok(isp.call('records', { tuning, scene, request: {} }).length > 5000);
});

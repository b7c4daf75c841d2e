// The page of a report: what the header says, which frame is shown, and its sections.
import { blocks_section } from './blocks.js';
import { draw_charts } from './charts.js';
import { definitions, element, fill, gain_text, number_text } from './dom.js';
import { gamma_section } from './gamma.js';
import { go_live } from './live/live.js';
import { matrices } from './matrices.js';
import { sectors_figure } from './sectors.js';
import { shading_section } from './shading.js';
import { tuning_section } from './tuning.js';

// Each section is a function of a frame, the curves of its tuning, and the frame that changes are told from, or null:
// {label, frame, curves}.
const sections = [
    ['gamma', 'Gamma', (frame, curves, reference) => gamma_section(frame, reference)],
    ['shading', 'Shading', (frame, curves, reference) => shading_section(frame, reference)],
    [
        'colour',
        'Colour',
        (frame, curves, reference) => [...matrices(frame, reference), sectors_figure(frame, reference)],
    ],
    ['tuning', 'Tuning', (frame, curves, reference) => tuning_section(frame, curves, reference)],
    ['blocks', 'Blocks', (frame, curves, reference) => blocks_section(frame, reference)],
];

function frame_title(frame) {
    return frame.name === '' ? `frame ${frame.index}` : frame.name;
}

function facts(data, frame) {
    const { size } = frame.inputs;
    return [
        ['tuning', data.tuning],
        ['scene', data.scene],
        ['frame', `${frame.index}${size ? `, ${size.join(' \u00d7 ')}` : ''}`],
        ['gain', `${gain_text(frame.origin.gain)} (${frame.origin.gain})`],
        ['bytes in use', `${frame.bytes_used} of ${data.record_size}`],
    ];
}

function controls({ inputs }) {
    const numbers = Object.entries(inputs.controls).map(([name, value]) => [name, number_text(value)]);
    return [...numbers, ['effects', inputs.effects.join(', ') || 'none']];
}

function frame_switch(data, shown) {
    const select = element(
        'select',
        { id: 'frame' },
        data.frames.map((frame, i) =>
            element(
                'option',
                { value: i, ...(frame === shown && { selected: '' }) },
                `${frame.index}: ${frame_title(frame)}`,
            ),
        ),
    );
    select.addEventListener('change', () => {
        const chosen = data.frames[select.value];
        show(data, chosen, reference_of(data, chosen));
    });
    return element('label', { class: 'switch' }, 'Frame ', select);
}

function header(data, frame) {
    return [
        element('p', { class: 'kind' }, 'qz-isp report'),
        element('h1', {}, frame_title(frame)),
        ...(data.frames.length > 1 ? [frame_switch(data, frame)] : []),
        definitions(facts(data, frame), 'facts'),
        definitions(controls(frame), 'controls'),
    ];
}

// The details that a reader has opened stay open.
function keep_open(place, fill) {
    const keys = () => [...place.querySelectorAll('details[data-key]')];
    const open = new Set(
        keys()
            .filter((each) => each.open)
            .map((each) => each.dataset.key),
    );
    fill();
    for (const each of keys()) each.open ||= open.has(each.dataset.key);
}

const section_places = new Map(
    sections.map(([id, title]) => {
        const head = element('h2', {}, element('a', { href: `#${id}` }, title));
        const body = element('div', {});
        return [id, { section: element('section', { id }, head, body), body }];
    }),
);

function show(data, frame, reference = null) {
    document.title = `${frame_title(frame)} \u2013 qz-isp report`;
    document.querySelector('header').replaceChildren(...header(data, frame));
    for (const [id, , parts] of sections) {
        const { body } = section_places.get(id);
        keep_open(body, () => fill(body, parts(frame, data.curves, reference)));
    }
    draw_charts();
}

// The same frame of the tuning that the report was written against, if it was.
function reference_of({ against }, { index }) {
    const frame = against?.frames.find((each) => each.index === index);
    return frame ? { label: `of ${against.tuning}`, frame, curves: against.curves } : null;
}

export function show_report(data) {
    document.querySelector('nav').append(...sections.map(([id, title]) => element('a', { href: `#${id}` }, title)));
    document.querySelector('main').append(...[...section_places.values()].map(({ section }) => section));
    show(data, data.frames[0], reference_of(data, data.frames[0]));
    go_live(data, (live, reference) => show(live, live.frames[0], reference));
}

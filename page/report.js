// The page of a report: what the header says, which frame is shown, and its sections.
import { blocks_section } from './blocks.js';
import { draw_charts } from './charts.js';
import { definitions, element, gain_text, number_text } from './dom.js';
import { gamma_section } from './gamma.js';
import { matrices } from './matrices.js';
import { sectors_figure } from './sectors.js';
import { shading_section } from './shading.js';
import { tuning_section } from './tuning.js';

let data;

const sections = [
    ['gamma', 'Gamma', (frame) => gamma_section(frame)],
    ['shading', 'Shading', (frame) => shading_section(frame)],
    ['colour', 'Colour', (frame) => [...matrices(frame), sectors_figure(frame)]],
    ['tuning', 'Tuning', (frame) => tuning_section(frame, data.curves)],
    ['blocks', 'Blocks', (frame) => blocks_section(frame)],
];

function frame_title(frame) {
    return frame.name === '' ? `frame ${frame.index}` : frame.name;
}

function facts(frame) {
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

function frame_switch(shown) {
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
    select.addEventListener('change', () => show(data.frames[select.value]));
    return element('label', { class: 'switch' }, 'Frame ', select);
}

function header(frame) {
    return [
        element('p', { class: 'kind' }, 'qz-isp report'),
        element('h1', {}, frame_title(frame)),
        ...(data.frames.length > 1 ? [frame_switch(frame)] : []),
        definitions(facts(frame), 'facts'),
        definitions(controls(frame), 'controls'),
    ];
}

function show(frame) {
    document.title = `${frame_title(frame)} \u2013 qz-isp report`;
    document.querySelector('header').replaceChildren(...header(frame));
    document
        .querySelector('main')
        .replaceChildren(
            ...sections.map(([id, title, parts]) =>
                element('section', { id }, element('h2', {}, element('a', { href: `#${id}` }, title)), parts(frame)),
            ),
        );
    draw_charts();
}

export function show_report(report) {
    data = report;
    document.querySelector('nav').append(...sections.map(([id, title]) => element('a', { href: `#${id}` }, title)));
    show(data.frames[0]);
}

// The page of a sweep: charts of fields over one range, a line for each value of a second one.
import { draw_charts } from '../charts.js';
import { definitions, element, note } from '../dom.js';
import { field_controls, range_controls, slider } from './controls.js';
import { line_colour } from './lines.js';
import { field_card } from './plot.js';
import { is_constant, place_text, sweep_table } from './table.js';
import { jump_list, values_at } from './values.js';

// Fields that are shown first, of those that change.
const first_fields = 4;

function header({ tuning, scene, frame, settings }, table) {
    const facts = [
        ['tuning', tuning],
        ['scene', scene],
        ...(frame ? [['frame', frame[1] ? `${frame[0]}, ${frame[1]}` : String(frame[0])]] : []),
        ['rows', String(table.rows)],
        ...(settings.length ? [['set', settings.join(', ')]] : []),
    ];
    const ranges = table.ranges.map((range) => {
        const count = range.values.length;
        const [first, last] = [place_text(range, 0), place_text(range, count - 1)];
        return [range.name, count === 1 ? first : `${first} to ${last}, ${count} values`];
    });
    return [
        element('p', { class: 'kind' }, 'qz-isp sweep'),
        element('h1', {}, table.ranges.map(({ name }) => name).join(' \u00d7 ')),
        definitions(facts, 'facts'),
        definitions(ranges, 'facts'),
    ];
}

function first_state({ ranges, columns }) {
    // The last range of more than one value, and the one before.
    const varied = ranges.map((_, i) => i).filter((i) => ranges[i].values.length > 1);
    const x = varied.at(-1) ?? ranges.length - 1;
    const changing = columns.filter((column) => !is_constant(column) && !column.origin);
    // Where a mode is off, nothing moves: begin where something does.
    const [field] = changing;
    const row = field ? field.values.findIndex((value) => value !== field.values[0]) : 0;
    return {
        x,
        line: varied.length > 1 ? varied.at(-2) : null,
        places: ranges.map((range, i) => (i === x ? 0 : Math.floor(row / range.stride) % range.values.length)),
        fields: new Set(changing.length ? changing.slice(0, first_fields) : columns.slice(0, 1)),
    };
}

function legend(table, { line }) {
    const marks = [
        element('li', {}, element('i', { class: 'jump' }), 'jump'),
        element('li', {}, element('i', { class: 'clip' }), 'clipped'),
    ];
    if (line === null) return [element('ul', { class: 'legend' }, marks)];
    const range = table.ranges[line];
    const count = range.values.length;
    const colours = range.values.map((_, i) => line_colour(i, count));
    if (count <= 8) {
        const keys = colours.map((colour, i) =>
            element('li', {}, element('i', { style: `background: ${colour}` }), place_text(range, i)),
        );
        return [element('ul', { class: 'legend' }, element('li', {}, range.name), keys, marks)];
    }
    const bar = element('i', { style: `background: linear-gradient(to right, ${colours.join(', ')})` });
    return [
        element('div', { class: 'scale' }, `${range.name} ${place_text(range, 0)}`, bar, place_text(range, count - 1)),
        element('ul', { class: 'legend' }, marks),
    ];
}

const rule =
    'A jump is a step more than 8 times as large as the two on either side, on a line that is not a staircase. A line is ' +
    'clipped where it stays for three points or more at its own or its field\u2019s least or most value, but moves beside that.';

function layout(parts) {
    const about = 'At the dashed line; a click in a chart puts it elsewhere.';
    const sections = [
        ['charts', 'Charts', [parts.controls, parts.fields, parts.legend, parts.charts, note(rule)]],
        ['values', 'Values', [note(about), parts.at, parts.values]],
        ['jumps', 'Jumps', [parts.jumps]],
    ];
    const link = (id, title) => element('a', { href: `#${id}` }, title);
    document.querySelector('nav').append(...sections.map(([id, title]) => link(id, title)));
    document
        .querySelector('main')
        .append(
            ...sections.map(([id, title, inside]) =>
                element('section', { id }, element('h2', {}, link(id, title)), inside),
            ),
        );
}

export function show_sweep(data) {
    const table = sweep_table(data);
    const columns = table.columns.filter((column) => !column.is_text);
    const state = first_state({ ...table, columns });
    const part = (id, name = '') => element('div', { id: `${id}-part`, class: name });
    const parts = {
        controls: part('controls', 'controls-row'),
        fields: field_controls(columns, state, () => show_charts()),
        legend: part('legend'),
        charts: part('charts', 'pair'),
        at: part('at'),
        values: part('values'),
        jumps: part('jumps'),
    };
    let cards = [];

    function show_axes() {
        const focus = document.activeElement?.id;
        const change = (what) => (what === 'axes' ? show_axes() : show_charts());
        parts.controls.replaceChildren(...range_controls(table, state, change));
        parts.legend.replaceChildren(...legend(table, state));
        document.getElementById(focus)?.focus();
        show_slider();
        show_charts();
    }
    function show_charts() {
        const chosen = columns.filter((column) => state.fields.has(column));
        cards = chosen.map((column) => field_card(table, column, state, (place) => move(place, show_slider)));
        parts.charts.replaceChildren(...(cards.length ? cards.map(({ card }) => card) : [note('No field is chosen.')]));
        parts.values.replaceChildren(...values_at(table, state, cards));
        parts.jumps.replaceChildren(...jump_list(table, state, cards));
        draw_charts();
    }
    // Of the line on the axis.
    function move(place, then = () => {}) {
        state.places[state.x] = place;
        parts.values.replaceChildren(...values_at(table, state, cards));
        draw_charts(true);
        then();
    }
    function show_slider() {
        parts.at.replaceChildren(slider('at', table.ranges[state.x], state.places[state.x], move));
    }

    document.title = `${table.ranges.map(({ name }) => name).join(', ')} \u2013 qz-isp sweep`;
    document.querySelector('header').replaceChildren(...header(data, table));
    layout(parts);
    show_axes();
}

// A field's chart.
import { axis, chart, colour, place_at } from '../charts.js';
import { count_text, element } from '../dom.js';
import { count_jumps, lines_of } from './lines.js';
import { origin_text, place_text } from './table.js';

// Lines that the pointer tells of, those nearest to it.
const told = 10;

function point_at(range, place, value) {
    return [range.scale === 'category' ? place : range.values[place], value];
}

// Points with gaps between runs of places.
function pieces(range, { values }, runs) {
    return runs.flatMap((run) => [...run.map((place) => point_at(range, place, values[place])), [null, null]]);
}

function run_of([first, last]) {
    return Array.from({ length: last - first + 1 }, (_, i) => first + i);
}

function x_axis(range) {
    const common = { name: range.name, splitLine: { show: false } };
    if (range.scale === 'category')
        return axis({
            ...common,
            type: 'category',
            data: range.values.map((_, place) => place_text(range, place)),
            boundaryGap: range.values.length === 1,
            axisLabel: { ...axis({}).axisLabel, width: 96, overflow: 'truncate' },
        });
    const [min, max] = [range.values[0], range.values.at(-1)].sort((a, b) => a - b);
    return axis({
        ...common,
        min,
        max,
        ...(range.scale === 'log' && { type: 'log', logBase: max / min < 1000 ? 2 : 10 }),
    });
}

function series(range, line, few) {
    const own = {
        name: line.label,
        type: 'line',
        data: line.values.map((value, place) => point_at(range, place, value)),
        color: line.colour,
        lineStyle: { width: few ? 2 : 1.2 },
        showSymbol: few && range.values.length <= 24,
        symbolSize: 5,
        emphasis: { disabled: true },
    };
    const mark = (runs, style) => ({
        type: 'line',
        data: pieces(range, line, runs),
        showSymbol: false,
        silent: true,
        tooltip: { show: false },
        emphasis: { disabled: true },
        lineStyle: style,
    });
    const marks = [];
    if (line.clipped.length)
        marks.push(mark(line.clipped.map(run_of), { width: 8, color: line.colour, opacity: 0.3, cap: 'round' }));
    if (line.jumps.length)
        marks.push(
            mark(
                line.jumps.map((place) => [place - 1, place]),
                { width: 4, color: colour('accent') },
            ),
        );
    return [own, ...marks];
}

function tip(table, column, state, lines, place, pointed) {
    const range = table.ranges[state.x];
    const near = (line) => Math.abs((line.values[place] ?? Infinity) - pointed);
    const nearest =
        lines.length > told ? new Set([...lines].sort((a, b) => near(a) - near(b)).slice(0, told)) : new Set(lines);
    const shown = lines.filter((line) => nearest.has(line));
    const origins = shown.map((line) => origin_text(table, column, line.rows[place]));
    const same = origins.every((text) => text === origins[0]);
    return element(
        'div',
        { class: 'tip' },
        element('div', {}, `${range.name} ${place_text(range, place)}`),
        shown.map((line, i) =>
            element(
                'div',
                {},
                element('i', { class: 'swatch', style: `background: ${line.colour}` }),
                `${line.label}: `,
                element('b', {}, String(line.values[place] ?? 'none')),
                same ? '' : ` (${origins[i] || 'no record'})`,
            ),
        ),
        ...(lines.length > told ? [element('div', { class: 'note' }, `the ${told} nearest of ${lines.length}`)] : []),
        ...(same && origins[0] ? [element('div', { class: 'note' }, origins[0])] : []),
    );
}

// The place of a range that is nearest to a point of its axis.
export function nearest_place(range, at) {
    if (range.scale === 'category') return Math.min(Math.max(Math.round(at), 0), range.values.length - 1);
    const far = (value) => (range.scale === 'log' ? Math.abs(Math.log(value / at)) : Math.abs(value - at));
    return range.values.reduce((best, value, place) => (far(value) < far(range.values[best]) ? place : best), 0);
}

function chart_options(table, column, state, lines, pointer) {
    const range = table.ranges[state.x];
    return {
        grid: { left: 64, right: 22, top: 16, bottom: 48 },
        tooltip: {
            trigger: 'axis',
            // On the side where the pointer is not.
            position: ([x], _params, _dom, _rect, { contentSize, viewSize }) => [
                x < viewSize[0] / 2
                    ? Math.max(x + 24, viewSize[0] - contentSize[0] - 8)
                    : Math.min(x - contentSize[0] - 24, 72),
                8,
            ],
            formatter: (points) => {
                const { value } = points.find((point) => point.value[0] !== null);
                return tip(table, column, state, lines, nearest_place(range, value[0]), pointer());
            },
        },
        xAxis: x_axis(range),
        yAxis: axis({ scale: true }),
        series: [
            ...lines.flatMap((line) => series(range, line, lines.length <= told)),
            {
                type: 'line',
                data: [],
                markLine: {
                    symbol: 'none',
                    silent: true,
                    animation: false,
                    lineStyle: { color: colour('soft'), width: 1, type: 'dashed' },
                    label: { show: false },
                    data: [{ xAxis: point_at(range, state.places[state.x])[0] }],
                },
            },
        ],
    };
}

function about(table, column, state, lines) {
    const parts = [];
    const here = lines.reduce((count, line) => count + line.jumps.length, 0);
    const all = count_jumps(table, column, state.x);
    if (here) parts.push(count_text(here, 'jump'));
    if (all > here) parts.push(`${count_text(all - here, 'jump')} elsewhere in the sweep`);
    const clips = lines.filter((line) => line.clipped.length).length;
    if (clips) parts.push(lines.length === 1 ? 'clipped' : `${count_text(clips, 'line')} clipped`);
    return parts.join('; ');
}

// choose: called with the place on the x axis that is clicked.
export function field_card(table, column, state, choose) {
    const lines = lines_of(table, column, state);
    const range = table.ranges[state.x];
    let pointed = 0;
    const place = chart(`${column.name} over ${range.name}`, 1.6, () =>
        chart_options(table, column, state, lines, () => pointed),
    );
    const at = (event) => {
        const box = place.getBoundingClientRect();
        return place_at(place, event.clientX - box.left, event.clientY - box.top) ?? [NaN, NaN];
    };
    place.addEventListener('pointermove', (event) => ([, pointed] = at(event)), true);
    place.addEventListener('click', (event) => choose(nearest_place(range, at(event)[0])));
    const note = about(table, column, state, lines);
    const card = element(
        'figure',
        { class: 'card' },
        element('figcaption', {}, element('code', {}, column.name), element('small', {}, note)),
        place,
    );
    return { card, place, lines, column };
}

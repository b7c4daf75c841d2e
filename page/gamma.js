// The gamma tables, and what brightness and contrast do to them.
import { axis, chart, colour } from './charts.js';
import { element, note, number_text } from './dom.js';

const channel_colours = ['channel-0', 'channel-1', 'channel-2'];
const last_value = 4095;

function line(name, values, channel, more = {}) {
    return {
        name,
        type: 'line',
        data: values.map((value, entry) => [entry, value]),
        showSymbol: false,
        color: colour(channel_colours[channel]),
        lineStyle: { width: 2 },
        emphasis: { disabled: true },
        ...more,
    };
}

const tooltip = {
    trigger: 'axis',
    formatter: (points) =>
        [`entry ${points[0].value[0]}`]
            .concat(points.map((point) => `${point.marker}${point.seriesName}: <b>${number_text(point.value[1])}</b>`))
            .join('<br>'),
};

function curve_options(tables, plain) {
    const dashed = { lineStyle: { width: 1.5, type: [6, 4] } };
    return {
        grid: { left: 58, right: 16, top: 16, bottom: 48 },
        tooltip,
        xAxis: axis({ name: 'table entry', min: 0, max: tables[0].length - 1, splitLine: { show: false } }),
        yAxis: axis({ min: 0, max: (extent) => Math.max(last_value, extent.max) }),
        series: [
            ...tables.map((values, channel) => line(`channel ${channel}`, values, channel)),
            ...plain.map((values, channel) => line(`channel ${channel}, plain`, values, channel, dashed)),
        ],
    };
}

function effect_options(tables, plain) {
    return {
        grid: { left: 58, right: 16, top: 16, bottom: 48 },
        tooltip,
        xAxis: axis({ name: 'table entry', min: 0, max: tables[0].length - 1, splitLine: { show: false } }),
        yAxis: axis({}),
        series: tables.map((values, channel) =>
            line(
                `channel ${channel}`,
                values.map((value, entry) => value - plain[channel][entry]),
                channel,
            ),
        ),
    };
}

function legend(changed) {
    const keys = channel_colours.map((name, channel) =>
        element('li', {}, element('i', { style: `background: var(--${name})` }), `channel ${channel}`),
    );
    if (changed) keys.push(element('li', {}, element('i', { class: 'dashed' }), 'without brightness and contrast'));
    return element('ul', { class: 'legend' }, keys);
}

function figure(title, ...parts) {
    return element('figure', { class: 'card' }, element('figcaption', {}, title), parts);
}

export function gamma_section(frame) {
    const blocks = frame.blocks.filter(({ name }) => name.startsWith('gamma_'));
    const tables = blocks.map(({ fields }) => fields.table);
    const plain = frame.plain_gamma;
    const { brightness, contrast } = frame.inputs.controls;
    const changed = tables.some((table, channel) => table.some((value, entry) => value !== plain[channel][entry]));
    const parts = [
        note(
            `Tables of ${tables[0].length} entries; brightness ${number_text(brightness)}, contrast ${number_text(contrast)}.`,
        ),
    ];
    if (blocks.some(({ origin }) => origin.from === 'kept'))
        parts.push(note('This frame has no gamma curves: its tables are what an earlier frame left, or zero.'));
    const curves = chart('Gamma tables', changed ? 1.5 : 2.6, () => curve_options(tables, changed ? plain : []));
    const figures = [figure('Gamma tables', curves, legend(changed))];
    if (changed) {
        const effect = chart('Change by brightness and contrast', 1.5, () => effect_options(tables, plain));
        figures.push(figure('What brightness and contrast add', effect, legend(false)));
    }
    return [...parts, element('div', { class: 'pair' }, figures)];
}

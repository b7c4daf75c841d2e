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

function curve_options(tables, plain, reference) {
    const dashed = { lineStyle: { width: 1.5, type: [6, 4] } };
    const thin = { lineStyle: { width: 0.75 } };
    return {
        grid: { left: 58, right: 16, top: 16, bottom: 48 },
        tooltip,
        xAxis: axis({ name: 'table entry', min: 0, max: tables[0].length - 1, splitLine: { show: false } }),
        yAxis: axis({ min: 0, max: (extent) => Math.max(last_value, extent.max) }),
        series: [
            ...tables.map((values, channel) => line(`channel ${channel}`, values, channel)),
            ...plain.map((values, channel) => line(`channel ${channel}, plain`, values, channel, dashed)),
            ...reference.map((values, channel) => line(`channel ${channel}, before`, values, channel, thin)),
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

function legend(changed, label) {
    const keys = channel_colours.map((name, channel) =>
        element('li', {}, element('i', { style: `background: var(--${name})` }), `channel ${channel}`),
    );
    if (changed) keys.push(element('li', {}, element('i', { class: 'dashed' }), 'without brightness and contrast'));
    if (label) keys.push(element('li', {}, element('i', { class: 'thin' }), `the frame ${label}`));
    return element('ul', { class: 'legend' }, keys);
}

// The reference's tables, where they are others of the same length.
function reference_tables(tables, reference) {
    const old = reference ? tables_of(reference.frame) : [];
    const differ = old.some((table, channel) => table.some((value, entry) => value !== tables[channel][entry]));
    return differ && old[0].length === tables[0].length ? old : [];
}

function tables_of(frame) {
    return frame.blocks.filter(({ name }) => name.startsWith('gamma_')).map(({ fields }) => fields.table);
}

function figure(title, ...parts) {
    return element('figure', { class: 'card' }, element('figcaption', {}, title), parts);
}

export function gamma_section(frame, reference) {
    const blocks = frame.blocks.filter(({ name }) => name.startsWith('gamma_'));
    const tables = tables_of(frame);
    const old = reference_tables(tables, reference);
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
    const curves = chart('Gamma tables', changed ? 1.5 : 2.6, () => curve_options(tables, changed ? plain : [], old));
    const figures = [figure('Gamma tables', curves, legend(changed, old.length > 0 && reference.label))];
    if (changed) {
        const effect = chart('Change by brightness and contrast', 1.5, () => effect_options(tables, plain));
        figures.push(figure('What brightness and contrast add', effect, legend(false)));
    }
    return [...parts, element('div', { class: 'pair' }, figures)];
}

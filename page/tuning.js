// The gain-indexed tuning records that the frame's values come from, as curves over the gain.
import { axis, chart, colour, palette, redraw } from './charts.js';
import { count_text, element, gain_text, note, number_text } from './dom.js';

// Lines that one chart shows.
const group = palette.length;

function place_text({ id, set, set_index, version, keys, columns }) {
    return (
        `record ${id}, set ${set} of set index ${set_index}, version ${version}: ` +
        `${count_text(keys.length, 'row')} of ${count_text(columns.length, 'value')}`
    );
}

// How the library came to the sets that it took records from.
function selection_notes({ tuning_mode, set_order, rules, index_0_first }) {
    const texts = rules.map(
        ({ kind, area, op, threshold, set_index, matches }, i) =>
            `Rule ${i} for set index ${set_index}, ${kind} area ${area ?? '(missing)'} ${op} ${threshold}: ${matches ? 'holds' : 'does not hold'}`,
    );
    return [
        note(
            `tuning_mode ${tuning_mode} takes a set index\u2019s sets in the order ${set_order.join(', ')}` +
                `${index_0_first ? '; set index 0 comes first' : ''}.`,
        ),
        ...(texts.length
            ? [
                  element(
                      'ul',
                      { class: 'note' },
                      texts.map((text) => element('li', {}, text)),
                  ),
              ]
            : []),
    ];
}

function largest(values) {
    return values.reduce((most, value) => Math.max(most, Math.abs(value)), 0);
}

// How much a column changes over the gain, as a share of its largest value.
function change(values) {
    const extent = values.reduce(
        ([low, high], value) => [Math.min(low, value), Math.max(high, value)],
        [Infinity, -Infinity],
    );
    return (extent[1] - extent[0]) / (largest(values) || 1);
}

// Choices of columns: those that change most, then all of them in turn.
function column_choices(columns) {
    const all = columns.map((_, i) => i);
    if (all.length <= group) return [['all', all]];
    const moving = [...all]
        .sort((a, b) => change(columns[b]) - change(columns[a]) || a - b)
        .slice(0, group)
        .sort((a, b) => a - b);
    const choices = [[`the ${group} that change most`, moving]];
    for (let first = 0; first < all.length; first += group) {
        const some = all.slice(first, first + group);
        choices.push([`${some[0]} to ${some.at(-1)}`, some]);
    }
    return choices;
}

function curve_options(curves, chosen, gain, relative) {
    const { gains, keys, columns } = curves;
    const is_key = new Set(keys);
    const share = (column) => (relative ? 100 / (largest(columns[column]) || 1) : 1);
    // Whole octaves with some room on either side.
    const first = 2 ** Math.max(0, Math.floor(Math.log2(Math.min(gains[0], Math.max(1, gain)) / 1.2)));
    const last = 2 ** Math.ceil(Math.log2(Math.max(gains.at(-1), gain) * 1.2));
    const points = (column) => {
        const values = gains.map((at, i) => [at, columns[column][i] * share(column), columns[column][i]]);
        // Outside the table the nearest row holds.
        const end = (at, value) => [at, value[1], value[2]];
        return [end(first, values[0]), ...values, end(last, values.at(-1))];
    };
    return {
        grid: { left: 58, right: 20, top: 26, bottom: 48 },
        tooltip: {
            trigger: 'axis',
            formatter: (list) =>
                [`gain ${gain_text(list[0].value[0])} (${list[0].value[0]})`]
                    .concat(list.map((point) => `${point.marker}${point.seriesName}: <b>${point.value[2]}</b>`))
                    .join('<br>'),
        },
        xAxis: axis({
            type: 'log',
            logBase: 2,
            name: 'gain',
            min: first,
            max: last,
            axisLabel: { ...axis({}).axisLabel, formatter: gain_text },
            splitLine: { show: false },
        }),
        yAxis: axis({ axisLabel: { ...axis({}).axisLabel, ...(relative && { formatter: '{value} %' }) }, scale: true }),
        series: chosen.map((column, i) => ({
            name: `value ${column}`,
            type: 'line',
            data: points(column),
            color: palette[i],
            lineStyle: { width: 2 },
            symbol: (value) => (is_key.has(value[0]) ? 'circle' : 'none'),
            symbolSize: 6,
            showAllSymbol: true,
            emphasis: { disabled: true },
            ...(i === 0 && {
                markLine: {
                    symbol: 'none',
                    silent: true,
                    lineStyle: { color: colour('accent'), width: 1.5, type: 'solid' },
                    label: { formatter: gain_text(gain), color: colour('accent'), fontWeight: 'bold' },
                    data: [{ xAxis: Math.max(1, gain) }],
                },
            }),
        })),
    };
}

function legend_items(chosen, at_gain) {
    return chosen.map((column, i) =>
        element(
            'li',
            {},
            element('i', { style: `background: ${palette[i]}` }),
            `value ${column}: `,
            element('b', {}, number_text(at_gain[column])),
        ),
    );
}

function curve_card({ slot, at_gain }, curves, gain, relative) {
    const choices = column_choices(curves.columns);
    let [[, chosen]] = choices;
    const place = chart(`Values of ${slot} over the gain`, 1.6, () => curve_options(curves, chosen, gain, relative()));
    const legend = element('ul', { class: 'legend' }, legend_items(chosen, at_gain));
    const caption = element('figcaption', {}, curves.kind);
    if (choices.length > 1) {
        const select = element(
            'select',
            {},
            choices.map(([name], i) => element('option', { value: i }, name)),
        );
        select.addEventListener('change', () => {
            [, chosen] = choices[select.value];
            legend.replaceChildren(...legend_items(chosen, at_gain));
            redraw(place);
        });
        caption.append(element('label', {}, 'values ', select));
    }
    const card = element(
        'figure',
        { class: 'card', id: `tuning-${slot}` },
        caption,
        note(place_text(curves)),
        place,
        legend,
    );
    return { card, place };
}

export function tuning_section(frame, curves) {
    const selection = selection_notes(frame.origin);
    if (!frame.records.length)
        return [
            ...selection,
            note('No gain-indexed tuning record serves this frame; see the blocks for what they hold instead.'),
        ];
    const { gain } = frame.origin;
    const box = element('input', { type: 'checkbox', checked: '' });
    const cards = frame.records.map((record) => curve_card(record, curves[record.curves], gain, () => box.checked));
    box.addEventListener('change', () => cards.forEach(({ place }) => redraw(place)));
    return [
        ...selection,
        note(
            `The gain-indexed records that this frame\u2019s values come from: rows are dots, values between them are interpolated. The line marks the frame\u2019s gain, ${gain_text(gain)}; the numbers below a chart are the values there, before strengths.`,
        ),
        element('label', { class: 'choice' }, box, ' each value in per cent of its own maximum'),
        element(
            'div',
            { class: 'pair' },
            cards.map(({ card }) => card),
        ),
    ];
}

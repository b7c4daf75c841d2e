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

// What a reader chose to see.
const view = { relative: true, choices: new Map() }; // slot to the number of a choice of columns

function curve_options(curves, chosen, gain, relative, old) {
    const { gains, keys, columns } = curves;
    const is_key = new Set(keys);
    const share = (column) => (relative ? 100 / (largest(columns[column]) || 1) : 1);
    // Whole octaves with some room on either side.
    const first = 2 ** Math.max(0, Math.floor(Math.log2(Math.min(gains[0], Math.max(1, gain)) / 1.2)));
    const last = 2 ** Math.ceil(Math.log2(Math.max(gains.at(-1), gain) * 1.2));
    const points_of = (from, column) => {
        const values = from.gains.map((at, i) => [
            at,
            from.columns[column][i] * share(column),
            from.columns[column][i],
        ]);
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
        series: chosen.flatMap((column, i) => [
            ...thin_line(old, column, (from) => points_of(from, column), palette[i]),
            {
                name: `value ${column}`,
                type: 'line',
                data: points_of(curves, column),
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
            },
        ]),
    };
}

// A column of the reference's record as a thin line, where it is another.
function thin_line(old, column, points, color) {
    if (!old?.columns[column]) return [];
    return [
        {
            name: `value ${column}, before`,
            type: 'line',
            data: points(old),
            color,
            lineStyle: { width: 0.75 },
            showSymbol: false,
            emphasis: { disabled: true },
        },
    ];
}

function legend_items(chosen, at_gain, old_at_gain = at_gain) {
    const value = (column) => {
        const [now, old] = [at_gain[column], old_at_gain[column]].map((each) => number_text(each ?? 0));
        return now === old ? now : element('mark', { class: 'was', title: `was ${old}` }, now);
    };
    return chosen.map((column, i) =>
        element(
            'li',
            {},
            element('i', { style: `background: ${palette[i]}` }),
            `value ${column}: `,
            element('b', {}, value(column)),
        ),
    );
}

// The reference's record of the same slot: its values at its gain, and its curves where they are others.
function old_record(slot, curves, reference) {
    const record = reference?.frame.records.find((each) => each.slot === slot);
    if (!record) return {};
    const old = reference.curves[record.curves];
    const same = JSON.stringify([old.keys, old.columns]) === JSON.stringify([curves.keys, curves.columns]);
    return { at_gain: record.at_gain, curves: same ? null : old };
}

function curve_card({ slot, at_gain }, curves, gain, reference) {
    const choices = column_choices(curves.columns);
    const old = old_record(slot, curves, reference);
    const chosen = () => (choices[view.choices.get(slot) ?? 0] ?? choices[0])[1];
    const place = chart(`Values of ${slot} over the gain`, 1.6, () =>
        curve_options(curves, chosen(), gain, view.relative, old.curves),
    );
    const items = () => legend_items(chosen(), at_gain, old.at_gain);
    const legend = element('ul', { class: 'legend' }, items());
    const caption = element('figcaption', {}, curves.kind);
    if (choices.length > 1) {
        const select = element(
            'select',
            {},
            choices.map(([name], i) => element('option', { value: i }, name)),
        );
        select.value = view.choices.get(slot) ?? 0;
        select.addEventListener('change', () => {
            view.choices.set(slot, Number(select.value));
            legend.replaceChildren(...items());
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

export function tuning_section(frame, curves, reference) {
    const selection = selection_notes(frame.origin);
    if (!frame.records.length)
        return [
            ...selection,
            note('No gain-indexed tuning record serves this frame; see the blocks for what they hold instead.'),
        ];
    const { gain } = frame.origin;
    const box = element('input', { type: 'checkbox', ...(view.relative && { checked: '' }) });
    const cards = frame.records.map((record) => curve_card(record, curves[record.curves], gain, reference));
    box.addEventListener('change', () => {
        view.relative = box.checked;
        cards.forEach(({ place }) => redraw(place));
    });
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

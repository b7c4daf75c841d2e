// The lens shading tables as heat maps on one scale.
import { axis, chart } from './charts.js';
import { element, note, number_text } from './dom.js';

const scale = ['#2c2f6b', '#2a5f93', '#2f8f8b', '#8cc26d', '#f5e27a'];

function heat_map(rows, channel, unit, range) {
    const data = rows.flatMap((row, y) => row.map((entry, x) => [x, y, entry / unit]));
    const positions = (count) => Array.from({ length: count }, (_, i) => i);
    const ends = (count) => ({ interval: (i) => i === 0 || i === count - 1 });
    const labels = (count) => ({ ...axis({}).axisLabel, ...ends(count) });
    return {
        grid: { left: 30, right: 8, top: 6, bottom: 24 },
        tooltip: {
            formatter: ({ value: [x, y, gain] }) =>
                `channel ${channel}, row ${y}, column ${x}<br>gain <b>${number_text(gain)}</b>, entry <b>${rows[y][x]}</b>`,
        },
        xAxis: axis({
            type: 'category',
            data: positions(rows[0].length),
            axisLabel: labels(rows[0].length),
            axisTick: { show: false },
            splitLine: { show: false },
        }),
        yAxis: axis({
            type: 'category',
            data: positions(rows.length),
            axisLabel: labels(rows.length),
            axisTick: { show: false },
            splitLine: { show: false },
            inverse: true,
        }),
        visualMap: { show: false, min: range[0], max: range[1], inRange: { color: scale } },
        series: [{ type: 'heatmap', data, emphasis: { itemStyle: { borderColor: '#fff', borderWidth: 1.5 } } }],
    };
}

function scale_bar([low, high]) {
    if (low === high) return note(`Every gain is ${number_text(low)}.`);
    const bar = element('i', { style: `background: linear-gradient(90deg, ${scale.join(', ')})` });
    return element('p', { class: 'scale' }, `gain ${number_text(low)}`, bar, number_text(high));
}

// What became of the reference's tables.
function change_note(tables, reference) {
    const old = reference?.frame.blocks.find(({ name }) => name === 'lens_shading')?.fields.tables.flat(2);
    const entries = tables.flat(2);
    const changed = old && old.length === entries.length ? entries.filter((entry, i) => entry !== old[i]).length : -1;
    if (!reference || changed === 0) return [];
    return [
        note(
            changed < 0
                ? `The frame ${reference.label} has tables of another size.`
                : `${changed} of ${entries.length} entries differ from the frame ${reference.label}.`,
        ),
    ];
}

export function shading_section(frame, reference) {
    const block = frame.blocks.find(({ name }) => name === 'lens_shading');
    if (!block) return [note('No lens shading block in this frame.')];
    const { enable, columns, rows, format, scaled_width, scaled_height, tables } = block.fields;
    const entries = tables.flat(2);
    if (!entries.length) return [note('The lens shading block holds no tables.')];
    const unit = 2 ** format;
    let [low, high] = [Infinity, -Infinity];
    for (const entry of entries) [low, high] = [Math.min(low, entry / unit), Math.max(high, entry / unit)];
    const range = [low, high];
    const ratio = Math.min(3, Math.max(0.6, columns / rows));
    const figures = tables.map((table, channel) =>
        element(
            'figure',
            { class: 'card' },
            element('figcaption', {}, `Channel ${channel}`),
            chart(`Lens shading gains of channel ${channel}`, ratio, () => heat_map(table, channel, unit, range)),
        ),
    );
    return [
        note(
            `${columns} \u00d7 ${rows} gains a channel over a frame of ${scaled_width} \u00d7 ${scaled_height}, ${format} fractional bits.`,
        ),
        ...(enable
            ? []
            : [note('Not enabled: the inputs could not be used, the tables are left from an earlier frame.')]),
        ...change_note(tables, reference),
        scale_bar(range),
        element('div', { class: 'pair' }, figures),
    ];
}

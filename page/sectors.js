// The sixteen matrices of multi-axis colour correction on the plane of the two chroma components.
import { axis, chart, colour } from './charts.js';
import { element, fixed_text, number_text, table } from './dom.js';

const sector_count = 16;
const unit_code = 8192;

// Full-range BT.601 at a middling luma.
function chroma_colour([u, v]) {
    const luma = 140;
    const channel = (value) => Math.round(Math.min(255, Math.max(0, value)));
    const [cb, cr] = [u * 95, v * 95];
    const rgb = [luma + 1.402 * cr, luma - 0.344 * cb - 0.714 * cr, luma + 1.772 * cb];
    return `rgb(${rgb.map(channel).join(', ')})`;
}

function sectors_of(frame) {
    const fields = (name) => frame.blocks.find((block) => block.name === name).fields;
    const factor = 2 ** fields('macc_shift').value / unit_code;
    const { coeff } = fields('macc');
    return Array.from({ length: sector_count }, (_, i) => {
        const [a, b, c, d] = coeff.slice(4 * i, 4 * i + 4).map((k) => k * factor);
        const angle = (2 * Math.PI * i) / sector_count;
        const from = [Math.cos(angle), Math.sin(angle)];
        const to = [a * from[0] + b * from[1], c * from[0] + d * from[1]];
        const turn = Math.atan2(from[0] * to[1] - from[1] * to[0], from[0] * to[0] + from[1] * to[1]);
        return {
            i,
            degrees: (i * 360) / sector_count,
            matrix: [a, b, c, d],
            from,
            to,
            length: Math.hypot(...to),
            turn: (turn * 180) / Math.PI,
        };
    });
}

function describe({ i, degrees, length, turn }) {
    return (
        `sector ${i}, axis at ${number_text(degrees, 1)}\u00b0<br>length \u00d7<b>${number_text(length)}</b>, ` +
        `turned by <b>${number_text(turn, 1)}\u00b0</b>`
    );
}

function closed(points) {
    return [...points, points[0]];
}

function plane_options(sectors, old) {
    const reach = Math.max(1.2, 1.1 * Math.max(...sectors.map(({ to }) => Math.max(...to.map(Math.abs)))));
    const limit = Math.ceil(reach * 5) / 5;
    const square = (name) =>
        axis({ name, min: -limit, max: limit, axisLabel: { show: false }, axisTick: { show: false }, nameGap: 8 });
    const outline = (points, more) => ({
        type: 'line',
        data: closed(points),
        showSymbol: false,
        silent: true,
        emphasis: { disabled: true },
        ...more,
    });
    const circle = Array.from({ length: 72 }, (_, i) => [Math.cos((i * Math.PI) / 36), Math.sin((i * Math.PI) / 36)]);
    const coloured = (point) => ({ color: chroma_colour(point) });
    return {
        grid: { left: 26, right: 12, top: 12, bottom: 26 },
        tooltip: { formatter: ({ data }) => describe(sectors[data.sector]) },
        xAxis: square('U (Cb)'),
        yAxis: square('V (Cr)'),
        series: [
            outline(circle, { lineStyle: { width: 1, type: 'dashed', color: colour('soft') } }),
            ...old.map((before) =>
                outline(
                    before.map(({ to }) => to),
                    { lineStyle: { width: 0.75, color: colour('soft') } },
                ),
            ),
            outline(
                sectors.map(({ to }) => to),
                { lineStyle: { width: 1.5, color: colour('text') }, areaStyle: undefined },
            ),
            {
                type: 'lines',
                coordinateSystem: 'cartesian2d',
                symbol: ['none', 'arrow'],
                symbolSize: 9,
                data: sectors.map(({ i, from, to }) => ({
                    sector: i,
                    coords: [from, to],
                    lineStyle: { ...coloured(from), width: 3, opacity: 1 },
                })),
            },
            {
                type: 'scatter',
                symbolSize: 11,
                data: sectors.map(({ i, from }) => ({
                    sector: i,
                    value: from,
                    itemStyle: { color: colour('card'), borderColor: chroma_colour(from), borderWidth: 2.5 },
                })),
            },
            {
                type: 'scatter',
                symbolSize: 11,
                data: sectors.map(({ i, from, to }) => ({ sector: i, value: to, itemStyle: coloured(from) })),
            },
        ],
    };
}

export function sectors_figure(frame, reference) {
    const sectors = sectors_of(frame);
    const old = reference ? [sectors_of(reference.frame)] : [];
    const rows = sectors.map(({ i, degrees, matrix, length, turn }) => [
        element(
            'span',
            {},
            element('i', { class: 'swatch', style: `background: ${chroma_colour(sectors[i].from)}` }),
            String(i),
        ),
        `${fixed_text(degrees, 1)}\u00b0`,
        ...matrix.map((value) => fixed_text(value, 4)),
        `\u00d7${fixed_text(length, 3)}`,
        `${fixed_text(turn, 1)}\u00b0`,
    ]);
    const head = ['sector', 'axis', 'm0', 'm1', 'm2', 'm3', 'length', 'turn'];
    return element(
        'div',
        { class: 'pair' },
        element(
            'figure',
            { class: 'card' },
            element('figcaption', {}, 'Blocks 14 and 15, sixteen chroma sectors'),
            element(
                'p',
                { class: 'note' },
                'Rings: the unit vector on each sector\u2019s axis. Discs: where the sector\u2019s matrix takes it.',
            ),
            chart('The sixteen chroma sectors on the colour plane', 1, () => plane_options(sectors, old)),
        ),
        element(
            'figure',
            { class: 'card' },
            element('figcaption', {}, 'Their matrices'),
            element('div', { class: 'scroll' }, table([head, ...rows], { class: 'numbers' })),
        ),
    );
}

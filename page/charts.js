// Charts in the page's colours that follow the width of their place.
import { HeatmapChart, LineChart, LinesChart, ScatterChart } from 'echarts/charts';
import { GridComponent, MarkLineComponent, TooltipComponent, VisualMapComponent } from 'echarts/components';
import * as echarts from 'echarts/core';
import { CanvasRenderer } from 'echarts/renderers';
import { element } from './dom.js';

echarts.use([
    HeatmapChart,
    LineChart,
    LinesChart,
    ScatterChart,
    GridComponent,
    MarkLineComponent,
    TooltipComponent,
    VisualMapComponent,
    CanvasRenderer,
]);

export const palette = ['#2f6fde', '#d9822b', '#2e9e5b', '#c2405b', '#8a5bd1', '#1597a5', '#a8871b', '#7a6a5f'];

// Custom properties of the style sheet, which know light and dark.
export function colour(name) {
    return getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();
}

// An axis in the page's colours.
export function axis(options) {
    return {
        type: 'value',
        nameLocation: 'middle',
        nameGap: 30,
        nameTextStyle: { color: colour('soft'), fontSize: 12 },
        axisLabel: { color: colour('soft'), fontSize: 12, hideOverlap: true, formatter: String },
        axisLine: { onZero: false, lineStyle: { color: colour('line') } },
        axisTick: { lineStyle: { color: colour('line') } },
        splitLine: { lineStyle: { color: colour('line'), opacity: 0.6 } },
        ...options,
    };
}

const basis = () => ({
    animation: false,
    textStyle: { fontFamily: getComputedStyle(document.body).fontFamily },
    tooltip: {
        confine: true,
        backgroundColor: colour('card'),
        borderColor: colour('line'),
        textStyle: { color: colour('text'), fontSize: 13 },
    },
});

const shown = new Map(); // element to {label, instance, options, stale}
const places = new Map(); // label to element

const resizes = new ResizeObserver((entries) => {
    for (const { target } of entries) shown.get(target)?.instance?.resize();
});

// Charts far from what can be seen are drawn when they come near.
const nearby = new IntersectionObserver(
    (entries) => {
        for (const { target, isIntersecting } of entries) {
            const entry = shown.get(target);
            if (!entry) continue;
            entry.near = isIntersecting;
            if (isIntersecting && entry.stale) draw(target, entry);
        }
    },
    { rootMargin: '300px' },
);

// A place for a chart with a width to height ratio; draw_charts() fills it once it is in the document. options: a
// function, so that colours are asked for when the chart is drawn. A label that is shown already keeps its place.
export function chart(label, ratio, options) {
    let place = places.get(label);
    if (!place) {
        place = element('div', { class: 'chart', role: 'img', 'aria-label': label });
        places.set(label, place);
        shown.set(place, { label, near: true });
    }
    place.style.aspectRatio = ratio;
    Object.assign(shown.get(place), { options, stale: true });
    return place;
}

function draw(place, entry) {
    entry.instance ??= echarts.init(place);
    const base = basis();
    const { tooltip, ...rest } = entry.options();
    entry.instance.setOption({ ...base, ...rest, tooltip: { ...base.tooltip, ...tooltip } }, true);
    entry.stale = false;
}

// Draws what is new in the document, all of it again on request, and lets go of what has left it.
export function draw_charts(again = false) {
    for (const [place, entry] of shown) {
        if (!place.isConnected) {
            resizes.unobserve(place);
            nearby.unobserve(place);
            entry.instance?.dispose();
            shown.delete(place);
            places.delete(entry.label);
            continue;
        }
        entry.stale ||= again;
        if (entry.stale && (entry.near || !entry.instance)) draw(place, entry);
        resizes.observe(place);
        nearby.observe(place);
    }
}

// The place on a chart's axes that a pixel of it lies at.
export function place_at(place, x, y) {
    return shown.get(place)?.instance?.convertFromPixel({ gridIndex: 0 }, [x, y]);
}

// Draws one chart again, whose options have changed.
export function redraw(place) {
    if (shown.get(place)?.instance) draw(place, shown.get(place));
}

matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => draw_charts(true));

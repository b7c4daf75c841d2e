// What stands out on a line: steps far larger than those beside them, and stretches where it has run into a limit.

// A step is a jump from this many times the steps beside it on.
const jump_factor = 8;
// Steps on either side that it is compared with.
const beside = 2;
// Of the line's extent, below which a step is none.
const least_share = 0.02;
// A line with more jumps than this share of its points goes up stairs.
const most_share = 0.1;
// Points that a stretch has at least.
const least_stretch = 3;

function extent(values) {
    return values.reduce(
        ([least, most], value) => (value === null ? [least, most] : [Math.min(least, value), Math.max(most, value)]),
        [Infinity, -Infinity],
    );
}

// Places before which the line jumps. at: where the points lie on the axis, in one direction. Steps beside a jump are
// taken for the same distance, and for 1 where they are less, which rounding can make.
export function jumps(values, at) {
    const [least, most] = extent(values);
    const step = (i) => (values[i] === null || values[i - 1] === null ? null : Math.abs(values[i] - values[i - 1]));
    const distance = (i) => Math.abs(at[i] - at[i - 1]);
    const found = [];
    for (let i = 1; i < values.length; ++i) {
        const own = step(i);
        if (own === null || own < least_share * (most - least)) continue;
        const others = [];
        for (let j = i - beside; j <= i + beside; ++j)
            if (j !== i && j > 0 && j < values.length && step(j) !== null)
                others.push((step(j) * distance(i)) / distance(j));
        if (others.length >= beside && own > jump_factor * Math.max(1, ...others)) found.push(i);
    }
    return found.length > most_share * values.length ? [] : found;
}

// Stretches [first, last] that stay at the least or the most value of the line or of the field, on a line that moves at
// both points before or behind them: a line of few wide steps is not clipped.
export function clipped(values, limits = []) {
    const [least, most] = extent(values);
    const ends = new Set([least, most, ...limits]);
    const moves = (i) =>
        i > 0 && i < values.length && values[i] !== null && values[i - 1] !== null && values[i] !== values[i - 1];
    const found = [];
    for (let first = 0, last = 0; first < values.length; first = last + 1) {
        last = first;
        while (last + 1 < values.length && values[last + 1] === values[first]) ++last;
        const before = moves(first) && moves(first - 1);
        const behind = moves(last + 1) && moves(last + 2);
        if (last - first + 1 >= least_stretch && least < most && ends.has(values[first]) && (before || behind))
            found.push([first, last]);
    }
    return found;
}

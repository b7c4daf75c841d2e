// The lines of a field over one range, one for each place of a second.
import { palette } from '../charts.js';
import { clipped, jumps } from './marks.js';
import { lines_along, place_text, rows_along } from './table.js';

// The distances that steps are compared over; none where places lie side by side.
function distances({ scale, values }) {
    if (scale === 'category') return null;
    return scale === 'log' ? values.map(Math.log) : values;
}

// Few lines have colours of their own, many one that goes from the first to the last.
export function line_colour(i, count) {
    return count <= palette.length ? palette[i] : `hsl(${Math.round(225 + (155 * i) / (count - 1)) % 360} 68% 52%)`;
}

export function lines_of(table, column, { x, line, places }) {
    const of = line === null ? [null] : table.ranges[line].values.map((_, place) => place);
    const at = distances(table.ranges[x]);
    return of.map((place, i) => {
        const rows = rows_along(
            table,
            x,
            places.map((other, range) => (range === line ? place : other)),
        );
        const values = rows.map((row) => column.values[row]);
        return {
            label: place === null ? column.name : place_text(table.ranges[line], place),
            colour: line_colour(i, of.length),
            rows,
            values,
            jumps: at ? jumps(values, at) : [],
            clipped: at ? clipped(values, column.limits) : [],
        };
    });
}

// In all rows of the sweep.
export function count_jumps(table, column, x) {
    const at = distances(table.ranges[x]);
    if (!at) return 0;
    return lines_along(table, x).reduce(
        (count, rows) =>
            count +
            jumps(
                rows.map((row) => column.values[row]),
                at,
            ).length,
        0,
    );
}

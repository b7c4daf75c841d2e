// A sweep's rows as a table: each is a place in every range, the last of which runs fastest.

// In a list of texts 0 stands for the text before.
function whole_texts(values) {
    let last;
    return values.map((value) => {
        if (value !== 0) last = value ?? last;
        return value === 0 ? last : value;
    });
}

function ascends(values) {
    return values.every((value, i) => i === 0 || value > values[i - 1]);
}

// How a range lies on an axis: by its values, their logarithms, or one place beside the other.
function scale_of({ values, labels, multiplies }) {
    if (labels || values.length < 2 || !(ascends(values) || ascends([...values].reverse()))) return 'category';
    return multiplies ? 'log' : 'value';
}

export function sweep_table({ ranges, columns }) {
    let stride = 1;
    const placed = [...ranges].reverse().map((range) => {
        const made = { ...range, stride, scale: scale_of(range) };
        stride *= range.values.length;
        return made;
    });
    const whole = columns.map((column) => {
        const is_text = column.values.some((value) => typeof value === 'string');
        return { ...column, is_text, values: is_text ? whole_texts(column.values) : column.values };
    });
    return { ranges: placed.reverse(), columns: whole, rows: stride };
}

export function place_text(range, place) {
    return range.labels?.[place] ?? String(range.values[place]).replace('-', '\u2212');
}

// The row of a place in every range.
export function row_of(table, places) {
    return places.reduce((row, place, i) => row + place * table.ranges[i].stride, 0);
}

// The rows along a range, where the others stay at their places.
export function rows_along(table, range, places) {
    const { stride, values } = table.ranges[range];
    const first = row_of(table, places) - places[range] * stride;
    return values.map((_, place) => first + place * stride);
}

// Rows that start a line along a range: one for each combination of the others.
export function lines_along(table, range) {
    const { stride, values } = table.ranges[range];
    const starts = [];
    for (let row = 0; row < table.rows; ++row) if (Math.floor(row / stride) % values.length === 0) starts.push(row);
    return starts.map((start) => values.map((_, place) => start + place * stride));
}

export function is_constant(column) {
    return column.values.every((value) => value === column.values[0]);
}

// Where the values of a column's block came from in a row, as far as there are columns for it.
export function origin_text(table, column, row) {
    const of = {};
    for (const other of table.columns)
        if (other.origin && other.block === column.block && other.values[row] !== null)
            of[other.origin] = other.values[row];
    const parts = [];
    if (of.record !== undefined) parts.push(of.record);
    if (of.set !== undefined) parts.push(`set ${of.set}`);
    if (of.index !== undefined) parts.push(`set index ${of.index}`);
    if (of.rows !== undefined) parts.push(`${String(of.rows).includes('-') ? 'rows' : 'row'} ${of.rows}`);
    if (of.weight !== undefined) parts.push(`weight ${Number(of.weight.toFixed(4))}`);
    return parts.join(', ');
}

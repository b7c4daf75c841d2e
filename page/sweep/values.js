// Numbers beside the charts: the values at one place, and the jumps.
import { element, note, table as html_table } from '../dom.js';
import { origin_text, place_text } from './table.js';

// Rows of a table that are written out.
const most_rows = 24;

// Without columns that no row fills.
function numbers(head, rows) {
    const filled = (cells) => cells.filter((_, column) => rows.some((row) => row[column] !== ''));
    const shown = rows.slice(0, most_rows).map(filled);
    const more = rows.length - shown.length;
    return [
        element(
            'div',
            { class: 'card' },
            element(
                'div',
                { class: 'scroll', tabindex: 0 },
                html_table([filled(head), ...shown], { class: 'numbers' }),
            ),
        ),
        ...(more ? [note(`and ${more} more`)] : []),
    ];
}

// Each block's once; alone, it needs no name.
function origins_text(origins) {
    const by_block = [...new Map(origins.filter(([, text]) => text))];
    return by_block.map(([block, text]) => (by_block.length > 1 ? `${block}: ${text}` : text)).join('; ');
}

// One row for each line, one column for each field.
export function values_at(table, state, cards) {
    if (!cards.length) return [];
    const place = state.places[state.x];
    const rows = cards[0].lines.map((line, i) => {
        const cells = cards.map(({ lines }) => String(lines[i].values[place] ?? 'none'));
        const origins = cards.map(({ column }) => [column.block, origin_text(table, column, line.rows[place])]);
        return [state.line === null ? '' : line.label, ...cells, origins_text(origins)];
    });
    return numbers([table.ranges[state.line]?.name, ...cards.map(({ column }) => column.name), 'from'], rows);
}

export function jump_list(table, state, cards) {
    const range = table.ranges[state.x];
    const rows = cards.flatMap(({ column, lines }) =>
        lines.flatMap((line) =>
            line.jumps.map((place) => [
                column.name,
                state.line === null ? '' : `${table.ranges[state.line].name} ${line.label}`,
                `${place_text(range, place - 1)} to ${place_text(range, place)}`,
                `${line.values[place - 1]} to ${line.values[place]}`,
                [...new Set([place - 1, place].map((at) => origin_text(table, column, line.rows[at])))].join(', then '),
            ]),
        ),
    );
    if (!rows.length) return [note('No line that is shown jumps.')];
    return numbers(['field', 'line', range.name, 'value', 'from'], rows);
}

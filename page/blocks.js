// The record's blocks with all their values and where those came from.
import { element, number_text, table } from './dom.js';

const short = 16;

function values_element(name, value) {
    const values = Array.isArray(value) ? value : [value];
    const text = values.join(' ');
    const label = element('b', {}, name);
    if (values.length <= short) return element('div', {}, label, ' ', element('code', {}, text));
    const start = values.slice(0, 8).join(' ');
    return element(
        'details',
        {},
        element('summary', {}, label, ` ${values.length} values: `, element('code', {}, `${start} \u2026`)),
        element('code', {}, text),
    );
}

// Shading tables are lists of rows.
function fields_of(block) {
    return Object.entries(block.fields).map(([name, value]) =>
        values_element(name, Array.isArray(value) ? value.flat(2) : value),
    );
}

function origin_text({ from, why, record, rows, controls }) {
    const parts = [from === 'tuning' ? '' : why ? `${from}: ${why}` : from];
    if (record) parts.push(`tuning record ${record.id}, set ${record.set} of set index ${record.set_index}`);
    if (rows && rows.lower.row === rows.upper.row) parts.push(`row ${rows.lower.row}`);
    else if (rows)
        parts.push(
            [rows.lower, rows.upper].map(({ row, weight }) => `${number_text(weight)} \u00d7 row ${row}`).join(' + '),
        );
    if (from === 'tuning' && why) parts.push(why);
    for (const { control, value, amount, meaning } of controls)
        parts.push(`${control} ${number_text(value)}: ${number_text(amount)}, ${meaning}`);
    return parts.filter(Boolean).join('; ');
}

export function blocks_section(frame) {
    const rows = frame.blocks.map((block) => [
        String(block.id),
        element('code', { id: `block-${block.id}` }, block.name),
        String(block.offset),
        String(block.size),
        element('div', {}, fields_of(block), element('p', { class: 'note' }, origin_text(block.origin))),
    ]);
    return [table([['id', 'name', 'offset', 'size', 'values'], ...rows], { class: 'blocks' })];
}

// The record's blocks with all their values and where those came from.
import { element, number_text, table, table_line } from './dom.js';

const short = 16;

function was(text) {
    return { class: 'was', title: `was ${text}` };
}

// A value, marked where it was another.
function value_element(value, old) {
    return value === old || old === undefined ? String(value) : element('mark', was(old), String(value));
}

function values_element(key, name, value, reference) {
    const values = [value].flat(3);
    const old = reference && (name in reference ? [reference[name]].flat(3) : []);
    const changed = old ? values.filter((each, i) => each !== old[i]).length : 0;
    const code = (some) =>
        element(
            'code',
            {},
            some.flatMap((each, i) => [
                i ? ' ' : '',
                changed ? value_element(each, old[i] ?? 'missing') : String(each),
            ]),
        );
    const label = element(changed ? 'mark' : 'b', changed ? { class: 'name' } : {}, name);
    if (values.length <= short) return element('div', {}, label, ' ', code(values));
    const told = changed ? `${values.length} values, ${changed} changed: ` : `${values.length} values: `;
    return element(
        'details',
        { 'data-key': `${key}.${name}` },
        element('summary', {}, label, ` ${told}`, element('code', {}, `${values.slice(0, 8).join(' ')} \u2026`)),
        code(values),
    );
}

// Shading tables are lists of rows.
function fields_of(block, reference) {
    return Object.entries(block.fields).map(([name, value]) =>
        values_element(block.name, name, value, reference && (reference.fields ?? {})),
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

function block_row(block, old) {
    return [
        String(block.id),
        element('code', { id: `block-${block.id}` }, block.name),
        String(block.offset),
        String(block.size),
        element('div', {}, fields_of(block, old), element('p', { class: 'note' }, origin_text(block.origin))),
    ];
}

const head = ['id', 'name', 'offset', 'size', 'values'];
const drawn = { table: null, rows: [] }; // rows: what each shows, as text

// One table for all frames, of which only rows change that show something else.
export function blocks_section(frame, reference) {
    const old = (name) => reference && (reference.frame.blocks.find((block) => block.name === name) ?? {});
    const shown = frame.blocks.map((block) => [block, old(block.name)]);
    const texts = shown.map((row) => JSON.stringify(row));
    if (drawn.rows.length !== texts.length)
        drawn.table = table([head, ...shown.map((row) => block_row(...row))], { class: 'blocks' });
    else {
        const lines = [...drawn.table.tBodies[0].rows];
        texts.forEach((text, i) => {
            if (text !== drawn.rows[i]) lines[i].replaceWith(table_line(head, block_row(...shown[i])));
        });
    }
    drawn.rows = texts;
    return [drawn.table];
}

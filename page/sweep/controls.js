// What of a sweep is shown: over which range, a line for each value of which, the others where, and which fields.
import { element } from '../dom.js';
import { is_constant, place_text } from './table.js';

function select(id, label, options, chosen, change) {
    const made = element(
        'select',
        { id },
        options.map(([value, text]) => element('option', { value, ...(value === chosen && { selected: '' }) }, text)),
    );
    made.addEventListener('change', () => change(made.value));
    return element('label', { class: 'control' }, element('span', {}, label), made);
}

// A slider over a range's places.
export function slider(id, range, place, change) {
    const output = element('output', { for: id }, place_text(range, place));
    const made = element('input', { id, type: 'range', min: 0, max: range.values.length - 1, step: 1, value: place });
    const tell = () => made.setAttribute('aria-valuetext', output.value);
    made.addEventListener('input', () => {
        output.value = place_text(range, Number(made.value));
        tell();
        change(Number(made.value));
    });
    tell();
    return element('label', { class: 'control wide' }, element('span', {}, `${range.name} `, output), made);
}

function place_control(range, i, place, change) {
    const id = `place-${i}`;
    if (range.scale !== 'category') return slider(id, range, place, change);
    return select(
        id,
        range.name,
        range.values.map((_, at) => [String(at), place_text(range, at)]),
        String(place),
        (value) => change(Number(value)),
    );
}

// changed('axes') where other ranges are chosen, changed('places') for other places of theirs.
export function range_controls({ ranges }, state, changed) {
    const names = ranges.map(({ name }, i) => [String(i), name]);
    const parts = [];
    if (ranges.length > 1) {
        parts.push(
            select('x', 'along', names, String(state.x), (value) => {
                const before = state.x;
                state.x = Number(value);
                if (state.line === state.x) state.line = before;
                changed('axes');
            }),
            select(
                'line',
                'a line for each',
                [...names.filter(([i]) => i !== String(state.x)), ['', 'none']],
                String(state.line ?? ''),
                (value) => {
                    state.line = value === '' ? null : Number(value);
                    changed('axes');
                },
            ),
        );
    }
    ranges.forEach((range, i) => {
        if (i !== state.x && i !== state.line && range.values.length > 1)
            parts.push(
                place_control(range, i, state.places[i], (place) => {
                    state.places[i] = place;
                    changed('places');
                }),
            );
    });
    return parts;
}

export function field_controls(columns, state, changed) {
    const count = () => `Fields: ${state.fields.size} of ${columns.length}`;
    const summary = element('summary', {}, count());
    const boxes = columns.map((column) => {
        const box = element('input', { type: 'checkbox', ...(state.fields.has(column) && { checked: '' }) });
        box.addEventListener('change', () => {
            if (box.checked) state.fields.add(column);
            else state.fields.delete(column);
            summary.textContent = count();
            changed('fields');
        });
        return element(
            'label',
            {},
            box,
            element('code', {}, column.name),
            ...(is_constant(column) ? [element('small', {}, ` ${column.values[0] ?? 'none'} everywhere`)] : []),
        );
    });
    return element('details', { class: 'fields card' }, summary, element('div', {}, boxes));
}

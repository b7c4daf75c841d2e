// Elements of the page. Texts of files only ever become text nodes.

// element('p', {class: 'note'}, 'text', other_element)
export function element(tag, attributes = {}, ...children) {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, value);
    made.append(...children.flat());
    return made;
}

export function note(text) {
    return element('p', { class: 'note' }, text);
}

// Pairs of a name and its value.
export function definitions(pairs, kind) {
    return element(
        'dl',
        { class: kind },
        pairs.map(([name, value]) => element('div', {}, element('dt', {}, name), element('dd', {}, value))),
    );
}

// rows: lists of cells, each a text or an element; the first row is the head.
export function table(rows, attributes = {}) {
    const [head, ...body] = rows;
    const line = (cells, tag) =>
        element(
            'tr',
            {},
            cells.map((cell, i) => element(tag, tag === 'td' ? { 'data-label': head[i] } : {}, cell)),
        );
    return element(
        'table',
        attributes,
        element('thead', {}, line(head, 'th')),
        element(
            'tbody',
            {},
            body.map((cells) => line(cells, 'td')),
        ),
    );
}

// At most `digits` digits behind the point, a real minus sign.
export function number_text(value, digits = 3) {
    return String(Number(value.toFixed(digits))).replace('-', '\u2212');
}

// Always that many digits, for columns of numbers.
export function fixed_text(value, digits) {
    return value.toFixed(digits).replace('-', '\u2212');
}

// The gain scale has 256 as unity.
export function gain_text(gain) {
    return `\u00d7${Number((gain / 256).toPrecision(3))}`;
}

export function count_text(count, word) {
    return `${count} ${word}${count === 1 ? '' : 's'}`;
}

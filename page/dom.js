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

// Gives a place its children, and leaves it alone where it has them: what stays in the document costs no layout.
export function fill(place, ...children) {
    const nodes = children.flat();
    const same = nodes.length === place.childNodes.length && nodes.every((node, i) => node === place.childNodes[i]);
    if (!same) place.replaceChildren(...nodes);
}

// cells: texts or elements, one below each of the head's.
export function table_line(head, cells, tag = 'td') {
    return element(
        'tr',
        {},
        cells.map((cell, i) => element(tag, tag === 'td' ? { 'data-label': head[i] } : {}, cell)),
    );
}

// rows: lists of cells; the first row is the head.
export function table([head, ...body], attributes = {}) {
    return element(
        'table',
        attributes,
        element('thead', {}, table_line(head, head, 'th')),
        element(
            'tbody',
            {},
            body.map((cells) => table_line(head, cells)),
        ),
    );
}

// At most `digits` digits behind the point, a real minus sign.
export function number_text(value, digits = 3) {
    return String(Number(value.toFixed(digits))).replace('-', '\u2212');
}

// The fewest digits that read back as the same number of single precision, as options and files take it.
export function exact_digits(value) {
    const single = Math.fround(value);
    for (let digits = 1; digits < 10; ++digits) {
        const short = Number(single.toPrecision(digits));
        if (Math.fround(short) === single) return String(short);
    }
    return String(value);
}

export function exact_text(value) {
    return exact_digits(value).replace('-', '\u2212');
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

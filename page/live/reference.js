// What differs between two frames.

function values_of(fields) {
    return Object.entries(fields).flatMap(([name, value]) =>
        (Array.isArray(value) ? value.flat(2) : [value]).map((each, i) => [`${name}[${i}]`, each]),
    );
}

// How many values of a block's fields differ; all of them where only one frame has the block.
export function differing_values(fields, other) {
    const values = values_of(fields);
    if (!other) return values.length;
    const others = new Map(values_of(other));
    const gone = values_of(other).length - values.filter(([name]) => others.has(name)).length;
    return gone + values.filter(([name, value]) => others.get(name) !== value).length;
}

export function differing_blocks(frame, reference) {
    const old = new Map(reference.blocks.map((block) => [block.name, block]));
    return frame.blocks
        .map(({ name, fields }) => ({ name, values: differing_values(fields, old.get(name)?.fields) }))
        .filter(({ values }) => values > 0);
}

// 3x3 colour matrices as tables, coloured by sign and size.
import { element, note, number_text } from './dom.js';

function matrix_card(title, about, values, raw) {
    const largest = Math.max(...values.map(Math.abs), 1e-9);
    const cell = (value, i) => {
        const strength = Math.round((55 * Math.abs(value)) / largest);
        const attributes = {
            style: `background: color-mix(in srgb, var(${value < 0 ? '--negative' : '--positive'}) ${strength}%, transparent)`,
        };
        return element(
            'td',
            attributes,
            number_text(value, 4),
            ...(raw ? [element('small', {}, number_text(raw[i]))] : []),
        );
    };
    const rows = [0, 3, 6].map((start) =>
        element(
            'tr',
            {},
            values.slice(start, start + 3).map((value, i) => cell(value, start + i)),
        ),
    );
    return element(
        'figure',
        { class: 'card' },
        element('figcaption', {}, title),
        element('p', { class: 'note' }, about),
        element('table', { class: 'matrix' }, rows),
    );
}

function block_card(frame, name, title) {
    const { frac_bits, coeff } = frame.blocks.find((block) => block.name === name).fields;
    const values = coeff.map((k) => k / 2 ** frac_bits);
    return matrix_card(title, `${frac_bits} fractional bits; the coefficients in small`, values, coeff);
}

export function matrices(frame) {
    const cards = [
        block_card(frame, 'yuv_to_rgb', 'Block 4, yuv_to_rgb'),
        block_card(frame, 'rgb_to_yuv', 'Block 19, rgb_to_yuv'),
    ];
    if (frame.inputs.ccm) cards.unshift(matrix_card('Colour correction, input', 'ccm of the scene', frame.inputs.ccm));
    return [
        ...(frame.inputs.ccm ? [] : [note('This frame has no colour correction matrix.')]),
        element('div', { class: 'three' }, cards),
    ];
}

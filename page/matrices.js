// 3x3 colour matrices as tables, coloured by sign and size.
import { element, note, number_text } from './dom.js';

function matrix_card(title, about, values, raw, old = values) {
    const largest = Math.max(...values.map(Math.abs), 1e-9);
    const cell = (value, i) => {
        const strength = Math.round((55 * Math.abs(value)) / largest);
        const attributes = {
            style: `background: color-mix(in srgb, var(${value < 0 ? '--negative' : '--positive'}) ${strength}%, transparent)`,
        };
        const text = number_text(value, 4);
        return element(
            'td',
            attributes,
            value === old[i] ? text : element('mark', { class: 'was', title: `was ${number_text(old[i], 4)}` }, text),
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

function coefficients(frame, name) {
    return frame.blocks.find((block) => block.name === name).fields;
}

function block_card(frame, name, title, reference) {
    const units = ({ frac_bits, coeff }) => coeff.map((k) => k / 2 ** frac_bits);
    const fields = coefficients(frame, name);
    const about = `${fields.frac_bits} fractional bits; the coefficients in small`;
    const old = reference ? units(coefficients(reference.frame, name)) : undefined;
    return matrix_card(title, about, units(fields), fields.coeff, old);
}

export function matrices(frame, reference) {
    const cards = [
        block_card(frame, 'yuv_to_rgb', 'Block 4, yuv_to_rgb', reference),
        block_card(frame, 'rgb_to_yuv', 'Block 19, rgb_to_yuv', reference),
    ];
    const { ccm } = frame.inputs;
    const old_ccm = reference?.frame.inputs.ccm ?? undefined;
    if (ccm) cards.unshift(matrix_card('Colour correction, input', 'ccm of the scene', ccm, undefined, old_ccm));
    return [
        ...(frame.inputs.ccm ? [] : [note('This frame has no colour correction matrix.')]),
        element('div', { class: 'three' }, cards),
    ];
}

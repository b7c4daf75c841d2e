// The inputs of a frame as controls: a slider where a range makes sense to the eye, a number, and a way back.
import { element, exact_digits, exact_text } from '../dom.js';

// Inputs that stand first, with the part of their range that a slider covers.
const strengths = ['nr_strength', 'sharpness', 'brightness', 'contrast', 'hue', 'saturation'];
const first = new Map([
    ['gain', { low: 1, high: 64, doubling: true }],
    ...strengths.map((name) => [name, { low: -128, high: 127, step: 1 }]),
    ['colour.saturation', { low: 0, high: 2, step: 0.01 }],
    ['tuning_mode', { low: 0, high: 7, step: 1 }],
    ['nr_mode', { low: 0, high: 3, step: 1 }],
    ['edge_mode', { low: 0, high: 3, step: 1 }],
    ['gamma_257', { low: 0, high: 1, step: 1 }],
    ['lsc.enable', { low: 0, high: 1, step: 1 }],
    ['frame.size.width', {}],
    ['frame.size.height', {}],
]);
// A slider's steps to a doubling.
const doubling_steps = 24;

// Both gains together, as the name "gain" sets them.
function as_gain(inputs) {
    const value = (name) => inputs.find((input) => input.name === name)?.value ?? 1;
    return Math.fround(value('exposure.analog_gain') * value('exposure.digital_gain'));
}

// The inputs as the knobs show them.
export function knob_inputs(inputs) {
    return inputs.map((input) => (input.name === 'gain' ? { ...input, value: as_gain(inputs) } : input));
}

function slider(input, range) {
    const place = (value) => (range.doubling ? Math.log2(Math.max(value, 2 ** -10)) * doubling_steps : value);
    const made = element('input', {
        type: 'range',
        min: place(range.low),
        max: place(range.high),
        step: range.doubling ? 1 : range.step,
        'aria-label': input.name,
    });
    return {
        made,
        show: (value) => {
            made.value = place(value);
            made.setAttribute('aria-valuetext', exact_text(value));
        },
        text: () => (range.doubling ? String(Number((2 ** (made.value / doubling_steps)).toPrecision(4))) : made.value),
    };
}

// Integers may take more digits than single precision has.
function digits_of({ whole }, value) {
    return whole ? String(value) : exact_digits(value);
}

// What is wrong with a text for an input, or nothing.
function trouble({ least, most, whole }, text) {
    const value = Number(text);
    if (text.trim() === '' || !Number.isFinite(value) || value < least || value > most || (whole && value % 1 !== 0))
        return whole ? `an integer from ${least} to ${most}` : 'a number within single precision';
    return '';
}

// A knob: its element, and show(value, opened), opened being what "back" goes to. turn(name, text) hears of changes; the
// text is null for the way back.
function knob(input, range, turn) {
    const number = element('input', {
        type: 'number',
        step: input.whole ? 1 : 'any',
        inputmode: input.whole && input.least >= 0 ? 'numeric' : 'text',
        'aria-label': input.name,
    });
    const back = element('button', { type: 'button', class: 'back', hidden: '' }, '\u21ba');
    const track = range.high === undefined ? null : slider(input, range);
    number.addEventListener('input', () => {
        const wrong = trouble(input, number.value);
        number.setCustomValidity(wrong && `expected ${wrong}`);
        number.setAttribute('aria-invalid', wrong !== '');
        if (!wrong) turn(input.name, number.value.trim());
    });
    track?.made.addEventListener('input', () => turn(input.name, track.text()));
    back.addEventListener('click', () => {
        turn(input.name, null);
        number.focus();
    });
    const row = element('div', { class: 'knob', 'data-input': input.name });
    row.append(element('span', { class: 'name' }, input.name), number, back, ...(track ? [track.made] : []));
    return {
        row,
        show: (value, opened, turned) => {
            if (document.activeElement !== number || Number(number.value) !== value)
                number.value = digits_of(input, value);
            number.setCustomValidity('');
            number.setAttribute('aria-invalid', false);
            track?.show(value);
            row.classList.toggle('turned', turned);
            back.hidden = !turned;
            back.setAttribute('aria-label', `${input.name} back to ${exact_text(opened)}`);
            back.title = `back to ${exact_text(opened)}`;
        },
    };
}

function effect_boxes(names, turn) {
    const boxes = names.map((name) => element('input', { type: 'checkbox', value: name }));
    const chosen = () => boxes.filter((box) => box.checked).map((box) => box.value);
    boxes.forEach((box) => box.addEventListener('change', () => turn('effects', chosen().join('+') || '0')));
    const list = element(
        'fieldset',
        { class: 'effects' },
        element('legend', {}, 'effects'),
        boxes.map((box, i) => element('label', {}, box, ` ${names[i]}`)),
    );
    return {
        list,
        show: (active) => boxes.forEach((box) => (box.checked = active.includes(box.value))),
    };
}

// All knobs of a frame: their element, and show(inputs, opened, settings, active effects).
export function knob_panel({ inputs, effects }, turn) {
    const made = new Map();
    const add = (input) => {
        const one = knob(input, first.get(input.name) ?? {}, turn);
        made.set(input.name, one);
        return one.row;
    };
    const shown = inputs.filter(({ name }) => name !== 'effects');
    const leading = [...first.keys()].map((name) => shown.find((input) => input.name === name)).filter(Boolean);
    const others = shown.filter(({ name }) => !first.has(name));
    const boxes = effect_boxes(effects, turn);
    const panel = element(
        'div',
        { class: 'knobs' },
        leading.map(add),
        boxes.list,
        element('details', {}, element('summary', {}, 'All other inputs'), others.map(add)),
    );
    return {
        panel,
        show: (values, opened, settings, active) => {
            for (const { name, value } of values)
                made.get(name)?.show(value, opened.find((input) => input.name === name).value, settings.has(name));
            boxes.show(active);
        },
    };
}

// The page as an instrument: one state, and everything that is shown follows from it.
import { count_text, element } from '../dom.js';
import { address_of, command_of, read_address, settings_list } from './address.js';
import { load_module } from './engine.js';
import { file_buttons, open_file, take_drops } from './files.js';
import { knob_inputs, knob_panel } from './knobs.js';
import { differing_blocks } from './reference.js';

// Blocks that the status names.
const few = 4;

// Files of the report's data: texts as they are, other bytes in base64.
function file_of({ name, path, text, base64 }) {
    return { name, path, bytes: text ?? Uint8Array.from(atob(base64), (character) => character.charCodeAt(0)) };
}

// Makes the page live, or leaves it as it is where it carries no module. show(data, reference) draws the sections.
export async function go_live(data, show) {
    const isp = data.files && (await load_module());
    if (isp) new LivePage(isp, data, show).start();
}

class LivePage {
    constructor(isp, data, show) {
        this.isp = isp;
        this.data = data;
        this.draw = show;
        this.state = {
            tuning: file_of(data.files.tuning),
            scene: file_of(data.files.scene),
            frame: data.frames[0].index,
            settings: new Map(
                data.files.settings.map((each) => [
                    each.slice(0, each.lastIndexOf('=')),
                    each.slice(each.lastIndexOf('=') + 1),
                ]),
            ),
            reference: null, // the frame that changes are told from: {label, frame, curves}
            against: data.files.against ? file_of(data.files.against) : null, // a tuning whose frame that is
        };
        this.planned = false;
    }

    start() {
        Object.assign(this.state, this.address_state(location.hash));
        this.build();
        this.open_scene();
        addEventListener('hashchange', () => {
            const said = this.address_state(location.hash);
            if (said) this.change(said, 'frame' in said);
        });
        take_drops(this.place, (file) => this.take(file));
    }

    address_state(fragment) {
        const said = read_address(fragment);
        if (!said) return null;
        return { settings: said.settings, ...(said.frame !== null && { frame: said.frame }) };
    }

    // What stands around the sections.
    build() {
        this.place = document.body;
        this.alert = element('p', { class: 'alert', role: 'alert', hidden: '' });
        this.status = element('p', { class: 'status', role: 'status' });
        this.knob_place = element('div', {});
        this.frames = element('select', { id: 'frame' });
        this.frames.addEventListener('change', () =>
            this.change({ frame: Number(this.frames.value), settings: new Map() }, true),
        );
        const button = (label, act) => {
            const made = element('button', { type: 'button' }, label);
            made.addEventListener('click', act);
            return made;
        };
        const aside = element(
            'aside',
            { id: 'controls', 'aria-label': 'Controls' },
            element(
                'details',
                { open: '' },
                element('summary', {}, 'Controls'),
                element('label', { class: 'switch' }, 'Frame ', this.frames),
                element(
                    'div',
                    { class: 'buttons' },
                    button('Reset all', () => this.change({ settings: new Map() })),
                    button('Keep as reference', () => this.keep()),
                    button('Scene as reference', () => this.change({ against: null }, true)),
                    button('Copy as command', () => this.copy()),
                ),
                this.knob_place,
                file_buttons({
                    open: (file) => this.take(file),
                    against: (file) => this.compare_with(file),
                    save: {
                        container: () => this.save('container', 'tuning.vuxb'),
                        source: () => this.save('source', 'tuning.json'),
                        scene: () => this.save('scene', 'scene.json'),
                    },
                }),
            ),
        );
        if (innerWidth < 1100) aside.firstChild.open = false;
        document.body.classList.add('live');
        document.querySelector('main').before(aside);
        document.querySelector('nav').after(this.alert);
        aside.firstChild.firstChild.after(this.status);
    }

    given(request) {
        const { tuning, scene } = this.state;
        return {
            tuning: tuning.container,
            scene: scene.bytes,
            request: { tuning: tuning.name, scene: scene.name, ...request },
        };
    }

    request() {
        return { frame: String(this.state.frame), settings: settings_list(this.state.settings) };
    }

    // What is computed from, packed once.
    pack(tuning) {
        const { scene } = this.state;
        tuning.container ??= this.isp.call('container', {
            tuning: tuning.bytes,
            scene: scene.bytes,
            request: { tuning: tuning.name, scene: scene.name },
        });
    }

    // The frame of another tuning with the same controls, but for those that are the tuning's own.
    refer_to(against) {
        this.pack(against);
        const { frame, scene, settings } = this.state;
        const inputs = settings_list(settings).filter((setting) => !setting.startsWith('tuning:'));
        const request = { tuning: against.name, scene: scene.name, frame: String(frame), settings: inputs };
        const data = this.isp.json('report', { tuning: against.container, scene: scene.bytes, request });
        this.reference(data, `of ${against.name}`);
    }

    // A new tuning, scene or frame: its knobs, and what they show before any is turned.
    open_scene() {
        this.guarded(() => {
            this.pack(this.state.tuning);
            const names = this.isp.json('inputs', this.given({ frame: '0' })).frames;
            this.state.frame = Math.min(this.state.frame, names.length - 1);
            this.frames.replaceChildren(
                ...names.map((name, i) => element('option', { value: i }, name ? `${i}: ${name}` : `frame ${i}`)),
            );
            const opened = this.isp.json('inputs', this.given({ frame: String(this.state.frame) }));
            this.opened = knob_inputs(opened.inputs);
            this.panel = knob_panel(opened, (name, text) => this.turn(name, text));
            this.knob_place.replaceChildren(this.panel.panel);
            const data = this.isp.json('report', this.given({ frame: String(this.state.frame) }));
            this.reference(data, 'of the scene');
            this.update();
        });
    }

    reference(data, label) {
        this.state.reference = { label, frame: data.frames[0], curves: data.curves };
    }

    keep() {
        this.state.against = null;
        this.reference(this.shown, 'kept');
        this.plan();
    }

    turn(name, text) {
        const settings = new Map(this.state.settings);
        settings.delete(name); // the last one given stands last
        if (text !== null) settings.set(name, text);
        this.change({ settings });
    }

    change(patch, other_frame = false) {
        Object.assign(this.state, patch);
        if (other_frame) this.open_scene();
        else this.plan();
    }

    // Draws once a frame of the display, however many changes there were.
    plan() {
        if (this.planned) return;
        this.planned = true;
        requestAnimationFrame(() => {
            this.planned = false;
            this.guarded(() => this.update());
        });
    }

    update() {
        const { state } = this;
        this.shown = this.isp.json('report', this.given(this.request()));
        if (state.against) this.refer_to(state.against);
        const [frame] = this.shown.frames;
        const { inputs } = this.isp.json('inputs', this.given(this.request()));
        this.frames.value = state.frame;
        this.panel.show(knob_inputs(inputs), this.opened, state.settings, frame.inputs.effects);
        this.draw({ ...this.data, ...this.shown }, state.reference);
        this.tell(frame);
        clearTimeout(this.address_timer);
        this.address_timer = setTimeout(() => this.write_address(), 250);
    }

    write_address() {
        const { state } = this;
        const is_opened = state.settings.size === 0 && state.frame === this.data.frames[0].index;
        if (!is_opened || location.hash.includes('=')) history.replaceState(null, '', address_of(state));
    }

    tell(frame) {
        const { label } = this.state.reference;
        const changed = differing_blocks(frame, this.state.reference.frame);
        const count = changed.reduce((sum, block) => sum + block.values, 0);
        const names = changed.map(({ name }) => name);
        const told = names.length > few ? [...names.slice(0, few), `${names.length - few} more blocks`] : names;
        this.status.textContent = count
            ? `${count_text(count, 'value')} of ${told.join(', ')} not as in the frame ${label}`
            : `The record is that of the frame ${label}`;
    }

    // What the module refuses is told; the page stays as it was.
    guarded(act) {
        try {
            act();
            this.alert.hidden = true;
        } catch (error) {
            this.refuse(error);
        }
    }

    refuse(error) {
        this.alert.textContent = error.message;
        this.alert.hidden = false;
    }

    // What a file changes in the state, once the module has read it.
    async opened_file(file, change) {
        try {
            change(await open_file(file, this.isp, this.state));
        } catch (error) {
            this.refuse(error);
        }
    }

    take(file) {
        this.opened_file(file, (opened) => {
            Object.assign(this.state, opened, { settings: new Map(), ...(opened.scene && { frame: 0 }) });
            this.data = { ...this.data, tuning: this.state.tuning.name, scene: this.state.scene.name };
            this.open_scene();
        });
    }

    compare_with(file) {
        this.opened_file(file, ({ tuning }) => {
            if (!tuning) throw new Error(`${file.name}: found a scene, expected a tuning`);
            this.change({ against: tuning });
        });
    }

    save(what, name) {
        this.guarded(() => {
            const bytes = this.isp.call(what, this.given(this.request()));
            const link = element('a', { href: URL.createObjectURL(new Blob([bytes])), download: name });
            link.click();
            URL.revokeObjectURL(link.href);
        });
    }

    async copy() {
        const command = command_of(this.state);
        try {
            await navigator.clipboard.writeText(command);
            this.status.textContent = `Copied: ${command}`;
        } catch {
            this.status.textContent = command; // where the browser has no clipboard for files
        }
    }
}

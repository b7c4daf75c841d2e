// Files that the page reads and writes; none of them leaves it.
import { element } from '../dom.js';
import { IspError } from '../module/host.js';

// What the page's state becomes with a tuning or a scene from a file, once the module has read it.
export async function open_file(file, isp, state) {
    const bytes = new Uint8Array(await file.arrayBuffer());
    const start = new TextDecoder().decode(bytes.subarray(0, 4096)).trimStart();
    const made = { name: file.name, path: file.name, bytes };
    let kind = 'tuning';
    if (start.startsWith('{')) {
        const request = { tuning: state.tuning.name, scene: file.name };
        try {
            isp.call('inputs', { tuning: state.tuning.bytes, scene: bytes, request });
            kind = 'scene';
        } catch (error) {
            if (is_scene(bytes)) throw error;
        }
    }
    if (kind === 'tuning')
        isp.call('container', { tuning: bytes, scene: state.scene.bytes, request: { tuning: file.name } });
    return { [kind]: made };
}

// A scene has frames; what is no JSON at all is told as a tuning that is none.
function is_scene(bytes) {
    try {
        return 'frames' in JSON.parse(new TextDecoder().decode(bytes));
    } catch {
        return false;
    }
}

export function take_drops(place, take) {
    place.addEventListener('dragover', (event) => event.preventDefault());
    place.addEventListener('drop', (event) => {
        event.preventDefault();
        for (const file of event.dataTransfer.files) take(file);
    });
}

function chooser(id, label, act) {
    const made = element('input', { type: 'file', id, accept: '.json,.vuxb,application/json' });
    made.addEventListener('change', () => {
        for (const file of made.files) act(file);
        made.value = '';
    });
    return [element('label', { for: id }, label), made];
}

// open(file) and against(file) get what was chosen; save: functions by what they save.
export function file_buttons({ open, against, save }) {
    const buttons = Object.entries(save).map(([what, act]) => {
        const made = element('button', { type: 'button', 'data-save': what }, `Save ${what}`);
        made.addEventListener('click', act);
        return made;
    });
    return element(
        'details',
        { class: 'files' },
        element('summary', {}, 'Files'),
        chooser('open', 'Open a tuning or a scene, or drop it anywhere', open),
        chooser('against', 'Compare with a tuning', against),
        element('div', { class: 'buttons' }, buttons),
    );
}

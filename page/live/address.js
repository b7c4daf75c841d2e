// The controls in the page's address, and as a command line.

// {frame: index, settings: Map of names and texts} of an address' fragment; null for one that names a section or nothing.
export function read_address(fragment) {
    if (!fragment.includes('=')) return null;
    const said = new URLSearchParams(fragment.replace(/^#/, ''));
    const settings = new Map();
    for (const setting of said.getAll('set')) {
        const end = setting.lastIndexOf('=');
        if (end > 0) settings.set(setting.slice(0, end), setting.slice(end + 1));
    }
    const frame = Number(said.get('frame'));
    return { frame: said.has('frame') && Number.isInteger(frame) && frame >= 0 ? frame : null, settings };
}

export function settings_list(settings) {
    return [...settings].map(([name, value]) => `${name}=${value}`);
}

export function address_of({ frame, settings }) {
    const said = new URLSearchParams([['frame', frame], ...settings_list(settings).map((setting) => ['set', setting])]);
    return `#${said}`;
}

// As a POSIX shell takes it.
function quoted(text) {
    return /^[\w.,:=+/@-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`;
}

// files: the paths that the page's tuning and scene were read from; none for the program's own.
export function command_of({ frame, settings, tuning, scene }) {
    const words = ['qz-isp', 'run'];
    if (tuning.path) words.push('--tuning', tuning.path);
    if (scene.path) words.push('--scene', scene.path);
    words.push('--frame', String(frame), ...settings_list(settings).flatMap((setting) => ['--set', setting]));
    return words.map(quoted).join(' ');
}

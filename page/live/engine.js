// The module that the page carries.
import { IspModule } from '../module/host.js';

// What a script of the page holds, packed with gzip and in base64.
async function unpacked(id) {
    const bytes = Uint8Array.from(atob(document.getElementById(id).textContent), (character) =>
        character.charCodeAt(0),
    );
    const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('gzip'));
    return (await new Response(stream)).arrayBuffer();
}

// Null in a page without it, and where the browser has no WebAssembly.
export async function load_module() {
    const there = document.getElementById('module');
    if (!there || typeof WebAssembly !== 'object' || typeof DecompressionStream !== 'function') return null;
    const module = new IspModule(await WebAssembly.compile(await unpacked('module')));
    const licences = new TextDecoder().decode(await unpacked('module-licences'));
    document.querySelector('footer pre').append(`\n\n${'-'.repeat(72)}\n\n${licences}`);
    return module;
}

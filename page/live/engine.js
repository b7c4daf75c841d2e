// The module that the page carries.
import { IspModule } from '../module/host.js';

// Null in a page without it, and where the browser has no WebAssembly.
export async function load_module() {
    const packed = document.getElementById('module')?.textContent;
    if (!packed || typeof WebAssembly !== 'object' || typeof DecompressionStream !== 'function') return null;
    const bytes = Uint8Array.from(atob(packed), (character) => character.charCodeAt(0));
    const unpacked = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('gzip'));
    return new IspModule(await WebAssembly.compile(await new Response(unpacked).arrayBuffer()));
}

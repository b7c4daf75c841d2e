// The module as the page calls it: files and a request in, the bytes of a result out.

// A message of the module: what the program prints for the same files.
export class IspError extends Error {}

const inputs = ['tuning', 'scene', 'request'];
const encoder = new TextEncoder();
const decoder = new TextDecoder();

// What the module takes from WASI: nowhere to write to, no environment.
const no_system = 52; // ENOSYS
const wasi = {
    environ_get: () => 0,
    environ_sizes_get: (count, size) => [count, size] && no_system,
    fd_close: () => no_system,
    fd_seek: () => no_system,
    fd_write: () => no_system,
    proc_exit: (code) => {
        throw new IspError(`the module ended with exit code ${code}`);
    },
};

export class IspModule {
    // compiled: a WebAssembly.Module; log(level, text) gets the library's log.
    constructor(compiled, log = () => {}) {
        this.compiled = compiled;
        this.log = log;
        this.instance = null;
        this.held = {}; // inputs as the instance has them
    }

    // The bytes that a function of the module makes of {tuning, scene, request}: bytes, texts, and for the request
    // anything that JSON holds. Throws IspError with the module's message; the next call has a new instance.
    call(name, given) {
        try {
            this.start();
            inputs.forEach((input, place) => this.put(input, place, given[input] ?? this.held[input]));
            const exported = this.instance.exports;
            exported[name]();
            const start = exported.result_bytes();
            return new Uint8Array(exported.memory.buffer).slice(start, start + exported.result_size());
        } catch (error) {
            this.instance = null;
            throw error instanceof IspError ? error : new IspError(`the module failed: ${error.message}`);
        }
    }

    json(name, given) {
        return JSON.parse(decoder.decode(this.call(name, given)));
    }

    text(address, size) {
        return decoder.decode(new Uint8Array(this.instance.exports.memory.buffer, address, size));
    }

    start() {
        if (this.instance) return;
        this.instance = new WebAssembly.Instance(this.compiled, {
            page: {
                failed: (text, size) => {
                    throw new IspError(this.text(text, size));
                },
                logged: (level, text, size) => this.log(level, this.text(text, size)),
            },
            wasi_snapshot_preview1: wasi,
        });
        this.sent = {};
        this.instance.exports._initialize();
    }

    // What the instance has already is not sent again.
    put(input, place, value) {
        this.held[input] = value;
        if (value === undefined || this.sent[input] === value) return;
        const bytes =
            value instanceof Uint8Array
                ? value
                : encoder.encode(typeof value === 'string' ? value : JSON.stringify(value));
        const start = this.instance.exports.input_bytes(place, bytes.length);
        new Uint8Array(this.instance.exports.memory.buffer, start, bytes.length).set(bytes);
        this.sent[input] = value;
    }
}

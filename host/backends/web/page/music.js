// The disc's tracks, played by the browser: one at a time, round and round without a gap. Browsers allow sound from the
// player's first key or click on.

export class Music {
    constructor(files) {
        this.files = files;
        this.muted = false;
        this.context = null;
        this.source = null;
        this.wanted = null;
        this.decoded = new Map();  // path: promise of an AudioBuffer
        const unlock = () => this.unlock();
        for (const gesture of ['keydown', 'pointerdown']) addEventListener(gesture, unlock, { capture: true });
        document.addEventListener('visibilitychange', () => this.attend());
    }

    unlock() {
        if (!this.context && typeof AudioContext === 'function') {
            this.context = new AudioContext();
            if (this.wanted) this.begin(this.wanted);
        }
        this.attend();
    }

    attend() {
        if (document.hidden || this.muted) this.context?.suspend();
        else this.context?.resume();
    }

    mute(muted) {
        this.muted = muted;
        this.attend();
    }

    // Seconds; path null: silence. The same again goes on without a gap.
    play(path, from = 0, to = 0) {
        const wanted = path && { path: path.replace(/^\/data\//, ''), from, to };
        if (JSON.stringify(wanted) === JSON.stringify(this.wanted)) return;
        this.source?.stop();
        this.source = null;
        this.wanted = wanted;
        if (wanted && this.context) this.begin(wanted);
    }

    decode(path) {
        if (!this.decoded.has(path)) {
            const buffer = fetch(this.files().tracks[path].url)
                .then((response) => response.ok ? response.arrayBuffer() : Promise.reject(new Error(response.status)))
                .then((bytes) => this.context.decodeAudioData(bytes));
            buffer.catch(() => this.decoded.delete(path));
            this.decoded.set(path, buffer);
        }
        return this.decoded.get(path);
    }

    async begin(wanted) {
        const buffer = await this.decode(wanted.path).catch((problem) => console.warn('no music:', problem));
        if (!buffer || this.wanted !== wanted) return;
        const source = new AudioBufferSourceNode(this.context, {
            buffer, loop: true, loopStart: wanted.from, loopEnd: Math.min(wanted.to, buffer.duration),
        });
        source.connect(this.context.destination);
        source.start(0, wanted.from);
        this.source = source;
    }
}

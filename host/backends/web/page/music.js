// The disc's tracks, which the browser plays one at a time, round and round without a gap. Browsers allow sound only after
// the player's first key or click.

export class Music {
    constructor(files) {
        this.files = files;
        this.muted = false;
        this.volume = 1;
        this.stopsUnfocused = false;
        this.context = null;
        this.source = null;
        this.wanted = null;
        this.decoded = new Map();  // path: promise of an AudioBuffer
        const unlock = () => this.unlock();
        for (const gesture of ['keydown', 'pointerdown']) addEventListener(gesture, unlock, { capture: true });
        document.addEventListener('visibilitychange', () => this.attend());
        for (const change of ['focus', 'blur']) addEventListener(change, () => this.attend());
    }

    unlock() {
        if (!this.context && typeof AudioContext === 'function') {
            this.context = new AudioContext();
            this.loudness = new GainNode(this.context, { gain: this.volume });
            this.loudness.connect(this.context.destination);
            if (this.wanted) this.begin(this.wanted);
        }
        this.attend();
    }

    attend() {
        const isUnheard = document.hidden || this.muted || (this.stopsUnfocused && !document.hasFocus());
        if (isUnheard) this.context?.suspend();
        else this.context?.resume();
    }

    // `volume`: 0 to 1.
    set(volume, stopsUnfocused) {
        this.volume = volume;
        this.stopsUnfocused = stopsUnfocused;
        if (this.loudness) this.loudness.gain.value = volume;
        this.attend();
    }

    mute(muted) {
        this.muted = muted;
        this.attend();
    }

    // Plays from the second `from` to the second `to`; path null: silence. A track that already sounds goes on without a gap.
    play(path, from = 0, to = 0) {
        const wanted = path && { path: path.replace(/^\/data\//, ''), from, to };
        if (JSON.stringify(wanted) === JSON.stringify(this.wanted)) return;
        this.source?.stop();
        this.source = null;
        this.wanted = wanted;
        if (wanted && this.context) this.begin(wanted);
    }

    async decodeFirst(urls) {
        let problem;
        for (const url of urls) {
            const response = await fetch(url);
            if (!response.ok) throw new Error(`${url}: ${response.status}`);
            try {
                return await this.context.decodeAudioData(await response.arrayBuffer());
            } catch (refusal) {  // this browser does not play the format
                problem = refusal;
            }
        }
        throw problem;
    }

    decode(path) {
        if (!this.decoded.has(path)) {
            const buffer = this.decodeFirst(this.files().tracks[path].urls);
            buffer.catch(() => this.decoded.delete(path));
            this.decoded.set(path, buffer);
        }
        return this.decoded.get(path);
    }

    async begin(wanted) {
        const buffer = await this.decode(wanted.path).catch((problem) => console.warn('no music:', problem));
        if (!buffer || this.wanted !== wanted) return;
        const source = new AudioBufferSourceNode(this.context, {
            buffer, loop: true, loopStart: wanted.from, loopEnd: Math.min(wanted.to, this.files().tracks[wanted.path].seconds),
        });
        source.connect(this.loudness);
        source.start(0, wanted.from);
        this.source = source;
    }
}

// The files of the data folder. On the server they are packed by gzip and named by their contents. The game finds empty
// files at their places; each is filled when the game opens it for the first time.

async function unpack(stream) {
    return new Uint8Array(await new Response(stream.pipeThrough(new DecompressionStream('gzip'))).arrayBuffer());
}

function isPacked(bytes) {
    return bytes.length > 2 && bytes[0] === 0x1F && bytes[1] === 0x8B;
}

// Calls tell(share), 0 to 1, as the bytes come, if the server says how many there are. Some servers unpack by themselves.
export async function fetchBytes(url, tell = () => {}) {
    const response = await fetch(url);
    if (!response.ok) throw new Error(`${response.status} ${response.statusText}`.trim());
    const all = Number(response.headers.get('Content-Length')) || 0;
    const parts = [];
    let come = 0;
    for (const reader = response.body.getReader();;) {
        const { done, value } = await reader.read();
        if (done) break;
        parts.push(value);
        come += value.length;
        if (all) tell(Math.min(come / all, 1));
    }
    const blob = new Blob(parts);
    const head = new Uint8Array(await blob.slice(0, 3).arrayBuffer());
    return isPacked(head) ? unpack(blob.stream()) : new Uint8Array(await blob.arrayBuffer());
}

export class DataFiles {
    // `list`, as pack_page.mjs writes it: { levels: [{ number, name }], files: { path: { url, bytes } },
    // tracks: { path: { urls: [the smallest first], seconds, milliseconds } } }.
    constructor(list) {
        this.levels = list.levels;
        this.files = list.files;
        this.tracks = list.tracks;
        this.fetched = new Map();  // path: promise of its bytes
    }

    prepare(FS, root) {
        this.root = root;
        this.placed = new Set();
        const place = (path, contents) => {
            FS.mkdirTree(`${root}/${path}`.replace(/\/[^/]*$/, ''));
            FS.writeFile(`${root}/${path}`, contents);
        };
        for (const path of Object.keys(this.files)) place(path, '');
        for (const [path, track] of Object.entries(this.tracks)) place(path, `TRCK ${track.milliseconds}\n`);
    }

    fetch(path) {
        if (!this.fetched.has(path)) {
            const bytes = fetchBytes(this.files[path].url);
            bytes.catch(() => this.fetched.delete(path));
            this.fetched.set(path, bytes);
        }
        return this.fetched.get(path);
    }

    // A level's files are asked for together: all of its folder with the first one, without the textures of the renderer
    // that does not draw.
    companions(path) {
        const folder = path.replace(/\/[^/]*$/, '/');
        if (!folder.startsWith('game/')) return [path];
        return Object.keys(this.files).filter((other) => other.replace(/\/[^/]*$/, '/') === folder);
    }

    // If anything has to be fetched, calls tell(share) as it comes, and tell(1) at the end.
    async bring(FS, fullPath, tell) {
        if (!fullPath.startsWith(`${this.root}/`)) return;
        const path = fullPath.slice(this.root.length + 1);
        if (!this.files[path] || this.placed.has(path)) return;
        const wanted = this.companions(path).filter((other) => !this.placed.has(other));
        const bytes = wanted.reduce((sum, other) => sum + this.files[other].bytes, 0);
        let come = 0;
        const late = setTimeout(() => tell(come / bytes), 150);
        await Promise.all(wanted.map(async (other) => {
            const contents = await this.fetch(other);
            come += this.files[other].bytes;
            if (this.placed.has(other)) return;
            this.placed.add(other);
            FS.writeFile(`${this.root}/${other}`, contents);
        })).finally(() => clearTimeout(late));
        tell(1);
    }
}

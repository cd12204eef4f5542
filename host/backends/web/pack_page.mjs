// Makes the folder that a server of files gives to browsers, from the program and the data folder:
//     node pack_page.mjs PROGRAM_FOLDER DATA_FOLDER LEVELS_HEADER PAGE_FOLDER
// Files are named by their contents, so that a new version never mixes with an old one, and packed by gzip. The same
// input gives the same bytes. Prints a table of sizes.
import { execFileSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { mkdirSync, readFileSync, readdirSync, rmSync, statSync, writeFileSync } from 'node:fs';
import { basename, dirname, extname, join, relative } from 'node:path';
import { fileURLToPath } from 'node:url';
import { gzipSync } from 'node:zlib';

const [programFolder, dataFolder, levelsHeader, pageFolder] = process.argv.slice(2);
const sources = join(dirname(fileURLToPath(import.meta.url)), 'page');
const assets = join(pageFolder, 'assets');
rmSync(pageFolder, { recursive: true, force: true });
mkdirSync(assets, { recursive: true });

const sizes = {};  // group: bytes that go over the network

function put(name, bytes, group, { packed = false } = {}) {
    const contents = packed ? gzipSync(bytes, { level: 9 }) : bytes;
    const hash = createHash('sha256').update(bytes).digest('hex').slice(0, 16);
    const file = packed ? `${hash}.bin` : `${basename(name, extname(name))}.${hash}${extname(name)}`;
    writeFileSync(join(assets, file), contents);
    sizes[group] = (sizes[group] ?? 0) + contents.length;
    return `assets/${file}`;
}

function filesBelow(folder) {
    return readdirSync(folder, { withFileTypes: true })
        .sort((a, b) => (a.name < b.name ? -1 : 1))
        .flatMap((entry) => (entry.isDirectory() ? filesBelow(join(folder, entry.name)) : [join(folder, entry.name)]));
}

function groupOf(path) {
    const level = path.match(/levels\/(level\d+)\/(glidetex\/)?/);
    if (level) return level[2] ? `${level[1]}, more for the accelerator` : level[1];
    return path === 'FrontEnd/Title.Bmp' ? 'start' : path.startsWith('FrontEnd/') ? 'other screens' : 'character';
}

function listFiles() {
    const list = { levels: levelNames(), files: {}, tracks: {} };
    for (const file of filesBelow(dataFolder)) {
        const path = relative(dataFolder, file);
        if (path.startsWith('disc/')) {
            list.tracks[path] = { urls: putTrack(path, file), ...trackLength(file) };
        } else if (path.startsWith('game/') || path.startsWith('FrontEnd/')) {
            const bytes = readFileSync(file);
            list.files[path] = { url: put(path, bytes, groupOf(path), { packed: true }), bytes: bytes.length };
        }
    }
    return list;
}

function levelNames() {
    const rows = readFileSync(levelsHeader, 'utf8').matchAll(/^ +LEVEL\((\d+), +([a-z0-9]+),/gm);
    return [...rows].map(([, number, world]) => ({ number: Number(number), name: titleOf(Number(number), world) }));
}

// The level's name: the key "message" of its map.
function titleOf(number, world) {
    const map = readFileSync(join(dirname(levelsHeader), `../../content/levels/level${number}/${world}.map`), 'utf8');
    return map.match(/"message" "([^"]*)"/)?.[1] ?? world;
}

// Packs a track twice: as Ogg Vorbis, a tenth of the size, and as it is, for browsers that cannot play that.
function putTrack(path, file) {
    const name = path.replace(/flac$/, 'ogg');
    const ogg = execFileSync('oggenc', ['--quiet', '--serial', '1', '--quality', '4', '--output', '-', file],
        { maxBuffer: 2 ** 26 });
    return [put(name, ogg, 'music'), put(path, readFileSync(file), 'music, for browsers that cannot play Ogg Vorbis')];
}

// The length of a FLAC file, from its first block: 20 bits of rate, 36 of the number of samples. Milliseconds are rounded up.
function trackLength(file) {
    const head = readFileSync(file).subarray(0, 42);
    if (head.toString('latin1', 0, 4) !== 'fLaC') throw new Error(`${file} is not FLAC`);
    const rate = head.readUIntBE(18, 3) >> 4;
    const samples = (head[21] & 15) * 2 ** 32 + head.readUInt32BE(22);
    return { seconds: samples / rate, milliseconds: Math.ceil(samples * 1000 / rate) };
}

// %name% stands for the address of another file; `from` is the folder of the file that names it.
function fill(text, addresses) {
    return text.replace(/%([\w.]+)%/g, (whole, name) => {
        if (!(name in addresses)) throw new Error(`the page names ${name}, which is not made`);
        return addresses[name];
    });
}

function page(name) {
    return readFileSync(join(sources, name), 'utf8');
}

const addresses = {};
function putText(name, text) {
    addresses[name] = put(name, Buffer.from(text), 'start');
}

addresses['files.json'] = put('files.json', Buffer.from(JSON.stringify(listFiles())), 'start');
addresses['tarnwick.wasm'] = put('tarnwick.wasm', readFileSync(join(programFolder, 'tarnwick.wasm')), 'start', { packed: true });
addresses['icon.png'] = put('icon.png', readFileSync(join(dataFolder, 'icon.png')), 'start');
putText('style.css', page('style.css'));
putText('tarnwick.mjs', readFileSync(join(programFolder, 'tarnwick.mjs'), 'utf8'));
for (const name of ['files.js', 'input.js', 'music.js', 'screen.js']) putText(name, page(name));
// Modules name each other from their own folder.
const besides = Object.fromEntries(Object.entries(addresses).map(([name, address]) => [name, `./${basename(address)}`]));
putText('page.js', fill(page('page.js'), besides));
const index = fill(page('index.html'), addresses);
writeFileSync(join(pageFolder, 'index.html'), index);
sizes.start += Buffer.byteLength(index);
const version = createHash('sha256').update(index).digest('hex').slice(0, 16);
writeFileSync(join(pageFolder, 'service_worker.js'), fill(page('service_worker.js'), { version }));

const all = filesBelow(pageFolder).reduce((sum, file) => sum + statSync(file).size, 0);
for (const [group, bytes] of Object.entries({ ...sizes, 'all together': all }))
    console.log(`${group.padEnd(36)} ${String(Math.ceil(bytes / 1000)).padStart(7)} kB`);

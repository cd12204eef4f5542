// The page: starts the game's program and answers what it asks for (page_calls.js).
import createTarnwick from '%tarnwick.mjs%';
import { DataFiles, fetchBytes } from '%files.js%';
import { Input } from '%input.js%';
import { Music } from '%music.js%';

const stage = document.getElementById('stage');
const cover = document.getElementById('cover');
const coverText = document.getElementById('cover-text');
const coverProgress = document.getElementById('cover-progress');
const coverButton = document.getElementById('cover-button');
const rendererChoice = document.getElementById('renderer');

let program, files;        // the program's bytes, and what the server has for it
let running = 0;           // counts the starts of the game; what belongs to an earlier start is stopped
const input = new Input(stage);
const music = new Music(() => files);

function showCover(text, { progress = null, button = null } = {}) {
    coverText.textContent = text;
    coverProgress.hidden = progress === null;
    if (progress !== null) coverProgress.value = progress;
    coverButton.hidden = button === null;
    if (button !== null) coverButton.textContent = button;
    cover.hidden = false;
}

function hideCover() {
    cover.hidden = true;
}

function pressed(text, button) {
    showCover(text, { button });
    coverButton.focus();
    return new Promise((resolve) => {
        coverButton.onclick = () => {
            hideCover();
            input.canvas.focus();
            resolve();
        };
    });
}

// Tries again as often as the player likes: a game that has begun does not end because the network fails.
async function insist(what, attempt) {
    for (;;) {
        try {
            return await attempt();
        } catch (problem) {
            await pressed(`${what} could not be fetched: ${problem.message}\nThe server or the network does not answer.`,
                          'Try again');
        }
    }
}

// A canvas keeps one context for its life, so each start of the game gets a new canvas.
function freshCanvas() {
    const old = document.getElementById('screen');
    const canvas = old.cloneNode(false);
    old.replaceWith(canvas);
    canvas.addEventListener('webglcontextlost', (event) => {
        event.preventDefault();
        running++;
        pressed('The graphics card has given up drawing.', 'Start again').then(() => start());
    });
    input.takeCanvas(canvas);
    return canvas;
}

function fitCanvas(canvas) {
    const scale = window.devicePixelRatio || 1;
    const width = Math.max(1, Math.round(stage.clientWidth * scale));
    const height = Math.max(1, Math.round(stage.clientHeight * scale));
    if (canvas.width !== width) canvas.width = width;
    if (canvas.height !== height) canvas.height = height;
}

function hasWebGl() {
    try {
        return document.createElement('canvas').getContext('webgl2') !== null;
    } catch {
        return false;
    }
}

// Short naps wait for a message, not for a timer, which the browser would stretch to four milliseconds.
const hop = new MessageChannel();
const hops = [];
hop.port1.onmessage = () => hops.shift()();

function nap(milliseconds) {
    return new Promise((resolve) => {
        hops.push(() => setTimeout(resolve, milliseconds));
        hop.port2.postMessage(0);
    });
}

function untilShown() {
    if (!document.hidden) return Promise.resolve();
    return new Promise((resolve) => document.addEventListener('visibilitychange', resolve, { once: true }));
}

// The functions that the program calls. `alive`: whether this start is still the latest; what an earlier start waits for
// never comes.
function pageFor(canvas, module, alive, options) {
    const webGl = options.webGl !== false && hasWebGl();
    let pixelContext = null;
    let waiting = false;
    const goOn = async (promise) => {
        waiting = true;
        await promise;
        if (!alive()) await new Promise(() => {});
        waiting = false;
    };
    return {
        waits: () => waiting,
        nap: (milliseconds) => goOn(nap(milliseconds)),
        wait: (milliseconds) => goOn(document.hidden ? untilShown() : nap(milliseconds)),
        bringFile: (path) => goOn(insist('A file of the game', () => files.bring(module().FS, path, (share) => {
            if (share === 1) hideCover();
            else showCover('Loading the world', { progress: share });
        }))),
        showMessage: (text) => goOn(pressed(text, 'Go on')),
        report: () => input.report(module()),
        canvasSize: () => {
            if (!options.fixedSize) fitCanvas(canvas);
            return [canvas.width, canvas.height];
        },
        hasWebGl: () => webGl ? 1 : 0,
        showPixels: (pixels, width, height) => {
            if (!pixelContext) {
                pixelContext = canvas.getContext('2d');
                if (!pixelContext) {  // the canvas has a context of WebGL that could not be used
                    canvas = freshCanvas();
                    pixelContext = canvas.getContext('2d');
                }
            }
            canvas.width = width;
            canvas.height = height;
            const image = pixelContext.createImageData(width, height);
            image.data.set(pixels);
            for (let i = 3; i < image.data.length; i += 4) image.data[i] = 255;
            pixelContext.putImageData(image, 0, 0);
        },
        shown: () => {
            frames++;
            window.tarnwick.moments?.push(performance.now());  // for bench/page.mjs
            if (!shownFirst) {
                shownFirst = true;
                hideCover();
                performance.mark('first picture');
            }
        },
        capturePointer: (captured) => input.wantPointer(captured),
        playTrack: (path, from, to) => music.play(path, from, to),
    };
}

let frames = 0, shownFirst = false;

// Starts the game with the options of its command line. `given` maps paths to the bytes of files that it may name; `data`
// is another folder of its data among them, `fixedSize` the canvas's width and height whatever the page's.
// Resolves with the module and its exit status when the game has ended.
export async function startGame(options, { given = {}, ...rest } = {}) {
    const start = ++running;
    const alive = () => start === running;
    shownFirst = false;
    frames = 0;
    music.play(null);
    input.reset();
    const canvas = freshCanvas();
    if (rest.fixedSize) [canvas.width, canvas.height] = rest.fixedSize;
    let module = null, end;
    const ended = new Promise((resolve) => end = resolve);
    const lines = [];
    const moduleOptions = {
        wasmBinary: program,
        canvas,
        page: null,
        print: (line) => lines.push(line),
        printErr: (line) => {
            lines.push(line);
            console.warn(line);
        },
        // Also called when the program begins to wait for the first time, as if it had ended then.
        quit: (status, ending) => {
            if (!moduleOptions.page.waits()) end(status);
            throw ending;
        },
        onAbort: () => end(-1),
    };
    moduleOptions.page = pageFor(canvas, () => module, alive, rest);
    module = await createTarnwick(moduleOptions);
    if (!alive()) return null;
    files.prepare(module.FS, '/data');
    for (const [path, bytes] of Object.entries(given)) {
        module.FS.mkdirTree(path.replace(/\/[^/]*$/, '') || '/');
        module.FS.writeFile(path, bytes);
    }
    try {
        module.callMain(['--data', rest.data ?? '/data', '--log', '/dev/null', ...options]);
    } catch (problem) {
        if (problem.name !== 'ExitStatus') {
            console.error(problem);
            end(-1);
        }
    }
    const status = await ended;
    music.play(null);
    return { module, status, lines };
}

function chosen() {
    const asked = new URLSearchParams(location.hash.slice(1));
    const options = [];
    const level = Number(asked.get('level'));
    if (files.levels.some((row) => row.number === level)) {
        options.push('--level', String(level), '--renderer', rendererChoice.value);
    }
    return { options, replay: asked.get('replay') };
}

async function start(recording = null) {
    const { options, replay } = chosen();
    const given = {};
    if (!recording && replay) recording = await insist('The recording', () => fetchBytes(new URL(replay, location.href)));
    if (recording) {
        given['/play.rec'] = recording;
        options.splice(0, options.length, '--replay', '/play.rec');
    }
    showCover('Starting', { progress: 1 });
    markWorld();
    let result;
    try {
        result = await startGame(options, { given });
    } catch (problem) {
        console.error(problem);
        result = { status: -1, lines: [String(problem.message)] };
    }
    if (!result) return;
    const last = result.lines.slice(-3).join('\n');
    await pressed(result.status === 0 ? 'The game has ended.' : `The game has stopped.\n${last}`, 'Play again');
    start();
}

function markWorld() {
    const level = new URLSearchParams(location.hash.slice(1)).get('level');
    for (const link of document.querySelectorAll('#worlds a'))
        link.setAttribute('aria-current', String(link.hash === `#level=${level}`));
}

function listWorlds() {
    const list = document.getElementById('worlds');
    for (const { number, name } of files.levels) {
        const item = document.createElement('li');
        const link = document.createElement('a');
        link.href = `#level=${number}`;
        const digit = document.createElement('b');
        digit.textContent = String(number);
        link.append(digit, name);
        item.append(link);
        list.append(item);
    }
}

// Shows the letters that are written on the keys of this keyboard, where the browser tells them.
async function nameKeys() {
    const layout = await navigator.keyboard?.getLayoutMap?.().catch(() => null);
    if (!layout) return;
    for (const key of document.querySelectorAll('kbd[data-place^="Key"]'))
        key.textContent = (layout.get(key.dataset.place) ?? key.textContent).toUpperCase();
}

function listen() {
    // What ends the program goes through all that waits for it.
    addEventListener('unhandledrejection', (event) => {
        if (event.reason?.name === 'ExitStatus') event.preventDefault();
    });
    addEventListener('hashchange', () => start());
    rendererChoice.addEventListener('change', () => {
        localStorage.setItem('renderer', rendererChoice.value);
        if (location.hash.startsWith('#level=')) start();
    });
    document.getElementById('full-screen').addEventListener('click', () => {
        stage.requestFullscreen?.({ navigationUI: 'hide' }).then(() => navigator.keyboard?.lock?.()).catch(() => {});
        input.canvas.focus();
    });
    const sound = document.getElementById('sound');
    sound.addEventListener('click', () => {
        music.mute(sound.getAttribute('aria-pressed') === 'true');
        sound.setAttribute('aria-pressed', String(!music.muted));
    });
    stage.addEventListener('dragover', (event) => event.preventDefault());
    stage.addEventListener('drop', async (event) => {
        event.preventDefault();
        const [file] = event.dataTransfer.files;
        if (file) start(new Uint8Array(await file.arrayBuffer()));
    });
}

function missing() {
    if (typeof WebAssembly !== 'object') return 'WebAssembly';
    if (typeof DecompressionStream !== 'function') return 'DecompressionStream (browsers since 2023 have it)';
    return null;
}

async function main() {
    const lacking = missing();
    if (lacking) {
        showCover(`This browser has no ${lacking}, which the game needs. A newer one will play it.`);
        return;
    }
    rendererChoice.value = localStorage.getItem('renderer') ?? 'software';
    listen();
    const { program: programUrl, files: filesUrl } = document.body.dataset;
    files = new DataFiles(await insist('The list of files', async () => (await fetch(filesUrl)).json()));
    listWorlds();
    nameKeys();
    program = await insist('The program', () => fetchBytes(programUrl, (share) => showCover('Loading', { progress: share })));
    navigator.serviceWorker?.register('service_worker.js').catch(() => {});
    window.tarnwick = { startGame, frames: () => frames, files: () => files };
    if (!new URLSearchParams(location.hash.slice(1)).has('wait')) start();
}

main();

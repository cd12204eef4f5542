// The page: starts the game's program and answers what it asks for (page_calls.js).
import createTarnwick from '%tarnwick.mjs%';
import { DataFiles, fetchBytes } from '%files.js%';
import { Input } from '%input.js%';
import { Music } from '%music.js%';
import { Screen } from '%screen.js%';

const stage = document.getElementById('stage');
const cover = document.getElementById('cover');
const coverText = document.getElementById('cover-text');
const coverProgress = document.getElementById('cover-progress');
const coverButton = document.getElementById('cover-button');
const rendererChoice = document.getElementById('renderer');

let program, files;        // the compiled program, and what the server has for it
let running = 0;           // counts the starts of the game; what belongs to an earlier start is stopped
const input = new Input(stage, () => setFullScreen(!document.fullscreenElement));
const music = new Music(() => files);
const screen = new Screen(stage, () => {
    running++;
    pressed('The graphics card has given up drawing.', 'Start again').then(() => start());
});
let keyNames = null;       // what is written on the keys by their places, where the browser tells it

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

// A browser may refuse to remember anything.
function remembered(name) {
    try {
        return localStorage.getItem(name);
    } catch {
        return null;
    }
}

function remember(name, value) {
    try {
        localStorage.setItem(name, value);
    } catch {
        console.warn(`${name} will be forgotten: this browser keeps nothing for the page`);
    }
}

// Short naps wait for a message first: browsers stretch timers that follow each other to four milliseconds.
const hop = new MessageChannel();
const hops = [];
hop.port1.onmessage = () => hops.shift()();
const SHORT_NAP = 5, EARLY = 0.3, UNSEEN_WAIT = 100;  // ms

function nextHop() {
    return new Promise((resolve) => {
        hops.push(resolve);
        hop.port2.postMessage(0);
    });
}

async function nap(milliseconds) {
    if (document.hidden) return untilShown();
    if (milliseconds < SHORT_NAP) await nextHop();
    if (milliseconds > 0) await new Promise((resolve) => setTimeout(resolve, milliseconds));
}

// Timers know whole milliseconds only. One that ends a little early is better than one that ends late: the program asks
// again, and the rest is slept then.
function sleepUntil(moment) {
    const left = moment - performance.now();
    return nap(left < EARLY ? 0 : Math.max(1, Math.floor(left + EARLY)));
}

function untilShown() {
    if (!document.hidden) return Promise.resolve();
    return new Promise((resolve) => document.addEventListener('visibilitychange', resolve, { once: true }));
}

function setFullScreen(on) {
    const change = on ? stage.requestFullscreen?.({ navigationUI: 'hide' }) : document.exitFullscreen?.();
    change?.then(() => navigator.keyboard?.lock?.()).catch(() => input.tellFullScreen());
    input.canvas.focus();
}

// The functions that the program calls. `alive`: whether this start is still the latest; what an earlier start waits for
// never comes.
function pageFor(module, alive) {
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
        sleepUntil: (moment) => goOn(sleepUntil(moment)),
        wait: (milliseconds) => goOn(nap(document.hasFocus() ? milliseconds : UNSEEN_WAIT)),
        bringFile: (path) => goOn(insist('A file of the game', () => files.bring(module().FS, path, (share) => {
            if (share === 1) hideCover();
            else showCover('Loading the world', { progress: share });
        }))),
        showMessage: (text) => goOn(pressed(text, 'Go on')),
        report: () => input.report(module()),
        screenSize: () => screen.size(),
        hasGraphicsCard: () => screen.hasGraphicsCard ? 1 : 0,
        refreshRate: () => screen.refreshRate(),
        showPixels: (...pixels) => screen.showPixels(...pixels),
        showOverlay: (...pixels) => screen.showOverlay(...pixels),
        placePicture: (...place) => screen.place(...place),
        offerPicture: (...picture) => screen.offerPicture(...picture),
        shown: () => {
            frames++;
            window.tarnwick.onPicture?.();  // for tests and bench/page.mjs
            if (!shownFirst) {
                shownFirst = true;
                hideCover();
                performance.mark('first picture');
            }
        },
        capturePointer: (captured) => input.wantPointer(captured),
        playTrack: (path, from, to) => music.play(path, from, to),
        isFullScreen: () => document.fullscreenElement ? 1 : 0,
        applySettings: (fullScreen, windowWidth, volume, stopsUnfocused) => {
            if (fullScreen !== Boolean(document.fullscreenElement)) setFullScreen(fullScreen);
            stage.style.setProperty('--window-width', `${windowWidth}px`);
            music.set(volume / 100, stopsUnfocused);
        },
        keepFile: (path) => remember('settings', module().FS.readFile(path, { encoding: 'utf8' })),
        keyLabel: (place) => (keyNames?.get(place) ?? place.replace(/^(Key|Digit|Arrow)/, '')
            .replace(/([a-z])([A-Z0-9])/g, '$1 $2')).toUpperCase(),
    };
}

const SETTINGS = '/settings.txt';
let frames = 0, shownFirst = false;

// Starts the game with the options of its command line. `given` maps paths to the bytes of files that it may name; `data`
// is another folder of its data among them, `fixedSize` the screen's width and height whatever the page's.
// Resolves with the module and its exit status when the game has ended.
export async function startGame(options, { given = {}, ...rest } = {}) {
    const start = ++running;
    const alive = () => start === running;
    shownFirst = false;
    frames = 0;
    music.play(null);
    input.reset();
    const canvas = screen.begin(rest.fixedSize);
    input.takeCanvas(canvas);
    let module = null, end;
    const ended = new Promise((resolve) => end = resolve);
    const lines = [];
    const moduleOptions = {
        instantiateWasm: (imports, take) => {
            WebAssembly.instantiate(program, imports).then(take);
            return {};
        },
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
    moduleOptions.page = pageFor(() => module, alive);
    module = await createTarnwick(moduleOptions);
    if (!alive()) return null;
    files.prepare(module.FS, '/data');
    for (const [path, bytes] of Object.entries(given)) {
        module.FS.mkdirTree(path.replace(/\/[^/]*$/, '') || '/');
        module.FS.writeFile(path, bytes);
    }
    try {
        module.callMain(['--data', rest.data ?? '/data', '--log', '/dev/null', '--settings', SETTINGS, ...options]);
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
    const settings = remembered('settings');
    const given = settings === null ? {} : { [SETTINGS]: settings };
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
    keyNames = await navigator.keyboard?.getLayoutMap?.().catch(() => null);
    if (!keyNames) return;
    for (const key of document.querySelectorAll('kbd[data-place^="Key"]'))
        key.textContent = (keyNames.get(key.dataset.place) ?? key.textContent).toUpperCase();
}

function listen() {
    // What ends the program goes through all that waits for it.
    addEventListener('unhandledrejection', (event) => {
        if (event.reason?.name === 'ExitStatus') event.preventDefault();
    });
    addEventListener('hashchange', () => start());
    rendererChoice.addEventListener('change', () => {
        remember('renderer', rendererChoice.value);
        if (location.hash.startsWith('#level=')) start();
    });
    document.getElementById('full-screen').addEventListener('click', () => setFullScreen(true));
    document.addEventListener('fullscreenchange', () => input.tellFullScreen());
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

// Lets the service worker keep what the page has loaded, also on the first visit.
async function playOffline() {
    await navigator.serviceWorker?.register('service_worker.js');
    const { active } = await navigator.serviceWorker.ready;
    active.postMessage([location.href.replace(/#.*/, ''), ...performance.getEntriesByType('resource').map(({ name }) => name)]);
}

async function main() {
    const lacking = missing();
    if (lacking) {
        showCover(`This browser has no ${lacking}, which the game needs. A newer one will play it.`);
        return;
    }
    rendererChoice.value = remembered('renderer') ?? 'software';
    listen();
    const { program: programUrl, files: filesUrl } = document.body.dataset;
    files = new DataFiles(await insist('The list of files', async () => (await fetch(filesUrl)).json()));
    listWorlds();
    nameKeys();
    const bytes = await insist('The program', () => fetchBytes(programUrl, (share) => showCover('Loading', { progress: share })));
    program = await WebAssembly.compile(bytes);  // once: each start of the game goes on with code that has become fast
    playOffline().catch(() => {});
    window.tarnwick = { startGame, frames: () => frames, files: () => files, held: () => input.held.size };
    if (!new URLSearchParams(location.hash.slice(1)).has('wait')) start();
}

main();

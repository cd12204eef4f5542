// Tries the page in Chromium: node page_test.mjs PAGE_FOLDER GAME [PICTURES]. GAME is this machine's own build, whose
// pictures and recordings the page's must equal. PICTURES: a folder for pictures of the page and of all levels.
// Ends with "N passed, N failed"; status 1 when anything failed.
import { execFile, execFileSync, spawn } from 'node:child_process';
import { cpSync, mkdirSync, mkdtempSync, readdirSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { Browser } from './browser.mjs';

const [pageFolder, game, pictures] = process.argv.slice(2);
const tests = join(dirname(fileURLToPath(import.meta.url)), '..');
const folder = mkdtempSync(join(tmpdir(), 'tarnwick-page.'));
const PICTURE_OF = 'route_level3.rec', PICTURE_FRAMES = 20;

let passed = 0, failed = 0;
async function test(name, body) {
    const started = Date.now();
    let problem = null;
    try {
        await body();
        passed++;
    } catch (error) {
        problem = error;
        failed++;
    }
    console.log(`${name.padEnd(60)} ${problem ? `FAILED: ${problem.message}` : 'ok'}  ${Math.round((Date.now() - started) / 1000)} s`);
}

function expect(condition, what) {
    if (!condition) throw new Error(what);
}

function startServer() {
    return new Promise((resolve, reject) => {
        const server = spawn('node', [join(tests, '../host/backends/web/serve_page.mjs'), folder, '0']);
        server.stdout.once('data', (line) => resolve({ server, address: line.toString().trim() }));
        server.once('exit', () => reject(new Error('the server did not start')));
    });
}

// What the tests play lies beside the page: the frozen levels, the recordings, and pictures of this machine's own build.
function prepareFolder() {
    cpSync(pageFolder, folder, { recursive: true });
    cpSync(join(tests, 'levels/data'), join(folder, 'frozen'), { recursive: true });
    cpSync(join(tests, 'replay'), join(folder, 'recordings'), { recursive: true, filter: (name) => !/\.(cpp|txt|md)$/.test(name) });
    execFileSync(game, ['--headless', '--data', join(tests, 'levels/data'), '--log', '/dev/null', '--replay',
        join(tests, 'replay', PICTURE_OF), '--frames', String(PICTURE_FRAMES),
        '--shot', `${PICTURE_FRAMES}:${join(folder, 'native.png')}`], { stdio: 'ignore' });
}

function filesBelow(path) {
    return readdirSync(path, { withFileTypes: true }).flatMap((entry) =>
        entry.isDirectory() ? filesBelow(join(path, entry.name)) : [join(path, entry.name)]);
}

prepareFolder();
const { server, address } = await startServer();
const browser = await Browser.start();
const faults = [];
browser.on((method, params) => {
    if (method === 'Runtime.exceptionThrown')
        faults.push(params.exceptionDetails.exception?.description ?? params.exceptionDetails.text);
});

async function openPage(hash = '') {
    await browser.open('about:blank');
    await browser.open(address + hash);
    await browser.until('window.tarnwick !== undefined', 'the page has loaded');
}

const cover = `document.getElementById('cover')`;
const coverButton = `document.getElementById('cover-button')`;
const pictureCome = (count) => browser.until(`tarnwick.frames() > ${count} && ${cover}.hidden`, `${count} pictures have come`);

// Gives the game's files of the tests to the page, once.
const frozen = filesBelow(join(folder, 'frozen')).map((path) => path.slice(folder.length + 1));
async function takeFrozenFiles() {
    await browser.value(`(async () => {
        window.frozen = {};
        for (const path of ${JSON.stringify(frozen)})
            window.frozen['/' + path] = new Uint8Array(await (await fetch(path)).arrayBuffer());
    })()`);
}

const replay = (name, more = []) => `(async () => {
    const bytes = new Uint8Array(await (await fetch('recordings/${name}')).arrayBuffer());
    const result = await tarnwick.startGame(['--replay', '/play.rec', ...${JSON.stringify(more)}],
        { data: '/frozen', given: { ...frozen, '/play.rec': bytes }, fixedSize: [320, 240] });
    return { status: result.status, lines: result.lines };
})()`;

const wait = (seconds) => new Promise((resolve) => setTimeout(resolve, seconds * 1000));
const screenLook = () => browser.value(`document.getElementById('screen').toDataURL()`);
async function press(code) {
    await browser.hold(code, 150);
    await wait(0.1);
}

// What the player has set, as if on an earlier visit.
const remember = (name, value) => browser.value(`localStorage.setItem('${name}', ${JSON.stringify(value)})`);

await browser.size(1280, 900);
await test('the first picture comes', async () => {
    await openPage();
    await pictureCome(0);
});

for (const [name, digit] of [['software', 'Digit1'], ['accelerator', 'Digit2']]) {
    await test(`keys lead through the front end into level 3, ${name}`, async () => {
        await openPage();
        await pictureCome(0);
        const steps = [['Space', 'FrontEnd/Select01.bmp'], ['Digit3', 'FrontEnd/Select02.bmp'],
            [digit, 'game/data/levels/level3/texture.bin']];
        for (const [key, file] of steps) {
            await press(key);
            await browser.until(`tarnwick.files().placed.has('${file}') && ${cover}.hidden`, `${key} is answered`);
        }
        await pictureCome(20);
        const before = await screenLook();
        await browser.hold('ArrowUp', 1200);
        expect(await screenLook() !== before, 'the picture is the same after a run');
    });
}

await test('a click gives the pointer to a level, and the page may take it back', async () => {
    const click = async () => {
        for (const type of ['mousePressed', 'mouseReleased'])
            await browser.send('Input.dispatchMouseEvent', { type, x: 640, y: 500, button: 'left', clickCount: 1 });
        await wait(0.3);
        return browser.value('document.pointerLockElement?.id');
    };
    expect(await click() === 'screen', 'the pointer is not held');
    await browser.value('document.exitPointerLock()');
    const before = await browser.value('tarnwick.frames()');
    await pictureCome(before + 5);
    await press('Backspace');
    await wait(0.5);
    expect(await click() === undefined, 'the pointer is held in the front end');
});

await test('another size of the window, and a denser display', async () => {
    await openPage('#level=3');
    await pictureCome(20);
    await browser.size(800, 600, { scale: 2 });
    await browser.until(`(() => {
        const { width } = document.getElementById('screen').getBoundingClientRect();
        return devicePixelRatio === 2 && Math.abs(width - stage.clientWidth) <= 2;
    })()`, 'the picture fills its place');
    await browser.size(1280, 900);
});

await test('a hidden page stands still, a shown one goes on', async () => {
    const hide = (hidden) => browser.value(`Object.defineProperty(document, 'hidden', { value: ${hidden}, configurable: true });
        document.dispatchEvent(new Event('visibilitychange'))`);
    await hide(true);
    await wait(0.5);
    const before = await browser.value('tarnwick.frames()');
    await wait(0.5);
    expect(await browser.value('tarnwick.frames()') === before, 'pictures come while nobody looks');
    await hide(false);
    await pictureCome(before + 3);
});

await test('settings act at once and are kept, and P offers the picture', async () => {
    await remember('settings', 'smooth = on\n');
    await openPage('#level=1');
    await pictureCome(20);
    await press('F10');
    await browser.until(`!document.getElementById('overlay').hidden`, 'the settings are shown');
    for (let row = 0; row < 8; row++) await press('ArrowDown');
    await press('ArrowRight');
    await browser.until(`document.getElementById('screen').style.filter === 'brightness(110%)'`, 'the picture is brighter');
    await press('Backspace');
    await browser.until(`localStorage.getItem('settings').includes('brightness = 110')`, 'they are kept');
    const downloads = [];
    browser.on((method, params) => method === 'Page.downloadWillBegin' && downloads.push(params.suggestedFilename));
    await press('KeyP');
    await browser.until(`!document.getElementById('overlay').hidden`, 'the game tells it');
    expect(/^tarnwick-.*\.png$/.test(downloads[0]), `offered: ${downloads}`);
    await press('KeyC');  // with smooth pictures a frame's own picture waits: the camera's must not
    const before = await browser.value('tarnwick.frames()');
    await browser.hold('ArrowUp', 500);
    expect(await browser.value('tarnwick.frames()') > before + 1, 'the photo mode shows no pictures');
    await browser.value(`localStorage.clear()`);
});

await test('keys of the browser are left to it, others do not stick', async () => {
    const taken = (code, more) => browser.value(`!document.body.dispatchEvent(new KeyboardEvent('keydown',
        { code: '${code}', bubbles: true, cancelable: true, ...${JSON.stringify(more)} }))`);
    const asked = [['Tab'], ['F5'], ['PageDown'], ['KeyR', { ctrlKey: true }], ['ArrowUp'], ['ArrowLeft', { ctrlKey: true }]];
    const answers = [];
    for (const [code, more = {}] of asked) answers.push(await taken(code, more));
    expect(answers.join() === 'false,false,false,false,true,true', answers.join());
    await browser.value(`dispatchEvent(new KeyboardEvent('keyup', { code: 'ArrowUp', ctrlKey: true })),
        dispatchEvent(new KeyboardEvent('keyup', { code: 'ArrowLeft' })), 0`);
    expect(await browser.value('tarnwick.held()') === 0, 'a key is still down');
});

await test('fingers choose a level, play, and come back', async () => {
    await browser.size(412, 915, { scale: 2, touch: true });
    await openPage();
    await pictureCome(0);
    const touch = async (id, [x, y] = [0.5, 0.5]) => {
        const point = await browser.value(`(() => {
            const { left, top, width, height } = document.getElementById('${id}').getBoundingClientRect();
            return { x: left + width * ${x}, y: top + height * ${y} };
        })()`);
        await browser.send('Input.dispatchTouchEvent', { type: 'touchStart', touchPoints: [point] });
        await wait(0.2);
        await browser.send('Input.dispatchTouchEvent', { type: 'touchEnd', touchPoints: [] });
        await wait(0.2);
    };
    const reads = (file) => browser.until(`tarnwick.files().placed.has('${file}') && ${cover}.hidden`, `${file} is read`);
    await touch('touch-jump');
    await reads('FrontEnd/Select01.bmp');
    for (let level = 1; level <= 3; level++) await touch('stick', [0.95, 0.5]);
    await touch('touch-jump');
    await reads('FrontEnd/Select02.bmp');
    await touch('stick', [0.95, 0.5]);
    await touch('touch-jump');
    await reads('game/data/levels/level3/texture.bin');
    await pictureCome(20);
    const before = await screenLook();
    await touch('stick', [0.5, 0.05]);
    expect(await screenLook() !== before, 'the picture is the same after a step');
    await browser.size(1280, 900);
});

// Chromium without a graphics card, which is all that many machines have, draws WebGL by the processor.
await browser.pretendGraphicsCard(true);
await test('WebGL: the accelerator draws, and a lost context is told', async () => {
    await remember('renderer', 'accelerator');
    await openPage('#level=3');
    await pictureCome(2);
    const gl = `document.getElementById('screen').getContext('webgl2')`;
    expect(await browser.value(`${gl} !== null && document.getElementById('screen').width === stage.clientWidth`), 'no WebGL');
    await browser.value(`${gl}.getExtension('WEBGL_lose_context').loseContext(), localStorage.clear()`);
    await browser.until(`!${coverButton}.hidden`, 'the page tells it');
    await browser.value(`${coverButton}.click()`);
    await pictureCome(0);
});
await browser.pretendGraphicsCard(false);

await test('a level that cannot be fetched is told, and comes later', async () => {
    await openPage();
    await pictureCome(0);
    await browser.send('Network.setBlockedURLs', { urls: ['*/assets/*.bin'] });
    await browser.value(`location.hash = '#level=2'`);
    await browser.until(`!${coverButton}.hidden && ${cover}.textContent.includes('could not be fetched')`, 'the page tells it');
    await browser.send('Network.setBlockedURLs', { urls: [] });
    await browser.value(`${coverButton}.click()`);
    await pictureCome(10);
});

// A track of another length would not go round without a gap.
await test('packed music is as long as the track, to the sample', async () => {
    const differences = await browser.value(`(async () => {
        const rate = 44100, context = new OfflineAudioContext(2, 1, rate);
        return Promise.all(Object.values(tarnwick.files().tracks).map(async ({ urls, seconds }) => {
            const music = await context.decodeAudioData(await (await fetch(urls[0])).arrayBuffer());
            return music.length - seconds * rate;
        }));
    })()`);
    expect(differences.length === 2 && differences.every((samples) => Math.abs(samples) < 0.5), differences.join(' '));
});

// What the program prints for a replay in node.
function replayInNode(name) {
    const options = ['--headless', '--data', '/levels/data', '--log', '/dev/null', '--replay', `/replay/${name}`];
    const program = [join(tests, '../host/backends/web/node_run.mjs'), join(pageFolder, '..'), tests];
    return new Promise((resolve) => {
        execFile('node', [...program, ...options], { maxBuffer: Infinity }, (error, output, lines) => resolve(lines));
    });
}

// Replays in node one after the other, beside those in the browser.
const recordings = readdirSync(join(folder, 'recordings')).filter((file) => file.endsWith('.rec'));
const inNode = new Map();
let last = Promise.resolve();
for (const name of recordings) {
    last = last.then(() => replayInNode(name));
    inNode.set(name, last);
}

await openPage('#wait');
await takeFrozenFiles();
for (const name of recordings) {
    await test(`${name} as recorded`, async () => {
        const { status, lines } = await browser.value(replay(name, ['--headless']));
        expect(status === 0 && lines.some((line) => line.includes('all as recorded')), lines.slice(-2).join(' '));
    });
}

for (const pretend of [false, true]) {
    await test(`the software picture is pixel for pixel the native one${pretend ? ', WebGL' : ''}`, async () => {
        await browser.pretendGraphicsCard(pretend);
        await openPage('#wait');
        await takeFrozenFiles();
        await browser.value(`(async () => {
            const pixels = (image) => {
                const canvas = new OffscreenCanvas(320, 240);
                const context = canvas.getContext('2d', { willReadFrequently: true });
                context.drawImage(image, 0, 0);
                return new Uint32Array(context.getImageData(0, 0, 320, 240).data.buffer);
            };
            const native = pixels(await createImageBitmap(await (await fetch('native.png')).blob()));
            window.differences = [new Set(native).size < 100 ? 'the native picture is plain' : 76800];
            tarnwick.onPicture = () => {  // the picture is followed by black ones, and those before it are others
                const shown = pixels(document.getElementById('screen'));
                differences.push(shown.filter((pixel, i) => pixel !== native[i]).length);
            };
        })()`);
        await browser.value(replay(PICTURE_OF, ['--frames', String(PICTURE_FRAMES)]));
        const different = await browser.value('Math.min(...differences)');
        expect(different === 0, `${different} of 76800 pixels differ`);
    });
}

for (const name of recordings) {
    await test(`${name} as recorded, in node`, async () => {
        const lines = await inNode.get(name);
        expect(lines.includes('all as recorded'), lines.slice(-200));
    });
}

if (pictures) {
    mkdirSync(pictures, { recursive: true });
    const take = async (name, hash, frames) => {
        await openPage(hash);
        await pictureCome(frames);
        await browser.picture(join(pictures, name));
    };
    await take('desktop.png', '', 2);
    for (const renderer of ['software', 'accelerator']) {
        await browser.value(`localStorage.setItem('renderer', '${renderer}')`);
        for (let level = 1; level <= 8; level++) await take(`level${level}_${renderer}.png`, `#level=${level}`, 40);
    }
    await browser.size(412, 915, { scale: 2, touch: true });
    await take('phone_upright.png', '#level=3', 40);
    await browser.size(915, 412, { scale: 2, touch: true });
    await take('phone_lying.png', '#level=3', 40);
}

await test('no fault of a script', async () => expect(faults.length === 0, faults.join('\n')));
await browser.stop();
server.kill();
rmSync(folder, { recursive: true, force: true });
console.log(`\n${passed} passed, ${failed} failed`);
process.exit(failed === 0 ? 0 : 1);

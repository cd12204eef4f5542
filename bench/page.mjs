// Compares the page in Chromium with the game in a window, each for SECONDS of the same level without a key pressed:
//     node bench/page.mjs PAGE_FOLDER GAME [--seconds 20] [LEVEL...]
// Prints pictures a second, the median and the longest time from one picture to the next, and processor time as a share of
// one core: that of all of Chromium's processes for the page, that of the game alone for the window, on a virtual display.
// Both are drawn by the software renderer and shown without a graphics card.
import { execFileSync, spawn } from 'node:child_process';
import { mkdtempSync, readFileSync, readdirSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { Browser } from '../tests/web/browser.mjs';

const words = process.argv.slice(2);
const option = words.indexOf('--seconds');
const seconds = option < 0 ? 20 : Number(words.splice(option, 2)[1]);
const [pageFolder, game, ...levels] = words;
if (levels.length === 0) levels.push('1', '3', '7');
const root = join(dirname(fileURLToPath(import.meta.url)), '..');
const TICKS = Number(execFileSync('getconf', ['CLK_TCK']));

const wait = (time) => new Promise((resolve) => setTimeout(resolve, time * 1000));

function firstLine(program) {
    return new Promise((resolve) => program.stdout.once('data', (bytes) => resolve(bytes.toString().trim())));
}

// The processor time of a process and of all that it has started, in seconds.
function processorTime(root) {
    const rows = readdirSync('/proc').filter((name) => /^\d+$/.test(name)).flatMap((name) => {
        try {
            const fields = readFileSync(`/proc/${name}/stat`, 'utf8').replace(/^.*\) /, '').split(' ');
            return [{ pid: Number(name), parent: Number(fields[1]), ticks: Number(fields[11]) + Number(fields[12]) }];
        } catch {
            return [];  // it has ended
        }
    });
    const family = new Set([root]);
    for (let size = 0; size !== family.size;) {
        size = family.size;
        for (const { pid, parent } of rows) if (family.has(parent)) family.add(pid);
    }
    return rows.reduce((sum, { pid, ticks }) => sum + (family.has(pid) ? ticks / TICKS : 0), 0);
}

function print(name, level, share, moments, count = moments.length) {
    const steps = moments.slice(1).map((moment, i) => moment - moments[i]).sort((a, b) => a - b);
    const row = [`level ${level}, ${name}`.padEnd(16), `${(share * 100).toFixed(1).padStart(6)} % of a core`,
        `${(count / seconds).toFixed(1)} pictures/s`];
    if (steps.length > 0)
        row.push(`median ${steps[steps.length >> 1].toFixed(1)} ms, longest ${steps.at(-1).toFixed(1)} ms`);
    console.log(row.join(', '));
}

async function measurePage(browser, address, level) {
    await browser.open('about:blank');
    await browser.open(`${address}#level=${level}`);
    await browser.until(`window.tarnwick?.frames() > 30 && document.getElementById('cover').hidden`, 'the level plays', 120);
    await browser.value('window.moments = [], tarnwick.onPicture = () => moments.push(performance.now()), 0');
    const before = processorTime(browser.process.pid);
    await wait(seconds);
    const share = (processorTime(browser.process.pid) - before) / seconds;
    print('page', level, share, await browser.value('moments'));
}

async function measureGame(display, level) {
    const trace = join(mkdtempSync(join(tmpdir(), 'tarnwick-bench.')), 'trace');
    const env = { ...process.env, DISPLAY: display, SDL_VIDEODRIVER: 'x11', SDL_AUDIODRIVER: 'dummy' };
    const program = spawn(game, ['--level', level, '--renderer', 'software', '--window', '960x720', '--log', '/dev/null', '--trace', trace],
        { stdio: 'ignore', env });
    await wait(2);
    execFileSync('xdotool', ['search', '--onlyvisible', '--name', 'tarnwick', 'windowfocus'], { env });  // else it waits
    await wait(2);
    const frames = () => readFileSync(trace, 'utf8').split('\n').length;
    const before = processorTime(program.pid), first = frames();
    await wait(seconds);
    print('window', level, (processorTime(program.pid) - before) / seconds, [], frames() - first);
    program.kill();
    await new Promise((resolve) => program.once('exit', resolve));
    rmSync(dirname(trace), { recursive: true });
}

const server = spawn('node', [join(root, 'host/backends/web/serve_page.mjs'), pageFolder, '0']);
const address = await firstLine(server);
const screen = spawn('Xvfb', ['-displayfd', '1', '-screen', '0', '1024x768x24'], { stdio: ['ignore', 'pipe', 'ignore'] });
const display = `:${await firstLine(screen)}`;
const browser = await Browser.start();
await browser.size(960, 900);
for (const level of levels) {
    await measurePage(browser, address, level);
    await browser.open('about:blank');
    await measureGame(display, level);
}
await browser.stop();
screen.kill();
server.kill();
process.exit(0);

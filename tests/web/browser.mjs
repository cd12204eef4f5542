// Drives Debian's Chromium over its debugging protocol, through a pair of pipes.
import { spawn } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

// What makes a page take WebGL that the processor draws for a graphics card's.
const LIKE_A_GRAPHICS_CARD = `{
    const { getContext } = HTMLCanvasElement.prototype, { getExtension } = WebGL2RenderingContext.prototype;
    HTMLCanvasElement.prototype.getContext = function (kind, options) {
        return getContext.call(this, kind, { ...options, failIfMajorPerformanceCaveat: false });
    };
    WebGL2RenderingContext.prototype.getExtension = function (name) {
        return name === 'WEBGL_debug_renderer_info' ? null : getExtension.call(this, name);
    };
}`;

export class Browser {
    static async start() {
        const browser = new Browser();
        browser.profile = mkdtempSync(join(tmpdir(), 'tarnwick-browser.'));
        browser.process = spawn('chromium', [
            '--headless=new', '--no-sandbox', '--remote-debugging-pipe', `--user-data-dir=${browser.profile}`,
            '--enable-unsafe-swiftshader', '--mute-audio', '--no-first-run', '--disable-dev-shm-usage',
            '--autoplay-policy=no-user-gesture-required', 'about:blank',
        ], { stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'] });
        browser.answers = new Map();
        browser.listeners = [];
        browser.next = 1;
        let rest = Buffer.alloc(0);
        browser.process.stdio[4].on('data', (bytes) => {
            rest = Buffer.concat([rest, bytes]);
            for (let end; (end = rest.indexOf(0)) >= 0; rest = rest.subarray(end + 1))
                browser.take(JSON.parse(rest.subarray(0, end).toString()));
        });
        const { targetInfos } = await browser.send('Target.getTargets');
        const { targetId } = targetInfos.find((target) => target.type === 'page');
        browser.session = (await browser.send('Target.attachToTarget', { targetId, flatten: true })).sessionId;
        for (const domain of ['Page', 'Runtime', 'Network', 'Log']) await browser.send(`${domain}.enable`);
        return browser;
    }

    take(message) {
        if (message.id) {
            const { resolve, reject } = this.answers.get(message.id);
            this.answers.delete(message.id);
            if (message.error) reject(new Error(message.error.message));
            else resolve(message.result);
            return;
        }
        for (const listener of this.listeners) listener(message.method, message.params);
    }

    send(method, params = {}) {
        const id = this.next++;
        this.process.stdio[3].write(`${JSON.stringify({ id, method, params, sessionId: this.session })}\0`);
        return new Promise((resolve, reject) => this.answers.set(id, { resolve, reject }));
    }

    on(listener) {
        this.listeners.push(listener);
    }

    // The value of an expression of the page; promises are awaited.
    async value(expression) {
        const { result, exceptionDetails } = await this.send('Runtime.evaluate',
            { expression, awaitPromise: true, returnByValue: true, userGesture: true });
        if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
        return result.value;
    }

    async until(expression, what, seconds = 60) {
        const end = Date.now() + seconds * 1000;
        while (!await this.value(expression).catch(() => false)) {
            if (Date.now() > end) throw new Error(`waited in vain until ${what}`);
            await new Promise((resolve) => setTimeout(resolve, 50));
        }
    }

    open(url) {
        return this.send('Page.navigate', { url });
    }

    // Of the pages that are opened from now on.
    async pretendGraphicsCard(pretend) {
        if (this.pretending) await this.send('Page.removeScriptToEvaluateOnNewDocument', { identifier: this.pretending });
        this.pretending = pretend &&
            (await this.send('Page.addScriptToEvaluateOnNewDocument', { source: LIKE_A_GRAPHICS_CARD })).identifier;
    }

    size(width, height, { scale = 1, touch = false } = {}) {
        return Promise.all([
            this.send('Emulation.setDeviceMetricsOverride', { width, height, deviceScaleFactor: scale, mobile: touch }),
            this.send('Emulation.setTouchEmulationEnabled', { enabled: touch }),
        ]);
    }

    key(code, type) {
        return this.send('Input.dispatchKeyEvent', { type, code, key: code });
    }

    async hold(code, milliseconds) {
        await this.key(code, 'rawKeyDown');
        await new Promise((resolve) => setTimeout(resolve, milliseconds));
        await this.key(code, 'keyUp');
    }

    async picture(file) {
        const { data } = await this.send('Page.captureScreenshot', { format: 'png' });
        writeFileSync(file, Buffer.from(data, 'base64'));
    }

    async stop() {
        const gone = new Promise((resolve) => this.process.on('exit', resolve));
        this.send('Browser.close').catch(() => {});
        await gone;
        rmSync(this.profile, { recursive: true, force: true, maxRetries: 5, retryDelay: 200 });
    }
}

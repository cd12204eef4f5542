// Keyboard, mouse, touch and controllers of the browser, kept until the game asks (report).

// Keys that are left to the browser: those that lead through the page and out of it. While the picture does not have the
// focus, so are the keys that scroll. Ctrl is a key of the game, but with a letter, a digit or another key of this kind it
// asks the browser for something.
const BROWSERS_OWN = new Set(['Tab', 'F5', 'F11', 'F12', 'MetaLeft', 'MetaRight', 'ContextMenu']);
const SCROLLS = new Set(['PageUp', 'PageDown', 'Home', 'End']);
const WITH_CTRL = /^(Arrow|Space|Shift|Alt|Control)/;
// What browsers keep has another key beside it: Escape lets the pointer go and leaves the full screen, F5 loads the page
// again, and F6 leads to the address.
const OTHER_PLACES = { Backspace: 'Escape', KeyV: 'F5', KeyB: 'F6' };
const WHEEL_NOTCH = 120;
// Buttons and axes of the standard gamepad as input/pads.h numbers its own.
const PAD_BUTTONS = [[0, 0], [1, 1], [2, 2], [3, 3], [8, 4], [9, 5], [4, 6], [12, 7], [13, 8], [14, 9], [15, 10], [5, 11],
    [10, 12], [11, 13]];
const PAD_AXES = [[0, 0], [1, 1], [2, 2], [3, 3]];
const PAD_TRIGGER = 7, PAD_TRIGGER_AXIS = 4;
const STICK_REACH = 0.35;  // share of the touch stick's width, from its middle, from which a direction counts

export class Input {
    // `toggleFullScreen` is called for Alt and Enter.
    constructor(stage, toggleFullScreen) {
        this.stage = stage;
        this.toggleFullScreen = toggleFullScreen;
        this.events = [];
        this.pads = new Map();  // index: what was reported of it
        this.held = new Set();
        this.pointerWanted = false;
        addEventListener('keydown', (event) => this.key(event, true));
        addEventListener('keyup', (event) => this.key(event, false));
        addEventListener('blur', () => this.focus(false));
        addEventListener('focus', () => this.focus(true));
        document.addEventListener('visibilitychange', () => this.focus(!document.hidden));
        addEventListener('mouseup', (event) => this.button(event, false));
        addEventListener('mousemove', (event) => this.move(event));
        this.listenToTouch();
    }

    takeCanvas(canvas) {
        this.canvas = canvas;
        canvas.addEventListener('mousedown', (event) => {
            canvas.focus();
            if (this.pointerWanted && !document.pointerLockElement) canvas.requestPointerLock?.()?.catch?.(() => {});
            this.button(event, true);
        });
        canvas.addEventListener('contextmenu', (event) => event.preventDefault());
        canvas.addEventListener('wheel', (event) => {
            event.preventDefault();
            this.add('PageMouse', 0, 0, -Math.sign(event.deltaY) * WHEEL_NOTCH);
        }, { passive: false });
    }

    reset() {
        this.events = [];
        this.held.clear();
        this.pads.clear();
        this.pointerWanted = false;
        if (document.pointerLockElement) document.exitPointerLock();
    }

    wantPointer(wanted) {
        this.pointerWanted = wanted;
        if (!wanted && document.pointerLockElement) document.exitPointerLock();
    }

    add(call, ...values) {
        this.events.push([call, values]);
    }

    place(place, down) {
        if (this.held.has(place) === down) return;
        if (down) this.held.add(place);
        else this.held.delete(place);
        this.add('PageKey', place, down ? 1 : 0);
    }

    key(event, down) {
        const place = OTHER_PLACES[event.code] ?? event.code;
        if (!down) this.place(place, false);
        else if (this.isForGame(event)) {
            event.preventDefault();
            if (event.altKey && place === 'Enter') this.toggleFullScreen();
            else if (!event.repeat) this.place(place, true);
        }
    }

    isForGame({ code, target, ctrlKey, metaKey }) {
        if (target instanceof Element && target.closest('button, select, a, input')) return false;
        if (BROWSERS_OWN.has(code) || metaKey || (SCROLLS.has(code) && target !== this.canvas)) return false;
        return !ctrlKey || WITH_CTRL.test(code);
    }

    focus(gained) {
        this.held.clear();
        this.add('PageFocus', gained ? 1 : 0);
    }

    tellFullScreen() {
        this.add('PageFullScreen', document.fullscreenElement ? 1 : 0);
    }

    button(event, down) {
        if (event.button <= 2) this.add('PageMouseButton', [0, 2, 1][event.button], down ? 1 : 0);
    }

    move(event) {
        if (document.pointerLockElement || event.buttons) this.add('PageMouse', event.movementX, event.movementY, 0);
    }

    listenToTouch() {
        for (const button of document.querySelectorAll('#touch button')) {
            const press = (down) => (event) => {
                event.preventDefault();
                button.classList.toggle('held', down);
                for (const place of button.dataset.place.split(' ')) this.place(place, down);
            };
            button.addEventListener('pointerdown', press(true));
            for (const end of ['pointerup', 'pointercancel', 'pointerleave']) button.addEventListener(end, press(false));
        }
        this.listenToStick(document.getElementById('stick'));
        this.listenToLook(document.getElementById('look'));
    }

    listenToStick(stick) {
        const knob = stick.firstElementChild;
        const push = (x, y) => {
            knob.style.transform = `translate(${x * 40}px, ${y * 40}px)`;
            for (const [place, share] of [['ArrowLeft', -x], ['ArrowRight', x], ['ArrowUp', -y], ['ArrowDown', y]])
                this.place(place, share > STICK_REACH);
        };
        const follow = (event) => {
            if (!stick.hasPointerCapture(event.pointerId)) return;
            const area = stick.getBoundingClientRect();
            const share = (at, from, length) => Math.max(-1, Math.min(1, ((at - from) / length) * 2 - 1));
            push(share(event.clientX, area.left, area.width), share(event.clientY, area.top, area.height));
        };
        stick.addEventListener('pointerdown', (event) => {
            event.preventDefault();
            stick.setPointerCapture(event.pointerId);
            follow(event);
        });
        stick.addEventListener('pointermove', follow);
        for (const end of ['pointerup', 'pointercancel']) stick.addEventListener(end, () => push(0, 0));
    }

    listenToLook(area) {
        let last = null;
        area.addEventListener('pointerdown', (event) => {
            event.preventDefault();
            area.setPointerCapture(event.pointerId);
            last = event;
            this.add('PageMouseButton', 0, 1);
        });
        area.addEventListener('pointermove', (event) => {
            if (!last || event.pointerId !== last.pointerId) return;
            this.add('PageMouse', Math.round(event.clientX - last.clientX), Math.round(event.clientY - last.clientY), 0);
            last = event;
        });
        for (const end of ['pointerup', 'pointercancel'])
            area.addEventListener(end, () => {
                last = null;
                this.add('PageMouseButton', 0, 0);
            });
    }

    reportPads() {
        const pads = navigator.getGamepads?.() ?? [];
        for (const [index, seen] of this.pads)
            if (!pads[index]) {
                this.pads.delete(index);
                this.add('PagePadGone', index);
            }
        for (const pad of pads) {
            if (!pad || pad.mapping !== 'standard') continue;
            const seen = this.pads.get(pad.index) ?? new Map();
            this.pads.set(pad.index, seen);
            const tell = (call, number, value) => {
                const key = `${call} ${number}`;
                if ((seen.get(key) ?? 0) === value) return;
                seen.set(key, value);
                this.add(call, pad.index, number, value);
            };
            for (const [from, to] of PAD_BUTTONS) tell('PagePadButton', to, pad.buttons[from]?.pressed ? 1 : 0);
            for (const [from, to] of PAD_AXES) tell('PagePadAxis', to, Math.round((pad.axes[from] ?? 0) * 32767));
            tell('PagePadAxis', PAD_TRIGGER_AXIS, Math.round((pad.buttons[PAD_TRIGGER]?.value ?? 0) * 32767));
        }
    }

    report(module) {
        this.reportPads();
        const events = this.events;
        this.events = [];
        for (const [call, values] of events)
            module.ccall(call, null, values.map((value) => typeof value), values);
    }
}

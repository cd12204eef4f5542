// Keyboard, mouse, touch and controllers of the browser, kept until the game asks (report).

// The places of the keys that the game may use; all other keys are left to the browser. While Ctrl or the command key is
// held, all keys are.
const BROWSERS_OWN = new Set(['F5', 'MetaLeft', 'MetaRight', 'ContextMenu']);
// Browsers keep Escape for letting the pointer go and for leaving the full screen, so it has another key beside it.
const OTHER_PLACES = { Backspace: 'Escape' };
const WHEEL_NOTCH = 120;
// Buttons and axes of the standard gamepad as input/pads.h numbers its own.
const PAD_BUTTONS = [[0, 0], [1, 1], [2, 2], [3, 3], [8, 4], [9, 5], [4, 6], [12, 7], [13, 8], [14, 9], [15, 10], [10, 12],
    [11, 13]];
const PAD_AXES = [[0, 0], [1, 1], [2, 2], [3, 3]];
const PAD_TRIGGER = 7, PAD_TRIGGER_AXIS = 4;
const STICK_REACH = 0.35;  // share of the touch stick's width, from its middle, from which a direction counts

export class Input {
    constructor(stage) {
        this.stage = stage;
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
        const control = event.target instanceof Element && event.target.closest('button, select, a, input');
        if (control && control.id !== 'screen') return;
        const place = OTHER_PLACES[event.code] ?? event.code;
        if (BROWSERS_OWN.has(event.code) || (event.ctrlKey && !event.code.startsWith('Control')) || event.metaKey) return;
        event.preventDefault();
        if (!event.repeat) this.place(place, down);
    }

    focus(gained) {
        this.held.clear();
        this.add('PageFocus', gained ? 1 : 0);
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
                this.place(button.dataset.place, down);
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

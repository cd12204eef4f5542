// The canvases that show the game's picture. Where a graphics card draws WebGL, one canvas has the pixels of the display.
// Elsewhere there are two small ones, of the picture and of what lies over it, and the browser enlarges them.

const SOFTWARE = /swiftshader|llvmpipe|softpipe|software|basic render/i;

function findGraphicsCard() {
    try {
        const gl = document.createElement('canvas').getContext('webgl2', { failIfMajorPerformanceCaveat: true });
        const info = gl.getExtension('WEBGL_debug_renderer_info');
        const renderer = gl.getParameter(info ? info.UNMASKED_RENDERER_WEBGL : gl.RENDERER);
        gl.getExtension('WEBGL_lose_context')?.loseContext();
        return !SOFTWARE.test(renderer);
    } catch {
        return false;
    }
}

function imageOf(buffer, address, width, height) {
    return new ImageData(new Uint8ClampedArray(buffer, address, width * height * 4), width, height);
}

// The display's pixels of a box; `exact`: those that the browser counts, where it does and it knows the display's density.
function pixelsOf(width, height, exact = null) {
    const scale = window.devicePixelRatio || 1;
    if (exact && Math.abs(exact.inlineSize - width * scale) < 2) return [exact.inlineSize, exact.blockSize];
    return [Math.round(width * scale), Math.round(height * scale)];
}

function resize(canvas, width, height) {
    if (canvas.width !== width) canvas.width = width;
    if (canvas.height !== height) canvas.height = height;
}

function put(canvas, image, options) {
    resize(canvas, image.width, image.height);
    canvas.getContext('2d', options).putImageData(image, 0, 0);
}

export class Screen {
    // `tellLoss` is called when the graphics card gives up.
    constructor(stage, tellLoss) {
        this.stage = stage;
        this.tellLoss = tellLoss;
        this.hasGraphicsCard = findGraphicsCard();
        this.rate = null;
        this.stageSize = pixelsOf(stage.clientWidth, stage.clientHeight);
        const observer = new ResizeObserver(([{ contentBoxSize: [box], devicePixelContentBoxSize }]) => {
            this.stageSize = pixelsOf(box.inlineSize, box.blockSize, devicePixelContentBoxSize?.[0]);
        });
        try {
            observer.observe(stage, { box: 'device-pixel-content-box' });
        } catch {  // Safari has no such box
            observer.observe(stage);
        }
    }

    // A canvas keeps one context for its life, so each start of the game gets new ones. `fixedSize`: the size in pixels,
    // whatever the stage's.
    begin(fixedSize = null) {
        this.fixedSize = fixedSize;
        this.image = null;
        for (const id of ['screen', 'overlay', 'hidden-screen']) {
            const old = document.getElementById(id);
            const canvas = old.cloneNode(false);
            const focused = document.activeElement === old;
            canvas.removeAttribute('style');
            old.replaceWith(canvas);
            if (focused) canvas.focus();
            canvas.addEventListener('webglcontextlost', (event) => {
                event.preventDefault();
                if (canvas.isConnected) this.tellLoss();
            });
        }
        this.canvas = document.getElementById('screen');
        this.overlay = document.getElementById('overlay');
        this.overlay.hidden = true;
        return this.canvas;
    }

    size() {
        const [width, height] = (this.fixedSize ?? this.stageSize).map((side) => Math.max(1, side));
        if (this.hasGraphicsCard) resize(this.canvas, width, height);
        return [width, height];
    }

    // The pixels lie in `buffer`, the program's memory, which gets another one when it grows.
    showPixels(buffer, address, width, height) {
        const { image } = this;
        if (image?.data.buffer !== buffer || image.data.byteOffset !== address || image.width !== width || image.height !== height)
            this.image = imageOf(buffer, address, width, height);
        put(this.canvas, this.image, { alpha: false, willReadFrequently: true });
    }

    showOverlay(buffer, address, width, height) {
        this.overlay.hidden = address === 0;
        if (address) put(this.overlay, imageOf(buffer, address, width, height));
    }

    place(x, y, width, height, smooth, brightness) {
        const scale = window.devicePixelRatio || 1;
        for (const { style } of [this.canvas, this.overlay]) {
            style.left = `${x / scale}px`;
            style.top = `${y / scale}px`;
            style.width = `${width / scale}px`;
            style.height = `${height / scale}px`;
            style.imageRendering = smooth ? 'auto' : 'pixelated';
        }
        this.canvas.style.filter = brightness === 100 ? '' : `brightness(${brightness}%)`;
    }

    offerPicture(name, buffer, address, width, height) {
        const canvas = document.createElement('canvas');
        put(canvas, imageOf(buffer, address, width, height));
        canvas.toBlob((blob) => {
            const link = document.createElement('a');
            link.download = name;
            link.href = URL.createObjectURL(blob);
            link.click();
            setTimeout(() => URL.revokeObjectURL(link.href), 60000);
        });
    }

    // Pictures a second that the display shows. 0: it is not known yet, and is found out now.
    refreshRate() {
        if (this.rate === null) this.measureRate();
        return this.rate;
    }

    measureRate() {
        this.rate = 0;
        const moments = [];
        const note = (moment) => {
            moments.push(moment);
            if (moments.length <= 40) return requestAnimationFrame(note);
            const steps = moments.slice(1).map((later, i) => later - moments[i]).sort((a, b) => a - b);
            this.rate = Math.round(1000 / steps[steps.length >> 1]);
        };
        requestAnimationFrame(note);
    }
}

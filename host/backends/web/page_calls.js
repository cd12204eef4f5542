// The calls of host/backends/web/page_calls.h: each goes to the page (page/page.js), which hands the module an object
// `page` with functions of these names. Those that wait return a promise.
const PageCalls = {
    pageNap__async: true,
    pageNap: function (milliseconds) {
        return Asyncify.handleAsync(() => Module['page'].nap(milliseconds));
    },
    pageWait__async: true,
    pageWait: function (milliseconds) {
        return Asyncify.handleAsync(() => Module['page'].wait(milliseconds));
    },
    pageBringFile__async: true,
    pageBringFile: function (path) {
        return Asyncify.handleAsync(() => Module['page'].bringFile(UTF8ToString(path)));
    },
    pageShowMessage__async: true,
    pageShowMessage: function (text) {
        return Asyncify.handleAsync(() => Module['page'].showMessage(UTF8ToString(text)));
    },
    pageReport: function () {
        Module['page'].report();
    },
    pageCanvasSize: function (width, height) {
        const size = Module['page'].canvasSize();
        HEAP32[width >> 2] = size[0];
        HEAP32[height >> 2] = size[1];
    },
    pageHasWebGl: function () {
        return Module['page'].hasWebGl();
    },
    pageShowPixels: function (pixels, width, height) {
        Module['page'].showPixels(HEAPU8.subarray(pixels, pixels + width * height * 4), width, height);
    },
    pageShown: function () {
        Module['page'].shown();
    },
    pageCapturePointer: function (captured) {
        Module['page'].capturePointer(captured !== 0);
    },
    pagePlayTrack: function (path, from, to) {
        Module['page'].playTrack(path ? UTF8ToString(path) : null, from, to);
    },
};
mergeInto(LibraryManager.library, PageCalls);

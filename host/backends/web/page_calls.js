// The calls of host/backends/web/page_calls.h: each goes to the page (page/page.js), which hands the module an object
// `page` with functions of these names. Those that wait return a promise.
const PageCalls = {
    pageNap__async: true,
    pageNap: function (milliseconds) {
        return Asyncify.handleAsync(() => Module['page'].nap(milliseconds));
    },
    pageSleepUntil__async: true,
    pageSleepUntil: function (milliseconds) {
        return Asyncify.handleAsync(() => Module['page'].sleepUntil(milliseconds >>> 0));
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
    pageScreenSize: function (width, height) {
        const size = Module['page'].screenSize();
        HEAP32[width >> 2] = size[0];
        HEAP32[height >> 2] = size[1];
    },
    pageHasGraphicsCard: function () {
        return Module['page'].hasGraphicsCard();
    },
    pageRefreshRate: function () {
        return Module['page'].refreshRate();
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
    pageShowPixels: function (pixels, width, height) {
        Module['page'].showPixels(HEAPU8.buffer, pixels, width, height);
    },
    pageShowOverlay: function (pixels, width, height) {
        Module['page'].showOverlay(HEAPU8.buffer, pixels, width, height);
    },
    pagePlacePicture: function (x, y, width, height, smooth, brightness) {
        Module['page'].placePicture(x, y, width, height, smooth !== 0, brightness);
    },
    pageIsFullScreen: function () {
        return Module['page'].isFullScreen();
    },
    pageApplySettings: function (fullScreen, windowWidth, volume, musicStops) {
        Module['page'].applySettings(fullScreen !== 0, windowWidth, volume, musicStops !== 0);
    },
    pageKeepFile: function (path) {
        Module['page'].keepFile(UTF8ToString(path));
    },
    pageOfferPicture: function (name, pixels, width, height) {
        Module['page'].offerPicture(UTF8ToString(name), HEAPU8.buffer, pixels, width, height);
    },
    pageKeyLabel: function (place, label, size) {
        stringToUTF8(Module['page'].keyLabel(UTF8ToString(place)), label, size);
    },
};
mergeInto(LibraryManager.library, PageCalls);

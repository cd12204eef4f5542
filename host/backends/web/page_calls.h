// What the machine asks of the page (page/page.js), by way of page_calls.js. Those marked "waits" give the browser time
// for everything else.
#pragma once

#include <cstdint>

extern "C" {
void pageNap(int milliseconds);              // waits
void pageSleepUntil(uint32_t milliseconds);  // waits until the clock reads this, or a little less
void pageWait(
    int milliseconds);  // waits until something happens, but no longer; while the page is hidden, until it is shown
void pageBringFile(
    const char* path);  // waits until a file of the data folder is there, if the page has one of that path
void pageShowMessage(const char* text);        // waits until the player has read it
void pageReport();                             // calls the functions below for all that happened since the last time
void pageScreenSize(int* width, int* height);  // pixels
int pageHasGraphicsCard();                     // WebGL is there, and the processor does not draw it
int pageRefreshRate();                         // pictures a second of the display; 0: not known yet
void pageShown();                              // a picture was drawn: the first one ends the loading screen
void pageCapturePointer(int captured);
void pagePlayTrack(const char* path, double from, double to);  // seconds, over and over; null: silence

// The plain canvases, of the picture and of what lies over it: red first. Pixels null: nothing lies over it.
void pageShowPixels(const uint32_t* pixels, int width, int height);  // they must stay where they are
void pageShowOverlay(const uint32_t* pixels, int width, int height);
void pagePlacePicture(int x, int y, int width, int height, int smooth, int brightness);  // pixels; per cent

int pageIsFullScreen();
void pageApplySettings(int fullScreen, int windowWidth, int volume, int musicStops);  // as machine/settings.h has them
void pageKeepFile(const char* path);                                                  // for the next visit
void pageOfferPicture(const char* name, const uint32_t* pixels, int width, int height);  // red first; as a PNG
void pageKeyLabel(const char* place, char* label, int size);  // UTF-8: what is written on the key, in capitals
}

// What the page calls from pageReport. Its numbers of mouse buttons, pad buttons and pad axes are those of
// input/devices.h and input/pads.h.
extern "C" {
void PageKey(const char* place, int down);  // KeyboardEvent.code
void PageMouse(int x, int y, int wheel);
void PageMouseButton(int button, int down);
void PageFocus(int gained);
void PageFullScreen(int on);  // by the browser or the player
void PagePadButton(int pad, int button, int down);
void PagePadAxis(int pad, int axis, int value);
void PagePadGone(int pad);
}

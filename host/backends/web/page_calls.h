// What the machine asks of the page (page/page.js), by way of page_calls.js. Those marked "waits" give the browser time
// for everything else.
#pragma once

#include <cstdint>

extern "C" {
void pageNap(int milliseconds);  // waits
void pageWait(
    int milliseconds);  // waits until something happens, but no longer; while the page is hidden, until it is shown
void pageBringFile(
    const char* path);  // waits until a file of the data folder is there, if the page has one of that path
void pageShowMessage(const char* text);        // waits until the player has read it
void pageReport();                             // calls the functions below for all that happened since the last time
void pageCanvasSize(int* width, int* height);  // pixels
int pageHasWebGl();
void pageShowPixels(const uint32_t* pixels, int width, int height);  // red first; without WebGL
void pageShown();  // a picture was drawn: the first one ends the loading screen
void pageCapturePointer(int captured);
void pagePlayTrack(const char* path, double from, double to);  // seconds, over and over; null: silence
}

// What the page calls from pageReport. Its numbers of mouse buttons, pad buttons and pad axes are those of
// input/devices.h and input/pads.h.
extern "C" {
void PageKey(const char* place, int down);  // KeyboardEvent.code
void PageMouse(int x, int y, int wheel);
void PageMouseButton(int button, int down);
void PageFocus(int gained);
void PagePadButton(int pad, int button, int down);
void PagePadAxis(int pad, int axis, int value);
void PagePadGone(int pad);
}

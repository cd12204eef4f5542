#include "app/error_box.h"

#include "app/app_tables.h"
#include "platform/display.h"

int ErrorBox(const char* text, UINT flags) {
    if (Display.directDraw != nullptr) Display.directDraw->FlipToGDISurface();
    while (ShowCursor(TRUE) < 0) {
    }
    const int result = MessageBoxA(MainWindow, text, APP_TITLE, flags);
    while (ShowCursor(FALSE) >= 0) {
    }
    if (Display.directDraw != nullptr) FlipDisplay(nullptr);
    return result;
}

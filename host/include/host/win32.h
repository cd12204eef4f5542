// The windowing calls the game makes: window, messages, cursor, message box, clock, files, global memory and
// drawing of device-independent bitmaps. Only what the game uses; numeric values not printed in an interface's
// manual are ours.
#pragma once

#include <cstdint>

using BOOL = int32_t;
using UINT = uint32_t;
using DWORD = uint32_t;
using LONG = int32_t;
using WORD = uint16_t;
using BYTE = uint8_t;
using WPARAM = uintptr_t;
using LPARAM = intptr_t;
using LRESULT = intptr_t;
using ATOM = uint16_t;
using HANDLE = void*;
using HWND = struct HostWindow*;
using HINSTANCE = struct HostInstance*;
using HDC = struct HostDeviceContext*;
using HGLOBAL = void*;
using HICON = void*;
using HCURSOR = void*;
using HGDIOBJ = void*;
using HRESULT = int32_t;

constexpr BOOL TRUE = 1;
constexpr BOOL FALSE = 0;
inline bool Failed(HRESULT result) {
    return result < 0;
}

struct RECT {
    LONG left, top, right, bottom;
};

// --- Window and messages ---

constexpr UINT WM_DESTROY = 0x02;
constexpr UINT WM_QUIT = 0x12;
constexpr UINT WM_ACTIVATEAPP = 0x1C;    // wParam 1 activated, 0 deactivated
constexpr UINT WM_DISPLAYCHANGE = 0x7E;  // wParam bits per pixel; lParam low word width, high word height
constexpr UINT WM_SYSKEYDOWN = 0x104;    // wParam virtual key
constexpr UINT MM_MCINOTIFY = 0x3B9;     // wParam notification code; lParam device

constexpr UINT CS_NOCLOSE = 0x200;
constexpr DWORD WS_EX_TOPMOST = 0x8;
constexpr DWORD WS_POPUP = 0x80000000;
constexpr DWORD WS_BORDER = 0x00800000;
constexpr DWORD WS_SYSMENU = 0x00080000;
constexpr int SW_SHOW = 5;
constexpr UINT SWP_NOZORDER = 0x4;
constexpr UINT PM_REMOVE = 0x1;
constexpr int SM_CXSCREEN = 0;
constexpr int SM_CYSCREEN = 1;
constexpr WPARAM VK_TAB = 0x09;
constexpr WPARAM VK_F10 = 0x79;
constexpr int BLACK_BRUSH = 4;
constexpr int IDC_ARROW = 32512;
constexpr UINT MB_OK = 0;
constexpr int IDOK = 1;

using WNDPROC = LRESULT (*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

struct WNDCLASSA {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra, cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HGDIOBJ hbrBackground;
    const char* lpszMenuName;
    const char* lpszClassName;
};

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

ATOM RegisterClassA(const WNDCLASSA* windowClass);  // 0 on failure
HWND CreateWindowExA(DWORD exStyle, const char* className, const char* title, DWORD style, int x, int y, int width,
                     int height, HWND parent, void* menu, HINSTANCE instance, void* parameter);
BOOL ShowWindow(HWND window, int command);
BOOL UpdateWindow(HWND window);
BOOL SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags);
HWND GetActiveWindow();
HICON LoadIconA(HINSTANCE instance, int resource);
HCURSOR LoadCursorA(HINSTANCE instance, int resource);
HGDIOBJ GetStockObject(int object);
int GetSystemMetrics(int index);
int ShowCursor(BOOL show);  // the new display count; visible while >= 0
int MessageBoxA(HWND owner, const char* text, const char* caption, UINT flags);

BOOL PeekMessageA(MSG* message, HWND window, UINT first, UINT last, UINT remove);  // record untouched when FALSE
BOOL TranslateMessage(const MSG* message);
LRESULT DispatchMessageA(const MSG* message);
LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL WaitMessage();  // blocks until a message arrives that was not there at the last peek
void PostQuitMessage(int exitCode);

inline WORD LOWORD(LPARAM value) {
    return static_cast<WORD>(value & 0xFFFF);
}
inline WORD HIWORD(LPARAM value) {
    return static_cast<WORD>((value >> 16) & 0xFFFF);
}

// --- Clock, files, memory ---

DWORD GetTickCount();  // milliseconds, wraps

struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    void* lpSecurityDescriptor;
    BOOL bInheritHandle;
};
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(intptr_t{-1});
constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
constexpr UINT GMEM_FIXED = 0;

HANDLE CreateFileA(const char* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
                   DWORD attributes, HANDLE pattern);
DWORD GetFileSize(HANDLE file, DWORD* high);
BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* bytesRead, void* overlapped);
BOOL CloseHandle(HANDLE handle);
HGLOBAL GlobalAlloc(UINT flags, uintptr_t bytes);  // the pointer is the handle; at least 16 zeroed bytes
void* GlobalLock(HGLOBAL memory);
BOOL GlobalUnlock(HGLOBAL memory);
HGLOBAL GlobalHandle(const void* memory);
HGLOBAL GlobalFree(HGLOBAL memory);  // null on success

// --- Pictures ---

struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth, biHeight;  // positive height: rows bottom-up
    WORD biPlanes, biBitCount;
    DWORD biCompression;  // 0 RGB, 1 RLE8, 2 RLE4, 3 bit fields
    DWORD biSizeImage;
    LONG biXPelsPerMeter, biYPelsPerMeter;
    DWORD biClrUsed, biClrImportant;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);

struct PALETTEENTRY {
    BYTE peRed, peGreen, peBlue, peFlags;
};
constexpr BYTE PC_NOCOLLAPSE = 4;
constexpr UINT DIB_RGB_COLORS = 0;
constexpr DWORD SRCCOPY = 0x00CC0020;

HDC GetDC(HWND window);  // null window: the screen
int ReleaseDC(HWND window, HDC context);
UINT GetSystemPaletteEntries(HDC context, UINT first, UINT count, PALETTEENTRY* entries);  // 0 on failure
// Rows bottom-up for a positive height, top-down for a negative one; nearest pixel when stretched. `info`, its colour
// table and `bits` must lie in one block of GlobalAlloc: nothing is read outside it. The number of scan lines drawn,
// 0 on failure.
int StretchDIBits(HDC context, int xDest, int yDest, int widthDest, int heightDest, int xSource, int ySource,
                  int widthSource, int heightSource, const void* bits, const BITMAPINFOHEADER* info, UINT usage,
                  DWORD operation);

// --- Failures ---

constexpr DWORD EXCEPTION_ACCESS_VIOLATION = 0xC0000005;
constexpr DWORD EXCEPTION_INT_DIVIDE_BY_ZERO = 0xC0000094;
constexpr DWORD EXCEPTION_ILLEGAL_INSTRUCTION = 0xC000001D;
constexpr DWORD EXCEPTION_UNHANDLED = 0xE06D7363;  // a C++ exception
// Runs `step`; 0, or the code of the processor or C++ exception that ended it.
DWORD HostGuard(void (*step)());
[[noreturn]] void ExitProcess(DWORD exitCode);  // at once, without clean-up; 8 bits of the code are seen outside

// A display of its own for one test, the game in a window on it, and real keys and a real mouse.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct ScreenPicture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;  // 0x00RRGGBB

    bool Black(int left, int top, int right,
               int bottom) const;  // true when all of the area is black; right and bottom are exclusive
};

class Desktop {
public:
    static constexpr int WIDTH = 1280, HEIGHT = 800;

    static bool Has(const std::string& program);

    Desktop();
    ~Desktop();
    Desktop(const Desktop&) = delete;

    void StartWayland();  // a compositor that covers the display, before the game, which is shown by it
    void StartManager();  // a window manager, before the game: full screen and minimising need one
    void StartGame(const std::vector<std::string>& options);  // its standard output goes to OutputFile()
    bool GameRuns();
    int GameStatus();  // waits for the game's end; -1: it did not end, or not by itself
    std::string OutputFile() const;
    std::string TraceFile() const;
    size_t TracedFrames() const;
    void ChooseFirstLevel();  // presses the front end's keys, and waits until the first frames are traced

    void Key(const std::string& key);  // presses the key, holds it for longer than a frame, and lets it go
    void Input(const std::string& xdotoolCommand);
    void TakeFocus();  // gives the focus to another window
    void GiveFocus();  // gives the focus to the game's window
    void ResizeGame(int width, int height);
    std::array<int, 4> GamePlace();   // left, top, width, height, without what the window manager puts around it
    std::string GameProcess() const;  // its folder in /proc
    bool PointerHeld();               // true when the game holds the pointer: nobody else can take it
    void PressCloseButton();
    void PressAltF4();  // does what a window manager makes of it: F4 does not reach the game, and the window is asked
                        // to close
    ScreenPicture Screen();

private:
    unsigned long GameWindow();

    pid_t server = -1, manager = -1, game = -1;  // manager: or compositor
    struct _XDisplay* display = nullptr;         // Xlib's, kept out of this header with its macros
    std::string displayName;
    unsigned long otherWindow = 0;
    bool onWayland = false;
};

bool WaitFor(const std::function<bool()>& condition);  // false: not within ten minutes
void Rest(int milliseconds);

// A display of its own for one test, the game in a window on it, and real keys and a real mouse.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct ScreenPicture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;  // 0x00RRGGBB

    bool Black(int left, int top, int right, int bottom) const;  // all of the area; right and bottom exclusive
};

class Desktop {
public:
    static constexpr int WIDTH = 1280, HEIGHT = 800;

    static bool Possible();  // the programs it takes are installed

    Desktop();
    ~Desktop();
    Desktop(const Desktop&) = delete;

    void StartGame(const std::vector<std::string>& options);  // its standard output goes to OutputFile()
    bool GameRuns();
    int GameStatus();  // waits for the game's end; -1: it did not end, or not by itself
    std::string OutputFile() const;
    std::string TraceFile() const;
    size_t TracedFrames() const;
    void ChooseFirstLevel();  // from the front end by its keys, until the first frames are traced

    void Key(const std::string& key);  // pressed, held for longer than a frame, released
    void Input(const std::string& xdotoolCommand);
    void TakeFocus();  // to another window
    void GiveFocus();  // to the game's
    void ResizeGame(int width, int height);
    bool PointerHeld();  // by the game: nobody else can take it
    void PressCloseButton();
    void PressAltF4();  // as a window manager takes it: it keeps F4, and asks the window to close
    ScreenPicture Screen();

private:
    unsigned long GameWindow();

    pid_t server = -1, game = -1;
    struct _XDisplay* display = nullptr;  // Xlib's, kept out of this header with its macros
    std::string displayName;
    unsigned long otherWindow = 0;
};

bool WaitFor(const std::function<bool()>& condition);  // false: not within ten minutes
void Rest(int milliseconds);

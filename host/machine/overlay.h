// What the machine writes over the game's picture: panels and lines of text. The game's own picture stays as it is.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

constexpr int OVERLAY_WIDTH = 320, OVERLAY_HEIGHT = 240;  // laid over the whole picture, whatever its size
constexpr int OVERLAY_CHARACTER_WIDTH = 6, OVERLAY_LINE_HEIGHT = 10;

constexpr uint32_t OVERLAY_PANEL = 0xD0101418, OVERLAY_TEXT = 0xFFE8E8E0, OVERLAY_QUIET_TEXT = 0xFF98A0A0;

bool CanWrite(std::string_view text);  // UTF-8: ASCII and the letters of western Europe
int TextWidth(std::string_view text);  // pixels

class Overlay {
public:
    void Fill(int x, int y, int width, int height, uint32_t colour);   // 0xAARRGGBB; parts outside are left out
    void Write(int x, int y, std::string_view text, uint32_t colour);  // see CanWrite; the rest shows as '?'
    void WriteCentred(int y, std::string_view text, uint32_t colour);
    const std::vector<uint32_t>& Pixels() const { return pixels_; }  // 0xAARRGGBB, rows top to bottom

private:
    void DrawColumns(int x, int y, const uint8_t* columns, uint32_t colour);

    std::vector<uint32_t> pixels_ = std::vector<uint32_t>(size_t{OVERLAY_WIDTH} * OVERLAY_HEIGHT);
};

// On machines that show overlays (machine/machine.h), over every picture from now on.
void ShowOverlay(const Overlay& overlay);
void HideOverlay();
void SetLastingOverlay(const Overlay* overlay);  // shown from now on while there is no other; null: none

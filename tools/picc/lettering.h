// Text drawn with FreeType, without hinting, so that it comes out the same everywhere.
#pragma once

#include "formats/toml_table.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

// How much of each pixel of a picture something covers, 0..255.
struct Coverage {
    int width, height;
    std::vector<uint8_t> pixels;

    Coverage(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h), 0) {}
    uint8_t At(int x, int y) const {  // 0 outside
        if (x < 0 || y < 0 || x >= width || y >= height) return 0;
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
    void Add(int x, int y, uint8_t cover);  // ignored outside
};

Coverage Thicken(const Coverage& shape, int radius);
Coverage Soften(const Coverage& shape, int radius);

struct TextStyle {
    std::string font = "DejaVuSans";  // file name without ".ttf"
    float size = 20;                  // pixels an em
    float spacing = 0;                // extra pixels between letters
};

class Lettering {
public:
    explicit Lettering(std::filesystem::path fontFolder);
    ~Lettering();
    Lettering(const Lettering&) = delete;
    Lettering& operator=(const Lettering&) = delete;

    // Pixels from the first letter's origin to the end. `where` is asked to refuse a font that does not exist and a
    // letter that the font lacks.
    float Width(const TomlTable& where, const TextStyle& style, const std::string& text);
    // x: left end; y: the line the letters stand on.
    void Draw(const TomlTable& where, const TextStyle& style, const std::string& text, float x, float y,
              Coverage& onto);

private:
    struct Library;
    void* Face(const TomlTable& where, const TextStyle& style);
    float Walk(const TomlTable& where, const TextStyle& style, const std::string& text, float x, float y,
               Coverage* onto);

    std::filesystem::path folder_;
    std::unique_ptr<Library> library_;
    std::map<std::string, void*> faces_;
};

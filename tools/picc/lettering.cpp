#include "picc/lettering.h"

#include "formats/error.h"

#include <fmt/format.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>

struct Lettering::Library {
    FT_Library handle = nullptr;
};

namespace {

constexpr float SUBPIXELS = 64;  // FreeType's lengths are 1/64 pixels

FT_Pos ToSubpixels(float pixels) {
    return static_cast<FT_Pos>(pixels * SUBPIXELS + (pixels < 0 ? -0.5f : 0.5f));
}

// The code points of UTF-8 text; a byte that does not belong there becomes U+FFFD.
std::vector<uint32_t> CodePoints(const std::string& text) {
    std::vector<uint32_t> points;
    int missing = 0;
    for (const char character : text) {
        const auto byte = static_cast<uint8_t>(character);
        if (missing > 0 && (byte & 0xC0) == 0x80) {
            points.back() = points.back() << 6 | (byte & 0x3F);
            --missing;
            continue;
        }
        missing = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
        constexpr uint32_t LEAD_MASKS[] = {0x7F, 0x1F, 0x0F, 0x07};
        points.push_back(byte >= 0x80 && missing == 0 ? 0xFFFD : byte & LEAD_MASKS[missing]);
    }
    return points;
}

void AddBitmap(const FT_Bitmap& bitmap, int left, int top, Coverage& onto) {
    for (int y = 0; y < static_cast<int>(bitmap.rows); ++y) {
        for (int x = 0; x < static_cast<int>(bitmap.width); ++x)
            onto.Add(left + x, top + y, bitmap.buffer[y * bitmap.pitch + x]);
    }
}

}  // namespace

void Coverage::Add(int x, int y, uint8_t cover) {
    if (x < 0 || y < 0 || x >= width || y >= height) return;
    uint8_t& pixel = pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    pixel = static_cast<uint8_t>(std::min(255, pixel + cover));
}

Coverage Thicken(const Coverage& shape, int radius) {
    Coverage result(shape.width, shape.height);
    for (int y = 0; y < shape.height; ++y) {
        for (int x = 0; x < shape.width; ++x) {
            uint8_t most = 0;
            for (int dy = -radius; dy <= radius; ++dy) {
                for (int dx = -radius; dx <= radius; ++dx) {
                    if (dx * dx + dy * dy <= radius * radius + radius) most = std::max(most, shape.At(x + dx, y + dy));
                }
            }
            result.Add(x, y, most);
        }
    }
    return result;
}

Coverage Soften(const Coverage& shape, int radius) {
    const auto pass = [radius](const Coverage& from, int stepX, int stepY) {
        Coverage to(from.width, from.height);
        for (int y = 0; y < from.height; ++y) {
            for (int x = 0; x < from.width; ++x) {
                int sum = 0;
                for (int i = -radius; i <= radius; ++i)
                    sum += from.At(x + i * stepX, y + i * stepY);
                to.Add(x, y, static_cast<uint8_t>(sum / (2 * radius + 1)));
            }
        }
        return to;
    };
    return radius == 0 ? shape : pass(pass(shape, 1, 0), 0, 1);
}

Lettering::Lettering(std::filesystem::path fontFolder)
    : folder_(std::move(fontFolder)), library_(std::make_unique<Library>()) {
    if (FT_Init_FreeType(&library_->handle) != 0) throw ContentError("FreeType cannot be used: check its installation");
}

Lettering::~Lettering() {
    FT_Done_FreeType(library_->handle);  // releases its faces, too
}

void* Lettering::Face(const TomlTable& where, const TextStyle& style) {
    void*& entry = faces_[style.font];
    if (!entry) {
        const std::filesystem::path path = folder_ / (style.font + ".ttf");
        FT_Face face = nullptr;
        if (FT_New_Face(library_->handle, path.c_str(), 0, &face) != 0) {
            faces_.erase(style.font);
            where.RefuseTable(fmt::format("the font {} cannot be read", Shown(path.string())),
                              "use the name of a font file there, such as DejaVuSans-Bold");
        }
        entry = face;
    }
    FT_Set_Char_Size(static_cast<FT_Face>(entry), 0, ToSubpixels(style.size), 72, 72);
    return entry;
}

float Lettering::Walk(const TomlTable& where, const TextStyle& style, const std::string& text, float x, float y,
                      Coverage* onto) {
    const auto face = static_cast<FT_Face>(Face(where, style));
    float pen = x;
    FT_UInt previous = 0;
    for (const uint32_t point : CodePoints(text)) {
        const FT_UInt glyph = FT_Get_Char_Index(face, point);
        if (glyph == 0)
            where.RefuseTable(fmt::format("{} has no letter U+{:04X}", Shown(style.font), point),
                              "write it in other letters");
        FT_Vector kerning{0, 0};
        if (previous != 0) FT_Get_Kerning(face, previous, glyph, FT_KERNING_UNFITTED, &kerning);
        if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0) {
            where.RefuseTable(fmt::format("{} cannot draw U+{:04X}", Shown(style.font), point), "use another font");
        }
        pen += static_cast<float>(kerning.x) / SUBPIXELS;
        if (onto) {
            const int whole = static_cast<int>(pen);
            FT_Outline_Translate(&face->glyph->outline, ToSubpixels(pen - static_cast<float>(whole)), 0);
            FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL);
            AddBitmap(face->glyph->bitmap, whole + face->glyph->bitmap_left,
                      static_cast<int>(y) - face->glyph->bitmap_top, *onto);
        }
        pen += static_cast<float>(face->glyph->linearHoriAdvance) / 65536 + style.spacing;
        previous = glyph;
    }
    return pen - x - (previous != 0 ? style.spacing : 0);
}

float Lettering::Width(const TomlTable& where, const TextStyle& style, const std::string& text) {
    return Walk(where, style, text, 0, 0, nullptr);
}

void Lettering::Draw(const TomlTable& where, const TextStyle& style, const std::string& text, float x, float y,
                     Coverage& onto) {
    Walk(where, style, text, x, y, &onto);
}

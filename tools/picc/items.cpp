#include "picc/items.h"

#include "formats/colour_text.h"
#include "formats/error.h"
#include "picc/blend.h"
#include "picc/hall.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

Rectangle ReadRectangle(const TomlTable& item) {
    const std::vector<float> r = item.Numbers("rect", 4, {0, 0, PICTURE_WIDTH, PICTURE_HEIGHT});
    const Rectangle rect{static_cast<int>(r[0]), static_cast<int>(r[1]), static_cast<int>(r[2]),
                         static_cast<int>(r[3])};
    if (rect.right <= rect.left || rect.bottom <= rect.top) {
        item.RefuseKey("rect", "is empty", "write it as [left, top, right, bottom]");
    }
    return rect;
}

int ReadOpacity(const TomlTable& item) {
    return static_cast<int>(item.Number("opacity", 1, 0, 1) * 255 + 0.5f);
}

std::vector<Rgba> NeedColours(const TomlTable& item, const char* key) {
    std::vector<Rgba> colours = ReadColours(item, key);
    if (colours.empty())
        item.RefuseTable(fmt::format("'{}' is missing", key), "add one colour, or several for a gradient");
    return colours;
}

Coverage FullBox(const Rectangle& rect) {
    return RoundedBox(PICTURE_WIDTH, PICTURE_HEIGHT, rect, 0);
}

void PaintGradient(Painter& painter, const TomlTable& item) {
    const Rectangle rect = ReadRectangle(item);
    BlendShape(painter.image, FullBox(rect), rect, NeedColours(item, "colour"), ReadOpacity(item));
}

void PaintTexture(Painter& painter, const TomlTable& item) {
    const Rectangle rect = ReadRectangle(item);
    const Image& texture = painter.Texture(item, item.NeedText("material"));
    const int zoom = item.Int("zoom", 1, 1, 8);
    const int brightness = static_cast<int>(item.Number("brightness", 1, 0, 4) * 256);
    const int opacity = ReadOpacity(item);
    for (int y = rect.top; y < rect.bottom; ++y) {
        for (int x = rect.left; x < rect.right; ++x) {
            const Rgba& texel =
                texture.At((x - rect.left) / zoom % texture.width, (y - rect.top) / zoom % texture.height);
            Blend(painter.image, x, y, Scaled(texel, brightness), opacity * texel.a / 255);
        }
    }
}

// The mean over the part of the picture that a pixel shows.
Rgba MeanOf(const Image& picture, float left, float top, float size) {
    const int x0 = static_cast<int>(left), y0 = static_cast<int>(top);
    const int x1 = std::clamp(static_cast<int>(left + size), x0 + 1, std::max(picture.width, x0 + 1));
    const int y1 = std::clamp(static_cast<int>(top + size), y0 + 1, std::max(picture.height, y0 + 1));
    int sum[3] = {};
    for (int y = y0; y < y1; ++y) {
        for (int x = x0; x < x1; ++x) {
            const Rgba& pixel = picture.At(std::min(x, picture.width - 1), std::min(y, picture.height - 1));
            sum[0] += pixel.r, sum[1] += pixel.g, sum[2] += pixel.b;
        }
    }
    const auto mean = [&](int channel) { return static_cast<uint8_t>(sum[channel] / ((x1 - x0) * (y1 - y0))); };
    return {mean(0), mean(1), mean(2), 255};
}

// Fills the rectangle; what is too wide or too high for it is cut off evenly on both sides.
void PaintGamePicture(Painter& painter, const TomlTable& item) {
    const Rectangle rect = ReadRectangle(item);
    const Image& picture = painter.Picture(item, item.NeedText("file"));
    const int brightness = static_cast<int>(item.Number("brightness", 1, 0, 4) * 256);
    const int opacity = ReadOpacity(item);
    const auto width = static_cast<float>(rect.right - rect.left);
    const auto height = static_cast<float>(rect.bottom - rect.top);
    const float step = std::min(static_cast<float>(picture.width) / width, static_cast<float>(picture.height) / height);
    const float left = (static_cast<float>(picture.width) - width * step) / 2;
    const float top = (static_cast<float>(picture.height) - height * step) / 2;
    for (int y = rect.top; y < rect.bottom; ++y) {
        for (int x = rect.left; x < rect.right; ++x) {
            const float px = left + static_cast<float>(x - rect.left) * step;
            const float py = top + static_cast<float>(y - rect.top) * step;
            const Rgba colour = MeanOf(picture, px, py, step);
            Blend(painter.image, x, y, Scaled(colour, brightness), opacity);
        }
    }
}

void PaintHallItem(Painter& painter, const TomlTable& item) {
    HallView hall;
    hall.left = &painter.Texture(item, item.NeedText("left"));
    hall.right = &painter.Texture(item, item.Text("right", item.NeedText("left")));
    hall.floor = &painter.Texture(item, item.NeedText("floor"));
    hall.ceiling = &painter.Texture(item, item.NeedText("ceiling"));
    hall.haze = ReadColour(item, "haze", {0, 0, 0, 255});
    hall.width = item.Number("width", 400, 50, 4000);
    hall.height = item.Number("height", 300, 50, 4000);
    hall.eye = item.Number("eye", 120, 1, hall.height - 1);
    hall.vanishing = item.Int("vanishing", PICTURE_WIDTH / 2, 0, PICTURE_WIDTH);
    hall.horizon = item.Int("horizon", PICTURE_HEIGHT / 2, 0, PICTURE_HEIGHT);
    hall.sight = item.Number("sight", 1500, 10, 100000);
    hall.brightness = item.Number("brightness", 1, 0, 4);
    PaintHall(painter.image, hall);
}

void PaintPanel(Painter& painter, const TomlTable& item) {
    const Rectangle rect = ReadRectangle(item);
    const int radius = item.Int("radius", 6, 0, 60);
    const int border = item.Int("border", 0, 0, 20);
    const int shadow = item.Int("shadow", 0, 0, 20);
    const Coverage shape = RoundedBox(PICTURE_WIDTH, PICTURE_HEIGHT, rect, radius);
    if (shadow > 0) BlendShape(painter.image, Soften(shape, shadow), rect, {{0, 0, 0, 255}}, 150, shadow / 2, shadow);
    Coverage inner = RoundedBox(PICTURE_WIDTH, PICTURE_HEIGHT, rect, radius, border);
    BlendShape(painter.image, inner, rect, NeedColours(item, "colour"), ReadOpacity(item));
    if (border == 0) return;
    for (size_t i = 0; i < inner.pixels.size(); ++i)
        inner.pixels[i] = static_cast<uint8_t>(shape.pixels[i] - std::min(shape.pixels[i], inner.pixels[i]));
    BlendShape(painter.image, inner, rect, NeedColours(item, "border_colour"), 255);
}

TextStyle ReadStyle(const TomlTable& item, float size) {
    return {item.Text("font", "DejaVuSans"), item.Number("size", size, 6, 200), item.Number("spacing", 0, -10, 60)};
}

// Draws letters with their shadow, their outline and a gradient over their height.
void PaintLetters(Painter& painter, const TomlTable& item, const Coverage& letters, const Rectangle& height) {
    const int outline = item.Int("outline", 0, 0, 8);
    const int shadow = item.Int("shadow", 0, 0, 20);
    const int opacity = ReadOpacity(item);
    const Coverage body = outline > 0 ? Thicken(letters, outline) : letters;
    if (shadow > 0) {
        const std::vector<Rgba> colour{ReadColour(item, "shadow_colour", {0, 0, 0, 255})};
        BlendShape(painter.image, Soften(body, (shadow + 1) / 2), height, colour, opacity * 220 / 255, shadow / 2,
                   shadow);
    }
    if (outline > 0) BlendShape(painter.image, body, height, NeedColours(item, "outline_colour"), opacity);
    BlendShape(painter.image, letters, height, NeedColours(item, "colour"), opacity);
}

void PaintLine(Painter& painter, const TomlTable& item, const TextStyle& style, const std::string& line, float x,
               float y) {
    const float width = painter.lettering.Width(item, style, line);
    if (x < 0 || x + width > PICTURE_WIDTH || y > PICTURE_HEIGHT) {
        item.RefuseKey("text", fmt::format("'{}' leaves the picture", Shown(line)),
                       "move it, shorten it or make it smaller");
    }
    Coverage letters(PICTURE_WIDTH, PICTURE_HEIGHT);
    painter.lettering.Draw(item, style, line, x, y, letters);
    const int baseline = static_cast<int>(y);
    PaintLetters(painter, item, letters, {0, baseline - static_cast<int>(style.size * 0.75f), 0, baseline + 1});
}

void PaintText(Painter& painter, const TomlTable& item) {
    const TextStyle style = ReadStyle(item, 20);
    const std::vector<float> at = item.Numbers("at", 2, {0, 0});
    const size_t align = item.Choice("align", "left", {"left", "centre", "right"});
    const float lineHeight = item.Number("line_height", style.size * 1.35f, 1, 400);
    float y = at[1];
    for (const std::string& line : item.Texts("text")) {
        const float width = painter.lettering.Width(item, style, line);
        PaintLine(painter, item, style, line, at[0] - (align == 1 ? width / 2 : align == 2 ? width : 0), y);
        y += lineHeight;
    }
}

// A key of a keyboard, as wide as its name; returns its right end.
float PaintKeyCap(Painter& painter, const TomlTable& item, const std::string& name, float x, float y) {
    const TextStyle style{"DejaVuSans-Bold", 14, 0};
    const float width = painter.lettering.Width(item, style, name);
    const int left = static_cast<int>(x);
    const int top = static_cast<int>(y) - 19;
    const int right = left + std::max(30, static_cast<int>(width) + 18);
    const Rectangle rim{left, top, right, top + 28};
    const Rectangle cap{left + 3, top + 2, right - 3, top + 22};
    const auto box = [](const Rectangle& r, int radius) {
        return RoundedBox(PICTURE_WIDTH, PICTURE_HEIGHT, r, radius);
    };
    BlendShape(painter.image, Soften(box(rim, 5), 2), rim, {{0, 0, 0, 255}}, 160, 1, 3);
    BlendShape(painter.image, box(rim, 5), rim, {{150, 144, 132, 255}, {86, 80, 70, 255}}, 255);
    BlendShape(painter.image, box(cap, 4), cap, {{248, 244, 232, 255}, {206, 200, 184, 255}}, 255);
    Coverage letters(PICTURE_WIDTH, PICTURE_HEIGHT);
    painter.lettering.Draw(item, style, name, static_cast<float>(left + right) / 2 - width / 2, y - 2, letters);
    BlendShape(painter.image, letters, cap, {{36, 32, 28, 255}}, 255);
    return static_cast<float>(right);
}

// Rows of keys with what they do. A row's keys may be several, separated by blanks.
void PaintKeys(Painter& painter, const TomlTable& item) {
    const std::vector<std::string> keys = item.Texts("keys");
    const std::vector<std::string> texts = item.Texts("text");
    if (keys.size() != texts.size()) {
        item.RefuseKey("keys", fmt::format("has {} rows, 'text' has {}", keys.size(), texts.size()),
                       "write one text for each row of keys");
    }
    const std::vector<float> at = item.Numbers("at", 2, {0, 0});
    const float step = item.Number("step", 38, 10, 200);
    const float textX = item.Number("text_x", at[0] + 120, 0, PICTURE_WIDTH);
    const TextStyle style = ReadStyle(item, 18);
    for (size_t row = 0; row < keys.size(); ++row) {
        const float y = at[1] + step * static_cast<float>(row);
        float x = at[0];
        for (size_t first = 0; first < keys[row].size();) {
            const size_t end = std::min(keys[row].find(' ', first), keys[row].size());
            if (end > first) x = PaintKeyCap(painter, item, keys[row].substr(first, end - first), x, y) + 5;
            first = end + 1;
        }
        PaintLine(painter, item, style, texts[row], textX, y);
    }
}

// Darkens toward the borders.
void PaintVignette(Painter& painter, const TomlTable& item) {
    const int strength = ReadOpacity(item);
    for (int y = 0; y < PICTURE_HEIGHT; ++y) {
        for (int x = 0; x < PICTURE_WIDTH; ++x) {
            const int dx = (2 * x - PICTURE_WIDTH) * 255 / PICTURE_WIDTH;
            const int dy = (2 * y - PICTURE_HEIGHT) * 255 / PICTURE_HEIGHT;
            Blend(painter.image, x, y, {0, 0, 0, 255}, std::min(255, (dx * dx + dy * dy) / 510 * strength / 255));
        }
    }
}

struct Kind {
    const char* name;
    void (*paint)(Painter&, const TomlTable&);
};
constexpr Kind KINDS[] = {
    {"gradient", PaintGradient}, {"texture", PaintTexture}, {"hall", PaintHallItem},     {"panel", PaintPanel},
    {"text", PaintText},         {"keys", PaintKeys},       {"vignette", PaintVignette}, {"picture", PaintGamePicture},
};

struct Refusal {
    std::string problem, remedy;
};

const Image& Loaded(Painter& painter, const TomlTable& item, const std::filesystem::path& path,
                    const Refusal& ifMissing) {
    const auto [entry, isNew] = painter.loaded.try_emplace(path);
    if (isNew) {
        if (!std::filesystem::is_regular_file(path)) item.RefuseTable(ifMissing.problem, ifMissing.remedy);
        entry->second = ReadPng(path);
    }
    return entry->second;
}

}  // namespace

const Image& Painter::Texture(const TomlTable& item, const std::string& name) {
    return Loaded(
        *this, item, materials / (name + ".png"),
        {fmt::format("there is no material '{}'", Shown(name)), "use the name of a recipe in content/materials"});
}

const Image& Painter::Picture(const TomlTable& item, const std::string& name) {
    return Loaded(
        *this, item, pictures / (name + ".png"),
        {fmt::format("there is no picture '{}'", Shown(name)), "use the name of one that gallery --folder writes"});
}

void PaintItem(Painter& painter, const TomlTable& item) {
    std::vector<std::string> names;
    for (const Kind& kind : KINDS)
        names.emplace_back(kind.name);
    KINDS[item.Choice("kind", "", names)].paint(painter, item);
    item.Finish();
}

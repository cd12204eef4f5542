#include "texc/layer.h"

#include "formats/colour_text.h"
#include "texc/noise.h"
#include "texc/pattern_table.h"

#include <fmt/format.h>

#include <cmath>

namespace {

constexpr size_t MASKS_MAX = 16;

std::vector<Colour> ReadRamp(const TomlTable& settings) {
    const auto channel = [](uint8_t byte) { return static_cast<float>(byte) / 255; };
    std::vector<Colour> ramp;
    for (const Rgba& c : ReadColours(settings, "colour"))
        ramp.push_back({channel(c.r), channel(c.g), channel(c.b)});
    return ramp;
}

}  // namespace

PlacedPattern::PlacedPattern(const TomlTable& settings, uint32_t seed, PictureSource& pictures)
    : pattern_(MakePattern(settings, pictures)),
      seed_(Hash(seed, static_cast<uint32_t>(settings.Int("seed", 0, 0, 1'000'000)))),
      area_(settings.Numbers("area", 4, {})), origin_(settings.Numbers("origin", 2, {0, 0})),
      scroll_(settings.Numbers("scroll", 2, {0, 0})), repeat_(settings.Numbers("repeat", 2, {})),
      perCell_(settings.Flag("per_cell", false)), wobble_(settings.Number("wobble", 0, 0, 32)),
      wobbleCells_(settings.Int("wobble_cells", 8, 1, 64)), cut_(settings.Numbers("cut", 2, {})) {
    const size_t mirror = settings.Choice("mirror", "none", {"none", "x", "y", "xy", "eight"});
    mirrorX_ = mirror == 1 || mirror >= 3;
    mirrorY_ = mirror >= 2;
    mirrorDiagonal_ = mirror == 4;
    for (const auto* size : {&area_, &repeat_}) {
        if (!size->empty() && ((*size)[size->size() - 1] <= 0 || (*size)[size->size() - 2] <= 0)) {
            settings.RefuseTable("'area' or 'repeat' has no width or height", "make both larger than 0");
        }
    }
}

void PlacedPattern::Wobble(const Canvas& canvas, Spot& spot) const {
    const float x = spot.x / static_cast<float>(canvas.width);
    const float y = spot.y / static_cast<float>(canvas.height);
    FractalShape shape;
    shape.columns = shape.rows = wobbleCells_;
    shape.octaves = 2;
    spot.x += (FractalNoise(Hash(seed_, 11), x, y, shape) - 0.5f) * 2 * wobble_;
    spot.y += (FractalNoise(Hash(seed_, 12), x, y, shape) - 0.5f) * 2 * wobble_;
}

void PlacedPattern::Place(const Canvas& canvas, Spot& spot) const {
    if (wobble_ > 0) Wobble(canvas, spot);
    spot.x -= origin_[0] + (area_.empty() ? 0 : area_[0]);
    spot.y -= origin_[1] + (area_.empty() ? 0 : area_[1]);
    if (!area_.empty()) {
        spot.width = area_[2];
        spot.height = area_[3];
    }
    if (!repeat_.empty()) {
        spot.width = repeat_[0];
        spot.height = repeat_[1];
        spot.x = WrapFloat(spot.x, spot.width);
        spot.y = WrapFloat(spot.y, spot.height);
    } else if (area_.empty()) {
        spot.x = WrapFloat(spot.x, spot.width);
        spot.y = WrapFloat(spot.y, spot.height);
    }
    // The mirrored halves show what lies right of and below the middle.
    const auto fold = [](float place, float size) { return size / 2 + std::fabs(place - size / 2); };
    if (mirrorX_) spot.x = fold(spot.x, spot.width);
    if (mirrorY_) spot.y = fold(spot.y, spot.height);
    if (mirrorDiagonal_ && spot.y - spot.height / 2 > spot.x - spot.width / 2) {
        const float x = spot.x;
        spot.x = spot.y - spot.height / 2 + spot.width / 2;
        spot.y = x - spot.width / 2 + spot.height / 2;
    }
}

Sample PlacedPattern::At(const Canvas& canvas, int column, int row, const Moment& moment) const {
    Spot spot{};
    spot.x = (static_cast<float>(column) + 0.5f) / SAMPLES;
    spot.y = (static_cast<float>(row) + 0.5f) / SAMPLES;
    spot.width = static_cast<float>(canvas.width);
    spot.height = static_cast<float>(canvas.height);
    spot.index = canvas.Index(column, row);
    spot.seed = perCell_ ? Hash(seed_, canvas.cell[spot.index]) : seed_;
    if (!area_.empty()) {
        const float x = spot.x - area_[0];
        const float y = spot.y - area_[1];
        if (x < 0 || y < 0 || x >= area_[2] || y >= area_[3]) return {};
    }
    spot.x -= scroll_[0] * moment.phase;
    spot.y -= scroll_[1] * moment.phase;
    Place(canvas, spot);
    Sample sample = pattern_->At(spot, moment);
    if (!cut_.empty()) {
        const float part = SmoothStep(cut_[0], cut_[1], sample.value);
        sample.cover *= part;
        sample.profile *= part;
        sample.strength = sample.cover;
    }
    return sample;
}

Layer::Layer(const TomlTable& settings, uint32_t seed, PictureSource& pictures)
    : pattern_(settings, seed, pictures), ramp_(ReadRamp(settings)), steps_(settings.Flag("steps", false)),
      opacity_(settings.Number("opacity", 1, 0, 1)), vary_(settings.Number("vary", 0, 0, 1)),
      raise_(settings.Number("raise", 0, -64, 64)), seed_(seed) {
    mode_ = static_cast<Mode>(settings.Choice("mode", "paint", {"paint", "shade", "glow", "hole", "relief"}));
    uint32_t index = 100;
    for (const TomlTable& mask : settings.Tables("mask")) {
        masks_.push_back({PlacedPattern(mask, Hash(seed, index++), pictures), mask.Flag("invert", false)});
        mask.Finish();
    }
    if (masks_.size() > MASKS_MAX)
        settings.RefuseKey("mask", "stands there too often", fmt::format("{} are the most", MASKS_MAX));
    settings.Finish();
    const bool coloured = mode_ == Mode::Paint || mode_ == Mode::Shade || mode_ == Mode::Glow;
    const std::string pattern = settings.Text("pattern", "");
    if (coloured && ramp_.empty() && pattern != "picture" && pattern != "material") {
        settings.RefuseTable("the layer has no colour",
                             "add colour = \"#rrggbb\", or mode = \"relief\" for shape only");
    }
}

Colour Layer::ColourOf(const Sample& sample, uint32_t cell) const {
    Colour colour{};
    if (sample.colour) {
        colour = *sample.colour;
    } else {
        const float place = sample.value * static_cast<float>(steps_ ? ramp_.size() : ramp_.size() - 1);
        const size_t index = std::min(static_cast<size_t>(place), ramp_.size() - 1);
        const size_t next = std::min(index + 1, ramp_.size() - 1);
        const float part = steps_ ? 0 : place - static_cast<float>(index);
        for (size_t c = 0; c < 3; ++c)
            colour[c] = Mix(ramp_[index][c], ramp_[next][c], part);
    }
    const float brightness = 1 + vary_ * (2 * HashUnit(Hash(seed_, cell, 21)) - 1);
    for (float& channel : colour)
        channel *= brightness;
    return colour;
}

void Layer::PaintSample(Canvas& canvas, int column, int row, const Moment& moment) const {
    const Sample sample = pattern_.At(canvas, column, row, moment);
    float through = 1;
    for (const Mask& mask : masks_) {
        const float strength = mask.pattern.At(canvas, column, row, moment).strength;
        through *= mask.invert ? 1 - strength : strength;
    }
    const size_t index = canvas.Index(column, row);
    const float cover = sample.cover * through * opacity_;
    canvas.tall[index] += raise_ * sample.profile * through;
    if (sample.cell != 0 && sample.cover * through > 0.5f) canvas.cell[index] = sample.cell;
    if (cover <= 0 || mode_ == Mode::Relief) return;
    if (mode_ == Mode::Hole) {
        canvas.opacity[index] *= 1 - cover;
        return;
    }
    const Colour colour = ColourOf(sample, canvas.cell[index]);
    Colour& below = canvas.colour[index];
    for (size_t c = 0; c < 3; ++c) {
        switch (mode_) {
        case Mode::Shade: below[c] *= Mix(1, 2 * colour[c], cover); break;
        case Mode::Glow: below[c] += colour[c] * cover; break;
        default: below[c] = Mix(below[c], colour[c], cover); break;
        }
    }
    if (mode_ == Mode::Paint) canvas.opacity[index] = std::max(canvas.opacity[index], cover);
}

void Layer::Paint(Canvas& canvas, const Moment& moment) {
    pattern_.Prepare(canvas);
    for (Mask& mask : masks_)
        mask.pattern.Prepare(canvas);
    for (int row = 0; row < canvas.rows; ++row) {
        for (int column = 0; column < canvas.columns; ++column)
            PaintSample(canvas, column, row, moment);
    }
}

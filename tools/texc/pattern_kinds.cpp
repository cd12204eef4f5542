#include "texc/pattern_kinds.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace {

constexpr float FAR_AWAY = 1e6f;

float Absolute(float value) {
    return value < 0 ? -value : value;
}

uint32_t CellId(uint32_t hash) {
    return hash | 1;  // 0 means "no cell"
}

float Length(float x, float y) {
    return std::sqrt(x * x + y * y);
}

// The shortest way from a to b, with its sign, on a line that repeats after `period`.
float Around(float a, float b, float period) {
    const float way = WrapFloat(b - a, period);
    return way > period / 2 ? way - period : way;
}

int NeedCount(const TomlTable& settings, const char* key, size_t index, int fallback) {
    const std::vector<float> numbers =
        settings.Numbers(key, 2, {static_cast<float>(fallback), static_cast<float>(fallback)});
    const float value = numbers[index];
    if (value < 1 || value > 256 || value != static_cast<float>(static_cast<int>(value))) {
        settings.RefuseKey(key, fmt::format("holds {}", value), "give two whole numbers from 1 to 256");
    }
    return static_cast<int>(value);
}

std::vector<float> NeedPairs(const TomlTable& settings, const char* key, size_t leastPairs) {
    std::vector<float> numbers = settings.Numbers(key);
    if (numbers.size() % 2 != 0 || numbers.size() < leastPairs * 2) {
        settings.RefuseKey(key, fmt::format("has {} numbers", numbers.size()),
                           fmt::format("write it as [[x, y], [x, y], ...], {} places or more", leastPairs));
    }
    return numbers;
}

// The division of a length into `count` uneven parts that meet again after it.
struct Division {
    uint32_t seed;
    int count;
    float length, jitter;

    float Boundary(int index) const {
        const float shift = (HashUnit(Hash(seed, static_cast<uint32_t>(WrapInt(index, count)))) - 0.5f) * jitter;
        return (static_cast<float>(index) + shift) * length / static_cast<float>(count);
    }
    // The part that holds `place`; may be -1 or `count` next to the ends.
    int PartAt(float place) const {
        const int guess = FloorInt(place * static_cast<float>(count) / length);
        if (place < Boundary(guess)) return guess - 1;
        return place >= Boundary(guess + 1) ? guess + 1 : guess;
    }
};

// Distance inward from the nearer of two crossing edges, rounding the corner between them.
float InsideCorner(float x, float y, float radius) {
    if (x >= radius || y >= radius) return std::min(x, y);
    return radius - Length(radius - x, radius - y);
}

}  // namespace

Outline::Outline(const TomlTable& settings)
    : bevel(settings.Number("bevel", 0, 0, 128)), rounded(settings.Flag("rounded", false)) {}

void Outline::Apply(float inside, Sample& sample) const {
    sample.cover = sample.strength = Clamp01(inside * SAMPLES + 0.5f);
    sample.profile = sample.cover;
    if (bevel > 0) {
        const float t = Clamp01(inside / bevel);
        sample.profile = rounded ? std::sqrt(1 - (1 - t) * (1 - t)) : t;
    }
}

NoisePattern::NoisePattern(const TomlTable& settings) {
    shape_.columns = NeedCount(settings, "cells", 0, 4);
    shape_.rows = NeedCount(settings, "cells", 1, 4);
    shape_.octaves = settings.Int("octaves", 4, 1, 7);
    shape_.roughness = settings.Number("roughness", 0.5f, 0, 1);
    shape_.ridged = settings.Flag("ridged", false);
    shape_.boil = settings.Int("boil", 0, 0, 8);
}

Sample NoisePattern::At(const Spot& spot, const Moment& moment) const {
    FractalShape shape = shape_;
    shape.phase = moment.phase;
    const float n = FractalNoise(spot.seed, spot.x / spot.width, spot.y / spot.height, shape);
    return {1, n, n, n - 0.5f, 0, {}};
}

GradientPattern::GradientPattern(const TomlTable& settings)
    : from_(settings.Numbers("from", 2, {0, 0})), to_(settings.Numbers("to", 2, {0, 128})) {
    if (from_ == to_) settings.RefuseTable("'from' and 'to' are the same place", "move them apart");
}

Sample GradientPattern::At(const Spot& spot, const Moment&) const {
    const float dx = to_[0] - from_[0];
    const float dy = to_[1] - from_[1];
    const float t = Clamp01(((spot.x - from_[0]) * dx + (spot.y - from_[1]) * dy) / (dx * dx + dy * dy));
    return {1, t, t, t, 0, {}};
}

BricksPattern::BricksPattern(const TomlTable& settings)
    : columns_(settings.Int("columns", 4, 1, 64)), rows_(settings.Int("rows", 4, 1, 64)),
      shift_(settings.Number("shift", 0.5f, 0, 1)), scattered_(settings.Flag("scattered", false)),
      jitter_(settings.Number("jitter", 0, 0, 0.9f)), rowJitter_(settings.Number("row_jitter", 0, 0, 0.9f)),
      gap_(settings.Number("gap", 2, 0, 32)), radius_(settings.Number("radius", 0, 0, 32)),
      upright_(settings.Flag("upright", false)), checks_(settings.Flag("checks", false)), outline_(settings) {}

Sample BricksPattern::At(const Spot& spot, const Moment&) const {
    const float along = upright_ ? spot.y : spot.x;
    const float across = upright_ ? spot.x : spot.y;
    const float length = upright_ ? spot.height : spot.width;
    const Division layers{Hash(spot.seed, 1), rows_, upright_ ? spot.width : spot.height, rowJitter_};
    const int layer = layers.PartAt(across);
    const auto row = static_cast<uint32_t>(WrapInt(layer, rows_));
    const float offset = scattered_ ? HashUnit(Hash(spot.seed, 2, row)) : (row % 2 == 1 ? shift_ : 0);
    const Division bricks{Hash(spot.seed, 3, row), columns_, length, jitter_};
    const float place = WrapFloat(along - offset * length / static_cast<float>(columns_), length);
    const int brick = bricks.PartAt(place);
    const float inAlong = std::min(place - bricks.Boundary(brick), bricks.Boundary(brick + 1) - place);
    const float inAcross = std::min(across - layers.Boundary(layer), layers.Boundary(layer + 1) - across);
    Sample sample;
    outline_.Apply(InsideCorner(inAlong - gap_ / 2, inAcross - gap_ / 2, radius_), sample);
    const auto column = static_cast<uint32_t>(WrapInt(brick, columns_));
    sample.cell = CellId(Hash(spot.seed, 4, row, column));
    sample.value = checks_ ? static_cast<float>((row + column) % 2) : HashUnit(sample.cell);
    return sample;
}

StonesPattern::StonesPattern(const TomlTable& settings)
    : columns_(NeedCount(settings, "cells", 0, 4)), rows_(NeedCount(settings, "cells", 1, 4)),
      jitter_(settings.Number("jitter", 0.8f, 0, 1)), gap_(settings.Number("gap", 2, 0, 32)), outline_(settings) {}

StonesPattern::Centre StonesPattern::CentreOf(const Spot& spot, int column, int row) const {
    const uint32_t id = Hash(spot.seed, static_cast<uint32_t>(WrapInt(column, columns_)),
                             static_cast<uint32_t>(WrapInt(row, rows_)), 5);
    const auto place = [&](int cell, uint32_t hash, float size, int count) {
        const float shift = 0.5f + (HashUnit(hash) - 0.5f) * jitter_;
        return (static_cast<float>(cell) + shift) * size / static_cast<float>(count);
    };
    return {place(column, Hash(id, 1), spot.width, columns_), place(row, Hash(id, 2), spot.height, rows_), CellId(id)};
}

Sample StonesPattern::At(const Spot& spot, const Moment&) const {
    const int column = FloorInt(spot.x * static_cast<float>(columns_) / spot.width);
    const int row = FloorInt(spot.y * static_cast<float>(rows_) / spot.height);
    Centre near[25];
    float best = FAR_AWAY * FAR_AWAY;
    int nearest = 0;
    for (int i = 0; i < 25; ++i) {
        near[i] = CentreOf(spot, column + i % 5 - 2, row + i / 5 - 2);
        const float dx = near[i].x - spot.x;
        const float dy = near[i].y - spot.y;
        if (dx * dx + dy * dy < best) {
            best = dx * dx + dy * dy;
            nearest = i;
        }
    }
    float inside = FAR_AWAY;
    for (int i = 0; i < 25; ++i) {
        const float dx = near[i].x - near[nearest].x;
        const float dy = near[i].y - near[nearest].y;
        const float apart = Length(dx, dy);
        if (i == nearest || apart == 0) continue;
        const float midX = (near[i].x + near[nearest].x) / 2 - spot.x;
        const float midY = (near[i].y + near[nearest].y) / 2 - spot.y;
        inside = std::min(inside, (midX * dx + midY * dy) / apart);
    }
    Sample sample;
    outline_.Apply(inside - gap_ / 2, sample);
    sample.cell = near[nearest].id;
    sample.value = HashUnit(sample.cell);
    return sample;
}

ScatterPattern::ScatterPattern(const TomlTable& settings)
    : columns_(NeedCount(settings, "cells", 0, 8)), rows_(NeedCount(settings, "cells", 1, 8)),
      radius_(settings.Numbers("radius", 2, {2, 4})), stretch_(settings.Number("stretch", 1, 0.05f, 1)),
      density_(settings.Number("density", 1, 0, 1)), outline_(settings) {
    if (radius_[0] <= 0 || radius_[1] < radius_[0]) {
        settings.RefuseKey("radius", "is not a range", "give the least and the most, both above 0");
    }
}

float ScatterPattern::InsideOf(const Spot& spot, int column, int row, uint32_t id) const {
    // Sixteen directions of a circle are enough; no sine is needed for them.
    static constexpr float DIRECTIONS[16][2] = {{1, 0},  {0.924f, 0.383f},   {0.707f, 0.707f},   {0.383f, 0.924f},
                                                {0, 1},  {-0.383f, 0.924f},  {-0.707f, 0.707f},  {-0.924f, 0.383f},
                                                {-1, 0}, {-0.924f, -0.383f}, {-0.707f, -0.707f}, {-0.383f, -0.924f},
                                                {0, -1}, {0.383f, -0.924f},  {0.707f, -0.707f},  {0.924f, -0.383f}};
    const float x = (static_cast<float>(column) + HashUnit(Hash(id, 1))) * spot.width / static_cast<float>(columns_);
    const float y = (static_cast<float>(row) + HashUnit(Hash(id, 2))) * spot.height / static_cast<float>(rows_);
    const float* direction = DIRECTIONS[Hash(id, 3) % 16];
    const float along = (spot.x - x) * direction[0] + (spot.y - y) * direction[1];
    const float across = (spot.y - y) * direction[0] - (spot.x - x) * direction[1];
    return Mix(radius_[0], radius_[1], HashUnit(Hash(id, 4))) * stretch_ - Length(along * stretch_, across);
}

Sample ScatterPattern::At(const Spot& spot, const Moment&) const {
    const int column = FloorInt(spot.x * static_cast<float>(columns_) / spot.width);
    const int row = FloorInt(spot.y * static_cast<float>(rows_) / spot.height);
    Sample best;
    uint32_t topmost = 0;
    for (int i = 0; i < 25; ++i) {
        const int c = column + i % 5 - 2;
        const int r = row + i / 5 - 2;
        const uint32_t id = CellId(
            Hash(spot.seed, static_cast<uint32_t>(WrapInt(c, columns_)), static_cast<uint32_t>(WrapInt(r, rows_)), 6));
        if (HashUnit(Hash(id, 5)) >= density_ || id < topmost) continue;
        Sample sample;
        outline_.Apply(InsideOf(spot, c, r, id), sample);
        if (sample.cover <= 0.5f) continue;
        topmost = id;
        sample.cell = id;
        sample.value = HashUnit(Hash(id, 7));
        best = sample;
    }
    return best;
}

BoxPattern::BoxPattern(const TomlTable& settings)
    : rect_(settings.Numbers("rect", 4, {})), radius_(settings.Number("radius", 0, 0, 64)),
      rim_(settings.Number("rim", 0, 0, 64)), outline_(settings) {}

Sample BoxPattern::At(const Spot& spot, const Moment&) const {
    const float left = rect_.empty() ? 0 : rect_[0];
    const float top = rect_.empty() ? 0 : rect_[1];
    const float right = rect_.empty() ? spot.width : rect_[2];
    const float bottom = rect_.empty() ? spot.height : rect_[3];
    float inside =
        InsideCorner(std::min(spot.x - left, right - spot.x), std::min(spot.y - top, bottom - spot.y), radius_);
    if (rim_ > 0) inside = rim_ / 2 - Absolute(inside - rim_ / 2);
    Sample sample;
    outline_.Apply(inside, sample);
    return sample;
}

BandPattern::BandPattern(const TomlTable& settings)
    : from_(settings.Number("from", 0, -256, 256)), to_(settings.Number("to", 16, -256, 256)),
      upright_(settings.Flag("upright", false)), outline_(settings) {
    if (to_ <= from_) settings.RefuseKey("to", "does not lie beyond 'from'", "make it larger");
}

Sample BandPattern::At(const Spot& spot, const Moment&) const {
    const float place = upright_ ? spot.x : spot.y;
    Sample sample;
    outline_.Apply(std::min(place - from_, to_ - place), sample);
    sample.value = Clamp01((place - from_) / (to_ - from_));
    return sample;
}

DiscsPattern::DiscsPattern(const TomlTable& settings)
    : at_(NeedPairs(settings, "at", 0)), radius_(settings.Number("radius", 4, 0.5f, 256)),
      hole_(settings.Number("hole", 0, 0, 256)), outline_(settings) {}

Sample DiscsPattern::At(const Spot& spot, const Moment&) const {
    float distance = FAR_AWAY;
    if (at_.empty()) distance = Length(spot.x - spot.width / 2, spot.y - spot.height / 2);
    for (size_t i = 0; i < at_.size(); i += 2) {
        distance =
            std::min(distance, Length(Around(at_[i], spot.x, spot.width), Around(at_[i + 1], spot.y, spot.height)));
    }
    Sample sample;
    outline_.Apply(hole_ > 0 ? std::min(radius_ - distance, distance - hole_) : radius_ - distance, sample);
    sample.value = Clamp01(1 - distance / radius_);
    return sample;
}

PolygonPattern::PolygonPattern(const TomlTable& settings)
    : points_(NeedPairs(settings, "points", 3)), outline_(settings) {}

Sample PolygonPattern::At(const Spot& spot, const Moment&) const {
    float nearest = FAR_AWAY;
    bool within = false;
    for (size_t i = 0, j = points_.size() - 2; i < points_.size(); j = i, i += 2) {
        const float edgeX = points_[j] - points_[i];
        const float edgeY = points_[j + 1] - points_[i + 1];
        const float x = spot.x - points_[i];
        const float y = spot.y - points_[i + 1];
        const float square = edgeX * edgeX + edgeY * edgeY;
        const float t = square > 0 ? Clamp01((x * edgeX + y * edgeY) / square) : 0;
        nearest = std::min(nearest, Length(x - edgeX * t, y - edgeY * t));
        const bool crosses = (points_[i + 1] > spot.y) != (points_[j + 1] > spot.y);
        if (crosses && x < y * edgeX / edgeY) within = !within;
    }
    Sample sample;
    outline_.Apply(within ? nearest : -nearest, sample);
    return sample;
}

StripesPattern::StripesPattern(const TomlTable& settings)
    : count_(settings.Numbers("count", 2, {0, 8})), share_(settings.Number("share", 0.5f, 0, 1)), outline_(settings) {
    if (count_[0] == 0 && count_[1] == 0) settings.RefuseKey("count", "has no stripes", "make one of the two above 0");
}

Sample StripesPattern::At(const Spot& spot, const Moment&) const {
    const float perX = count_[0] / spot.width;
    const float perY = count_[1] / spot.height;
    const float t = WrapFloat(spot.x * perX + spot.y * perY, 1);
    Sample sample;
    outline_.Apply((share_ / 2 - Absolute(t - 0.5f)) / Length(perX, perY), sample);
    sample.value = t;
    return sample;
}

EdgesPattern::EdgesPattern(const TomlTable& settings)
    : radius_(settings.Number("radius", 3, 0.5f, 16)), gain_(settings.Number("gain", 1, 0, 100)) {}

void EdgesPattern::Prepare(const Canvas& canvas) {
    strength_ = BoxBlur(canvas, canvas.tall, static_cast<int>(radius_ * SAMPLES));
    for (size_t i = 0; i < strength_.size(); ++i) {
        strength_[i] = Clamp01((canvas.tall[i] - strength_[i]) * sign_ * gain_);
    }
}

Sample EdgesPattern::At(const Spot& spot, const Moment&) const {
    const float strength = strength_[spot.index];
    return {strength, strength, strength, strength, 0, {}};
}

namespace {

Sample SampleOf(const Rgba& pixel) {
    const auto channel = [](uint8_t byte) { return static_cast<float>(byte) / 255; };
    const float cover = channel(pixel.a);
    const Colour colour{channel(pixel.r), channel(pixel.g), channel(pixel.b)};
    const float grey = (colour[0] + colour[1] + colour[2]) / 3;
    return {cover, grey, cover, grey, 0, colour};
}

Sample Between(const Sample& a, const Sample& b, float part) {
    Sample mean{Mix(a.cover, b.cover, part),
                Mix(a.value, b.value, part),
                Mix(a.strength, b.strength, part),
                Mix(a.profile, b.profile, part),
                0,
                Colour{}};
    for (size_t c = 0; c < 3; ++c)
        (*mean.colour)[c] = Mix((*a.colour)[c], (*b.colour)[c], part);
    return mean;
}

}  // namespace

PicturePattern::PicturePattern(const TomlTable& settings, PictureSource& pictures)
    : image_(pictures.Picture(settings, "file")) {}

Sample PicturePattern::At(const Spot& spot, const Moment&) const {
    return SampleOf(image_.At(WrapInt(FloorInt(spot.x), image_.width), WrapInt(FloorInt(spot.y), image_.height)));
}

MaterialPattern::MaterialPattern(const TomlTable& settings, PictureSource& pictures)
    : image_(pictures.Material(settings, "material")), zoom_(settings.Number("zoom", 1, 0.25f, 4)) {}

Sample MaterialPattern::At(const Spot& spot, const Moment&) const {
    const float x = spot.x / zoom_ - 0.5f;
    const float y = spot.y / zoom_ - 0.5f;
    const auto pixel = [&](int right, int down) {
        return SampleOf(
            image_.At(WrapInt(FloorInt(x) + right, image_.width), WrapInt(FloorInt(y) + down, image_.height)));
    };
    const float across = x - static_cast<float>(FloorInt(x));
    const float down = y - static_cast<float>(FloorInt(y));
    return Between(Between(pixel(0, 0), pixel(1, 0), across), Between(pixel(0, 1), pixel(1, 1), across), down);
}

#include "texc/canvas.h"

#include "texc/noise.h"

Canvas::Canvas(int texelWidth, int texelHeight)
    : width(texelWidth), height(texelHeight), columns(texelWidth * SAMPLES), rows(texelHeight * SAMPLES) {
    const size_t count = static_cast<size_t>(columns) * static_cast<size_t>(rows);
    colour.assign(count, {0.5f, 0.5f, 0.5f});
    tall.assign(count, 0);
    opacity.assign(count, 1);
    cell.assign(count, 0);
}

namespace {

// One pass of a sliding average along rows (dx = 1) or columns (dy = 1).
std::vector<float> BlurLine(const Canvas& canvas, const std::vector<float>& field, int radius, int dx, int dy) {
    std::vector<float> result(field.size());
    const float share = 1.0f / static_cast<float>(2 * radius + 1);
    for (int row = 0; row < canvas.rows; ++row) {
        for (int column = 0; column < canvas.columns; ++column) {
            float sum = 0;
            for (int i = -radius; i <= radius; ++i)
                sum += field[canvas.Index(column + i * dx, row + i * dy)];
            result[canvas.Index(column, row)] = sum * share;
        }
    }
    return result;
}

float LightAt(const Canvas& canvas, const std::vector<float>& around, const Finish& finish, int column, int row) {
    const auto tall = [&](int dx, int dy) { return canvas.tall[canvas.Index(column + dx, row + dy)]; };
    // Texels of rise for each texel toward the lower right; limited, so that steep edges do not become white.
    const float slope = (tall(1, 0) - tall(-1, 0) + tall(0, 1) - tall(0, -1)) * (0.5f * SAMPLES);
    const float soft = slope / (1 + (slope < 0 ? -slope : slope) * 0.6f);
    const float hollow = around[canvas.Index(column, row)] - tall(0, 0);
    return (1 + finish.relief * 0.45f * soft) * (1 - Clamp01(hollow * finish.hollows));
}

uint8_t ToByte(float value) {
    return static_cast<uint8_t>(Clamp01(value) * 255 + 0.5f);
}

}  // namespace

std::vector<float> BoxBlur(const Canvas& canvas, const std::vector<float>& field, int radius) {
    return BlurLine(canvas, BlurLine(canvas, field, radius, 1, 0), radius, 0, 1);
}

Image Develop(const Canvas& canvas, const Finish& finish) {
    const std::vector<float> around = BoxBlur(canvas, canvas.tall, 3 * SAMPLES);
    Image image(canvas.width, canvas.height);
    for (int y = 0; y < canvas.height; ++y) {
        for (int x = 0; x < canvas.width; ++x) {
            Colour sum{};
            float solid = 0;
            for (int i = 0; i < SAMPLES * SAMPLES; ++i) {
                const int column = x * SAMPLES + i % SAMPLES;
                const int row = y * SAMPLES + i / SAMPLES;
                const size_t index = canvas.Index(column, row);
                const float light = LightAt(canvas, around, finish, column, row) * finish.brightness;
                for (size_t c = 0; c < 3; ++c)
                    sum[c] += Clamp01(canvas.colour[index][c] * light) * canvas.opacity[index];
                solid += canvas.opacity[index];
            }
            const auto channel = [&](size_t c) {
                const float mean = solid > 0 ? sum[c] / solid : 0;
                return ToByte((mean - 0.5f) * finish.contrast + 0.5f);
            };
            const bool visible = solid * 2 >= SAMPLES * SAMPLES;
            image.At(x, y) = {channel(0), channel(1), channel(2), static_cast<uint8_t>(visible ? 255 : 0)};
        }
    }
    return image;
}

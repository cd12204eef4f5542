#include "render/raster_model.h"

#include "render/render_tables.h"
#include "world/world_tables.h"

#include <cmath>
#include <limits>
#include <map>

namespace {

enum { U, V, LIGHT, INVERSE };

struct Half {
    int32_t x = 0;
    float q[4] = {};
};
struct Row {
    Half side[2];
};

int32_t Round(float value) {
    if (!(value >= -2147483648.0f && value < 2147483648.0f)) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(std::nearbyint(value));
}

int32_t Wrapped(int64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

int32_t Ceil(int32_t fixed) {
    return static_cast<int32_t>(std::ceil(fixed / 65536.0));
}

float Reciprocal(int32_t count) {
    return static_cast<float>(1.0 / count);
}

Half CornerOf(const PolyVertex& vertex) {
    const float inverse = WorldGeometry.viewPoints[vertex.point].inverseDepth;
    return {WorldGeometry.viewPoints[vertex.point].screen.fixed.x,
            {vertex.u * inverse, vertex.v * inverse, vertex.intensity * inverse, inverse}};
}

void AddEdge(const PolyVertex& from, const PolyVertex& to, std::map<int32_t, Row>& rows) {
    const bool goesUp =
        WorldGeometry.viewPoints[to.point].screen.fixed.y < WorldGeometry.viewPoints[from.point].screen.fixed.y;
    const PolyVertex& top = goesUp ? to : from;
    const PolyVertex& bottom = goesUp ? from : to;
    const int32_t topY = WorldGeometry.viewPoints[top.point].screen.fixed.y;
    const int32_t bottomY = WorldGeometry.viewPoints[bottom.point].screen.fixed.y;
    const Half a = CornerOf(top);
    const Half b = CornerOf(bottom);
    const float preStep = static_cast<float>(Ceil(topY) - topY / 65536.0);
    const float factor = 65536.0f / static_cast<float>(int64_t{bottomY} - topY);
    const float xChange = static_cast<float>(int64_t{b.x} - a.x);
    Half half;
    half.x = Round(static_cast<float>(a.x) + xChange * factor * preStep);
    float step[4];
    for (int i = 0; i < 4; i++) {
        step[i] = (b.q[i] - a.q[i]) * factor;
        half.q[i] = a.q[i] + step[i] * preStep;
    }
    for (int32_t y = Ceil(topY); y < Ceil(bottomY); y++) {
        if (y >= 0 && y < ScreenHeight) rows[y].side[goesUp ? 1 : 0] = half;
        half.x = Wrapped(int64_t{half.x} + Round(xChange * factor));
        for (int i = 0; i < 4; i++)
            half.q[i] += step[i];
    }
}

// The value of one quantity at pixel i of a span of n pixels.
int32_t PixelValue(const Half& left, const Half& right, float t, int quantity, int32_t i, int32_t n) {
    float q[4], block[4];
    for (int k = 0; k < 4; k++) {
        q[k] = left.q[k] + (right.q[k] - left.q[k]) * t;
        block[k] = 16 * (right.q[k] - left.q[k]) * Reciprocal(n);
    }
    const auto value = [&] { return Round(q[quantity] * (1 / q[INVERSE])); };
    if (n < 16) {
        const float target = right.q[quantity] * (1 / right.q[INVERSE]);
        const int32_t step = Round((target - static_cast<float>(value())) * Reciprocal(n));
        return Wrapped(value() + int64_t{step} * i);
    }
    const auto nextBlock = [&] {
        for (int k = 0; k < 4; k++)
            q[k] += block[k];
    };
    for (int32_t b = 0; b < i / 16; b++)
        nextBlock();
    const int32_t start = value();
    if (i < n / 16 * 16) {
        nextBlock();
        return Wrapped(start + int64_t{Wrapped(int64_t{value()} - start) >> 4} * (i % 16));
    }
    const float target = right.q[quantity] / right.q[INVERSE];
    return Wrapped(start + int64_t{Round((target - static_cast<float>(start)) * Reciprocal(n % 16))} * (i % 16));
}

}  // namespace

void ModelRaster(const PolyRecord& polygon, bool skipsTexelZero, std::vector<uint8_t>& pixels) {
    const TextureRecord texture = TextureRecords()[TextureRemap[polygon.texture]];
    const PolyVertex* corners = WorldGeometry.polyVertices + polygon.firstVertex;
    std::map<int32_t, Row> rows;
    for (int i = 0; i < polygon.cornerCount; i++)
        AddEdge(corners[i], corners[(i + 1) % polygon.cornerCount], rows);
    for (const auto& [y, row] : rows) {
        const Half& left = row.side[0];
        const Half& right = row.side[1];
        const int32_t n = Ceil(right.x) - Ceil(left.x);
        if (n <= 0 || n > 1023) continue;
        const float t = static_cast<float>(Ceil(left.x) - left.x / 65536.0) * Reciprocal(n);
        for (int32_t i = 0; i < n; i++) {
            const int32_t x = Ceil(left.x) + i;
            if (x < 0 || x >= ScreenWidth) continue;
            const int32_t column = PixelValue(left, right, t, U, i, n) >> 8 & (texture.width - 1);
            const int32_t line = PixelValue(left, right, t, V, i, n) >> 8 & (texture.height - 1);
            const uint8_t texel = TextureImage[texture.texelOffset + static_cast<uint32_t>(line * 256 + column)];
            if (texel == 0 && skipsTexelZero) continue;
            const int32_t light = PixelValue(left, right, t, LIGHT, i, n) >> 8 & 0xFF;
            pixels[static_cast<size_t>(y * ScreenWidth + x)] = ShadeTable[light * 256 + texel];
        }
    }
}

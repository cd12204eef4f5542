#include "picc/hall.h"

#include "picc/blend.h"

#include <algorithm>

namespace {

constexpr float FOCAL_LENGTH = 420;  // pixels
constexpr float UNITS_A_TEXEL = 2;
constexpr float FARTHEST = 1e6f;
constexpr int SAMPLES = 3;  // samples along a pixel's side: with fewer the far texels would flicker

int Wrap(float units, int size) {
    const int texel = static_cast<int>(units / UNITS_A_TEXEL) % size;
    return texel < 0 ? texel + size : texel;
}

Rgba LookAlong(const HallView& hall, float dx, float dy) {
    // Distance at which the ray meets a wall, and the floor or the ceiling; dx, dy are pixels from the vanishing point.
    const float half = hall.width / 2;
    const float toWall = dx == 0 ? FARTHEST : half * FOCAL_LENGTH / (dx < 0 ? -dx : dx);
    const float toPlane =
        dy == 0 ? FARTHEST : (dy > 0 ? hall.eye : hall.height - hall.eye) * FOCAL_LENGTH / (dy < 0 ? -dy : dy);
    const float z = std::min({toWall, toPlane, FARTHEST});
    const float x = dx * z / FOCAL_LENGTH;
    const float down = dy * z / FOCAL_LENGTH + hall.height - hall.eye;  // below the ceiling
    const bool isWall = toWall < toPlane;
    const Image& texture = *(isWall ? (dx < 0 ? hall.left : hall.right) : dy > 0 ? hall.floor : hall.ceiling);
    const float u = isWall ? z : x + half;
    const float v = isWall ? down : z;
    const float side = isWall ? 0.85f : 1.0f;
    const float clear = hall.sight / (hall.sight + z);
    const Rgba& texel = texture.At(Wrap(u, texture.width), Wrap(v, texture.height));
    return MixColours(hall.haze, Scaled(texel, static_cast<int>(256 * hall.brightness * side)),
                      static_cast<int>(255 * clear));
}

}  // namespace

void PaintHall(Image& image, const HallView& hall) {
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            int red = 0, green = 0, blue = 0;
            for (int i = 0; i < SAMPLES * SAMPLES; ++i) {
                const float sampleX = static_cast<float>(x) + (static_cast<float>(i % SAMPLES) + 0.5f) / SAMPLES;
                const float sampleY = static_cast<float>(y) + (static_cast<float>(i / SAMPLES) + 0.5f) / SAMPLES;
                const Rgba c = LookAlong(hall, sampleX - static_cast<float>(hall.vanishing),
                                         sampleY - static_cast<float>(hall.horizon));
                red += c.r;
                green += c.g;
                blue += c.b;
            }
            constexpr int COUNT = SAMPLES * SAMPLES;
            image.At(x, y) = {static_cast<uint8_t>(red / COUNT), static_cast<uint8_t>(green / COUNT),
                              static_cast<uint8_t>(blue / COUNT), 255};
        }
    }
}

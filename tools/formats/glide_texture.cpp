#include "formats/glide_texture.h"

#include "formats/binary.h"
#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace {

constexpr std::ptrdiff_t HEADER_MAX = 80;
const char* const REMEDY = "build the textures again with texc";

// The linear light of a texel, times the part of it that is solid.
struct Light {
    double r = 0, g = 0, b = 0, solid = 0;
};

struct LightImage {
    int width, height;
    std::vector<Light> texels;
};

const std::array<double, 256> LINEAR = [] {
    std::array<double, 256> table{};
    for (size_t i = 0; i < table.size(); ++i) {
        const double value = static_cast<double>(i) / 255;
        // Rounded to whole numbers, because libraries differ in the last bits of a power.
        table[i] = std::round(65535 * (value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4)));
    }
    return table;
}();

// The byte that stands for the nearest light.
uint8_t ToByte(double light) {
    const auto above = std::lower_bound(LINEAR.begin(), LINEAR.end(), light);
    if (above == LINEAR.begin()) return 0;
    if (above == LINEAR.end()) return 255;
    return static_cast<uint8_t>(above - LINEAR.begin() - (light - above[-1] < *above - light));
}

LightImage ToLight(const Image& image) {
    LightImage light{image.width, image.height, {}};
    for (const Rgba& pixel : image.pixels)
        light.texels.push_back(pixel.a == 0 ? Light{} : Light{LINEAR[pixel.r], LINEAR[pixel.g], LINEAR[pixel.b], 1});
    return light;
}

LightImage Halve(const LightImage& from) {
    LightImage to{std::max(1, from.width / 2), std::max(1, from.height / 2), {}};
    const int columns = from.width / to.width;
    const int rows = from.height / to.height;
    for (int y = 0; y < to.height; ++y) {
        for (int x = 0; x < to.width; ++x) {
            Light sum;
            for (int i = 0; i < columns * rows; ++i) {
                const int at = (y * rows + i / columns) * from.width + x * columns + i % columns;
                const Light& texel = from.texels[static_cast<size_t>(at)];
                sum = {sum.r + texel.r, sum.g + texel.g, sum.b + texel.b, sum.solid + texel.solid};
            }
            const double share = 1.0 / (columns * rows);
            to.texels.push_back({sum.r * share, sum.g * share, sum.b * share, sum.solid * share});
        }
    }
    return to;
}

// The least solid part with which a texel counts as solid, so that the level has as many solid texels as the picture's
// coverage asks for.
double SolidFrom(const LightImage& level, double coverage) {
    const auto count = std::lround(coverage * static_cast<double>(level.texels.size()));
    if (count == 0) return 2;
    std::vector<double> parts;
    for (const Light& texel : level.texels)
        parts.push_back(texel.solid);
    std::nth_element(parts.begin(), parts.begin() + (count - 1), parts.end(), std::greater<>());
    return std::max(parts[static_cast<size_t>(count - 1)], 1e-9);
}

Image FromLight(const LightImage& level, double coverage) {
    const double solidFrom = SolidFrom(level, coverage);
    Image image(level.width, level.height);
    for (size_t i = 0; i < level.texels.size(); ++i) {
        const Light& texel = level.texels[i];
        const double scale = texel.solid > 0 ? 1 / texel.solid : 0;
        image.pixels[i] = {ToByte(texel.r * scale), ToByte(texel.g * scale), ToByte(texel.b * scale),
                           texel.solid >= solidFrom ? uint8_t{255} : uint8_t{0}};
    }
    return image;
}

uint32_t FiveBits(uint8_t value) {
    return (value * 31U + 127) / 255;
}

uint32_t Argb1555(const Rgba& pixel) {
    return (pixel.a == 0 ? 0x8000U : 0U) | FiveBits(pixel.r) << 10 | FiveBits(pixel.g) << 5 | FiveBits(pixel.b);
}

}  // namespace

std::vector<Image> MakeMipLevels(const Image& picture) {
    std::vector<Image> levels{picture};
    LightImage light = ToLight(picture);
    const double solid = std::accumulate(light.texels.begin(), light.texels.end(), 0.0,
                                         [](double sum, const Light& texel) { return sum + texel.solid; });
    const double coverage = solid / static_cast<double>(light.texels.size());
    while (light.width > 1 || light.height > 1) {
        light = Halve(light);
        levels.push_back(FromLight(light, coverage));
    }
    return levels;
}

std::vector<uint8_t> EncodeGlideTexture(const std::vector<Image>& levels) {
    const int width = levels.front().width;
    const int height = levels.front().height;
    const int shorter = std::min(width, height);
    const Image& smallest = levels.back();
    const std::string header = fmt::format("3df v1.1\nargb1555\nlod range: {} {}\naspect ratio: {} {}\n",
                                           std::max(smallest.width, smallest.height), std::max(width, height),
                                           width / shorter, height / shorter);
    ByteWriter file;
    file.Append(header.data(), header.size());
    for (const Image& level : levels)
        for (const Rgba& pixel : level.pixels)
            file.BigU16(Argb1555(pixel));
    return file.bytes;
}

GlideTexture DecodeGlideTexture(const std::vector<uint8_t>& content, const std::string& fileName) {
    const std::string head(content.begin(),
                           content.begin() + std::min<std::ptrdiff_t>(HEADER_MAX, std::ssize(content)));
    unsigned smallest = 0, largest = 0, across = 0, down = 0;
    int headerBytes = 0;
    std::sscanf(head.c_str(), "3df v%*[0-9].%*[0-9]\nargb1555\nlod range: %3u %3u\naspect ratio: %1u %1u%n", &smallest,
                &largest, &across, &down, &headerBytes);
    const auto isSide = [](unsigned side, unsigned most) { return std::has_single_bit(side) && side <= most; };
    if (headerBytes == 0 || !isSide(largest, 256) || !isSide(smallest, largest) || !isSide(across, 8) ||
        !isSide(down, 8) || std::min(across, down) != 1) {
        Refuse(fileName, 0, "is no texture of 16-bit texels with sides that are powers of two", REMEDY);
    }
    const unsigned longer = std::max(across, down);
    size_t texels = 0;
    for (unsigned side = largest; side >= smallest; side /= 2)
        texels += std::max<size_t>(1, side * across / longer) * std::max<size_t>(1, side * down / longer);
    const size_t expected = static_cast<size_t>(headerBytes) + 1 + 2 * texels;
    if (content.size() != expected) {
        Refuse(fileName, 0, fmt::format("has {} bytes instead of {}", content.size(), expected), REMEDY);
    }
    return {static_cast<int>(largest * across / longer), static_cast<int>(largest * down / longer),
            static_cast<int>(smallest)};
}

#include "records/palette_facts.h"
#include "render/render_tables.h"
#include "render/textures.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr int FADE_STEPS = 64;             // steps from a colour to the dark or the bright end
constexpr int WORST_MATCH = 10000;         // a target further from every colour gets colour 0
constexpr double FULL_BRIGHTNESS = 189.0;  // sum of the channels of white: 3 x 63

struct Colour {
    double channel[3];  // red, green, blue, 0..63
};

Colour Palette[256];  // the palette of the texture file

void ReadPalette() {
    const uint8_t* rgb = TextureImage + TEXTURE_PALETTE_OFFSET;
    for (Colour& colour : Palette) {
        for (double& channel : colour.channel)
            channel = *rgb++;
    }
}

uint8_t NearestColour(const Colour& target) {
    int best = WORST_MATCH;
    int bestIndex = 0;
    for (int i = 0; i < 256; ++i) {
        const double red = RED_TENTHS / 10.0 * (Palette[i].channel[0] - target.channel[0]);
        const double green = GREEN_TENTHS / 10.0 * (Palette[i].channel[1] - target.channel[1]);
        const double blue = BLUE_TENTHS / 10.0 * (Palette[i].channel[2] - target.channel[2]);
        const double distance = red * red + green * green + blue * blue;
        if (distance == 0) return static_cast<uint8_t>(i);
        // Kept as it is: `best` is a whole number, so a later colour has to be nearer than the truncated distance.
        if (distance < best) {
            best = static_cast<int>(distance);
            bestIndex = i;
        }
    }
    return static_cast<uint8_t>(bestIndex);
}

uint8_t FadeTowards(Colour colour, const int16_t target[3], double weight, double fraction) {
    for (int i = 0; i < 3; ++i) {
        double& channel = colour.channel[i];
        channel = std::clamp(channel + (target[i] - channel) * weight * fraction, 0.0, 63.0);
    }
    return NearestColour(colour);
}

uint8_t FadeDark(double fraction, int index) {
    return FadeTowards(Palette[index], DarkColour, 1.0, fraction);
}

// Unless the level asks for plain brightening, bright colours move further than dark ones.
uint8_t FadeBright(double fraction, int index) {
    const Colour& colour = Palette[index];
    const double brightness = (colour.channel[0] + colour.channel[1] + colour.channel[2]) / FULL_BRIGHTNESS;
    return FadeTowards(colour, BrightColour, PlainBrightening == 0 ? brightness : 1.0, fraction);
}

}  // namespace

void BuildFadePalette() {
    std::printf("Generating fade palette...\n");
    // Kept as it is: entry 0 is black, whatever the file says.
    std::fill_n(TextureImage + TEXTURE_PALETTE_OFFSET, 3, uint8_t{0});
    ReadPalette();
    for (int step = 0; step < FADE_STEPS; ++step) {
        const double fraction = step / static_cast<double>(FADE_STEPS);
        for (int i = 0; i < 256; ++i) {
            ShadeTable[step * 256 + i] = FadeDark(1 - fraction, i);
            ShadeTable[(FADE_STEPS + step) * 256 + i] = FadeBright(fraction, i);
        }
    }
}

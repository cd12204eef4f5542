#include "texc/palette.h"

#include "formats/error.h"
#include "records/light_facts.h"
#include "records/palette_facts.h"

#include <dlfcn.h>
#include <libimagequant.h>

#include <map>
#include <memory>

int SixBits(int byte) {
    return (byte * 63 + 127) / 255;
}

namespace {

// Light levels of the shaded copies, and how often each counts against an unshaded texel's 12.
struct Shade {
    int level, weight;
};
constexpr int FULL_LEVEL = NEUTRAL_LEVEL;
constexpr Shade SHADES[] = {{FULL_LEVEL, 12}, {44, 6}, {26, 4}, {12, 3}};

std::array<uint8_t, 3> SixBitColour(const Rgba& c) {
    return {static_cast<uint8_t>(SixBits(c.r)), static_cast<uint8_t>(SixBits(c.g)), static_cast<uint8_t>(SixBits(c.b))};
}

uint8_t EightBits(int level) {
    return static_cast<uint8_t>((level * 255 + 31) / 63);
}

// How often each 6-bit colour occurs, by red << 12 | green << 6 | blue.
std::map<int, int64_t> CountColours(const PaletteWishes& wishes) {
    std::map<int, int64_t> counts;
    for (const auto& [image, weight] : wishes.pictures) {
        for (const Rgba& pixel : image->pixels) {
            if (pixel.a == 0) continue;
            for (const Shade& shade : SHADES) {
                const auto toward = [&](int value, int dark) {
                    return SixBits(dark + (value - dark) * shade.level / FULL_LEVEL);
                };
                const int red = toward(pixel.r, wishes.dark.r);
                const int green = toward(pixel.g, wishes.dark.g);
                const int blue = toward(pixel.b, wishes.dark.b);
                counts[red << 12 | green << 6 | blue] += static_cast<int64_t>(weight) * shade.weight;
            }
        }
    }
    return counts;
}

// The library sums floats in parallel; more than one thread would make the last bits depend on the machine.
void UseOneThread() {
    if (void* symbol = dlsym(RTLD_DEFAULT, "omp_set_num_threads")) {
        reinterpret_cast<void (*)(int)>(symbol)(1);
    }
}

template <auto Destroy>
struct Destroyer {
    template <typename T>
    void operator()(T* object) const {
        Destroy(object);
    }
};
using Attributes = std::unique_ptr<liq_attr, Destroyer<liq_attr_destroy>>;
using Histogram = std::unique_ptr<liq_histogram, Destroyer<liq_histogram_destroy>>;
using Quantised = std::unique_ptr<liq_result, Destroyer<liq_result_destroy>>;

void Check(liq_error error) {
    if (error != LIQ_OK)
        Refuse("palette", 0, "the colours could not be reduced", "give the level fewer or plainer materials");
}

Quantised Reduce(const std::map<int, int64_t>& counts, int colours) {
    UseOneThread();
    const Attributes attributes(liq_attr_create());
    Check(liq_set_max_colors(attributes.get(), colours));
    Check(liq_set_speed(attributes.get(), 1));
    Check(liq_set_min_posterization(attributes.get(), 2));
    std::vector<liq_histogram_entry> entries;
    for (const auto& [colour, count] : counts) {
        const liq_color shown{EightBits(colour >> 12), EightBits(colour >> 6 & 63), EightBits(colour & 63), 255};
        entries.push_back({shown, static_cast<unsigned>(std::min<int64_t>(count, 1 << 28))});
    }
    const Histogram histogram(liq_histogram_create(attributes.get()));
    Check(liq_histogram_add_colors(histogram.get(), attributes.get(), entries.data(), static_cast<int>(entries.size()),
                                   0));
    liq_result* result = nullptr;
    Check(liq_histogram_quantize(histogram.get(), attributes.get(), &result));
    return Quantised(result);
}

// 100 times what the game measures.
int Distance(const std::array<uint8_t, 3>& a, const std::array<uint8_t, 3>& b) {
    const int red = RED_TENTHS * (a[0] - b[0]);
    const int green = GREEN_TENTHS * (a[1] - b[1]);
    const int blue = BLUE_TENTHS * (a[2] - b[2]);
    return red * red + green * green + blue * blue;
}

uint8_t Nearest(const std::array<uint8_t, 3>& wanted, const Palette& palette) {
    size_t best = PALETTE_FIRST_CHOSEN;
    for (size_t i = PALETTE_FIRST_CHOSEN; i < palette.size(); ++i) {
        if (Distance(wanted, palette[i]) < Distance(wanted, palette[best])) best = i;
    }
    return static_cast<uint8_t>(best);
}

}  // namespace

Palette ChoosePalette(const PaletteWishes& wishes) {
    Palette palette{};
    const std::map<int, int64_t> counts = CountColours(wishes);
    if (!counts.empty()) {
        const Quantised reduced = Reduce(counts, PALETTE_LAST_CHOSEN - PALETTE_FIRST_CHOSEN + 1);
        const liq_palette* chosen = liq_get_palette(reduced.get());
        for (unsigned i = 0; i < chosen->count; ++i) {
            const liq_color& c = chosen->entries[i];
            palette[PALETTE_FIRST_CHOSEN + i] = SixBitColour({c.r, c.g, c.b, 255});
        }
    }
    palette[GROUND_COLOUR] = SixBitColour(wishes.ground);
    palette[PALETTE_WHITE] = {63, 63, 63};
    return palette;
}

std::vector<uint8_t> ToPalette(const Image& image, const Palette& palette) {
    std::map<std::array<uint8_t, 3>, uint8_t> known;
    std::vector<uint8_t> texels;
    for (const Rgba& pixel : image.pixels) {
        if (pixel.a == 0) {
            texels.push_back(0);
            continue;
        }
        const auto [entry, isNew] = known.try_emplace(SixBitColour(pixel));
        if (isNew) entry->second = Nearest(entry->first, palette);
        texels.push_back(entry->second);
    }
    return texels;
}

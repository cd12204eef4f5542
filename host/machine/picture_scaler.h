// Enlarges or shrinks a picture by the processor, for windows that no graphics card draws: the same two ways as the
// programs of boards/gpu/gl_picture.cpp, to a rounding of a step or two a channel.
#pragma once

#include "machine/machine.h"
#include "machine/picture_area.h"

#include <cstdint>
#include <vector>

enum class PictureFilter {
    Sharp,   // each pixel even over its area, but for one pixel of the window at its border, where it blends
    Linear,  // between the centres of the pixels
};

// How a setting's scaling (machine/settings.h) shows a picture of this width.
PictureFilter FilterOf(int scaling, int pictureWidth);

// `part` of MIX_WHOLE of b and the rest of a, each of the four channels for itself. Two of them are mixed at a time:
// the product of 8 bits with 9 stays below the neighbour's.
constexpr uint32_t MIX_WHOLE = 256;
constexpr uint32_t MixPixels(uint32_t a, uint32_t b, uint32_t part) {
    constexpr uint32_t EVEN = 0x00FF00FF;
    const uint32_t low = ((a & EVEN) * (MIX_WHOLE - part) + (b & EVEN) * part) >> 8 & EVEN;
    const uint32_t high = ((a >> 8 & EVEN) * (MIX_WHOLE - part) + (b >> 8 & EVEN) * part) & ~EVEN;
    return high | low;
}

class PictureScaler {
public:
    // For pictures of these sizes, shown so large. Cheap where nothing has changed since the last call.
    void Prepare(int pictureWidth, int pictureHeight, int shownWidth, int shownHeight, PictureFilter filter);

    // Writes the rows first <= y < end of the shown picture to `out`, where row 0 begins; `pitch` in pixels. All four
    // channels of the pixels count, each for itself.
    void Scale(const uint32_t* pixels, int first, int end, uint32_t* out, size_t pitch);

    // The shown rows that the picture's rows first <= y < end have a part in.
    struct Rows {
        int first, end;
    };
    Rows ShownRows(int first, int end) const;

private:
    struct Sample {
        int from = 0;       // pixel or row of the picture; the next one, where there is one, has `part` of it
        uint32_t part = 0;  // share of the next one, 0 to MIX_WHOLE
    };
    struct Axis {
        int pictureSize = 0, shownSize = 0;
        std::vector<Sample> samples;
        bool blends = false;  // some part is not 0
    };
    struct WideRow {
        int source = -1;  // row of the picture; -1: none
        std::vector<uint32_t> pixels;
    };

    static Axis MakeAxis(int pictureSize, int shownSize, PictureFilter filter);
    const uint32_t* Widened(const uint32_t* pixels, int row, int keep);

    Axis across_, down_;
    PictureFilter filter_ = PictureFilter::Sharp;
    WideRow wide_[2];
};

#include "machine/picture_scaler.h"

#include "machine/settings.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int SMOOTH_FROM_WIDTH = 640;
constexpr uint32_t WHOLE = MIX_WHOLE;

}  // namespace

PictureFilter FilterOf(int scaling, int pictureWidth) {
    switch (static_cast<ScalingChoice>(scaling)) {
    case ScalingChoice::Smooth: return PictureFilter::Linear;
    case ScalingChoice::Original:
        return pictureWidth >= SMOOTH_FROM_WIDTH ? PictureFilter::Linear : PictureFilter::Sharp;
    default: return PictureFilter::Sharp;
    }
}

PictureScaler::Axis PictureScaler::MakeAxis(int pictureSize, int shownSize, PictureFilter filter) {
    Axis axis{pictureSize, shownSize, {}, false};
    const double scale = static_cast<double>(shownSize) / pictureSize;
    const double enlargement = filter == PictureFilter::Linear ? 1 : std::max(scale, 1.0);
    const double even = 0.5 - 0.5 / enlargement;
    for (int i = 0; i < shownSize; ++i) {
        const double place = (i + 0.5) / scale;
        const double fromCentre = place - std::floor(place) - 0.5;
        const double blend = (fromCentre - std::clamp(fromCentre, -even, even)) * enlargement;
        const double centre = std::clamp(std::floor(place) + blend, 0.0, pictureSize - 1.0);
        const auto steps = static_cast<int>(std::lround(centre * WHOLE));
        const Sample sample{steps / static_cast<int>(WHOLE), static_cast<uint32_t>(steps) % WHOLE};
        axis.blends = axis.blends || sample.part != 0;
        axis.samples.push_back(sample);
    }
    return axis;
}

void PictureScaler::Prepare(int pictureWidth, int pictureHeight, int shownWidth, int shownHeight,
                            PictureFilter filter) {
    const auto differs = [](const Axis& axis, int pictureSize, int shownSize) {
        return axis.pictureSize != pictureSize || axis.shownSize != shownSize;
    };
    if (filter == filter_ && !differs(across_, pictureWidth, shownWidth) && !differs(down_, pictureHeight, shownHeight))
        return;
    filter_ = filter;
    across_ = MakeAxis(pictureWidth, shownWidth, filter);
    down_ = MakeAxis(pictureHeight, shownHeight, filter);
    for (WideRow& row : wide_)
        row.pixels.resize(static_cast<size_t>(shownWidth));
}

// A row of the picture at its shown width. The row `keep` is not given up for it.
const uint32_t* PictureScaler::Widened(const uint32_t* pixels, int row, int keep) {
    for (const WideRow& wide : wide_)
        if (wide.source == row) return wide.pixels.data();
    WideRow& wide = wide_[0].source == keep ? wide_[1] : wide_[0];
    wide.source = row;
    const uint32_t* const source = pixels + static_cast<size_t>(row) * static_cast<size_t>(across_.pictureSize);
    uint32_t* out = wide.pixels.data();
    if (across_.blends) {
        for (const Sample& sample : across_.samples)
            *out++ = MixPixels(source[sample.from], source[sample.from + (sample.part != 0)], sample.part);
    } else {
        for (const Sample& sample : across_.samples)
            *out++ = source[sample.from];
    }
    return wide.pixels.data();
}

void PictureScaler::Scale(const uint32_t* pixels, int first, int end, uint32_t* out, size_t pitch) {
    wide_[0].source = wide_[1].source = -1;  // the rows kept are those of another picture
    const auto width = static_cast<size_t>(across_.shownSize);
    for (int y = first; y < end; ++y) {
        const auto [from, part] = down_.samples[static_cast<size_t>(y)];
        uint32_t* const row = out + static_cast<size_t>(y) * pitch;
        const uint32_t* const upper = Widened(pixels, from, from + 1);
        if (part == 0) {
            std::memcpy(row, upper, width * sizeof *row);
            continue;
        }
        const uint32_t* const lower = Widened(pixels, from + 1, from);
        for (size_t x = 0; x < width; ++x)
            row[x] = MixPixels(upper[x], lower[x], part);
    }
}

PictureScaler::Rows PictureScaler::ShownRows(int first, int end) const {
    const auto before = [](const Sample& sample, int row) { return sample.from < row; };
    const auto& rows = down_.samples;
    const auto begin = std::lower_bound(rows.begin(), rows.end(), first - 1, before);
    const auto behind = std::lower_bound(rows.begin(), rows.end(), end, before);
    return {static_cast<int>(begin - rows.begin()), static_cast<int>(behind - rows.begin())};
}

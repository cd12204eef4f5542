// One layer of a material: a pattern, where it lies, what it lets through, and how it is painted.
#pragma once

#include "texc/pattern.h"
#include "texc/picture_source.h"

#include <memory>
#include <vector>

// A pattern laid onto the canvas: moved, repeated, mirrored, made uneven.
class PlacedPattern {
public:
    PlacedPattern(const TomlTable& settings, uint32_t seed, PictureSource& pictures);
    void Prepare(const Canvas& canvas) { pattern_->Prepare(canvas); }
    Sample At(const Canvas& canvas, int column, int row, const Moment& moment) const;

private:
    void Place(const Canvas& canvas, Spot& spot) const;
    void Wobble(const Canvas& canvas, Spot& spot) const;

    std::unique_ptr<Pattern> pattern_;
    uint32_t seed_;
    std::vector<float> area_;    // x, y, width, height: drawn only there; empty: everywhere
    std::vector<float> origin_;  // x, y: moves the pattern
    std::vector<float> scroll_;  // texels the pattern moves in one animation cycle
    std::vector<float> repeat_;  // width, height at which the pattern is drawn and repeated; empty: once
    bool mirrorX_, mirrorY_, mirrorDiagonal_;
    bool perCell_;  // every brick below gets a variant of its own
    float wobble_;  // texels by which straight lines waver
    int wobbleCells_;
    std::vector<float> cut_;  // the values at which it begins and at which it is full; empty: always full
};

class Layer {
public:
    Layer(const TomlTable& settings, uint32_t seed, PictureSource& pictures);
    void Paint(Canvas& canvas, const Moment& moment);

private:
    struct Mask {
        PlacedPattern pattern;
        bool invert;
    };
    enum class Mode { Paint, Shade, Glow, Hole, Relief };

    Colour ColourOf(const Sample& sample, uint32_t cell) const;
    void PaintSample(Canvas& canvas, int column, int row, const Moment& moment) const;

    PlacedPattern pattern_;
    std::vector<Mask> masks_;
    std::vector<Colour> ramp_;
    bool steps_;  // the ramp's colours are not mixed
    Mode mode_;
    float opacity_, vary_, raise_;
    uint32_t seed_;
};

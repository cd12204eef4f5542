// The patterns themselves. Each reads its settings in its constructor; lengths are texels.
#pragma once

#include "texc/noise.h"
#include "texc/pattern.h"
#include "texc/picture_source.h"

// How a solid thing ends at its outline.
struct Outline {
    explicit Outline(const TomlTable& settings);
    // `inside`: distance from the outline, positive within.
    void Apply(float inside, Sample& sample) const;
    float bevel;   // width of the slope along the outline; 0: a sharp step
    bool rounded;  // the slope is a quarter circle instead of a straight chamfer
};

class FillPattern : public Pattern {
public:
    explicit FillPattern(const TomlTable&) {}
    Sample At(const Spot&, const Moment&) const override { return {1, 0, 1, 1, 0, {}}; }
};

class NoisePattern : public Pattern {
public:
    explicit NoisePattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment& moment) const override;

private:
    FractalShape shape_;
};

class GradientPattern : public Pattern {
public:
    explicit GradientPattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    std::vector<float> from_, to_;  // places of value 0 and 1
};

// Rows of bricks, tiles, boards or books.
class BricksPattern : public Pattern {
public:
    explicit BricksPattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    int columns_, rows_;
    float shift_;               // offset of every second row, in bricks
    bool scattered_;            // every row has an offset of its own
    float jitter_, rowJitter_;  // uneven widths and heights, 0..0.9
    float gap_, radius_;
    bool upright_;  // columns of bricks instead of rows
    bool checks_;   // value 0 and 1 in turn instead of random values
    Outline outline_;
};

// Irregular stones around scattered centres.
class StonesPattern : public Pattern {
public:
    explicit StonesPattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    struct Centre {
        float x, y;
        uint32_t id;
    };
    Centre CentreOf(const Spot& spot, int column, int row) const;
    int columns_, rows_;
    float jitter_, gap_;
    Outline outline_;
};

// Separate leaves, pebbles, chips, each turned and sized at random; later ones lie on top.
class ScatterPattern : public Pattern {
public:
    explicit ScatterPattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    float InsideOf(const Spot& spot, int column, int row, uint32_t id) const;
    int columns_, rows_;
    std::vector<float> radius_;  // least, most
    float stretch_;              // width over length
    float density_;              // share of places that have one
    Outline outline_;
};

// A rectangle with rounded corners, or only its rim.
class BoxPattern : public Pattern {
public:
    explicit BoxPattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    std::vector<float> rect_;  // left, top, right, bottom; empty: the whole area
    float radius_, rim_;
    Outline outline_;
};

// A strip across the whole area.
class BandPattern : public Pattern {
public:
    explicit BandPattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    float from_, to_;
    bool upright_;
    Outline outline_;
};

class DiscsPattern : public Pattern {
public:
    explicit DiscsPattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    std::vector<float> at_;  // x, y pairs; empty: the middle of the area
    float radius_, hole_;
    Outline outline_;
};

class PolygonPattern : public Pattern {
public:
    explicit PolygonPattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    std::vector<float> points_;  // x, y pairs
    Outline outline_;
};

class StripesPattern : public Pattern {
public:
    explicit StripesPattern(const TomlTable& settings);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    std::vector<float> count_;  // stripes across the width and down the height; both: slanting
    float share_;
    Outline outline_;
};

// Places that stand out above their surroundings: where paint wears off first.
class EdgesPattern : public Pattern {
public:
    explicit EdgesPattern(const TomlTable& settings);
    void Prepare(const Canvas& canvas) override;
    Sample At(const Spot& spot, const Moment&) const override;

protected:
    float sign_ = 1;

private:
    float radius_, gain_;
    std::vector<float> strength_;
};

// Places below their surroundings: where dirt gathers.
class CrevicesPattern : public EdgesPattern {
public:
    explicit CrevicesPattern(const TomlTable& settings) : EdgesPattern(settings) { sign_ = -1; }
};

// A painted PNG beside the recipe; its transparent parts let the layers below through.
class PicturePattern : public Pattern {
public:
    PicturePattern(const TomlTable& settings, PictureSource& pictures);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    const Image& image_;  // owned by the source
};

// Another recipe's finished picture, smoothed where it is drawn larger or smaller.
class MaterialPattern : public Pattern {
public:
    MaterialPattern(const TomlTable& settings, PictureSource& pictures);
    Sample At(const Spot& spot, const Moment&) const override;

private:
    const Image& image_;  // owned by the source
    float zoom_;          // texels here for one of the material
};

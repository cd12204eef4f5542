// What a layer of a material draws: bricks, boards, stones, boxes, noise ... docs/materials.md lists them with their
// settings; pattern_table.cpp has their names.
#pragma once

#include "formats/toml_table.h"
#include "texc/canvas.h"

#include <memory>
#include <optional>

// What a pattern gives at one place.
struct Sample {
    float cover = 0;               // how much of it is there when it is painted, 0..1
    float value = 0;               // chooses the colour from the layer's ramp, 0..1
    float strength = 0;            // how much it lets through when it is a mask, 0..1
    float profile = 0;             // how far it rises, in units of the layer's `raise`
    uint32_t cell = 0;             // which of its bricks, boards, stones this is; 0 when it has none
    std::optional<Colour> colour;  // set by patterns that bring colours of their own
};

struct Spot {
    float x, y;           // texels, in the pattern's own area
    float width, height;  // the area; patterns repeat after it
    uint32_t seed;
    size_t index;  // index of the sample on the canvas
};

// The animation picture being drawn.
struct Moment {
    float phase = 0;  // 0..1 around the cycle
};

class Pattern {
public:
    virtual ~Pattern() = default;
    // Before the layer is drawn: look at what lies below.
    virtual void Prepare(const Canvas&) {}
    virtual Sample At(const Spot& spot, const Moment& moment) const = 0;
};

// How a face of the map is painted: from a place to texel coordinates.
#pragma once

#include "formats/material_list.h"
#include "mapc/map_file.h"
#include "mapc/winding.h"

constexpr double UNITS_PER_TEXEL = 2;  // used where the map gives no scale

struct FaceTexture {
    const Material* material = nullptr;
    bool smooth = false;       // a terrain's: points are shared whatever the angle, and faces not merged
    bool cornerLight = false;  // a light byte per corner instead of per point
    Vec3 uAxis, vAxis;         // texels per map unit
    double uOffset = 0;        // texels
    double vOffset = 0;
    SourceLine line;  // line of the face in its map

    double U(const Vec3& p) const { return (Dot(p, uAxis) + uOffset) * 256; }  // 1/256 texel, as the engine wants it
    double V(const Vec3& p) const { return (Dot(p, vAxis) + vOffset) * 256; }
};

// Writes a face of the first form in the second, where it can be moved and turned.
void GiveAxes(MapFace& face, const Vec3& normal);
// The face's own texture axes, or those that its direction and rotation give.
FaceTexture TextureOf(const MapFace& face, const Vec3& normal, const Material& material);
// Whether two textures paint every place alike, apart from whole repeats.
bool PaintAlike(const FaceTexture& a, const FaceTexture& b);
// Moves the texture by whole repeats so that the coordinates of the faces stay small, and keeps a picture that fits
// them exactly half a texel inside its border, where neither wrapping nor filtering reaches the opposite side. The
// accelerator's repeats are a little short, so faces that continue each other must be moved together.
void PlaceTexture(FaceTexture& texture, const std::vector<const Winding*>& windings);

#include "render/submit.h"

#include "render/raster.h"
#include "render/textures.h"

uint32_t SubmittedPolygons;

void SubmitPolygon(const PolyRecord* polygon, uint32_t drawFlags) {
    SubmittedPolygons++;
    const TextureRecord* texture = PolygonTexture(*polygon);
    if (texture == nullptr) return;
    if (texture->isTransparent == 1 || (drawFlags & DRAW_TRANSPARENT) != 0)
        RasterPolygonTransparent(polygon);
    else
        RasterPolygon(polygon);
}

// Comes with the accelerator: the software rasteriser keeps no current texture.
void ResetCurrentTexture() {}

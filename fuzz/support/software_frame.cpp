#include "support/software_frame.h"

#include "render/raster.h"
#include "render/render_tables.h"
#include "world/world_tables.h"

#include <vector>

namespace {

std::vector<uint8_t> frame;
std::vector<uint8_t> textures;
std::vector<uint8_t> remap(256);

}  // namespace

void SetUpSoftwareFrame() {
    if (!frame.empty()) return;
    BuildReciprocalTable();
    ScreenWidth = FramePitch = 320;
    ScreenHeight = 240;
    frame.resize(320 * 240);
    FrameBuffer = frame.data();
    ProjectionScaleX = 316.8f;
    ProjectionScaleY = 237.6f;
    ScreenAspect = ProjectionScaleX / ProjectionScaleY;
    ScreenCentreX = 160.0f;
    ScreenCentreY = 120.0f;
    FarDistance = FadeDistance = 5000.0f;

    textures.resize(TEXTURE_RECORDS_OFFSET + sizeof(TextureRecord) + TEXTURE_PAGE_BYTES);
    TextureImage = textures.data();
    TextureCount = 256;  // any texture number is allowed; all show the first texture
    TextureRemap = remap.data();
    TextureRecords()[0] = {TEXTURE_RECORDS_OFFSET + sizeof(TextureRecord), 0, 0, 0, 0, 0, 64, 64};
}

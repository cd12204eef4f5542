// An accelerator texture, from its header to texels in the board's memory.
#include "boards/boards.h"
#include "boards/cpu/cpu_board.h"
#include "boards/texture_file.h"

#include <vector>

namespace {

// Opening the screen takes far longer than a texture, so it is opened again only when no handle is left.
void OpenScreen() {
    CurrentBoard = &CpuBoard;
    CpuBoardThreads = 1;
    grSstWinOpen(nullptr, GR_RESOLUTION_640x480, GR_REFRESH_60Hz, GR_COLORFORMAT_ARGB, GR_ORIGIN_UPPER_LEFT, 2, 1);
}

void Download(std::FILE* file, Gu3dfInfo& info) {
    std::vector<uint8_t> texels(info.mem_required);
    info.data = texels.data();
    if (!ReadTexels(file, info)) return;
    const Gu3dfHeader& header = info.header;
    const GrMipMapId_t handle = guTexAllocateMemory(
        GR_TMU0, GR_MIPMAPLEVELMASK_BOTH, header.width, header.height, header.format, GR_MIPMAP_NEAREST,
        header.small_lod, header.large_lod, header.aspect_ratio, GR_TEXTURECLAMP_WRAP, GR_TEXTURECLAMP_CLAMP,
        GR_TEXTUREFILTER_BILINEAR, GR_TEXTUREFILTER_BILINEAR, 0, FXFALSE);
    if (handle == GR_NULL_MIPMAP_HANDLE) OpenScreen();
    guTexDownloadMipMap(handle, info.data, &info.table);
    guTexSource(handle);
}

// Draws near and far, so that every level of the texture is read.
void DrawWithIt() {
    const auto vertex = [](float x, float y, float w) {
        return GrVertex{x, y, 1 / w, 255, 255, 255, 0, {{(4 * x - 300) / w, (4 * y - 300) / w}}};
    };
    const GrVertex a = vertex(0, 0, 1), b = vertex(0, 20, 9000), c = vertex(30, 10, 30);
    grDrawTriangle(&a, &b, &c);
    grSstIdle();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t bytes) {
    if (bytes == 0) return 0;
    if (!CurrentBoard) OpenScreen();
    std::vector<uint8_t> content(data, data + bytes);
    std::FILE* file = fmemopen(content.data(), bytes, "rb");
    Gu3dfInfo info{};
    if (ReadTextureHeader(file, info)) Download(file, info);
    std::fclose(file);
    DrawWithIt();
    return 0;
}

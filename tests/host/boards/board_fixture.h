// An open screen on a board, in the state in which a game draws its world, and what tests draw there.
#pragma once

#include "boards/boards.h"
#include "boards/cpu/cpu_board.h"
#include "boards/gpu/gl_context.h"
#include "boards/gpu/gpu_board.h"
#include "host/glide.h"
#include "interfaces/presentation.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

class BoardTest : public testing::Test {
protected:
    virtual const Board* TheBoard() { return &CpuBoard; }

    void SetUp() override {
        UseTestMachine();
        std::string error;
        if (TheBoard() == &GpuBoard && !EnterGl(error)) GTEST_SKIP() << error;
        CurrentBoard = TheBoard();
        grGlideInit();
        ASSERT_TRUE(grSstWinOpen(nullptr, GR_RESOLUTION_640x480, GR_REFRESH_60Hz, GR_COLORFORMAT_ARGB,
                                 GR_ORIGIN_UPPER_LEFT, 2, 1));
        grColorCombine(GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA, GR_COMBINE_FACTOR_LOCAL,
                       GR_COMBINE_LOCAL_ITERATED, GR_COMBINE_OTHER_TEXTURE, FXFALSE);
        grAlphaTestReferenceValue(0);
        grAlphaTestFunction(GR_CMP_EQUAL);
        grDepthBufferMode(GR_DEPTHBUFFER_WBUFFER);
        grDepthBufferFunction(GR_CMP_LESS);
        grDepthMask(FXTRUE);
        grCullMode(GR_CULL_POSITIVE);
        grBufferClear(0, 0, 0xFFFF);
    }
    void TearDown() override {
        grGlideShutdown();
        CurrentBoard = nullptr;
    }

    using TexelOf = std::function<uint16_t(uint32_t lod, uint32_t x, uint32_t y)>;

    // Makes the texture current.
    static GrMipMapId_t MakeTexture(GrTextureFormat_t format, GrLOD_t large, GrLOD_t small, GrAspectRatio_t aspect,
                                    const TexelOf& texel);
    static GrMipMapId_t MakePlain(uint16_t texel, GrTextureFormat_t format = GR_TEXFMT_ARGB_1555) {
        return MakeTexture(format, GR_LOD_8, GR_LOD_8, GR_ASPECT_1x1, [=](auto...) { return texel; });
    }

    static GrVertex Vertex(float x, float y, float w = 100, float s = 128, float t = 128) {
        return {x, y, 1 / w, 255, 255, 255, 0, {{s / w, t / w}}};
    }
    static void DrawFan(std::vector<GrVertex> corners) {
        for (size_t i = 1; i + 1 < corners.size(); ++i)
            grDrawTriangle(&corners[0], &corners[i], &corners[i + 1]);
    }
    // Counter-clockwise on the screen; s and t run over it from 0 to the given ends.
    static void DrawQuad(float left, float top, float right, float bottom, float w = 100, float s = 256,
                         float t = 256) {
        DrawFan({Vertex(left, top, w, 0, 0), Vertex(left, bottom, w, 0, t), Vertex(right, bottom, w, s, t),
                 Vertex(right, top, w, s, 0)});
    }

    struct Shown {
        const Picture* picture;
        uint32_t At(int x, int y) const { return picture->pixels[y * picture->width + x]; }
        int Count() const {
            int drawn = 0;
            for (int i = 0; i < picture->width * picture->height; ++i)
                drawn += picture->pixels[i] != 0;
            return drawn;
        }
    };
    static Shown Swap() {
        grBufferSwap(1);
        return {FrontPicture()};
    }
    static Shown SwapAndClear() {
        const Shown shown = Swap();
        grBufferClear(0, 0, 0xFFFF);
        return shown;
    }
};

#include "core/display.h"
#include "core/presentation.h"
#include "core/testing.h"
#include "host/ddraw.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

class Display : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        DirectDrawCreate(nullptr, &directDraw_, nullptr);
    }

    void TearDown() override {
        if (offscreen_) offscreen_->Release();
        if (primary_) primary_->Release();
        directDraw_->Release();
    }

    void Open(DWORD width, DWORD height, DWORD bits) {
        ASSERT_EQ(directDraw_->SetDisplayMode(width, height, bits), DD_OK);
        DDSURFACEDESC description{};
        description.dwSize = sizeof description;
        description.dwFlags = DDSD_CAPS | DDSD_BACKBUFFERCOUNT;
        description.ddsCaps.dwCaps = DDSCAPS_PRIMARYSURFACE | DDSCAPS_FLIP | DDSCAPS_COMPLEX;
        description.dwBackBufferCount = 1;
        ASSERT_EQ(directDraw_->CreateSurface(&description, &primary_, nullptr), DD_OK);
        const DDSCAPS backCaps{DDSCAPS_BACKBUFFER};
        ASSERT_EQ(primary_->GetAttachedSurface(&backCaps, &back_), DD_OK);
        description = {};
        description.dwSize = sizeof description;
        description.dwFlags = DDSD_CAPS | DDSD_HEIGHT | DDSD_WIDTH;
        description.ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN | DDSCAPS_SYSTEMMEMORY;
        description.dwWidth = width;
        description.dwHeight = height;
        ASSERT_EQ(directDraw_->CreateSurface(&description, &offscreen_, nullptr), DD_OK);
    }

    static HRESULT Fill(IDirectDrawSurface* surface, DWORD colour, const RECT* area = nullptr) {
        const DDBLTFX effects{sizeof effects, colour};
        return surface->Blt(area, nullptr, nullptr, DDBLT_COLORFILL | DDBLT_WAIT, &effects);
    }

    // The pixel values of the surface's upper left corner.
    static std::vector<uint8_t> Corner(IDirectDrawSurface* surface, size_t rows, size_t columns) {
        DDSURFACEDESC description{};
        description.dwSize = sizeof description;
        EXPECT_EQ(surface->Lock(nullptr, &description, DDLOCK_WAIT, nullptr), DD_OK);
        std::vector<uint8_t> values;
        const auto* pixels = static_cast<const uint8_t*>(description.lpSurface);
        for (size_t y = 0; y < rows; ++y)
            for (size_t x = 0; x < columns; ++x)
                values.push_back(pixels[y * static_cast<size_t>(description.lPitch) + x]);
        surface->Unlock(nullptr);
        return values;
    }

    IDirectDraw* directDraw_ = nullptr;
    IDirectDrawSurface* primary_ = nullptr;
    IDirectDrawSurface* back_ = nullptr;
    IDirectDrawSurface* offscreen_ = nullptr;
};

TEST_F(Display, BlitsStretchToTheNearestPixelAndStayInsideTheirRectangles) {
    Open(320, 240, 8);
    const RECT left{0, 0, 1, 1};
    const RECT right{1, 0, 2, 1};
    Fill(offscreen_, 1, &left);
    Fill(offscreen_, 2, &right);
    const RECT source{0, 0, 3, 1};
    const RECT destination{1, 1, 6, 3};
    EXPECT_EQ(back_->Blt(&destination, offscreen_, &source, DDBLT_WAIT, nullptr), DD_OK);
    const std::vector<uint8_t> expected = {0, 0, 0, 0, 0, 0, 0,  //
                                           0, 1, 1, 2, 2, 0, 0,  //
                                           0, 1, 1, 2, 2, 0, 0,  //
                                           0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(Corner(back_, 4, 7), expected);
    for (const RECT& bad : {RECT{-1, 0, 5, 5}, RECT{0, 0, 321, 5}, RECT{0, 0, 5, 241}, RECT{5, 5, 5, 6}}) {
        EXPECT_NE(back_->Blt(&bad, offscreen_, nullptr, DDBLT_WAIT, nullptr), DD_OK);
        EXPECT_NE(Fill(back_, 9, &bad), DD_OK);
    }
}

}  // namespace

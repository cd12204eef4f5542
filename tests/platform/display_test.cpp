#include "platform/display.h"

#include "formats/files.h"
#include "formats/image.h"
#include "interfaces/display.h"
#include "interfaces/presentation.h"
#include "platform/bitmap.h"
#include "render/render_tables.h"
#include "support/test_window.h"
#include "testing/test_machine.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace {

class DisplayTest : public ::testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        SetTestDataFolder(::testing::TempDir());
        window = OpenTestWindow();
        DisplayModeCount = 0;
        ScreenResIndex = 0;
    }
    void TearDown() override { CloseDisplay(); }

    bool OpenFrontEnd() { return OpenDisplay(window, Display, 640, 480, 16); }

    // Fills the offscreen surface of an 8-bit display.
    static void Fill(uint8_t index) {
        ASSERT_EQ(LockSurface(), DD_OK);
        for (LONG y = 0; y < Display.mode.bottom; ++y)
            std::memset(SurfaceMemory + y * SurfacePitch, index, static_cast<size_t>(Display.mode.right));
        UnlockSurface();
    }

    static uint32_t PixelShown(int x, int y) {
        const Picture* picture = FrontPicture();
        return picture->pixels[y * picture->width + x];
    }

    HWND window = nullptr;
};

// A bitmap of 2 x 2 pixels: the first stored row is red, the second blue.
std::vector<uint8_t> BitmapBytes(int32_t height) {
    Image picture(2, 2, {0, 0, 255, 255});
    picture.At(0, 1) = picture.At(1, 1) = {255, 0, 0, 255};
    std::vector<uint8_t> file = EncodeBitmap(picture);
    std::memcpy(&file[22], &height, sizeof height);
    return file;
}

void WriteFile(const std::string& name, const std::vector<uint8_t>& bytes) {
    WriteWholeFile(std::filesystem::path(::testing::TempDir()) / name, bytes);
}

}  // namespace

TEST_F(DisplayTest, FirstModeOfThatDepthAndAtLeastThatSizeIsStretchedTo) {
    SetScreenModes({{640, 480, 8}, {320, 240, 16}, {800, 600, 16}, {640, 480, 16}});
    ShowCursor(TRUE);
    ASSERT_TRUE(OpenFrontEnd());
    EXPECT_EQ(ShowCursor(FALSE), -2);  // the cursor is hidden while the display is open
    EXPECT_EQ(DisplayState, DISPLAY_FULL_SCREEN);
    EXPECT_EQ(CurrentScreenMode().width, 800u);
    EXPECT_EQ(Display.palette, nullptr);
    EXPECT_EQ(Display.source.right, 640);
    WriteFile("small.bmp", BitmapBytes(2));
    ShowBitmap("small.bmp");
    PresentDisplay();
    EXPECT_EQ(FrontPicture()->width, 800);
    EXPECT_EQ(PixelShown(799, 599) & 0xF80000, 0xF80000u);  // the picture's corner reaches the screen's
    CloseDisplay();
    EXPECT_EQ(ShowCursor(TRUE), 1);
    EXPECT_EQ(CurrentScreenMode().bits, 32u);
}

TEST_F(DisplayTest, WithoutAFittingModeNothingStaysOpenAndCallsAreHarmless) {
    for (const std::vector<ScreenMode>& modes : {std::vector<ScreenMode>{{640, 480, 8}, {320, 240, 16}}, {}}) {
        SetScreenModes(modes);
        DisplayModeCount = 0;
        EXPECT_FALSE(OpenFrontEnd());
        EXPECT_EQ(DisplayState, DISPLAY_NONE);
        EXPECT_EQ(Display.directDraw, nullptr);
        EXPECT_EQ(CurrentScreenMode().bits, 32u);  // the desktop's mode stays
    }
    EXPECT_TRUE(Failed(LockSurface()));
    EXPECT_TRUE(Failed(FlipDisplay(nullptr)));
    UnlockSurface();
    PresentDisplay();
    ClearSurface(Display.offscreen);
    EXPECT_FALSE(SetPaletteRange(nullptr, Display, 0, 255));
    EXPECT_EQ(ShowBitmap("small.bmp"), 1);
}

TEST_F(DisplayTest, LostSurfacesAreRestoredAndTheFlipTriedAgain) {
    ASSERT_TRUE(OpenSoftwareDisplay(window));
    Fill(1);
    LoseSurfaces();
    EXPECT_EQ(FlipDisplay(nullptr), DD_OK);
    EXPECT_EQ(FlipCount(), 1u);
    LoseSurfaces();
    PresentDisplay();
    EXPECT_EQ(FlipCount(), 2u);
    PresentDisplay();
    EXPECT_EQ(PixelShown(0, 0), 0x800000u);  // system colour 1 is dark red
}

TEST_F(DisplayTest, FillsTheScreenTheRightWayUp) {
    ASSERT_TRUE(OpenFrontEnd());
    for (const int32_t height : {2, -2}) {
        WriteFile("picture.bmp", BitmapBytes(height));
        EXPECT_EQ(ShowBitmap("Picture.BMP"), 1);
        PresentDisplay();
        EXPECT_EQ(PixelShown(0, 0) & 0xF80000, height > 0 ? 0u : 0xF80000u);  // bottom-up: red is the lower half
        EXPECT_EQ(PixelShown(639, 239) & 0xF80000, height > 0 ? 0u : 0xF80000u);
        EXPECT_EQ(PixelShown(0, 240) & 0xF80000, height > 0 ? 0xF80000u : 0u);
    }
}

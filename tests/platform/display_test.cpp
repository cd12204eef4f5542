#include "platform/display.h"

#include "fake_machine.h"
#include "platform/image.h"
#include "render/render_tables.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

namespace {

class DisplayTest : public ::testing::Test {
protected:
    void SetUp() override {
        Fake = {};
        DisplayModeCount = 0;
        ScreenResIndex = 0;
        AddFakeMode(320, 240, 8);
        AddFakeMode(640, 480, 8);
        AddFakeMode(800, 600, 16);
    }
    void TearDown() override {
        if (DisplayState != DISPLAY_NONE) CloseDisplay();
        EXPECT_EQ(Fake.heldObjects, 0);
    }

    static bool OpenFrontEnd() { return OpenDisplay(nullptr, Display, 640, 480, 16); }

    static long Count(const std::string& call) { return std::count(Fake.calls.begin(), Fake.calls.end(), call); }
};

using BitmapTest = DisplayTest;

void ExpectRect(const RECT& rect, int right, int bottom) {
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.top, 0);
    EXPECT_EQ(rect.right, right);
    EXPECT_EQ(rect.bottom, bottom);
}

// A file header, an info header and the bits.
std::vector<uint8_t> BitmapFile(int32_t width, int32_t height, uint8_t bits) {
    std::vector<uint8_t> file(58);
    file[0] = 'B';
    file[1] = 'M';
    file[10] = 54;
    std::memcpy(&file[18], &width, 4);
    std::memcpy(&file[22], &height, 4);
    file[54] = bits;
    return file;
}

}  // namespace

TEST_F(DisplayTest, FirstModeOfThatDepthAndAtLeastThatSizeIsStretchedTo) {
    ASSERT_TRUE(OpenFrontEnd());
    EXPECT_EQ(DisplayState, DISPLAY_FULL_SCREEN);
    EXPECT_EQ(Fake.modeWidth, 800u);
    EXPECT_EQ(Fake.modeBits, 16u);
    ASSERT_EQ(Fake.surfaces.size(), 2u);
    EXPECT_EQ(Fake.surfaces[0].ddsCaps.dwCaps, 0x218u);
    EXPECT_EQ(Fake.surfaces[0].dwBackBufferCount, 1u);
    EXPECT_EQ(Fake.surfaces[1].ddsCaps.dwCaps, 0x840u);
    EXPECT_EQ(Fake.surfaces[1].dwWidth, 800u);  // the mode's size, not the requested one
    EXPECT_EQ(Count("CreatePalette"), 0);
    PresentDisplay();
    ExpectRect(Fake.blitFrom, 640, 480);
    ExpectRect(Fake.blitTo, 800, 600);
    EXPECT_EQ(Count("Flip"), 1);
}

TEST_F(DisplayTest, FailureAtAnyCallHoldsNothing) {
    const auto attempt = [] { return OpenSoftwareDisplay(nullptr); };
    ASSERT_TRUE(attempt());
    const int calls = static_cast<int>(Fake.calls.size());
    CloseDisplay();
    ASSERT_GE(calls, 10);
    for (int failing = 0; failing < calls; failing++) {
        Fake.calls.clear();
        Fake.failingCall = failing;
        EXPECT_FALSE(attempt()) << failing;
        EXPECT_EQ(Fake.heldObjects, 0) << Fake.calls[static_cast<size_t>(failing)];
        EXPECT_EQ(Display.directDraw, nullptr);
        EXPECT_EQ(DisplayState, DISPLAY_NONE);
        EXPECT_EQ(Fake.cursor, 0);
    }
    Fake.failingCall = -1;
    Fake.modes.erase(Fake.modes.begin(), Fake.modes.begin() + 2);
    DisplayModeCount = 0;
    EXPECT_FALSE(attempt());  // no 8-bit mode at all
    EXPECT_EQ(Fake.heldObjects, 0);
}

TEST_F(DisplayTest, CursorIsHiddenWhileOpen) {
    Fake.cursor = 2;
    ASSERT_TRUE(OpenFrontEnd());
    EXPECT_EQ(Fake.cursor, -1);
    CloseDisplay();
    EXPECT_EQ(Fake.cursor, 0);
    EXPECT_EQ(DisplayState, DISPLAY_NONE);
    CloseDisplay();
}

TEST_F(DisplayTest, ModeTableSkipsNeighbouringDoublesAndStopsAtItsLimit) {
    AddFakeMode(800, 600, 16);  // another refresh rate
    AddFakeMode(320, 240, 8);   // not next to its double
    ASSERT_TRUE(OpenFrontEnd());
    EXPECT_EQ(DisplayModeCount, 4);
    CloseDisplay();
    for (uint32_t i = 0; i < 200; i++)
        AddFakeMode(1000 + i, 1000, 16);
    ASSERT_TRUE(OpenFrontEnd());
    EXPECT_EQ(DisplayModeCount, DISPLAY_MODE_LIMIT);
    CloseDisplay();
    ASSERT_TRUE(OpenFrontEnd());
    EXPECT_EQ(DisplayModeCount, DISPLAY_MODE_LIMIT);
}

TEST_F(DisplayTest, LostSurfacesAreRestoredAndTheFlipTriedAgain) {
    ASSERT_TRUE(OpenFrontEnd());
    Fake.surfacesLost = true;
    Fake.calls.clear();
    EXPECT_EQ(FlipDisplay(nullptr), DD_OK);
    EXPECT_EQ(Fake.calls, (std::vector<std::string>{"Flip", "Restore", "Flip"}));
    Fake.surfacesLost = true;
    Fake.calls.clear();
    PresentDisplay();  // the lost picture is not copied again
    EXPECT_EQ(Fake.calls, (std::vector<std::string>{"Blt", "Restore", "Flip"}));
}

TEST_F(DisplayTest, LockTellsMemoryAndPitchAndKeepsThemOnFailure) {
    ASSERT_TRUE(OpenSoftwareDisplay(nullptr));
    SurfaceMemory = nullptr;
    SurfacePitch = 7;
    Fake.failingCall = static_cast<int>(Fake.calls.size());
    EXPECT_TRUE(Failed(LockSurface()));
    EXPECT_EQ(SurfacePitch, 7);
    EXPECT_EQ(LockSurface(), DD_OK);
    EXPECT_NE(SurfaceMemory, nullptr);
    EXPECT_EQ(SurfacePitch, 336);
}

TEST_F(DisplayTest, WithoutADisplayCallsAreHarmless) {
    Display = {};
    EXPECT_TRUE(Failed(LockSurface()));
    EXPECT_TRUE(Failed(FlipDisplay(nullptr)));
    UnlockSurface();
    PresentDisplay();
    ClearSurface(Display.offscreen);
    EXPECT_EQ(RestoreSurfaces(), DD_OK);
    EXPECT_TRUE(Fake.calls.empty());
}

TEST_F(DisplayTest, PaletteRangeScalesSixBitsAndKeepsTheSystemColoursOutsideIt) {
    for (BYTE& red : {std::ref(Fake.systemPalette[4].peRed), std::ref(Fake.systemPalette[255].peRed)})
        red = 99;
    ASSERT_TRUE(OpenSoftwareDisplay(nullptr));
    EXPECT_EQ(Fake.palette[4].peRed, 99);
    uint8_t colours[256 * 3];
    for (size_t i = 0; i < sizeof(colours); i++)
        colours[i] = static_cast<uint8_t>(i % 64);

    ASSERT_TRUE(SetPaletteRange(colours, Display, 5, 254));
    EXPECT_EQ(Fake.palette[4].peRed, 99);
    EXPECT_EQ(Fake.palette[255].peRed, 99);
    EXPECT_EQ(Fake.palette[5].peRed, 15 * 4);
    EXPECT_EQ(Fake.palette[5].peBlue, 17 * 4);
    EXPECT_EQ(Fake.palette[21].peRed, 252);
    EXPECT_EQ(Fake.palette[21].peFlags, PC_NOCOLLAPSE);
    ASSERT_TRUE(SetPaletteRange(colours, Display, 0, 255));
    EXPECT_EQ(Fake.palette[255].peRed, 765 % 64 * 4);

    Fake.failingCall = static_cast<int>(Fake.calls.size()) + 1;
    EXPECT_FALSE(SetPaletteRange(colours, Display, 0, 255));
}

TEST_F(BitmapTest, FillsTheRequestedSizeAndIsReleased) {
    ASSERT_TRUE(OpenFrontEnd());
    const int held = Fake.heldObjects;
    Fake.files["a.bmp"] = BitmapFile(320, -240, 0xAB);
    EXPECT_EQ(ShowBitmap("a.bmp"), 1);
    const int32_t area[] = {0, 0, 640, 480};
    EXPECT_TRUE(std::equal(area, area + 4, Fake.drawnArea));
    EXPECT_EQ(Fake.drawnSize[0], 320);
    EXPECT_EQ(Fake.drawnSize[1], -240);
    EXPECT_EQ(Fake.drawnBits, 0xAB);
    EXPECT_EQ(Fake.heldObjects, held);
}

TEST_F(BitmapTest, BadFilesDrawNothingAndHoldNothing) {
    ASSERT_TRUE(OpenFrontEnd());
    const int held = Fake.heldObjects;
    Fake.files["empty"] = {};
    Fake.files["one byte"] = {'B'};
    Fake.files["signature only"] = {'B', 'M'};
    Fake.files["not a bitmap"] = BitmapFile(1, 1, 0);
    Fake.files["not a bitmap"][1] = 'A';
    Fake.files["no bits"] = BitmapFile(1, 1, 0);
    Fake.files["no bits"][10] = 58;
    for (const char* path : {"missing", "empty", "one byte", "signature only", "not a bitmap", "no bits"}) {
        EXPECT_EQ(ShowBitmap(path), 1) << path;
        EXPECT_EQ(Count("StretchDIBits"), 0) << path;
        EXPECT_EQ(Fake.heldObjects, held) << path;
    }
}

TEST_F(BitmapTest, FailureAtAnyCallHoldsNothing) {
    Fake.files["a.bmp"] = BitmapFile(1, 1, 0);
    for (int failing = 0; failing < 4; failing++) {
        Fake.calls.clear();
        Fake.failingCall = failing;
        BitmapInfo info;
        EXPECT_EQ(LoadBitmapFile("a.bmp", info), nullptr) << failing;
        EXPECT_EQ(info.bits, nullptr);
        EXPECT_EQ(Fake.heldObjects, 0) << failing;
    }
    EXPECT_EQ(Fake.calls.back(), "ReadFile");
}

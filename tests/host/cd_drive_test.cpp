#include "interfaces/cd_drive.h"

#include "host/mci.h"
#include "machine/clock.h"
#include "support/sound_file.h"
#include "support/test_window.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

std::vector<WPARAM> codes;
LPARAM notifier;

LRESULT Procedure(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == MM_MCINOTIFY) codes.push_back(wParam), notifier = lParam;
    return 0;
}

constexpr uint32_t LENGTH = 2000;  // length of track 2 in ms
constexpr DWORD OVER = 282, CLOSED = 257;

class CdDrive : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        std::filesystem::create_directories(folder);
        WriteSound(folder + "/track02.wav", WAV, 8000, 2, Triangle(16000, 2));
        WriteSound(folder + "/track03.wav", WAV, 8000, 2, Triangle(8000, 2));
        WriteSound(folder + "/track05.wav", WAV, 8000, 2, Triangle(1, 2));
        SetDiscFolder(folder);
        window = OpenTestWindow(Procedure);
        codes.clear();
    }
    void TearDown() override { ResetCdDrive(); }

    MCIERROR Open() {
        MCI_OPEN_PARMSA open{};
        open.lpstrDeviceType = "cdaudio";
        const MCIERROR result = mciSendCommandA(0, MCI_OPEN, MCI_OPEN_TYPE, &open);
        if (result == 0) device = open.wDeviceID;
        return result;
    }
    MCIERROR Play(DWORD from, DWORD to, DWORD flags = MCI_NOTIFY | MCI_FROM | MCI_TO) {
        MCI_PLAY_PARMS play{reinterpret_cast<uintptr_t>(window), from, to};
        return mciSendCommandA(device, MCI_PLAY, flags, &play);
    }
    MCIERROR Send(UINT message) { return mciSendCommandA(device, message, 0, nullptr); }

    // The notifications that have come by the time `now`.
    std::vector<WPARAM> At(uint32_t now) {
        SetTestClock(now);
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
        return std::exchange(codes, {});
    }

    using Codes = std::vector<WPARAM>;
    const std::string folder = testing::TempDir() + "/cd";
    HWND window = nullptr;
    MCIDEVICEID device = 0;
};

TEST_F(CdDrive, EndOfATrackIsToldOnceAndARepeatGoesOnFromThere) {
    ASSERT_EQ(Open(), 0u);
    SetTestClock(100);
    EXPECT_EQ(Play(2, 3), 0u);
    EXPECT_EQ(At(100 + LENGTH - 1), Codes{});
    EXPECT_EQ(At(100 + LENGTH + 40), Codes{MCI_NOTIFY_SUCCESSFUL});
    EXPECT_EQ(notifier, static_cast<LPARAM>(device));
    EXPECT_EQ(Play(2, 3), 0u);
    EXPECT_EQ(TestMachine.sounds.size(), 1u) << "its sound goes round by itself";
    EXPECT_EQ(At(100 + 2 * LENGTH - 1), Codes{});
    EXPECT_EQ(At(100 + 2 * LENGTH), Codes{MCI_NOTIFY_SUCCESSFUL});
    EXPECT_EQ(At(100 + 2 * LENGTH + 999), Codes{});
    EXPECT_TRUE(TestMachine.sounds.back());
    At(100 + 2 * LENGTH + 1000);
    EXPECT_FALSE(TestMachine.sounds.back()) << "nobody repeated it";
    EXPECT_EQ(Play(2 | 1 << 16, 2 | 1 << 16 | 15 << 24), 0u) << "from 1 s to 1.2 s";
    const uint32_t start = ClockNow();
    EXPECT_EQ(At(start + 199), Codes{});
    EXPECT_EQ(At(start + 200), Codes{MCI_NOTIFY_SUCCESSFUL});
}

TEST_F(CdDrive, WhatMakesTheEndUnreachableAbortsAndTheSamePlayDoesNot) {
    Open();
    Play(2, 3);
    EXPECT_EQ(Play(2, 3), 0u);
    EXPECT_EQ(At(10), Codes{});
    EXPECT_EQ(Play(3, 4), 0u) << "another end";
    EXPECT_EQ(At(20), Codes{MCI_NOTIFY_ABORTED});
    EXPECT_EQ(Send(MCI_STOP), 0u);
    EXPECT_EQ(Send(MCI_STOP), 0u);
    EXPECT_EQ(Send(MCI_CLOSE), 0u);
    EXPECT_EQ(At(30), Codes{MCI_NOTIFY_ABORTED}) << "once";
    Open();
    Play(2, 3);
    Send(MCI_CLOSE);
    EXPECT_EQ(At(40), Codes{MCI_NOTIFY_ABORTED});
    EXPECT_EQ(Play(2, 3), CLOSED);
}

TEST_F(CdDrive, RefusesWhatItCannotDo) {
    EXPECT_EQ(Play(2, 3), CLOSED);
    EXPECT_EQ(Open(), 0u);
    EXPECT_NE(Open(), 0u) << "not shareable";
    EXPECT_EQ(Play(3, 4), 0u);
    EXPECT_EQ(Play(6, 7), OVER) << "the last track is one more than the highest file";
    EXPECT_EQ(Play(4, 5), OVER) << "there is no such file";
    EXPECT_EQ(Play(6, 6 | 1 << 16), OVER);
    EXPECT_EQ(Play(3, 2), OVER);
    EXPECT_EQ(Play(255, 0), OVER);
    EXPECT_EQ(Play(2 | 1 << 8, 3), OVER) << "it is not that long";
    EXPECT_NE(Play(2, 3, MCI_NOTIFY | MCI_FROM), 0u);
    EXPECT_NE(mciSendCommandA(device, 0x999, 0, nullptr), 0u);
    EXPECT_EQ(At(10), Codes{}) << "no message for what failed, and the first play is still on";
    Send(MCI_CLOSE);
    TestMachine.soundOpens = false;
    EXPECT_NE(Open(), 0u);
    TestMachine.soundOpens = true;
    SetDiscFolder(folder + "/none");
    EXPECT_NE(Open(), 0u);
}

TEST_F(CdDrive, AnsweringEveryMessageWithAPlayComesToAnEndEvenOnTheShortestTrack) {
    Open();
    Play(5, 6);
    uint32_t told = 0;
    for (uint32_t now = 100; now <= 200; now += 50) {
        SetTestClock(now);
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE); Play(5, 6))
            ASSERT_LE(++told, 3u);
    }
    EXPECT_EQ(told, 3u);
}

TEST_F(CdDrive, FileThatBreaksOffFailsAndIsNotPlayedAgain) {
    Open();
    Play(2, 3);
    std::filesystem::resize_file(folder + "/track02.wav", 5000);
    std::vector<int16_t> samples(16000);
    TestMachine.sounds.back()->Read(samples);
    EXPECT_EQ(samples.back(), 0);
    EXPECT_EQ(At(10), Codes{MCI_NOTIFY_FAILURE});
    EXPECT_EQ(Play(2, 3), OVER);
    EXPECT_EQ(Play(3, 4), 0u);
}

}  // namespace

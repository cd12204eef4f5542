#include "platform/cd_audio.h"

#include "host/mci.h"
#include "interfaces/cd_drive.h"
#include "support/sound_file.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(CdAudio, OpensOncePlaysItsTrackAndClosesAtAFailure) {
    const std::string folder = testing::TempDir() + "/cd";
    std::filesystem::create_directories(folder);
    WriteSound(folder + "/track02.wav", WAV, 8000, 2, Triangle(8000, 2));
    UseTestMachine();
    StopCd(nullptr);
    EXPECT_FALSE(OpenCdAudio()) << "no disc";
    PlayCdTrack(nullptr);
    EXPECT_TRUE(TestMachine.sounds.empty());

    SetDiscFolder(folder);
    EXPECT_TRUE(OpenCdAudio());
    EXPECT_TRUE(OpenCdAudio()) << "open already";
    CdTrack = 0x102;  // the low byte counts
    PlayCdTrack(nullptr);
    ASSERT_EQ(TestMachine.sounds.size(), 1u);
    StopCd(nullptr);
    EXPECT_FALSE(TestMachine.sounds.back());

    CdTrack = 3;  // the disc ends there
    PlayCdTrack(nullptr);
    MCI_OPEN_PARMSA other{};
    other.lpstrDeviceType = "cdaudio";
    EXPECT_EQ(mciSendCommandA(0, MCI_OPEN, MCI_OPEN_TYPE, &other), 0u) << "the failed play has closed the drive";
    EXPECT_FALSE(OpenCdAudio());
    mciSendCommandA(other.wDeviceID, MCI_CLOSE, 0, nullptr);
    CdTrack = 2;
    PlayCdTrack(nullptr);  // what the game does when a message comes late
    EXPECT_EQ(TestMachine.sounds.size(), 2u);
}

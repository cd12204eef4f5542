#include "interfaces/cd_drive.h"

#include "host/mci.h"
#include "input/message_queue.h"
#include "interfaces/disc.h"
#include "machine/clock.h"
#include "machine/log.h"
#include "machine/machine.h"
#include "machine/track_reader.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <strings.h>

namespace {

constexpr uint32_t REPEAT_WITHIN = 1000;  // ms after the end within which a repeat joins on; after that the sound stops
constexpr uint32_t FRAMES_A_SECOND = 75;

struct Play {
    DWORD from, to;
    uintptr_t callback;      // 0: nobody is notified
    uint32_t start, length;  // ms of the host's clock
    uint32_t End() const { return start + length; }
};

std::string folder;
std::optional<Disc> disc;
MCIDEVICEID lastDevice = 0;
MCIDEVICEID openDevice = 0;  // 0: closed
std::optional<Play> playing;
std::optional<Play> ended;            // its sound goes on for REPEAT_WITHIN, in case it is to be repeated
std::shared_ptr<TrackReader> reader;  // reads the file of the sound; null on a machine without sound
std::set<std::string> said;

void Log(const std::string& event) {
    HostLog("%u ms: cd: %s", ClockNow(), event.c_str());
}

void LogOnce(const std::string& event) {
    if (said.insert(event).second) Log(event);
}

uint32_t TrackOf(DWORD position) {
    return position & 0xFF;
}

uint32_t MillisecondsOf(DWORD position) {
    const uint32_t seconds = ((position >> 8) & 0xFF) * 60 + ((position >> 16) & 0xFF);
    return seconds * 1000 + (position >> 24) * 1000 / FRAMES_A_SECOND;
}

std::string TrackName(const Play& play) {
    return "track " + std::to_string(TrackOf(play.from));
}

void Silence() {
    if (reader) CurrentMachine->playSound(nullptr);
    reader.reset();
    ended.reset();
}

void EndPlay(WPARAM code, const char* name) {
    const Play play = *playing;
    playing.reset();
    if (play.callback == 0) return;
    Log("notify " + std::string(name) + ", " + TrackName(play));
    PostToWindow(MM_MCINOTIFY, code, static_cast<LPARAM>(openDevice));
}

void Abort() {
    if (playing) EndPlay(MCI_NOTIFY_ABORTED, "aborted");
}

bool DiscInDrive() {
    if (!disc) disc = ReadDisc(folder);
    if (!disc->tracks.empty()) return true;
    LogOnce("no music: there are no tracks (track02 and so on) in " + folder);
    return false;
}

bool SoundOpens() {
    if (!CurrentMachine->openSound) return true;
    std::string problem;
    if (CurrentMachine->openSound(problem)) return true;
    LogOnce("no music: there is no sound device: " + problem);
    return false;
}

MCIERROR Open(DWORD flags, MCI_OPEN_PARMSA* parameters) {
    if (!parameters || !(flags & MCI_OPEN_TYPE) || strcasecmp(parameters->lpstrDeviceType, "cdaudio") != 0)
        return MCIERR_UNRECOGNIZED_COMMAND;
    if (openDevice != 0) return MCIERR_DEVICE_OPEN;
    if (!DiscInDrive() || !SoundOpens()) return MCIERR_HARDWARE;
    openDevice = parameters->wDeviceID = ++lastDevice;
    Log("open, last track " + std::to_string(disc->lastTrack));
    return 0;
}

// The part of a track that a play asks for, in ms; nothing when the disc has no such part, and then the log says why.
std::optional<Play> FindPlay(const MCI_PLAY_PARMS& parameters) {
    const uint32_t track = TrackOf(parameters.dwFrom);
    const uint32_t endTrack = TrackOf(parameters.dwTo);
    const std::string name = "track " + std::to_string(track);
    if (std::max(track, endTrack) > disc->lastTrack) {
        LogOnce(name + " is not played: the last track is " + std::to_string(disc->lastTrack));
        return {};
    }
    const auto found = disc->tracks.find(track);
    if (found == disc->tracks.end()) {
        LogOnce(name + " is not played: it is not on the disc " + folder);
        return {};
    }
    const uint32_t from = MillisecondsOf(parameters.dwFrom);
    const uint32_t to = endTrack == track + 1 && MillisecondsOf(parameters.dwTo) == 0
                            ? found->second.milliseconds
                            : std::min(MillisecondsOf(parameters.dwTo), found->second.milliseconds);
    if (from >= to || endTrack > track + 1 || endTrack < track) {
        LogOnce(name + " is not played: a play must begin and end on the same track");
        return {};
    }
    return Play{parameters.dwFrom, parameters.dwTo, parameters.dwCallback, ClockNow(), to - from};
}

bool StartSound(const Play& play) {
    Silence();
    if (!CurrentMachine->playSound) return true;
    std::string problem;
    reader = TrackReader::Open(disc->tracks[TrackOf(play.from)].path, problem);
    if (!reader) {
        LogOnce(TrackName(play) + " is not played: " + problem);
        return false;
    }
    const uint32_t from = MillisecondsOf(play.from);
    reader->SetSpan(from, from + play.length);
    CurrentMachine->playSound(reader);
    return true;
}

MCIERROR StartPlay(DWORD flags, const MCI_PLAY_PARMS* parameters) {
    if (!parameters || !(flags & MCI_FROM) || !(flags & MCI_TO)) return MCIERR_UNRECOGNIZED_COMMAND;
    std::optional<Play> play = FindPlay(*parameters);
    if (!play) return MCIERR_OUTOFRANGE;
    if (!(flags & MCI_NOTIFY)) play->callback = 0;
    if (playing && playing->to != play->to) Abort();
    const bool again = ended && ended->from == play->from && ended->to == play->to;
    if (again && ClockNow() - ended->End() < std::min(REPEAT_WITHIN, play->length))
        play->start = ended->End();
    else if (!StartSound(*play))
        return MCIERR_OUTOFRANGE;
    playing = play;
    ended.reset();
    Log((again ? "replay " : "play ") + TrackName(*play) + ", " + std::to_string(play->length) + " ms");
    return 0;
}

MCIERROR Stop() {
    Log("stop");
    Abort();
    Silence();
    return 0;
}

MCIERROR Close() {
    Abort();
    Silence();
    if (CurrentMachine->closeSound) CurrentMachine->closeSound();
    Log("close");
    openDevice = 0;
    return 0;
}

}  // namespace

void SetDiscFolder(const std::string& newFolder) {
    folder = newFolder;
    disc.reset();
}

void TurnCdDrive() {
    if (playing && reader && reader->Broken()) {
        LogOnce(TrackName(*playing) + " broke off: its file is damaged");
        disc->tracks.erase(TrackOf(playing->from));
        EndPlay(MCI_NOTIFY_FAILURE, "failure");
        Silence();
    } else if (playing && ClockNow() - playing->start >= playing->length) {
        ended = playing;
        EndPlay(MCI_NOTIFY_SUCCESSFUL, "successful");
    } else if (ended && ClockNow() - ended->End() >= REPEAT_WITHIN) {
        Silence();
    }
}

void ResetCdDrive() {
    if (openDevice != 0) Close();
    said.clear();
    SetDiscFolder("");
}

MCIERROR mciSendCommandA(MCIDEVICEID device, UINT message, DWORD flags, void* parameters) {
    if (message == MCI_OPEN) return Open(flags, static_cast<MCI_OPEN_PARMSA*>(parameters));
    if (device == 0 || device != openDevice) return MCIERR_INVALID_DEVICE_ID;
    switch (message) {
    case MCI_SET: {
        const auto* set = static_cast<const MCI_SET_PARMS*>(parameters);
        const bool known = set && (flags & MCI_SET_TIME_FORMAT) && set->dwTimeFormat == MCI_FORMAT_TMSF;
        return known ? 0 : MCIERR_UNRECOGNIZED_COMMAND;
    }
    case MCI_PLAY: return StartPlay(flags, static_cast<const MCI_PLAY_PARMS*>(parameters));
    case MCI_STOP: return Stop();
    case MCI_CLOSE: return Close();
    default: return MCIERR_UNRECOGNIZED_COMMAND;
    }
}

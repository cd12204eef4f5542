// The media control interface: one device, a CD drive with an audio disc ("cdaudio"). Numeric values not printed in the
// interface's manual are ours.
//
// The disc is a folder of sound files (option --disc); interfaces/disc.h says which. The drive goes by the host's clock
// alone, so what it reports does not depend on whether anybody can hear it.
#pragma once

#include "host/win32.h"

using MCIERROR = DWORD;
using MCIDEVICEID = UINT;

constexpr UINT MCI_OPEN = 0x803;   // MCI_OPEN_PARMSA, device 0; writes wDeviceID; the drive is not shareable
constexpr UINT MCI_CLOSE = 0x804;  // parameters may be null
constexpr UINT MCI_PLAY = 0x806;   // MCI_PLAY_PARMS, with both MCI_FROM and MCI_TO; returns at once
constexpr UINT MCI_STOP = 0x808;   // parameters may be null
constexpr UINT MCI_SET = 0x80D;    // MCI_SET_PARMS; the time format TMSF is the only one

constexpr DWORD MCI_NOTIFY = 0x1;  // a flag of MCI_PLAY: MM_MCINOTIFY is posted when the play is over
constexpr DWORD MCI_WAIT = 0x2;
constexpr DWORD MCI_FROM = 0x4;
constexpr DWORD MCI_TO = 0x8;
constexpr DWORD MCI_SET_TIME_FORMAT = 0x400;
constexpr DWORD MCI_OPEN_TYPE = 0x2000;
constexpr DWORD MCI_FORMAT_TMSF = 10;  // bytes from low to high: track, minute, second, frame of 1/75 s

// wParam of MM_MCINOTIFY; lParam is the device. A play is aborted by MCI_STOP, by MCI_CLOSE and by a play with another
// end. One with the same end takes its place without a message: a window that answers every message with the same play
// would otherwise get one for each answer, without end. So nothing here is ever superseded (2).
constexpr WPARAM MCI_NOTIFY_SUCCESSFUL = 1;
constexpr WPARAM MCI_NOTIFY_ABORTED = 4;
constexpr WPARAM MCI_NOTIFY_FAILURE = 8;  // the file broke off; its track cannot be played again

constexpr MCIERROR MCIERR_INVALID_DEVICE_ID = 257;
constexpr MCIERROR MCIERR_UNRECOGNIZED_COMMAND = 261;  // also an unknown device type or time format
constexpr MCIERROR MCIERR_DEVICE_OPEN = 265;
constexpr MCIERROR MCIERR_HARDWARE = 262;    // no disc, or no sound device
constexpr MCIERROR MCIERR_OUTOFRANGE = 282;  // a position beyond the last track, or on one without music

struct MCI_OPEN_PARMSA {
    uintptr_t dwCallback;
    MCIDEVICEID wDeviceID;
    const char* lpstrDeviceType;
    const char* lpstrElementName;
    const char* lpstrAlias;
};
struct MCI_SET_PARMS {
    uintptr_t dwCallback;
    DWORD dwTimeFormat;
    DWORD dwAudio;
};
struct MCI_PLAY_PARMS {
    uintptr_t dwCallback;  // the window that is notified; 0: none
    DWORD dwFrom, dwTo;
};
struct MCI_GENERIC_PARMS {
    uintptr_t dwCallback;
};

MCIERROR mciSendCommandA(MCIDEVICEID device, UINT message, DWORD flags, void* parameters);  // 0 on success

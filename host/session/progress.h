// How far the game has come. Counted by session/run.cpp.
#pragma once

#include <cstdint>

struct RunProgress {
    uint32_t framesPlayed = 0;
    // Keyboard polls since the game last took a message; the poll under way counts. 1: the game pumps messages between
    // its polls. The polls before the first message count from 2.
    uint32_t pollsSincePeek = 1;
};
extern RunProgress Progress;

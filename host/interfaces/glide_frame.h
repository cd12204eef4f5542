// What the accelerator's calls share: the screen, the states, and the frame being collected.
#pragma once

#include "boards/board.h"

#include <initializer_list>

struct GlideState {
    bool isOpen = false;
    int32_t cull = 0;  // sign of the area that is removed
    bool hasDepthBuffer = false;
    bool depthFunctionIsLess = true;
    bool depthMask = false;
    bool hasTexture = false;  // state.texture has been loaded
    BoardState state{};       // its depth flags are made of the ones above
};
extern GlideState Glide;

// Adds to the collected frame, with the state as it is.
void AddVertices(BoardAction action, std::initializer_list<BoardVertex> vertices);
void AddClear(BoardAction action, uint32_t value);

void StateChanged();  // the next triangle may need another state than the last one
void FlushFrame();    // hands the collected frame to the board: before anything that must not reach what was drawn

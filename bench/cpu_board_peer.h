// What the system's OpenGL driver in software takes for the cpu board's scenes: textured triangles with colour, fog and
// depth test, all in one draw call, into 640 x 480 pixels of 16 bits with 16 bits of depth.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct PeerVertex {
    float x, y, w;  // pixels
    float s, t;     // texels
    uint8_t colour[4];
};

constexpr int PEER_TEXTURE_SIDE = 256;

// `threads`: threads of the driver beside the calling one. False: there is no such driver.
bool OpenPeer(int threads, const std::vector<uint32_t>& texels, float fogNear, float fogFar);
void ClosePeer();
const char* PeerName();

// `triangles`: three vertices each. Returns the scene's number.
size_t AddPeerScene(const std::vector<PeerVertex>& triangles);
// Clears the frame, draws the scene, and waits until all is drawn.
void DrawPeerScene(size_t scene);

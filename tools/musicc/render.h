// Renders a score as sound.
#pragma once

#include "musicc/score.h"

#include <cstdint>
#include <filesystem>
#include <vector>

// Stereo samples of 16 bits, left first. The last leads on to the first.
std::vector<int16_t> RenderScore(const Score& score);
// The end of the name chooses the format: .flac, .ogg or .wav.
void WriteSound(const std::filesystem::path& path, const std::vector<int16_t>& samples);

// The screenshot key, P: writes the game's picture, unscaled, as a PNG into the user's pictures folder, and says so
// over the game for a moment; a page offers it as a download. Only on machines that have settings, too.
#pragma once

#include "input/keys.h"

#include <cstdint>
#include <filesystem>
#include <string_view>

constexpr uint8_t SCREENSHOT_KEY = KeyCode("P");

// At each poll that reads the keyboard: KEY_COUNT bytes.
void OfferScreenshot(const uint8_t* keys);

// The folder that a desktop's user-dirs.dirs names for pictures; below `home` where it says $HOME. Empty: it names
// none.
std::filesystem::path PicturesFolderIn(std::string_view userDirs, const std::filesystem::path& home);

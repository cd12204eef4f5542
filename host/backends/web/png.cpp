// The page keeps pictures itself, so the game neither writes nor reads any.
#include "machine/png.h"

bool WritePng(const std::string& file, const Picture&, std::string& error) {
    error = file + ": a page writes no pictures";
    return false;
}

PngPixels ReadPng(const std::string&) {
    return {};
}

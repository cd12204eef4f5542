// The page makes the PNG, and offers it as a download; the game reads none.
#include "machine/png.h"

#include "backends/web/page_calls.h"
#include "backends/web/screen.h"

bool WritePng(const std::string& file, const Picture& picture, std::string&) {
    std::vector<uint32_t> pixels;
    TakeRedFirst(picture, pixels);
    pageOfferPicture(file.substr(file.rfind('/') + 1).c_str(), pixels.data(), picture.width, picture.height);
    return true;
}

PngPixels ReadPng(const std::string&) {
    return {};
}

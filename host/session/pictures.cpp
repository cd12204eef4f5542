#include "session/pictures.h"

#include "interfaces/presentation.h"
#include "machine/output.h"
#include "machine/png.h"

#include <cstdio>

namespace {

bool failed = false;

}  // namespace

bool WritePicture(const std::string& file) {
    const Picture* picture = FrontPicture();
    std::string error = "no picture has been shown yet";
    if (picture && WritePng(file, *picture, error)) return true;
    PrintError("cannot write the picture %s: %s", file.c_str(), error.c_str());
    failed = true;
    return false;
}

bool PicturesFailed() {
    return failed;
}

// FatalError as an exception, so that a test can look at its code and text in-process. Link `throwing_fatal`.
#pragma once

#include <stdexcept>
#include <string>

class FatalThrown : public std::runtime_error {
public:
    FatalThrown(int exitCode, const char* message, const char* filePath)
        : std::runtime_error(message), code(exitCode), text(message), path(filePath ? filePath : "") {}

    int code;
    std::string text;
    std::string path;  // empty: none was given
};

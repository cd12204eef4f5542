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

// How a call ends. Text and path are empty when there was no fatal error.
template <class Call>
FatalThrown CatchFatal(Call call) {
    try {
        call();
    } catch (const FatalThrown& fatal) {
        return fatal;
    }
    return {0, "", nullptr};
}

// How a call ends, as one text: the code and the message, "1: Matrix stack overflow.", or "no fatal error".
template <class Call>
std::string FatalOf(Call call) {
    const FatalThrown fatal = CatchFatal(call);
    return fatal.text.empty() ? "no fatal error" : std::to_string(fatal.code) + ": " + fatal.text;
}

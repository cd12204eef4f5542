// What the tools say of content that they refuse.
#pragma once

#include "formats/error.h"

#include <string>

template <class Action>
std::string MessageOf(Action&& action) {
    try {
        action();
    } catch (const ContentError& error) {
        return error.what();
    }
    return "no error";
}

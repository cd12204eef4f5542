// What the tools say of content that they refuse.
#pragma once

#include "formats/error.h"

#include <gtest/gtest.h>

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

// Expects a message that holds `part`.
template <class Action>
void ExpectRefusal(const std::string& part, Action&& action) {
    const std::string message = MessageOf(action);
    EXPECT_NE(message.find(part), std::string::npos) << "expected: " << part << "\nsaid: " << message;
}

// Checks how deep the values of a text hold each other, before it goes to a parser that calls itself for every level.
#pragma once

#include <string>
#include <string_view>

enum class NestedText { Json, Toml };

constexpr int NESTING_MAX = 64;

// ContentError with the line where brackets, or the parts of a TOML key (a.b.c), are nested deeper.
void CheckNesting(std::string_view text, NestedText kind, const std::string& fileName);

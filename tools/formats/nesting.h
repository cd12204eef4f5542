// Text whose values hold each other, before a parser that calls itself for every level sees it.
#pragma once

#include <string>
#include <string_view>

enum class NestedText { Json, Toml };

constexpr int NESTING_MOST = 64;

// ContentError with the line where brackets, or the parts of a TOML key (a.b.c), are nested deeper.
void CheckNesting(std::string_view text, NestedText kind, const std::string& fileName);

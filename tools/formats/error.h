// How a content tool refuses its input: file, place, what is wrong, and what to do about it. Thrown anywhere, caught
// once in each tool's main, which prints the text and ends with status 1 and no output left behind.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

class ContentError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// "maps/house.map:120: the brush has no volume: move its planes apart". Line 0: the file as a whole.
// What a message quotes of the input goes through Shown.
[[noreturn]] void Refuse(const std::string& file, int line, const std::string& problem, const std::string& remedy);

// A name or word of the input as messages quote it: at most so many bytes, then "..."; control characters as '?'.
std::string Shown(std::string_view text, size_t mostBytes = 80);

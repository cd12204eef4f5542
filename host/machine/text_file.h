// A file of text that the command line names, read whole.
#pragma once

#include <cstddef>
#include <string>

// A file or a pipe of at most `most` MiB. False: `error` is "name: cannot be read: why".
bool ReadTextFile(const std::string& file, size_t most, std::string& text, std::string& error);

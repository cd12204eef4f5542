// A line of a map or of a prefab that the map places, as messages name it.
#pragma once

#include <memory>
#include <string>

struct SourceLine {
    std::shared_ptr<const std::string> file;
    int number = 0;                               // from 1; 0: no line of a file
    std::shared_ptr<const std::string> instance;  // "house.map:12", the outermost func_instance; null in the map itself

    std::string Text() const;  // "crate.map:4, placed by house.map:12"
};

// As Refuse in formats/error.h, with the line's file.
[[noreturn]] void Refuse(const SourceLine& line, const std::string& problem, const std::string& remedy);

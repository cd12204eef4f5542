// Brushes of forms that mapc does not read: curved patches, and brushes that give their planes as numbers.
#pragma once

#include <cstddef>
#include <map>
#include <string>

struct OtherForm {
    size_t count = 0;
    int line = 0;  // line of the first
};
using OtherForms = std::map<std::string, OtherForm>;  // by the word that names the form

// The map's text without a byte order mark and without such brushes, whose lines stay empty. left: those found.
std::string WithoutOtherForms(std::string text, OtherForms& left);

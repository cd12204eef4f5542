#include "mapconvert/other_forms.h"

#include "formats/error.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";  // some editors begin a file with it
constexpr const char* BLANKS = " \t\r\n";
constexpr size_t WORD_BYTES_MAX = 32;

// The word that begins at this place, if it names such a form and follows the brace of a brush; else empty.
std::string FormAt(const std::string& text, size_t at) {
    if (text[at] != 'b' && text[at] != 'p') return "";
    std::string word = text.substr(at, WORD_BYTES_MAX);
    word.resize(std::min(word.size(), word.find_first_of(" \t\r\n{")));
    const bool isOther = word.starts_with("patchDef") || (word.starts_with("brushDef") && word != "brushDef");
    if (!isOther || at == 0) return "";
    const size_t before = text.find_last_not_of(BLANKS, at - 1);
    return before != std::string::npos && text[before] == '{' ? word : "";
}

// The place behind the brace that closes the one at this place, or the end of the text.
size_t EndOfBraces(const std::string& text, size_t at) {
    int depth = 0;
    do
        depth += text[at] == '{' ? 1 : text[at] == '}' ? -1 : 0;
    while (++at < text.size() && depth > 0);
    return at;
}

}  // namespace

// Such a brush is { WORD { ... } }.
std::string WithoutOtherForms(std::string text, OtherForms& left) {
    if (text.starts_with(BYTE_ORDER_MARK)) text.replace(0, BYTE_ORDER_MARK.size(), " ");
    int line = 1;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\n') ++line;
        const std::string form = FormAt(text, at);
        if (form.empty()) continue;
        OtherForm& other = left[Shown(form)];
        if (other.count++ == 0) other.line = line;
        const size_t brace = text.find_last_of('{', at);
        const size_t end = EndOfBraces(text, brace);
        for (size_t i = brace; i < end; ++i) {
            if (text[i] == '\n')
                line += i > at ? 1 : 0;
            else
                text[i] = ' ';
        }
        at = end - 1;
    }
    return text;
}

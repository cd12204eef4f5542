#include "formats/nesting.h"

#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace {

class NestingCheck {
public:
    NestingCheck(std::string_view text, NestedText kind, const std::string& file)
        : text_(text), toml_(kind == NestedText::Toml), file_(file) {}

    void Run() {
        while (at_ < text_.size()) {
            const char c = text_[at_];
            if (c == '"' || (toml_ && c == '\'')) {
                SkipQuoted(c);
                continue;
            }
            if (toml_ && c == '#') at_ = std::min(text_.find('\n', at_), text_.size());
            if (c == '[' || c == '{') Deepen(++depth_);
            if (c == ']' || c == '}') depth_ = std::max(depth_ - 1, 0);
            if (toml_ && c == '.') Deepen(++keyParts_);
            const bool inKey = std::isalnum(static_cast<unsigned char>(c)) ||
                               std::string_view("._-+ \t").find(c) != std::string_view::npos;
            if (!inKey) keyParts_ = 0;
            ++at_;
        }
    }

private:
    void Deepen(int depth) const {
        if (depth <= NESTING_MAX) return;
        const auto end = text_.begin() + static_cast<std::ptrdiff_t>(std::min(at_, text_.size()));
        Refuse(file_, static_cast<int>(std::count(text_.begin(), end, '\n')) + 1,
               fmt::format("is nested deeper than {} levels", NESTING_MAX), "write it flatter");
    }

    // Goes from an opening quote to behind the closing one, or to the end of the text: a parser stops there, too.
    void SkipQuoted(char quote) {
        const std::string three{quote, quote, quote};
        const bool multiLine = toml_ && text_.substr(at_, 3) == three;
        const std::string_view end = multiLine ? std::string_view(three) : std::string_view(three).substr(0, 1);
        at_ += end.size();
        while (at_ < text_.size() && text_.substr(at_, end.size()) != end)
            at_ += quote == '"' && text_[at_] == '\\' ? 2U : 1U;
        at_ = std::min(at_ + end.size(), text_.size());
        for (int i = 0; multiLine && i < 2 && at_ < text_.size() && text_[at_] == quote; ++i)
            ++at_;  // up to two quotes may stand before the closing three
    }

    std::string_view text_;
    bool toml_;
    const std::string& file_;
    size_t at_ = 0;
    int depth_ = 0;
    int keyParts_ = 0;
};

}  // namespace

void CheckNesting(std::string_view text, NestedText kind, const std::string& fileName) {
    NestingCheck(text, kind, fileName).Run();
}

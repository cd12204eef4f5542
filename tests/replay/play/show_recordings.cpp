// show_recordings coverage FILE...   what the recordings reach, and how often; status 1 when something is missing
// show_recordings differences OLD NEW   each field's first difference: field, frame, old, new
#include "replay/play/recorded_play.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <stdexcept>

namespace {

int ShowCoverage(const std::vector<std::string>& files) {
    Coverage coverage = WantedCoverage();
    const Coverage wanted = coverage;
    for (const std::string& file : files)
        AddCoverage(coverage, ReadPlay(file));
    int missing = 0;
    for (const auto& [name, count] : coverage) {
        std::printf("%8d  %s%s\n", count, name.c_str(), wanted.contains(name) ? "" : " (not asked for)");
        missing += count == 0;
    }
    std::printf("%zu things reached, %d missing\n", coverage.size() - static_cast<size_t>(missing), missing);
    return missing != 0;
}

// `text`: what a frame has of the thing, empty for nothing.
void ShowDifference(const char* name, const std::vector<PlayedFrame>& before, const std::vector<PlayedFrame>& now,
                    const std::function<std::string(const PlayedFrame&)>& text) {
    const size_t frames = std::min(before.size(), now.size());
    size_t first = frames, count = 0;
    for (size_t frame = frames; frame-- > 0;) {
        if (text(before[frame]) == text(now[frame])) continue;
        first = frame;
        ++count;
    }
    if (count == 0) return;
    std::printf("%s: frame %zu: %s, now %s; differs in %zu of %zu frames\n", name, first + 1,
                text(before[first]).c_str(), text(now[first]).c_str(), count, frames);
}

int ShowDifferences(const std::string& oldFile, const std::string& newFile) {
    const std::vector<PlayedFrame> before = ReadPlay(oldFile), now = ReadPlay(newFile);
    if (before.size() != now.size()) std::printf("frames: %zu, now %zu\n", before.size(), now.size());
    for (size_t field = 0; field < FIELD_COUNT; ++field)
        ShowDifference(FRAME_FIELDS[field].name, before, now,
                       [&](const PlayedFrame& frame) { return FieldText(field, frame.fields[field]); });
    ShowDifference("digest", before, now, [](const PlayedFrame& frame) { return std::to_string(frame.digest); });
    ShowDifference("pixels", before, now,
                   [](const PlayedFrame& frame) { return frame.pixels ? std::to_string(*frame.pixels) : ""; });
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> words(arguments + 1, arguments + argumentCount);
    try {
        if (words.size() > 1 && words[0] == "coverage") return ShowCoverage({words.begin() + 1, words.end()});
        if (words.size() == 3 && words[0] == "differences") return ShowDifferences(words[1], words[2]);
        std::fprintf(stderr, "show_recordings coverage FILE... | differences OLD NEW\n");
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "show_recordings: %s\n", error.what());
    }
    return 2;
}

#include "musicc/harmony.h"

#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace {

constexpr int OCTAVE = 12;
constexpr float ACCENT = 1.3f, SOFT = 0.6f;

// Takes "c", "f#", "bb" from the start of the text and returns its pitch class; nothing when there is none.
std::optional<int> TakeClass(std::string_view& text) {
    constexpr int CLASSES[] = {9, 11, 0, 2, 4, 5, 7};  // a to g
    if (text.empty() || text[0] < 'a' || text[0] > 'g') return {};
    int found = CLASSES[text[0] - 'a'];
    text.remove_prefix(1);
    if (text.starts_with('#')) found += 1;
    if (text.starts_with('b')) found += OCTAVE - 1;
    if (text.starts_with('#') || text.starts_with('b')) text.remove_prefix(1);
    return found % OCTAVE;
}

const std::vector<int>* TonesOf(std::string_view quality) {
    static const std::pair<std::string_view, std::vector<int>> QUALITIES[] = {
        {"", {0, 4, 7}},          {"m", {0, 3, 7}},           {"5", {0, 7}},
        {"dim", {0, 3, 6}},       {"sus2", {0, 2, 7}},        {"sus4", {0, 5, 7}},
        {"6", {0, 4, 7, 9}},      {"m6", {0, 3, 7, 9}},       {"7", {0, 4, 7, 10}},
        {"m7", {0, 3, 7, 10}},    {"maj7", {0, 4, 7, 11}},    {"7sus4", {0, 5, 7, 10}},
        {"add9", {0, 2, 4, 7}},   {"madd9", {0, 2, 3, 7}},    {"9", {0, 2, 4, 7, 10}},
        {"m9", {0, 2, 3, 7, 10}}, {"maj9", {0, 2, 4, 7, 11}},
    };
    for (const auto& [name, tones] : QUALITIES)
        if (name == quality) return &tones;
    return nullptr;
}

std::optional<Tone> ParseTone(std::string_view text) {
    Tone tone{Tone::Pitch};
    for (; !text.empty() && (text.back() == '\'' || text.back() == ','); text.remove_suffix(1))
        tone.octaves += text.back() == '\'' ? 1 : -1;
    if (text == "*") {
        tone.kind = Tone::WholeChord;
    } else if (text == "0") {
        tone.kind = Tone::ChordBass;
    } else if (text.size() == 1 && text[0] >= '1' && text[0] <= '9') {
        tone.kind = Tone::ChordTone;
        tone.value = text[0] - '0';
    } else if (const auto pitch = ParseNote(text)) {
        tone.value = *pitch;
    } else {
        return {};
    }
    return tone;
}

Step ParseStep(const std::string_view written, size_t bar) {
    Step step;
    std::string_view word = written;
    for (; !word.empty() && (word.back() == '!' || word.back() == '?'); word.remove_suffix(1))
        step.velocity = word.back() == '!' ? ACCENT : SOFT;
    if (word == ".") return step;
    step.holds = word == "-";
    if (step.holds) return step;
    for (size_t start = 0; start <= word.size();) {
        const size_t end = std::min(word.find('+', start), word.size());
        const auto tone = ParseTone(word.substr(start, end - start));
        if (!tone)
            throw PatternProblem{
                fmt::format("has '{}' in bar {}, which is no note", Shown(written), bar + 1),
                "write notes as e4 or f#3, tones of the chord as 0 to 9 or *, rests as . and - to hold"};
        step.tones.push_back(*tone);
        start = end + 1;
    }
    return step;
}

void CheckBar(size_t steps, size_t stepsPerBar) {
    if (steps % stepsPerBar == 0) return;
    throw PatternProblem{fmt::format("has {} steps in bar {}", steps % stepsPerBar, steps / stepsPerBar + 1),
                         fmt::format("a bar has {}", stepsPerBar)};
}

void CheckEnd(const std::vector<Step>& steps, size_t stepsPerBar) {
    CheckBar(steps.size(), stepsPerBar);
    if (steps.empty()) throw PatternProblem{"is empty", "write at least a bar of rests"};
}

int IntoOctave(int pitchClass, int lowest) {
    return lowest + ((pitchClass - lowest) % OCTAVE + OCTAVE) % OCTAVE;
}

}  // namespace

std::optional<int> ParseNote(std::string_view text) {
    const auto pitchClass = TakeClass(text);
    if (!pitchClass || text.size() != 1 || text[0] < '0' || text[0] > '8') return {};
    return *pitchClass + OCTAVE * (text[0] - '0' + 1);
}

std::optional<Chord> ParseChord(std::string_view text) {
    std::string lower(text.substr(0, 1));
    if (lower.empty() || lower[0] < 'A' || lower[0] > 'G') return {};
    lower[0] = static_cast<char>(lower[0] - 'A' + 'a');
    lower += text.substr(1);
    std::string_view rest = lower;
    const size_t slash = rest.find('/');
    std::string bassText(slash == std::string_view::npos ? "" : rest.substr(slash + 1));
    rest = rest.substr(0, slash);
    const auto root = TakeClass(rest);
    const std::vector<int>* tones = TonesOf(rest);
    if (!tones) return {};
    Chord chord{{}, *root};
    for (const int tone : *tones)
        chord.classes.push_back((*root + tone) % OCTAVE);
    if (slash == std::string_view::npos) return chord;
    if (bassText.empty() || bassText[0] < 'A' || bassText[0] > 'G') return {};
    bassText[0] = static_cast<char>(bassText[0] - 'A' + 'a');
    std::string_view bass = bassText;
    chord.bass = *TakeClass(bass);
    return bass.empty() ? std::optional(chord) : std::nullopt;
}

std::vector<Step> ParseNotes(std::string_view text, size_t stepsPerBar) {
    std::vector<Step> steps;
    std::istringstream words{std::string(text)};
    for (std::string word; words >> word;) {
        if (word == "|")
            CheckBar(steps.size(), stepsPerBar);
        else
            steps.push_back(ParseStep(word, steps.size() / stepsPerBar));
    }
    CheckEnd(steps, stepsPerBar);
    return steps;
}

std::vector<Step> ParseHits(std::string_view text, size_t stepsPerBar) {
    std::vector<Step> steps;
    for (const char letter : text) {
        const size_t kind = std::string_view(".xXo").find(letter);
        if (letter == '|') {
            CheckBar(steps.size(), stepsPerBar);
        } else if (kind != std::string_view::npos) {
            constexpr float VELOCITIES[] = {1.0f, 1.0f, ACCENT, SOFT};
            steps.push_back({{}, false, VELOCITIES[kind]});
            if (kind > 0) steps.back().tones.push_back({Tone::Pitch});
        } else if (std::string_view(" \t\r\n").find(letter) == std::string_view::npos) {
            throw PatternProblem{fmt::format("has '{}' in bar {}", letter, steps.size() / stepsPerBar + 1),
                                 "write hits as x, X or o and rests as ."};
        }
    }
    CheckEnd(steps, stepsPerBar);
    return steps;
}

std::vector<int> PitchesOf(const Tone& tone, const Chord& chord, int lowest) {
    const int shift = tone.octaves * OCTAVE;
    if (tone.kind == Tone::Pitch) return {tone.value + shift};
    if (tone.kind == Tone::ChordBass) return {IntoOctave(chord.bass, lowest) + shift};
    std::vector<int> laid;
    for (const int pitchClass : chord.classes)
        laid.push_back(IntoOctave(pitchClass, lowest) + shift);
    std::sort(laid.begin(), laid.end());
    if (tone.kind == Tone::WholeChord) return laid;
    const size_t index = static_cast<size_t>(tone.value - 1);
    return {laid[index % laid.size()] + OCTAVE * static_cast<int>(index / laid.size())};
}

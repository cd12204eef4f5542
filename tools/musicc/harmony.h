// Pitches, chords and the text of patterns. A pitch counts semitones; 60 is c4, 69 is a4, 440 Hz.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// "f#4", "bb3", "e2"; nothing for what is no note.
std::optional<int> ParseNote(std::string_view text);

struct Chord {
    std::vector<int> classes;  // pitch classes of its tones, 0..11 above c, each once
    int bass;                  // the class of its lowest tone
};
// "Em", "C", "F#m7", "Bbmaj7", "G/B"; nothing for what is no chord.
std::optional<Chord> ParseChord(std::string_view text);

// A tone of a pattern: a pitch of its own, or one of the chord that is on. The chord's tones are laid into the octave
// from the pattern's lowest note on, so that they move little from chord to chord; 1 is the lowest of them, and after
// the highest they go on an octave up. 0 is the chord's bass.
struct Tone {
    enum Kind { Pitch, ChordTone, ChordBass, WholeChord } kind;
    int value = 0;    // the pitch, or the number of the chord's tone
    int octaves = 0;  // up
};

struct Step {
    std::vector<Tone> tones;  // empty: nothing begins here
    bool holds = false;       // what sounds goes on
    float velocity = 1.0f;    // 1.3 accented, 0.6 soft
};

// A pattern's text is not understood; says which bar.
struct PatternProblem {
    std::string problem, remedy;
};

// Steps divided by spaces: . is a rest, - holds on, | ends a bar. A step is one tone or several joined by +, as
// e4+g4, 1+3, * for the whole chord; ' and , move a tone by an octave, ! accents and ? softens the step.
std::vector<Step> ParseNotes(std::string_view text, size_t stepsPerBar);
// One letter a step: x a hit, X accented, o soft, . none; | ends a bar, spaces are free.
std::vector<Step> ParseHits(std::string_view text, size_t stepsPerBar);

std::vector<int> PitchesOf(const Tone& tone, const Chord& chord, int lowest);

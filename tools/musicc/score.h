// A piece of music as it is written (docs/music.md): instruments, patterns and the sections that play them.
#pragma once

#include "musicc/harmony.h"
#include "musicc/tone.h"

#include <filesystem>
#include <string>
#include <vector>

struct Synth {
    WaveShape shape;
    int voices = 1;        // how often the wave sounds at once, detuned
    float detune = 10.0f;  // cents from the lowest voice to the highest
    float spread = 0.5f;   // how far the voices lie apart between left and right
    float sub = 0.0f;      // level of a sine an octave lower
    float noise = 0.0f;
    float index = 0.0f;  // modulation of fm, in turns, at the modulation envelope's height
    FilterKind filter = FilterKind::Low;
    float cutoff = 20000.0f;  // Hz
    float resonance = 0.0f;
    float sweep = 0.0f;   // octaves that the modulation envelope adds to the cutoff
    float follow = 0.0f;  // octaves that the cutoff rises with each octave above c4
    EnvelopeTimes amplitude;
    EnvelopeTimes modulation{0.001f, 0.3f, 0.0f, 0.2f};
    std::vector<float> vibrato;  // cents, Hz, seconds until it is full
    float glide = 0.0f;          // seconds from the pitch of a note that lasts until this one begins
    float gate = 0.95f;          // share of its written length that a note is held
};

struct Drum {
    std::vector<float> tone;  // Hz at first, Hz at last, seconds of the fall between
    float toneDecay = 0.2f, toneLevel = 1.0f;
    float noiseLevel = 0.0f, noiseDecay = 0.1f;
    std::vector<float> band;  // lowest and highest Hz of the noise
    int bursts = 1;           // bursts of the noise, 11 ms apart
};

struct Instrument {
    std::string name;
    bool isDrum = false;
    Synth synth;
    Drum drum;
    float gain = 0.0f;                 // dB
    float pan = 0.0f;                  // -1 left, 1 right
    float drive = 0.0f;                // 0 clean, 1 heavily overdriven
    float reverb = 0.0f, echo = 0.0f;  // amounts sent
    float duck = 0.0f;                 // how much the instruments with `ducks` push it down
    bool ducks = false;
};

struct ScorePattern {
    std::string name;
    size_t instrument;
    int stepsPerBeat;
    int lowest;  // pitch from which the chord's tones are laid
    std::vector<Step> steps;
};

// What changes evenly from the start of a section to its end.
struct Ramp {
    size_t instrument;
    float gain[2];        // dB
    float brightness[2];  // octaves added to the cutoff
};

struct Section {
    int bars;
    int chordBeats;
    std::vector<Chord> chords;               // each for chordBeats, then from the first again
    std::vector<std::vector<size_t>> lanes;  // patterns one after the other, then from the first again
    std::vector<Ramp> ramps;
};

struct Echo {
    float beats = 0.75f, feedback = 0.4f, tone = 4000.0f, level = 1.0f;
};

struct Reverb {
    float seconds = 2.0f, tone = 6000.0f, level = 1.0f;
};

struct Score {
    float tempo;  // beats a minute
    int beatsPerBar;
    float swing;     // share of a sixteenth by which every second one is late
    float loudness;  // dB below full scale that the music has on average
    Echo echo;
    Reverb reverb;
    std::vector<Instrument> instruments;
    std::vector<ScorePattern> patterns;
    std::vector<Section> sections;
};

// ContentError names the file, the line and the remedy.
Score LoadScore(const std::filesystem::path& path);

// The elements of a sound: waves, noise, envelopes and filters. The sine and the power of two are our own, since those
// of the C library differ between machines, and a score must sound the same, to the bit, wherever it is rendered.
#pragma once

#include <cstdint>

constexpr int SAMPLE_RATE = 44100;

double SineOfTurns(double turns);
double PowerOfTwo(double exponent);
double FrequencyOf(double pitch);     // Hz of a pitch in semitones; 69 is the a of 440 Hz
double FromDecibels(double value);    // as a factor of amplitude
float FallPerSample(double seconds);  // the factor that falls to a thousandth within that time

// White noise from -1 to 1.
class Noise {
public:
    explicit Noise(uint32_t seed) : state_(seed) {}
    float Next();

private:
    uint32_t state_;
};

enum class Wave { Sine, Triangle, Saw, Pulse, Fm };

struct WaveShape {
    Wave wave = Wave::Saw;
    float width = 0.5f;  // a pulse: the share of the cycle that is high
    float ratio = 1.0f;  // fm: the modulator's frequency to the carrier's
};

// One value of a wave: `phase` and the `step` it makes a sample are in turns, 0 <= phase < 1; `shift`, in turns, is
// what fm's modulator adds. The corners of saw and pulse are rounded within a step, so that they do not alias.
float WaveValue(const WaveShape& shape, double phase, double step, double shift);

// Seconds, but for `sustain`, which is a level; attack is a straight line, decay and release fall to a thousandth.
struct EnvelopeTimes {
    float attack = 0.005f, decay = 0.2f, sustain = 0.7f, release = 0.1f;
};

class Envelope {
public:
    explicit Envelope(const EnvelopeTimes& times);
    float Next(bool held);
    bool Over() const { return level_ < 0.0001f && !rising_; }

private:
    float sustain_, rise_, decay_, release_;
    float level_ = 0.0f;
    bool rising_ = true;
};

enum class FilterKind { Low, Band, High };

// Two poles, stable while its cutoff moves: a state-variable filter integrated by the trapezoidal rule.
class Filter {
public:
    void Tune(double cutoff, float resonance);  // Hz; 0 <= resonance < 1
    float Next(FilterKind kind, float input);

private:
    float damping_ = 2.0f, a1_ = 1.0f, a2_ = 0.0f, a3_ = 0.0f;
    float first_ = 0.0f, second_ = 0.0f;
};

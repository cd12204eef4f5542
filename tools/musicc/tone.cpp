#include "musicc/tone.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double PI = 3.14159265358979323846;
constexpr double LN_2 = 0.69314718055994530942;
constexpr double OCTAVES_OF_A_THOUSANDTH = 9.965784284662087;
constexpr double DECIBELS_AN_OCTAVE = 6.020599913279624;
constexpr double HIGHEST_CUTOFF = 0.45 * SAMPLE_RATE;

// The correction that rounds a jump by 2 at phase 0 within a step on each side of it.
double Corner(double phase, double step) {
    if (phase < step) {
        const double x = phase / step;
        return x + x - x * x - 1.0;
    }
    if (phase > 1.0 - step) {
        const double x = (phase - 1.0) / step;
        return x * x + x + x + 1.0;
    }
    return 0.0;
}

double PulseValue(double phase, double step, double width) {
    const double sinceFall = phase >= width ? phase - width : phase - width + 1.0;
    return (phase < width ? 1.0 : -1.0) + Corner(phase, step) - Corner(sinceFall, step);
}

constexpr size_t SINE_TABLE_SIZE = 4096;  // with straight lines between: 130 dB below full scale

class SineTable {
public:
    SineTable() {
        for (size_t i = 0; i < values_.size(); ++i)
            values_[i] = Series(static_cast<double>(i) / SINE_TABLE_SIZE);
    }
    double At(size_t index) const { return values_[index]; }

private:
    static double Series(double turns) {
        double x = turns > 0.75 ? turns - 1.0 : turns;
        if (x > 0.25) x = 0.5 - x;
        const double angle = 2.0 * PI * x;
        double sum = 0.0;
        for (const double divisor : {210.0, 156.0, 110.0, 72.0, 42.0, 20.0, 6.0})  // Taylor's, from its end
            sum = (sum + 1.0) * angle * angle / -divisor;
        return angle * (sum + 1.0);
    }

    std::array<double, SINE_TABLE_SIZE + 2> values_;
};

}  // namespace

double SineOfTurns(double turns) {
    static const SineTable table;
    double place = (turns - static_cast<double>(static_cast<int64_t>(turns))) * SINE_TABLE_SIZE;
    if (place < 0.0) place += SINE_TABLE_SIZE;
    const auto index = static_cast<size_t>(place);
    return table.At(index) + (table.At(index + 1) - table.At(index)) * (place - static_cast<double>(index));
}

double PowerOfTwo(double exponent) {
    const double whole = std::floor(exponent);
    const double x = (exponent - whole) * LN_2;
    double sum = 0.0;
    for (int n = 14; n >= 1; --n)
        sum = (sum + 1.0) * x / n;
    return std::ldexp(sum + 1.0, static_cast<int>(whole));
}

double FrequencyOf(double pitch) {
    return 440.0 * PowerOfTwo((pitch - 69.0) / 12.0);
}

double FromDecibels(double value) {
    return PowerOfTwo(value / DECIBELS_AN_OCTAVE);
}

float FallPerSample(double seconds) {
    return static_cast<float>(PowerOfTwo(-OCTAVES_OF_A_THOUSANDTH / std::max(seconds * SAMPLE_RATE, 1.0)));
}

float Noise::Next() {
    state_ = state_ * 1664525u + 1013904223u;
    return static_cast<float>(static_cast<int32_t>(state_)) * (1.0f / 2147483648.0f);
}

float WaveValue(const WaveShape& shape, double phase, double step, double shift) {
    switch (shape.wave) {
    case Wave::Sine: return static_cast<float>(SineOfTurns(phase));
    case Wave::Triangle: return static_cast<float>(1.0 - 4.0 * std::abs(phase - 0.5));
    case Wave::Saw: return static_cast<float>(2.0 * phase - 1.0 - Corner(phase, step));
    case Wave::Pulse: return static_cast<float>(PulseValue(phase, step, static_cast<double>(shape.width)));
    case Wave::Fm: return static_cast<float>(SineOfTurns(phase + shift));
    }
    return 0.0f;
}

Envelope::Envelope(const EnvelopeTimes& times)
    : sustain_(times.sustain), rise_(1.0f / std::max(times.attack * SAMPLE_RATE, 1.0f)),
      decay_(FallPerSample(static_cast<double>(times.decay))),
      release_(FallPerSample(static_cast<double>(times.release))) {}

float Envelope::Next(bool held) {
    if (!held) {
        rising_ = false;
        level_ *= release_;
    } else if (rising_) {
        level_ = std::min(level_ + rise_, 1.0f);
        rising_ = level_ < 1.0f;
    } else {
        level_ = sustain_ + (level_ - sustain_) * decay_;
    }
    return level_;
}

void Filter::Tune(double cutoff, float resonance) {
    const double turns = 0.5 * std::clamp(cutoff, 10.0, HIGHEST_CUTOFF) / SAMPLE_RATE;
    const auto slope = static_cast<float>(SineOfTurns(turns) / SineOfTurns(turns + 0.25));  // the tangent
    damping_ = 2.0f - 2.0f * std::min(resonance, 0.97f);
    a1_ = 1.0f / (1.0f + slope * (slope + damping_));
    a2_ = slope * a1_;
    a3_ = slope * a2_;
}

float Filter::Next(FilterKind kind, float input) {
    const float rest = input - second_;
    const float band = a1_ * first_ + a2_ * rest;
    const float low = second_ + a2_ * first_ + a3_ * rest;
    first_ = 2.0f * band - first_;
    second_ = 2.0f * low - second_;
    switch (kind) {
    case FilterKind::Low: return low;
    case FilterKind::Band: return band * damping_;
    case FilterKind::High: return input - damping_ * band - low;
    }
    return input;
}

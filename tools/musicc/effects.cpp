#include "musicc/effects.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>

namespace {

constexpr size_t WARM_UP = 12 * SAMPLE_RATE;
constexpr double CEILING = -1.0;  // dB
constexpr double LOWEST = 25.0;   // lowest frequency that is kept, Hz
constexpr size_t LOOK_AHEAD = SAMPLE_RATE / 200;
constexpr double LIMITER_RELEASE = 0.4;  // seconds to fall to a thousandth

// Calls effect(place) over the end of the loop and then over all of it; `audible` says in which pass it is.
template <typename Effect>
void RunAround(size_t size, Effect effect) {
    for (size_t i = size - std::min(size, WARM_UP); i < size; ++i)
        effect(i, false);
    for (size_t i = 0; i < size; ++i)
        effect(i, true);
}

class Delay {
public:
    explicit Delay(size_t samples) : line_(std::max<size_t>(samples, 1), 0.0f) {}
    float Out() const { return line_[place_]; }
    void In(float value) {
        line_[place_] = value;
        if (++place_ == line_.size()) place_ = 0;
    }

private:
    std::vector<float> line_;
    size_t place_ = 0;
};

// Lets low frequencies through, one pole.
class Softener {
public:
    explicit Softener(double cutoff)
        : share_(static_cast<float>(1.0 - PowerOfTwo(-9.06472 * std::min(cutoff / SAMPLE_RATE, 0.5)))) {}
    float Next(float value) { return state_ += share_ * (value - state_); }

private:
    float share_;
    float state_ = 0.0f;
};

// Spreads an impulse out in time and leaves its spectrum alone.
class AllPass {
public:
    explicit AllPass(size_t samples) : delay_(samples) {}
    float Next(float value) {
        constexpr float GAIN = 0.6f;
        const float delayed = delay_.Out();
        const float in = value - GAIN * delayed;
        delay_.In(in);
        return delayed + GAIN * in;
    }

private:
    Delay delay_;
};

constexpr size_t LINES = 8;

// Each value becomes a mixture of all, and their sum of squares stays: a Hadamard matrix by its butterflies.
void MixLines(std::array<float, LINES>& values) {
    for (size_t width = 1; width < LINES; width *= 2) {
        for (size_t i = 0; i < LINES; ++i) {
            if (i & width) continue;
            const float sum = values[i] + values[i + width];
            values[i + width] = values[i] - values[i + width];
            values[i] = sum;
        }
    }
    for (float& value : values)
        value *= 0.35355339f;
}

// A network of delay lines that feed each other.
class Room {
public:
    explicit Room(const Reverb& reverb) {
        constexpr size_t LENGTHS[LINES] = {1433, 1601, 1867, 2053, 2251, 2399, 2617, 2797};
        constexpr size_t DIFFUSERS[] = {113, 337, 199, 461};
        for (size_t i = 0; i < LINES; ++i) {
            lines_.emplace_back(LENGTHS[i]);
            softeners_.emplace_back(static_cast<double>(reverb.tone));
            const double falls = static_cast<double>(LENGTHS[i]) / SAMPLE_RATE / static_cast<double>(reverb.seconds);
            gains_[i] = static_cast<float>(FromDecibels(-60.0 * falls));
        }
        for (const size_t length : DIFFUSERS)
            diffusers_.emplace_back(length);
    }

    void Next(float left, float right, float& outLeft, float& outRight) {
        const std::array<float, 2> in = {diffusers_[1].Next(diffusers_[0].Next(left)),
                                         diffusers_[3].Next(diffusers_[2].Next(right))};
        std::array<float, LINES> values;
        for (size_t i = 0; i < LINES; ++i)
            values[i] = softeners_[i].Next(lines_[i].Out()) * gains_[i];
        outLeft = values[0] - values[2] + values[4] - values[6];
        outRight = values[1] - values[3] + values[5] - values[7];
        MixLines(values);
        for (size_t i = 0; i < LINES; ++i)
            lines_[i].In(values[i] + in[i % 2]);
    }

private:
    std::vector<Delay> lines_;
    std::vector<Softener> softeners_;
    std::vector<AllPass> diffusers_;
    std::array<float, LINES> gains_{};
};

float RoundOff(float value) {  // identity up to a half, then curved, and never above 1
    const float size = std::abs(value);
    if (size <= 0.5f) return value;
    const float over = (size - 0.5f) * 2.0f;
    return std::copysign(0.5f + 0.5f * over / (1.0f + over), value);
}

void TakeRumbleOut(std::vector<float>& samples) {
    Filter filter;
    filter.Tune(LOWEST, 0.0f);
    std::vector<float> kept(samples.size());
    RunAround(samples.size(), [&](size_t i, bool audible) {
        const float value = filter.Next(FilterKind::High, samples[i]);
        if (audible) kept[i] = value;
    });
    samples = std::move(kept);
}

// The mean power of the parts that are not nearly silent.
double MeanPower(const Loop& sound) {
    constexpr size_t BLOCK = SAMPLE_RATE / 2;
    std::vector<double> powers;
    for (size_t start = 0; start + BLOCK <= sound.Size(); start += BLOCK) {
        double power = 0.0;
        for (size_t i = start; i < start + BLOCK; ++i)
            power += static_cast<double>(sound.left[i] * sound.left[i] + sound.right[i] * sound.right[i]);
        powers.push_back(power / (2.0 * BLOCK));
    }
    const auto mean = [&](double least) {
        double sum = 1e-12;
        size_t count = 0;
        for (const double power : powers)
            if (power >= least) sum += power, ++count;
        return sum / static_cast<double>(std::max<size_t>(count, 1));
    };
    return mean(mean(0.0) * 0.1);
}

// For each sample the least of those from it on, LOOK_AHEAD of them, around the loop.
std::vector<float> LeastAhead(const std::vector<float>& values) {
    const size_t size = values.size(), window = std::min(LOOK_AHEAD, size);
    std::vector<float> least(size);
    std::deque<size_t> rising;  // indices of values that may still become the least
    for (size_t i = 2 * size; i-- > 0;) {
        while (!rising.empty() && values[rising.back() % size] >= values[i % size])
            rising.pop_back();
        rising.push_back(i);
        if (rising.front() >= i + window) rising.pop_front();
        if (i < size) least[i] = values[rising.front() % size];
    }
    return least;
}

// Gain that is down in time before each peak, comes back slowly, and never lets a sample above the ceiling.
void Limit(Loop& sound) {
    const auto ceiling = static_cast<float>(FromDecibels(CEILING));
    const size_t size = sound.Size(), window = std::min(LOOK_AHEAD, size);
    std::vector<float> gains(size);
    for (size_t i = 0; i < size; ++i)
        gains[i] = std::min(1.0f, ceiling / std::max({std::abs(sound.left[i]), std::abs(sound.right[i]), 1e-6f}));
    gains = LeastAhead(gains);
    const float release = FallPerSample(LIMITER_RELEASE);
    float held = 1.0f;
    RunAround(size, [&](size_t i, bool) { gains[i] = held = std::min(gains[i], 1.0f - (1.0f - held) * release); });
    double sum = 0.0;
    for (size_t i = 0; i < window; ++i)
        sum += static_cast<double>(gains[size - window + i]);
    for (size_t i = 0; i < size; ++i) {
        sum += static_cast<double>(gains[i]) - static_cast<double>(gains[(i + size - window) % size]);
        const float gain = static_cast<float>(sum / static_cast<double>(window));
        sound.left[i] = std::clamp(sound.left[i] * gain, -ceiling, ceiling);
        sound.right[i] = std::clamp(sound.right[i] * gain, -ceiling, ceiling);
    }
}

}  // namespace

void AddEcho(const Echo& echo, float tempo, const Loop& sent, Loop& out) {
    const auto samples = static_cast<size_t>(echo.beats * 60.0f / tempo * SAMPLE_RATE);
    Delay left(samples), right(samples);
    Softener softLeft(static_cast<double>(echo.tone)), softRight(static_cast<double>(echo.tone));
    RunAround(sent.Size(), [&](size_t i, bool audible) {
        const float fromLeft = left.Out(), fromRight = right.Out();
        left.In(softLeft.Next(0.5f * (sent.left[i] + sent.right[i]) + echo.feedback * fromRight));
        right.In(softRight.Next(fromLeft * echo.feedback));
        if (!audible) return;
        out.left[i] += fromLeft * echo.level;
        out.right[i] += fromRight / std::max(echo.feedback, 0.1f) * echo.level * 0.8f;
    });
}

void AddReverb(const Reverb& reverb, const Loop& sent, Loop& out) {
    Room room(reverb);
    RunAround(sent.Size(), [&](size_t i, bool audible) {
        float left = 0.0f, right = 0.0f;
        room.Next(sent.left[i], sent.right[i], left, right);
        if (!audible) return;
        out.left[i] += left * reverb.level;
        out.right[i] += right * reverb.level;
    });
}

void Overdrive(float amount, Loop& sound) {
    const float push = 1.0f + 9.0f * amount, back = 1.0f / std::sqrt(push);
    for (std::vector<float>* side : {&sound.left, &sound.right})
        for (float& value : *side)
            value = RoundOff(value * push) * back;
}

void Master(float loudness, Loop& sound) {
    TakeRumbleOut(sound.left);
    TakeRumbleOut(sound.right);
    const auto gain = static_cast<float>(FromDecibels(static_cast<double>(loudness)) / std::sqrt(MeanPower(sound)));
    for (std::vector<float>* side : {&sound.left, &sound.right})
        for (float& value : *side)
            value *= gain;
    Limit(sound);
}

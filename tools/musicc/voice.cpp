#include "musicc/voice.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int VOICES_MAX = 9;
constexpr int64_t CONTROL_STEP = 32;  // samples between changes of pitch and cutoff
constexpr int64_t TAIL_MAX = 30 * SAMPLE_RATE;
constexpr double HIGHEST_STEP = 0.5;  // turns a sample; nothing higher can be played
constexpr double MIDDLE_C = 60.0;
constexpr int64_t BURST_STEP = SAMPLE_RATE * 11 / 1000;

struct Stereo {
    float left, right;
};

// One of the detuned voices of a note.
struct Strand {
    double phase, modulator;  // turns
    double ratio;             // its frequency to the note's
    Stereo share;             // its share in left and right
};

class SynthNote {
public:
    SynthNote(const Synth& synth, const Note& note)
        : synth_(synth), note_(note), amplitude_(synth.amplitude), modulation_(synth.modulation), noise_(note.seed) {
        const int count = synth.voices;
        const float level = 1.0f / std::sqrt(static_cast<float>(count));
        for (int i = 0; i < count; ++i) {
            const float side = count > 1 ? 2.0f * static_cast<float>(i) / static_cast<float>(count - 1) - 1.0f : 0.0f;
            const float pan = (i % 2 == 0 ? side : -side) * synth.spread;
            strands_[static_cast<size_t>(i)] = {
                count > 1 ? static_cast<double>(noise_.Next()) * 0.5 + 0.5
                          : 0.0,  // the strands begin at different phases
                0.0,
                PowerOfTwo(static_cast<double>(side * synth.detune) * 0.5 / 1200.0),
                {level * std::sqrt(0.5f - 0.5f * pan), level * std::sqrt(0.5f + 0.5f * pan)}};
        }
    }

    void Play(Loop& out) {
        auto place = static_cast<size_t>(note_.start) % out.Size();
        for (int64_t i = 0; i < note_.length + TAIL_MAX && !amplitude_.Over(); ++i) {
            if (i % CONTROL_STEP == 0) Tune(i);
            const Stereo sample = Next(i < note_.length);
            out.left[place] += sample.left;
            out.right[place] += sample.right;
            if (++place == out.Size()) place = 0;
        }
    }

private:
    void Tune(int64_t sample) {
        const double seconds = static_cast<double>(sample) / SAMPLE_RATE;
        double pitch = static_cast<double>(note_.pitch);
        if (seconds < static_cast<double>(synth_.glide))
            pitch += (1.0 - seconds / static_cast<double>(synth_.glide)) *
                     static_cast<double>(note_.fromPitch - note_.pitch);
        const double full = static_cast<double>(synth_.vibrato[2]);
        const double depth = static_cast<double>(synth_.vibrato[0]) * (seconds < full ? seconds / full : 1.0);
        pitch += depth / 100.0 * SineOfTurns(static_cast<double>(synth_.vibrato[1]) * seconds);
        step_ = std::min(FrequencyOf(pitch) / SAMPLE_RATE, HIGHEST_STEP);
        const double octaves = static_cast<double>(note_.brightness) +
                               static_cast<double>(synth_.sweep) * static_cast<double>(modulated_) +
                               static_cast<double>(synth_.follow) * (pitch - MIDDLE_C) / 12.0;
        const double cutoff = static_cast<double>(synth_.cutoff) * PowerOfTwo(octaves);
        for (Filter& filter : filters_)
            filter.Tune(cutoff, synth_.resonance);
    }

    static void Advance(double& phase, double step) {
        phase += step;
        if (phase >= 1.0) phase -= 1.0;
    }

    double Modulate(Strand& strand, double step) const {
        if (synth_.shape.wave != Wave::Fm) return 0.0;
        const double shift = static_cast<double>(synth_.index * modulated_) * SineOfTurns(strand.modulator);
        strand.modulator += step * static_cast<double>(synth_.shape.ratio);
        return shift;
    }

    Stereo Next(bool held) {
        modulated_ = modulation_.Next(held);
        const float level = amplitude_.Next(held) * note_.level;
        Stereo sum{0.0f, 0.0f};
        for (size_t i = 0; i < static_cast<size_t>(synth_.voices); ++i) {
            Strand& strand = strands_[i];
            const double step = step_ * strand.ratio;
            const float value = WaveValue(synth_.shape, strand.phase, step, Modulate(strand, step));
            Advance(strand.phase, step);
            sum.left += value * strand.share.left;
            sum.right += value * strand.share.right;
        }
        float middle = synth_.noise * noise_.Next();
        if (synth_.sub > 0.0f) middle += synth_.sub * static_cast<float>(SineOfTurns(subPhase_));
        Advance(subPhase_, 0.5 * step_);
        return {filters_[0].Next(synth_.filter, sum.left + middle) * level,
                filters_[1].Next(synth_.filter, sum.right + middle) * level};
    }

    const Synth& synth_;
    const Note& note_;
    Envelope amplitude_, modulation_;
    Noise noise_;
    std::array<Strand, VOICES_MAX> strands_{};
    std::array<Filter, 2> filters_;
    double step_ = 0.0;  // turns a sample
    double subPhase_ = 0.0;
    float modulated_ = 0.0f;
};

}  // namespace

void PlaySynth(const Synth& synth, const Note& note, Loop& out) {
    SynthNote(synth, note).Play(out);
}

void PlayDrum(const Drum& drum, const Note& note, Loop& out) {
    const double drop = static_cast<double>(drum.tone[0] - drum.tone[1]);
    const float toneFall = FallPerSample(static_cast<double>(drum.toneDecay));
    const float noiseFall = FallPerSample(static_cast<double>(drum.noiseDecay));
    const float pitchFall = FallPerSample(static_cast<double>(drum.tone[2]));
    Noise noise(note.seed);
    Filter low, high;
    low.Tune(static_cast<double>(drum.band[1]), 0.1f);
    high.Tune(static_cast<double>(drum.band[0]), 0.1f);
    float toneLevel = drum.toneLevel, noiseLevel = drum.noiseLevel, pitchLevel = 1.0f;
    double turns = 0.0;
    auto place = static_cast<size_t>(note.start) % out.Size();
    for (int64_t i = 0; i < TAIL_MAX && toneLevel + noiseLevel > 0.0001f; ++i) {
        if (i % BURST_STEP == 0 && i < BURST_STEP * drum.bursts) noiseLevel = drum.noiseLevel;
        float value = high.Next(FilterKind::High, low.Next(FilterKind::Low, noise.Next())) * noiseLevel;
        value += static_cast<float>(SineOfTurns(turns)) * toneLevel;
        turns += (static_cast<double>(drum.tone[1]) + drop * static_cast<double>(pitchLevel)) / SAMPLE_RATE;
        pitchLevel *= pitchFall;
        toneLevel *= toneFall;
        noiseLevel *= noiseFall;
        out.left[place] += value * note.level;
        out.right[place] += value * note.level;
        if (++place == out.Size()) place = 0;
    }
}

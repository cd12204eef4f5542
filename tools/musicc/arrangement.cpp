#include "musicc/arrangement.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int STEPS_THAT_SWING = 4;            // steps of a beat
constexpr int64_t JOINING = SAMPLE_RATE / 10;  // the longest pause over which a note glides

// Places the sections of a score one after the other.
class Arranger {
public:
    explicit Arranger(const Score& score) : score_(score) { result_.parts.resize(score.instruments.size()); }

    Arrangement Run() {
        for (const Section& section : score_.sections) {
            for (const std::vector<size_t>& lane : section.lanes)
                PlaceLane(section, lane);
            sectionBeat_ += section.bars * score_.beatsPerBar;
        }
        result_.length = SampleAt(sectionBeat_);
        for (std::vector<Note>& part : result_.parts)
            FinishPart(part);
        return std::move(result_);
    }

private:
    int64_t SampleAt(double beat) const {
        return std::llround(beat * 60.0 / static_cast<double>(score_.tempo) * SAMPLE_RATE);
    }

    void PlaceLane(const Section& section, const std::vector<size_t>& lane) {
        const double end = section.bars * score_.beatsPerBar;
        double beat = 0.0;
        for (size_t turn = 0; beat < end; ++turn) {
            const ScorePattern& pattern = score_.patterns[lane[turn % lane.size()]];
            PlacePattern(section, pattern, beat, end);
            beat += static_cast<double>(pattern.steps.size()) / pattern.stepsPerBeat;
        }
    }

    void PlacePattern(const Section& section, const ScorePattern& pattern, double beat, double end) {
        for (size_t i = 0; i < pattern.steps.size(); ++i) {
            if (pattern.steps[i].tones.empty()) continue;
            size_t last = i + 1;
            while (last < pattern.steps.size() && pattern.steps[last].holds)
                ++last;
            const double start = beat + StepBeat(pattern, i);
            if (start < end) PlaceStep(section, pattern, pattern.steps[i], start, beat + StepBeat(pattern, last));
        }
    }

    double StepBeat(const ScorePattern& pattern, size_t step) const {
        const bool late = pattern.stepsPerBeat == STEPS_THAT_SWING && step % 2 == 1;
        return (static_cast<double>(step) + (late ? static_cast<double>(score_.swing) : 0.0)) / pattern.stepsPerBeat;
    }

    void PlaceStep(const Section& section, const ScorePattern& pattern, const Step& step, double start, double end) {
        const Instrument& instrument = score_.instruments[pattern.instrument];
        const auto chord = static_cast<size_t>(start / section.chordBeats) % section.chords.size();
        const auto share = static_cast<float>(start / (section.bars * score_.beatsPerBar));
        Note note{};
        note.start = SampleAt(sectionBeat_ + start);
        const auto held = static_cast<double>(SampleAt(sectionBeat_ + end) - note.start);
        note.length = static_cast<int64_t>(held * static_cast<double>(instrument.synth.gate));
        float gain = 0.0f;
        for (const Ramp& ramp : section.ramps) {
            if (ramp.instrument != pattern.instrument) continue;
            gain += ramp.gain[0] + (ramp.gain[1] - ramp.gain[0]) * share;
            note.brightness += ramp.brightness[0] + (ramp.brightness[1] - ramp.brightness[0]) * share;
        }
        note.level = step.velocity * static_cast<float>(FromDecibels(static_cast<double>(gain)));
        for (const Tone& tone : step.tones) {
            for (const int pitch : PitchesOf(tone, section.chords[chord], pattern.lowest)) {
                note.pitch = static_cast<float>(pitch);
                result_.parts[pattern.instrument].push_back(note);
            }
        }
    }

    // Glides lead from a note that lasts until the next one; the last note of the music leads to the first.
    void FinishPart(std::vector<Note>& part) const {
        std::stable_sort(part.begin(), part.end(), [](const Note& a, const Note& b) { return a.start < b.start; });
        for (size_t i = 0; i < part.size(); ++i) {
            const Note& before = part[i > 0 ? i - 1 : part.size() - 1];
            const int64_t since = part[i].start - before.start + (i > 0 ? 0 : result_.length);
            const bool joins = since > 0 && std::abs(since - before.length) < JOINING;
            part[i].fromPitch = joins ? before.pitch : part[i].pitch;
            part[i].seed = static_cast<uint32_t>(i + 1) * 2654435761u;
        }
    }

    const Score& score_;
    Arrangement result_{};
    double sectionBeat_ = 0.0;
};

}  // namespace

Arrangement Arrange(const Score& score) {
    return Arranger(score).Run();
}

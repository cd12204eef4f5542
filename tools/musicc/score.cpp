#include "musicc/score.h"

#include "formats/error.h"
#include "formats/toml_table.h"

#include <fmt/format.h>

#include <sstream>

namespace {

constexpr int SECONDS_MAX = 600;

std::vector<std::string> Words(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// The index of the list's element with this name.
template <typename Named>
size_t Find(const std::vector<Named>& all, const std::string& name, const TomlTable& from, const std::string& key) {
    for (size_t i = 0; i < all.size(); ++i)
        if (all[i].name == name) return i;
    from.RefuseKey(key, fmt::format("names '{}', which there is not", Shown(name)),
                   "write it above, or correct the name");
}

EnvelopeTimes LoadEnvelope(const TomlTable& from, const std::string& key, const EnvelopeTimes& fallback) {
    const std::vector<float> times =
        from.Numbers(key, 4, {fallback.attack, fallback.decay, fallback.sustain, fallback.release});
    for (const float time : times)
        if (time < 0.0f || time > 20.0f)
            from.RefuseKey(key, fmt::format("holds {}", time), "give 0 to 20 for each number");
    if (times[2] > 1.0f)
        from.RefuseKey(key, fmt::format("sustains at {}", times[2]), "give 0 to 1 for the third number");
    return {times[0], times[1], times[2], times[3]};
}

std::vector<float> LoadNumbers(const TomlTable& from, const std::string& key, size_t count,
                               const std::vector<float>& fallback, float most) {
    const std::vector<float> numbers = from.Numbers(key, count, fallback);
    for (const float number : numbers)
        if (number < 0.0f || number > most)
            from.RefuseKey(key, fmt::format("holds {}", number), fmt::format("give 0 to {} for each number", most));
    return numbers;
}

Synth LoadSynth(const TomlTable& from) {
    Synth synth;
    const Synth plain;
    synth.shape.wave = static_cast<Wave>(from.Choice("wave", "saw", {"sine", "triangle", "saw", "pulse", "fm"}));
    synth.shape.width = from.Number("width", plain.shape.width, 0.02f, 0.98f);
    synth.shape.ratio = from.Number("ratio", plain.shape.ratio, 0.01f, 32.0f);
    synth.index = from.Number("index", plain.index, 0.0f, 8.0f);
    synth.voices = from.Int("voices", plain.voices, 1, 9);
    synth.detune = from.Number("detune", plain.detune, 0.0f, 200.0f);
    synth.spread = from.Number("spread", plain.spread, 0.0f, 1.0f);
    synth.sub = from.Number("sub", plain.sub, 0.0f, 2.0f);
    synth.noise = from.Number("noise", plain.noise, 0.0f, 2.0f);
    synth.filter = static_cast<FilterKind>(from.Choice("filter", "low", {"low", "band", "high"}));
    synth.cutoff = from.Number("cutoff", plain.cutoff, 20.0f, 20000.0f);
    synth.resonance = from.Number("resonance", plain.resonance, 0.0f, 0.95f);
    synth.sweep = from.Number("sweep", plain.sweep, -10.0f, 10.0f);
    synth.follow = from.Number("follow", plain.follow, 0.0f, 2.0f);
    synth.amplitude = LoadEnvelope(from, "amplitude", plain.amplitude);
    synth.modulation = LoadEnvelope(from, "modulation", plain.modulation);
    synth.vibrato = LoadNumbers(from, "vibrato", 3, {0.0f, 5.0f, 0.0f}, 100.0f);
    synth.glide = from.Number("glide", plain.glide, 0.0f, 5.0f);
    synth.gate = from.Number("gate", plain.gate, 0.01f, 1.0f);
    return synth;
}

Drum LoadDrum(const TomlTable& from) {
    Drum drum;
    const Drum plain;
    drum.tone = LoadNumbers(from, "tone", 3, {0.0f, 0.0f, 0.05f}, 20000.0f);
    drum.toneLevel = from.Number("tone_level", drum.tone[0] > 0.0f ? plain.toneLevel : 0.0f, 0.0f, 4.0f);
    drum.toneDecay = from.Number("tone_decay", plain.toneDecay, 0.001f, 10.0f);
    drum.noiseLevel = from.Number("noise_level", plain.noiseLevel, 0.0f, 4.0f);
    drum.noiseDecay = from.Number("noise_decay", plain.noiseDecay, 0.001f, 10.0f);
    drum.band = LoadNumbers(from, "noise_band", 2, {20.0f, 20000.0f}, 20000.0f);
    drum.bursts = from.Int("bursts", plain.bursts, 1, 8);
    return drum;
}

Instrument LoadInstrument(const TomlTable& from, bool isDrum) {
    Instrument instrument;
    instrument.name = from.NeedText("name");
    instrument.isDrum = isDrum;
    if (isDrum)
        instrument.drum = LoadDrum(from);
    else
        instrument.synth = LoadSynth(from);
    instrument.gain = from.Number("gain", 0.0f, -60.0f, 24.0f);
    instrument.pan = from.Number("pan", 0.0f, -1.0f, 1.0f);
    instrument.drive = from.Number("drive", 0.0f, 0.0f, 1.0f);
    instrument.reverb = from.Number("reverb", 0.0f, 0.0f, 2.0f);
    instrument.echo = from.Number("echo", 0.0f, 0.0f, 2.0f);
    instrument.duck = from.Number("duck", 0.0f, 0.0f, 1.0f);
    instrument.ducks = from.Flag("ducks", false);
    from.Finish();
    return instrument;
}

ScorePattern LoadPattern(const TomlTable& from, const Score& score) {
    ScorePattern pattern;
    pattern.name = from.NeedText("name");
    pattern.instrument = Find(score.instruments, from.NeedText("instrument"), from, "instrument");
    pattern.stepsPerBeat = from.Int("steps", 4, 1, 12);
    const auto lowest = ParseNote(from.Text("lowest", "c4"));
    if (!lowest) from.RefuseKey("lowest", "is no note", "write it as e2 or f#3");
    pattern.lowest = *lowest;
    const std::string key = score.instruments[pattern.instrument].isDrum ? "hits" : "notes";
    const auto stepsPerBar = static_cast<size_t>(pattern.stepsPerBeat * score.beatsPerBar);
    const std::string text = from.NeedText(key);
    try {
        pattern.steps = key == "hits" ? ParseHits(text, stepsPerBar) : ParseNotes(text, stepsPerBar);
    } catch (const PatternProblem& problem) {
        from.RefuseKey(key, problem.problem, problem.remedy);
    }
    from.Finish();
    return pattern;
}

std::vector<Chord> LoadChords(const TomlTable& from) {
    std::vector<Chord> chords;
    for (const std::string& word : Words(from.NeedText("chords"))) {
        if (word == "|") continue;
        const auto chord = ParseChord(word);
        if (!chord)
            from.RefuseKey("chords", fmt::format("has '{}', which is no chord", Shown(word)),
                           "write chords as Em, C, F#m7, Bbmaj7 or G/B");
        chords.push_back(*chord);
    }
    if (chords.empty()) from.RefuseKey("chords", "has none", "write at least one chord");
    return chords;
}

Ramp LoadRamp(const TomlTable& from, const Score& score) {
    const std::vector<float> gain = from.Numbers("gain", 2, {0.0f, 0.0f});
    const std::vector<float> brightness = from.Numbers("brightness", 2, {0.0f, 0.0f});
    for (const float number : {gain[0], gain[1], brightness[0], brightness[1]})
        if (number < -60.0f || number > 24.0f)
            from.RefuseTable(fmt::format("a ramp holds {}", number), "give -60 to 24");
    const Ramp ramp{Find(score.instruments, from.NeedText("instrument"), from, "instrument"),
                    {gain[0], gain[1]},
                    {brightness[0], brightness[1]}};
    from.Finish();
    return ramp;
}

Section LoadSection(const TomlTable& from, const Score& score) {
    Section section;
    from.Text("name", "");  // read so that it is a known key; only people use it
    section.bars = from.NeedInt("bars", 1, 512);
    section.chordBeats = from.Int("chord_beats", score.beatsPerBar, 1, 64);
    section.chords = LoadChords(from);
    for (const std::string& lane : from.Texts("play")) {
        section.lanes.emplace_back();
        for (const std::string& name : Words(lane))
            section.lanes.back().push_back(Find(score.patterns, name, from, "play"));
        if (section.lanes.back().empty()) from.RefuseKey("play", "has an empty lane", "name a pattern or remove it");
    }
    for (const TomlTable& ramp : from.Tables("ramp"))
        section.ramps.push_back(LoadRamp(ramp, score));
    from.Finish();
    return section;
}

void LoadEffects(const TomlTable& from, Score& score) {
    for (const TomlTable& echo : from.Tables("echo")) {
        score.echo = {echo.Number("beats", 0.75f, 0.05f, 8.0f), echo.Number("feedback", 0.4f, 0.0f, 0.9f),
                      echo.Number("tone", 4000.0f, 100.0f, 20000.0f), echo.Number("level", 1.0f, 0.0f, 4.0f)};
        echo.Finish();
    }
    for (const TomlTable& reverb : from.Tables("reverb")) {
        score.reverb = {reverb.Number("seconds", 2.0f, 0.1f, 20.0f), reverb.Number("tone", 6000.0f, 100.0f, 20000.0f),
                        reverb.Number("level", 1.0f, 0.0f, 4.0f)};
        reverb.Finish();
    }
}

void CheckLength(const TomlTable& from, const Score& score) {
    int bars = 0;
    for (const Section& section : score.sections)
        bars += section.bars;
    if (bars == 0) from.RefuseTable("there is no section", "add a [[section]]");
    const float seconds = static_cast<float>(bars * score.beatsPerBar) * 60.0f / score.tempo;
    if (seconds > static_cast<float>(SECONDS_MAX))
        from.RefuseKey("tempo", fmt::format("makes {} bars last {} seconds", bars, static_cast<int>(seconds)),
                       fmt::format("stay below {}", SECONDS_MAX));
}

}  // namespace

Score LoadScore(const std::filesystem::path& path) {
    const TomlTable from = TomlTable::Load(path);
    Score score{};
    from.Text("title", "");
    score.tempo = from.Number("tempo", 120.0f, 20.0f, 400.0f);
    score.beatsPerBar = from.Int("beats", 4, 1, 16);
    score.swing = from.Number("swing", 0.0f, 0.0f, 0.9f);
    score.loudness = from.Number("loudness", -16.0f, -40.0f, -6.0f);
    score.echo = {};
    score.reverb = {};
    LoadEffects(from, score);
    for (const TomlTable& table : from.Tables("synth"))
        score.instruments.push_back(LoadInstrument(table, false));
    for (const TomlTable& table : from.Tables("drum"))
        score.instruments.push_back(LoadInstrument(table, true));
    for (const TomlTable& table : from.Tables("pattern"))
        score.patterns.push_back(LoadPattern(table, score));
    for (const TomlTable& table : from.Tables("section"))
        score.sections.push_back(LoadSection(table, score));
    from.Finish();
    CheckLength(from, score);
    return score;
}

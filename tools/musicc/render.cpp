#include "musicc/render.h"

#include "formats/error.h"
#include "formats/files.h"
#include "musicc/effects.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sndfile.h>

namespace {

constexpr double DUCK_SECONDS = 0.28;

// 1 where an instrument that ducks the others strikes, and 0 when it has let go again.
std::vector<float> DuckCurve(const Score& score, const Arrangement& arrangement) {
    std::vector<float> curve(static_cast<size_t>(arrangement.length), 0.0f);
    const auto length = static_cast<size_t>(DUCK_SECONDS * SAMPLE_RATE);
    for (size_t part = 0; part < score.instruments.size(); ++part) {
        if (!score.instruments[part].ducks) continue;
        for (const Note& note : arrangement.parts[part]) {
            for (size_t i = 0; i < length; ++i) {
                const float left = 1.0f - static_cast<float>(i) / static_cast<float>(length);
                float& value = curve[(static_cast<size_t>(note.start) + i) % curve.size()];
                value = std::max(value, left * left * std::min(note.level, 1.0f));
            }
        }
    }
    return curve;
}

void PlayPart(const Instrument& instrument, const std::vector<Note>& notes, Loop& bus) {
    std::fill(bus.left.begin(), bus.left.end(), 0.0f);
    std::fill(bus.right.begin(), bus.right.end(), 0.0f);
    for (const Note& note : notes) {
        if (instrument.isDrum)
            PlayDrum(instrument.drum, note, bus);
        else
            PlaySynth(instrument.synth, note, bus);
    }
    if (instrument.drive > 0.0f) Overdrive(instrument.drive, bus);
}

void AddPart(const Instrument& instrument, const std::vector<float>& duck, const Loop& bus, Loop& dry, Loop& reverb,
             Loop& echo) {
    const auto gain = static_cast<float>(FromDecibels(static_cast<double>(instrument.gain)));
    const float gainLeft = gain * std::sqrt(1.0f - instrument.pan), gainRight = gain * std::sqrt(1.0f + instrument.pan);
    for (size_t i = 0; i < bus.Size(); ++i) {
        const float push = 1.0f - instrument.duck * duck[i];
        const float left = bus.left[i] * gainLeft * push, right = bus.right[i] * gainRight * push;
        dry.left[i] += left;
        dry.right[i] += right;
        reverb.left[i] += left * instrument.reverb;
        reverb.right[i] += right * instrument.reverb;
        echo.left[i] += left * instrument.echo;
        echo.right[i] += right * instrument.echo;
    }
}

int16_t ToSample(float value) {
    return static_cast<int16_t>(std::lrintf(std::clamp(value, -1.0f, 1.0f) * 32767.0f));
}

// A file in memory that the sound library writes to, until all of it goes to disk.
struct MemoryFile {
    std::vector<uint8_t> bytes;
    size_t position = 0;
};

MemoryFile& Memory(void* file) {
    return *static_cast<MemoryFile*>(file);
}

SF_VIRTUAL_IO MEMORY_ACCESS = {
    [](void* file) { return static_cast<sf_count_t>(Memory(file).bytes.size()); },
    [](sf_count_t offset, int from, void* file) {
        MemoryFile& memory = Memory(file);
        const size_t base = from == SEEK_SET ? 0 : from == SEEK_CUR ? memory.position : memory.bytes.size();
        memory.position = static_cast<size_t>(static_cast<sf_count_t>(base) + offset);
        return static_cast<sf_count_t>(memory.position);
    },
    [](void* to, sf_count_t count, void* file) {
        MemoryFile& memory = Memory(file);
        const size_t left = memory.bytes.size() - std::min(memory.position, memory.bytes.size());
        const size_t taken = std::min(static_cast<size_t>(count), left);
        std::copy_n(memory.bytes.data() + memory.position, taken, static_cast<uint8_t*>(to));
        memory.position += taken;
        return static_cast<sf_count_t>(taken);
    },
    [](const void* from, sf_count_t count, void* file) {
        MemoryFile& memory = Memory(file);
        const auto size = static_cast<size_t>(count);
        memory.bytes.resize(std::max(memory.bytes.size(), memory.position + size));
        std::copy_n(static_cast<const uint8_t*>(from), size, memory.bytes.data() + memory.position);
        memory.position += size;
        return count;
    },
    [](void* file) { return static_cast<sf_count_t>(Memory(file).position); },
};

}  // namespace

std::vector<int16_t> RenderScore(const Score& score) {
    const Arrangement arrangement = Arrange(score);
    const std::vector<float> duck = DuckCurve(score, arrangement);
    Loop sound(arrangement.length), reverb(arrangement.length), echo(arrangement.length), bus(arrangement.length);
    for (size_t i = 0; i < score.instruments.size(); ++i) {
        if (arrangement.parts[i].empty()) continue;
        PlayPart(score.instruments[i], arrangement.parts[i], bus);
        AddPart(score.instruments[i], duck, bus, sound, reverb, echo);
    }
    AddEcho(score.echo, score.tempo, echo, sound);
    AddReverb(score.reverb, reverb, sound);
    Master(score.loudness, sound);
    std::vector<int16_t> samples(2 * sound.Size());
    for (size_t i = 0; i < sound.Size(); ++i) {
        samples[2 * i] = ToSample(sound.left[i]);
        samples[2 * i + 1] = ToSample(sound.right[i]);
    }
    return samples;
}

void WriteSound(const std::filesystem::path& path, const std::vector<int16_t>& samples) {
    const std::string ending = path.extension().string();
    SF_INFO info{};
    info.samplerate = SAMPLE_RATE;
    info.channels = 2;
    if (ending == ".flac") info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    if (ending == ".ogg") info.format = SF_FORMAT_OGG | SF_FORMAT_VORBIS;
    if (ending == ".wav") info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    if (info.format == 0) Refuse(path.string(), 0, "this is no kind of sound file", "name it .flac, .ogg or .wav");
    MemoryFile memory;
    SNDFILE* file = sf_open_virtual(&MEMORY_ACCESS, SFM_WRITE, &info, &memory);
    const auto frames = static_cast<sf_count_t>(samples.size() / 2);
    const bool written = file && sf_writef_short(file, samples.data(), frames) == frames;
    if (!file || sf_close(file) != 0 || !written) {
        Refuse(path.string(), 0, sf_strerror(nullptr), "report this as a fault of the tool");
    }
    WriteWholeFile(path, memory.bytes);
}

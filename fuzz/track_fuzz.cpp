// A file on the disc: the input's first line is its name, the rest its contents. What the disc accepts is played.
#include "interfaces/disc.h"
#include "machine/track_reader.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

std::string MakeFolder() {
    std::string folder = (fs::temp_directory_path() / "tarnwick-fuzz-XXXXXX").string();
    if (!mkdtemp(folder.data())) std::abort();
    static struct RemoveAtExit {
        std::string folder;
        ~RemoveAtExit() {
            std::error_code ignored;
            fs::remove_all(folder, ignored);
        }
    } remover{folder};
    return folder;
}

void Play(const DiscTrack& track) {
    std::string problem;
    const auto reader = TrackReader::Open(track.path, problem);
    if (!reader || reader->Milliseconds() != track.milliseconds) std::abort();
    std::array<int16_t, 1000> samples{};
    for (const uint32_t from : {0u, track.milliseconds / 2, track.milliseconds}) {
        reader->SetSpan(from, track.milliseconds);
        for (int i = 0; i < 4; ++i)
            reader->Read(samples);
    }
}

}  // namespace

// The sound library's Ogg reader leaves some bytes behind when it refuses a damaged file.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libvorbis\nleak:libsndfile\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string folder = MakeFolder();
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string name(input.substr(0, input.find('\n')));
    if (name.empty() || name.find_first_of(std::string("/\0", 2)) != std::string::npos || name.size() > 200) return 0;
    const std::string path = folder + "/" + name;
    std::ofstream(path, std::ios::binary) << input.substr(std::min(name.size() + 1, size));
    for (const auto& [number, track] : ReadDisc(folder).tracks)
        Play(track);
    std::error_code ignored;
    fs::remove(path, ignored);
    return 0;
}

// A recording: whatever is read can be written again, and is then read as the same.
#include "session/recording.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RecordingReader reader;
    RecordingHeader header{};
    std::string error;
    if (!reader.Open({data, size}, header, error)) return 0;
    RecordingWriter writer(header);
    Section section;
    while (reader.Next(section, error)) {
        writer.Add(section);
        if (!section.end) continue;
        uint32_t frames = 0;
        if (!CheckRecording(writer.Bytes(), header, frames, error)) std::abort();
        return 0;
    }
    return 0;
}

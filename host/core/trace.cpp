#include "core/trace.h"

#include "core/digest.h"

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <span>

namespace {

// Writes the fields and digests their bits in one go.
class TraceWriter {
public:
    void Whole(const char* name, uint32_t value) {
        digest_.Add(&value, sizeof value);
        Name(name);
        line_ += std::to_string(value);
    }

    void Whole(const char* name, int32_t value) {
        digest_.Add(&value, sizeof value);
        Name(name);
        line_ += std::to_string(value);
    }

    void Real(const char* name, float value) {
        Name(name);
        AddReal(value);
    }

    void Reals(const char* name, std::span<const float> values) {
        Name(name);
        line_ += '[';
        for (const float value : values) {
            if (line_.back() != '[') line_ += ',';
            AddReal(value);
        }
        line_ += ']';
    }

    void State(const HostStateSpan& state) { digest_.Add(state.data, state.bytes); }

    // `dropped` is no part of the digest: it is what a table had no room for, not what the game has done.
    std::string End(uint32_t dropped, const Picture* picture) {
        Name("digest");
        AddDigest(digest_);
        Name("dropped");
        line_ += std::to_string(dropped);
        Name("pixels");
        if (!picture) return line_ + "null}";
        Digest pixels;
        pixels.Add(picture->pixels, sizeof(uint32_t) * static_cast<size_t>(picture->width * picture->height));
        AddDigest(pixels);
        return line_ + "}";
    }

private:
    void Name(const char* name) {
        line_ += line_.empty() ? "{\"" : ",\"";
        line_ += name;
        line_ += "\":";
    }

    void AddReal(float value) {
        digest_.Add(&value, sizeof value);
        char text[32] = "null";
        if (std::isfinite(value)) std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
        line_ += text;
    }

    void AddDigest(const Digest& digest) {
        char text[32];
        std::snprintf(text, sizeof text, "\"%016" PRIx64 "\"", digest.Value());
        line_ += text;
    }

    std::string line_;
    Digest digest_;
};

}  // namespace

std::string TraceLine(uint32_t frame, const HostFrameReport& report, const Picture* picture) {
    TraceWriter writer;
    writer.Whole("frame", frame);
    writer.Whole("ticks", report.ticks);
    writer.Whole("level", report.level);
    writer.Whole("state", report.state);
    writer.Reals("pos", report.position);
    writer.Reals("vel", report.velocity);
    writer.Real("heading", report.heading);
    writer.Whole("contact", report.contact);
    writer.Real("slope", report.slope);
    writer.Whole("time0", report.time0);
    writer.Reals("camera", report.camera);
    writer.Reals("angles", report.cameraAngles);
    writer.Whole("polys", report.polygons);
    writer.Reals("lights", report.lights);
    writer.Reals("shots", report.shots);
    for (const HostStateSpan& state : report.extra)
        writer.State(state);
    return writer.End(report.dropped, picture);
}

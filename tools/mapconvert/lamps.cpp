#include "mapconvert/lamps.h"

#include "transforms/angles.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <sstream>

namespace {

constexpr double LIGHT_DEFAULT = 300;
constexpr double NUMBER_MAX = 1e8;   // larger ones are no places and no light
constexpr double BYTE_MAX = 300;     // brighter lamps have no more colour to show
constexpr size_t CHANGING_MAX = 20;  // each has a slot of its own, 30 at one place

// Brightness, when the key holds one number or a colour and then a brightness.
std::optional<double> BrightnessIn(const MapEntity& entity, const char* name) {
    const std::vector<double> numbers = NumbersOf(entity, name);
    if (numbers.size() == 1) return numbers[0];
    if (numbers.size() == 4) return numbers[3];
    return std::nullopt;
}

std::optional<Vec3> ColourIn(const MapEntity& entity, const char* name) {
    const std::vector<double> numbers = NumbersOf(entity, name);
    if (numbers.size() != 3 && numbers.size() != 4) return std::nullopt;
    Vec3 colour;
    for (int i = 0; i < 3; ++i)
        colour[i] = std::clamp(numbers[static_cast<size_t>(i)], 0.0, 255.0);
    return colour;
}

std::string Text(const Vec3& v) {
    return fmt::format("{:.4g} {:.4g} {:.4g}", v.x, v.y, v.z);
}

// The way of light that goes down by -pitch degrees.
Vec3 DirectionOf(double yaw, double pitch) {
    const SineCosine turn = SineCosineOfDegrees(yaw);
    const SineCosine tilt = SineCosineOfDegrees(pitch);
    return {turn.cosine * tilt.cosine, turn.sine * tilt.cosine, tilt.sine};
}

const char* StyleOf(double number) {
    if (number == 1 || number == 10) return "flicker";
    if (number == 2 || number == 5 || number == 11) return "ramp";
    if (number == 4 || number == 9) return "blink";
    return nullptr;
}

}  // namespace

std::vector<double> NumbersOf(const MapEntity& entity, const std::string& name) {
    const MapKey* key = entity.Find(name);
    std::vector<double> numbers;
    std::istringstream words(key ? key->value : "");
    for (std::string word; words >> word;) {
        double value = 0;
        const auto [end, failed] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (failed != std::errc() || end != word.data() + word.size() || !(std::abs(value) < NUMBER_MAX)) return {};
        numbers.push_back(value);
    }
    return numbers;
}

std::optional<MapEntity> LampReader::LampOf(const MapEntity& entity, std::set<std::string>& unused) {
    static const std::set<std::string> used{"classname", "origin", "light", "_light", "_color",
                                            "color",     "wait",   "style", "angle",  "targetname"};
    for (const MapKey& key : entity.keys) {
        if (!used.contains(key.name)) unused.insert(key.name);
    }
    const std::vector<double> origin = NumbersOf(entity, "origin");
    if (origin.size() != 3) return std::nullopt;
    const std::optional<double> own = BrightnessIn(entity, "light");
    const double light = own ? *own : BrightnessIn(entity, "_light").value_or(LIGHT_DEFAULT);
    const double byte = std::clamp(light * rules_.lampWeight, -127.0, BYTE_MAX);
    if (byte == 0) return std::nullopt;
    const std::vector<double> wait = NumbersOf(entity, "wait");
    const double fade = wait.size() == 1 && wait[0] > 0 ? wait[0] : 1;
    const double radius = std::clamp(std::abs(light) * rules_.lampReach / fade, 1.0, 100000.0);
    MapEntity lamp;
    lamp.line = entity.line;
    const auto add = [&](const char* name, const std::string& value) {
        lamp.keys.push_back({name, value, entity.line});
    };
    add("classname", "light");
    add("origin", entity.Find("origin")->value);
    add("light", fmt::format("{:.4g}", byte));
    add("radius", fmt::format("{:.6g}", radius));
    std::optional<Vec3> colour = ColourIn(entity, "_color");
    if (!colour) colour = ColourIn(entity, "color");
    if (!colour) colour = ColourIn(entity, "_light");
    if (!colour) colour = ColourIn(entity, "light");
    if (colour && LengthSquared(*colour) > 0) add("_color", Text(*colour));
    const std::vector<double> style = NumbersOf(entity, "style");
    const char* changes = style.size() == 1 && byte > 0 ? StyleOf(style[0]) : nullptr;
    if (changes && ++changing_ <= CHANGING_MAX) add("style", changes);
    return lamp;
}

void LampReader::ReadSun(const MapEntity& entity) {
    const std::optional<double> own = BrightnessIn(entity, "_light");
    const double light = own ? *own : BrightnessIn(entity, "light").value_or(LIGHT_DEFAULT);
    sun_ = std::clamp(light * rules_.lampWeight, 0.0, BYTE_MAX);
    const std::vector<double> angles = NumbersOf(entity, "angles");
    const std::vector<double> pitch = NumbersOf(entity, "pitch");
    if (angles.size() != 3 && pitch.size() != 1) return;
    sunDirection_ =
        DirectionOf(angles.size() == 3 ? angles[1] : 0, pitch.size() == 1 ? pitch[0] : -std::abs(angles[0]));
}

void LampReader::ReadWorld(const MapEntity& entity) {
    const auto weighted = [&](const char* name, std::optional<double>& value, double most) {
        const std::vector<double> numbers = NumbersOf(entity, name);
        if (numbers.size() == 1) value = std::clamp(numbers[0] * rules_.lampWeight, 0.0, most);
    };
    weighted("light", ambient_, 127);
    weighted("_minlight", ambient_, 127);
    weighted("_sunlight", sun_, BYTE_MAX);
    weighted("_sunlight2", skyLight_, BYTE_MAX);
    const std::vector<double> mangle = NumbersOf(entity, "_sun_mangle");
    if (mangle.size() >= 2) sunDirection_ = DirectionOf(mangle[0], mangle[1]);
}

void LampReader::AddTo(MapEntity& world, bool hasSky) const {
    const auto add = [&](const char* name, double value) {
        world.keys.push_back({name, fmt::format("{:.4g}", value), {}});
    };
    add("ambient", ambient_.value_or(hasSky ? 0 : rules_.ambient));
    if (!hasSky) return;
    add("sun", sun_.value_or(rules_.sun));
    add("sky_light", skyLight_.value_or(rules_.skyLight));
    if (sunDirection_) world.keys.push_back({"sun_direction", Text(*sunDirection_), {}});
}

void LampReader::WriteNotes(std::vector<std::string>& notes) const {
    if (changing_ > CHANGING_MAX) {
        notes.push_back(fmt::format("{} of {} lamps that change are made steady: more would not find a light slot",
                                    changing_ - CHANGING_MAX, changing_));
    }
}

#include "replay/play/recorded_play.h"

#include "input/keys.h"

#include <bit>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>

namespace {

const char* const STATES[] = {  // by PlayerState
    "Stand",    "FoldArms",  "HoldArms",    "UnfoldArms", "Ready",      "RunUp",       "Run",
    "Back",     "Halt",      "FidgetRight", "FidgetLeft", "LeapCrouch", "LeapTakeOff", "LeapAir",
    "LeapLand", "HopCrouch", "HopTakeOff",  "HopAir",     "HopLand",    "Walk"};

// Every way from state to state that the player's handlers and clips have. Nothing leads into LeapLand.
const std::pair<const char*, std::vector<const char*>> WAYS[] = {
    {"Stand", {"FoldArms", "Halt", "Ready", "Walk", "Back", "HopCrouch"}},
    {"FoldArms", {"HoldArms", "Ready", "Back"}},
    {"HoldArms", {"UnfoldArms", "Ready", "Back"}},
    {"UnfoldArms", {"Stand", "Ready", "Back"}},
    {"Ready", {"RunUp", "Halt", "Walk", "HopCrouch"}},
    {"RunUp", {"Run", "Halt", "Walk", "HopCrouch", "LeapCrouch"}},
    {"Run", {"Halt", "Walk", "HopCrouch", "LeapCrouch"}},
    {"Back", {"Stand"}},
    {"Halt", {"FidgetRight", "FidgetLeft", "RunUp", "Back", "HopCrouch"}},
    {"FidgetRight", {"Stand", "Ready", "Walk", "Back", "HopCrouch"}},
    {"FidgetLeft", {"Stand", "Ready", "Walk", "Back", "HopCrouch"}},
    {"LeapCrouch", {"LeapTakeOff"}},
    {"LeapTakeOff", {"LeapAir"}},
    {"LeapAir", {"Run"}},
    {"HopCrouch", {"HopTakeOff"}},
    {"HopTakeOff", {"HopAir"}},
    {"HopAir", {"HopLand"}},
    {"HopLand", {"Ready"}},
    {"Walk", {"Halt", "Run", "HopCrouch", "LeapCrouch"}},
};
const char* const KEYS[] = {"UP", "DOWN", "LEFT", "RIGHT", "SPACE", "LSHIFT", "RCONTROL", "F5", "F6", "F8", "D", "W",
                            "R",  "O",    "L",    "I",     "K",     "U",      "J",        "Y",  "H",  "T",  "G"};
const char* const PLACES[] = {"step up",         "slope up",       "slope down",         "over a ledge",
                              "under a ceiling", "against a wall", "landing on a slope", "shot in flight",
                              "no shot left",    "free camera"};

const char* const ARROWS[] = {"UP", "DOWN", "LEFT", "RIGHT"};

std::string Jump(const std::string& kind, int32_t ticks, bool held) {
    return kind + ", " + std::to_string(ticks) + " ticks, " + (held ? "held" : "tapped");
}

std::string StateOf(const PlayedFrame& frame) {
    const auto state = static_cast<size_t>(frame.Whole("state"));
    if (state >= std::size(STATES)) throw std::runtime_error("state " + std::to_string(state) + " has no name here");
    return STATES[state];
}

uint8_t CodeOf(const char* key) {
    uint8_t code = 0;
    if (!FindKey(key, code)) throw std::runtime_error(std::string("no key ") + key);
    return code;
}

size_t FieldNamed(const char* name) {
    for (size_t field = 0; field < FIELD_COUNT; ++field)
        if (std::strcmp(FRAME_FIELDS[field].name, name) == 0) return field;
    throw std::runtime_error(std::string("no field ") + name);
}

// Adds what two frames in a row show. `ground` is the player's height at his last contact.
void AddPlaces(Coverage& coverage, const PlayedFrame& before, const PlayedFrame& now, float& ground) {
    const std::set<std::string> onFoot = {"Run", "Walk", "RunUp", "Back"};
    const bool walks = onFoot.contains(StateOf(before)) && onFoot.contains(StateOf(now));
    const float height = now.Real("pos", 1), rise = height - before.Real("pos", 1);
    const float slope = now.Real("slope");
    const bool touches = now.Whole("contact") != 0;
    const bool onSlope = walks && touches && slope > 0.7f && slope < 0.99f;
    if (touches) ground = height;
    const bool shoots = !now.fields[FieldNamed("shots")].empty();
    const bool shot = !before.fields[FieldNamed("shots")].empty();
    const std::pair<const char*, bool> reached[] = {
        {"step up", walks && touches && !onSlope && rise > 20},
        {"slope up", onSlope && rise > 1},
        {"slope down", onSlope && rise < -1},
        {"over a ledge", walks && !touches && ground - height > 60},
        {"under a ceiling", touches && slope > 0.7f && before.Real("vel", 1) > 3 && !walks},
        {"against a wall", walks && touches && slope < 0.1f},
        {"landing on a slope", StateOf(before) == "HopAir" && StateOf(now) == "HopLand" && slope < 0.95f},
        {"shot in flight", shoots},
        {"no shot left", shot && !shoots},
    };
    for (const auto& [place, isReached] : reached)
        coverage[place] += isReached;
}

}  // namespace

int32_t PlayedFrame::Whole(const char* field) const {
    return static_cast<int32_t>(fields[FieldNamed(field)].at(0));
}

float PlayedFrame::Real(const char* field, size_t index) const {
    return std::bit_cast<float>(fields[FieldNamed(field)].at(index));
}

std::vector<PlayedFrame> ReadPlay(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<uint8_t> bytes(std::istreambuf_iterator<char>(stream), {});
    RecordingReader reader;
    RecordingHeader header{};
    std::string error;
    if (!reader.Open(bytes, header, error)) throw std::runtime_error(file + ": " + error);
    std::vector<PlayedFrame> play;
    std::bitset<256> keys;
    for (Section section;;) {
        if (!reader.Next(section, error)) throw std::runtime_error(file + ": " + error);
        if (section.end) return play;
        for (const AnswerRun& run : section.answers[ANSWER_KEYS])
            for (uint32_t time = 0; time < run.times; ++time)
                for (size_t i = 1; i < run.words.size(); ++i)
                    keys.flip(static_cast<size_t>(run.words[i]));
        play.push_back({section.frame.fields, section.frame.digest, section.frame.pixels, keys});
    }
}

Coverage WantedCoverage() {
    Coverage coverage;
    for (const auto& [from, others] : WAYS) {
        coverage[from];
        for (const char* to : others)
            coverage[std::string(from) + " > " + to];
    }
    for (const char* key : KEYS)
        coverage[std::string("key ") + key];
    for (const char* place : PLACES)
        coverage[place];
    for (const char* key : ARROWS)
        for (const char* state : {"HopAir", "LeapAir"})
            coverage[std::string(state) + ", steered " + key];
    for (const char* kind : {"hop", "leap"})
        for (const int32_t ticks : {1, 2, 4, 12})
            for (const bool held : {false, true})
                coverage[Jump(kind, ticks, held)];
    return coverage;
}

void AddCoverage(Coverage& coverage, const std::vector<PlayedFrame>& play) {
    const uint8_t space = CodeOf("SPACE");
    bool freeCamera = false;
    float ground = 0;
    for (size_t i = 0; i < play.size(); ++i) {
        const PlayedFrame& now = play[i];
        const std::string state = StateOf(now);
        ++coverage[state];
        for (const char* key : KEYS)
            coverage[std::string("key ") + key] += now.keys[CodeOf(key)];
        freeCamera = (freeCamera || now.keys[CodeOf("F6")]) && !now.keys[CodeOf("F5")];
        coverage["free camera"] += freeCamera && i > 0 && now.Real("camera") != play[i - 1].Real("camera");
        for (const char* key : ARROWS)
            if (state == "HopAir" || state == "LeapAir") coverage[state + ", steered " + key] += now.keys[CodeOf(key)];
        if (i == 0 || now.Whole("level") != play[i - 1].Whole("level")) continue;
        AddPlaces(coverage, play[i - 1], now, ground);
        const std::string before = StateOf(play[i - 1]);
        if (state == before) continue;
        ++coverage[before + " > " + state];
        if (state == "HopTakeOff") ++coverage[Jump("hop", now.Whole("ticks"), now.keys[space])];
        if (state == "LeapTakeOff") ++coverage[Jump("leap", now.Whole("ticks"), now.keys[space])];
    }
}

#include "motion/report.h"
#include "motion/least_measures.h"

#include "character/animation.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr const char* STATE_NAMES[] = {  // by PlayerState
    "stand",     "fold arms",  "hold arms",    "unfold arms", "ready",       "run up",        "run",
    "back",      "halt",       "glance right", "glance left", "leap crouch", "leap take-off", "leap air",
    "leap land", "hop crouch", "hop take-off", "hop air",     "hop land",    "walk"};
static_assert(std::size(STATE_NAMES) == PLAYER_STATE_COUNT);

// Left bones and their right twins, by number.
constexpr std::array<std::pair<size_t, size_t>, 8> TWINS = {
    {{5, 6}, {7, 8}, {9, 10}, {11, 12}, {13, 14}, {15, 16}, {17, 18}, {19, 20}}};

Vec3 PivotOf(const Stage& stage, const Moment& moment, size_t bone) {
    const std::array<double, 3> p = stage.PivotOf(bone);
    const Transform& t = moment.bones[bone];
    const auto along = [&](size_t axis) {
        return static_cast<float>(p[0] * t.r[axis] + p[1] * t.r[3 + axis] + p[2] * t.r[6 + axis] + t.t[axis]);
    };
    return {along(0), along(1), along(2)};
}

double Distance(const Vec3& a, const Vec3& b) {
    return std::hypot(double{a.x} - double{b.x}, double{a.y} - double{b.y}, double{a.z} - double{b.z});
}

std::string Row(const std::string& name, const Measures& m) {
    return fmt::format("{:34}{:8.1f}{:8.1f}{:8.1f}{:8.1f}", name, m.largest, m.mean, m.slide, m.depth);
}

std::string Rows(const std::map<StatePair, Transition>& transitions) {
    std::string text;
    for (const auto& [pair, found] : transitions) {
        text += fmt::format("{}   from {}, frame {}\n",
                            Row(fmt::format("{} -> {}", NameOf(pair.first), NameOf(pair.second)), found.worst),
                            found.departure, found.worstFrame);
    }
    return text;
}

std::string Heading(const std::string& title) {
    return fmt::format("\n{:34}{:>8}{:>8}{:>8}{:>8}\n", title, "largest", "mean", "slide", "depth");
}

}  // namespace

const char* NameOf(int32_t state) {
    return STATE_NAMES[static_cast<size_t>(state)];
}

LoopMeasures MeasureLoop(Stage& stage, PlayerState state) {
    const uint32_t length = stage.LengthOf(state), cycle = length - ANIM_START_TIME;
    LoopMeasures loop;
    const Moment first = stage.PoseAt(state, ANIM_START_TIME), last = stage.PoseAt(state, length);
    for (size_t i = 0; i < first.points.size(); ++i)
        loop.closing = std::max(loop.closing, Distance(first.points[i], last.points[i]));
    for (uint32_t time = ANIM_START_TIME; time < length; time += ANIM_TICK_UNITS) {
        const uint32_t later = ANIM_START_TIME + (time - ANIM_START_TIME + cycle / 2) % cycle;
        const Moment a = stage.PoseAt(state, time), b = stage.PoseAt(state, later);
        for (const auto& [left, right] : TWINS) {
            Vec3 twin = PivotOf(stage, b, right);
            twin.x = -twin.x;
            loop.symmetry = std::max(loop.symmetry, Distance(PivotOf(stage, a, left), twin));
        }
    }
    return loop;
}

std::string MotionReport(const std::filesystem::path& folder) {
    std::string text =
        "Steps of the character's points from frame to frame, as the game blends them, in units: the largest of any\n"
        "point and the greatest mean of all; how far a foot slides that is down; how deep a point is below the "
        "floor.\n";
    Movement everyTick;
    for (const uint32_t ticks : {1U, 2U, 4U}) {
        Stage stage(folder);
        Movement movement = Explore(stage, ticks);
        text += Heading(fmt::format("States, {} tick{} a frame", ticks, ticks == 1 ? "" : "s"));
        for (const auto& [state, measures] : movement.states)
            text += Row(NameOf(state), measures) + "\n";
        text += Heading("Changes of state") + Rows(movement.transitions);
        text += Heading("Changes in the middle of a blend") + Rows(movement.broken);
        if (ticks == 1) everyTick = std::move(movement);
    }
    Stage stage(folder);
    text += fmt::format("\n{:34}{:>8}{:>17}\n", "Loops", "closing", "left and right");
    for (const PlayerState state : {STATE_RUN, STATE_WALK, STATE_BACK}) {
        const LoopMeasures loop = MeasureLoop(stage, state);
        text += fmt::format("{:34}{:8.1f}{:17.1f}\n", NameOf(state), loop.closing, loop.symmetry);
    }
    text += "\nWith the best first pose of a crouch the largest step into it would be\n";
    const auto row = [&](const char* name, const std::vector<PlayerState>& states) {
        text += fmt::format("{:34}{:8.1f}\n", name, LeastStepFrom(stage, states));
    };
    row("from run", {STATE_RUN});
    row("from walk", {STATE_WALK});
    row("from ready, run up, run and walk", {STATE_READY, STATE_RUN_UP, STATE_RUN, STATE_WALK});
    text += "\nA foot that stays down slides in the first frame of a blend of 13 by at least\n";
    for (const PlayerState state : {STATE_RUN, STATE_WALK, STATE_BACK})
        text += fmt::format("{:34}{:8.1f}\n", fmt::format("from {}", NameOf(state)), LeastSlideFrom(stage, state, 13));
    text += fmt::format("\n{:34}{:>8}{:>8}{:>8}\n", "With the best keys, slide and depth", "first", "slide", "depth");
    for (const auto& [from, to] : {std::pair{STATE_RUN, STATE_WALK},
                                   {STATE_RUN, STATE_HALT},
                                   {STATE_WALK, STATE_RUN},
                                   {STATE_WALK, STATE_HALT},
                                   {STATE_BACK, STATE_STAND}}) {
        const BlendMeasures least = LeastInBlend(stage, from, to, everyTick.transitions.at({from, to}));
        text += fmt::format("{:34}{:8.1f}{:8.1f}{:8.1f}\n", fmt::format("{} -> {}", NameOf(from), NameOf(to)),
                            least.firstSlide, least.slide, least.depth);
    }
    return text;
}

#include "motion/transitions.h"

#include "platform/input.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <optional>
#include <set>

namespace {

constexpr int EVERY_FRAME =
    60;                        // in this many first frames of a state all keys are tried; later ones only now and then
constexpr int AT_TIMES = 12;   // frames between the later ones
constexpr int STAY_MAX = 600;  // frames, beyond all that the handlers wait for
constexpr double SAME_POSE = 0.5;  // units; a change is not followed again from a pose whose points are all as near
constexpr int AFTER_BLEND = 3;     // frames that still belong to a change
constexpr int32_t EVEN = 0x3FE, ODD = 0x3FF;  // random words that make a handler act that waits for one

double Distance(const Vec3& a, const Vec3& b) {
    const double x = double{a.x} - double{b.x}, y = double{a.y} - double{b.y}, z = double{a.z} - double{b.z};
    return std::sqrt(x * x + y * y + z * z);
}

// A change from one of them shows what it shows from the other. In the air it also counts how high the character is.
bool Alike(const Moment& a, const Moment& b) {
    const auto near = [](const Vec3& p, const Vec3& q) { return Distance(p, q) < SAME_POSE; };
    return a.blends == b.blends && a.onGround && b.onGround && near(a.travel, b.travel) &&
           std::equal(a.points.begin(), a.points.end(), b.points.begin(), b.points.end(), near);
}

// How far the sole's lowest point slid, if it is down in both moments.
double Slide(const std::vector<size_t>& sole, const Moment& before, const Moment& after) {
    const auto lower = [&](size_t a, size_t b) { return after.points[a].y < after.points[b].y; };
    const auto lowest = std::min_element(sole.begin(), sole.end(), lower);
    if (lowest == sole.end()) return 0;
    const Vec3 &from = before.points[*lowest], &to = after.points[*lowest];
    if (from.y > GROUND + DOWN || to.y > GROUND + DOWN) return 0;
    return std::hypot(double{to.x} - double{from.x} + double{after.travel.x},
                      double{to.z} - double{from.z} + double{after.travel.z});
}

// Everything a player can do in one frame.
std::vector<FrameInput> AllInputs() {
    std::vector<FrameInput> inputs;
    for (const uint16_t way : {uint16_t{0}, CTL_UP, CTL_DOWN}) {
        for (const int other : {0, int{CTL_SHIFT}, int{CTL_SPACE}, CTL_SHIFT | CTL_SPACE})
            inputs.push_back({static_cast<uint16_t>(way | other), 0, false});
    }
    inputs.push_back({0, EVEN, false});
    inputs.push_back({0, ODD, false});
    inputs.push_back({0, 0, true});
    inputs.push_back({CTL_UP | CTL_SPACE, 0, false, true});
    inputs.push_back({CTL_UP | CTL_SHIFT | CTL_SPACE, 0, false, true});
    return inputs;
}

class Explorer {
public:
    Explorer(Stage& stage, uint32_t ticks, Changes changes) : stage_(stage), ticks_(ticks), changes_(changes) {}

    Movement Run() {
        for (int i = 0; i < AT_TIMES; ++i)
            stage_.Frame(ticks_, {});
        pending_.push_back(stage_.Save());
        while (!pending_.empty()) {
            stage_.Restore(pending_.front());
            pending_.pop_front();
            StayAndLeave();
        }
        return std::move(movement_);
    }

private:
    // Plays one frame more in the same state, with whatever keys keep it. False: the state ends by itself; nothing was
    // done.
    bool Stay() {
        const Stage::Course before = stage_.SaveCourse();
        const int32_t state = stage_.State();
        for (const uint16_t controls :
             {held_, uint16_t{0}, CTL_UP, static_cast<uint16_t>(CTL_UP | CTL_SHIFT), CTL_DOWN}) {
            stage_.Move(ticks_, {controls, 0, false});
            held_ = controls;
            if (stage_.State() == state) {
                stage_.Draw();
                return true;
            }
            stage_.Restore(before);
        }
        return false;
    }

    // Whether no walk has come by here: without a blend a state looks the same whatever came before, so one walk is
    // enough.
    bool IsNew(const Moment& moment) {
        if (moment.blends) return true;
        const auto [claim, isFirst] = walks_.try_emplace({moment.state, moment.time}, walk_);
        const bool held = moment.time == stage_.LengthOf(moment.state);
        return isFirst || (held && claim->second == walk_);
    }

    void StayAndLeave() {
        ++walk_;
        followed_.clear();
        for (int frame = 0; frame < STAY_MAX; ++frame) {
            const Stage::Snapshot here = stage_.Save();
            if (!IsNew(here.now)) return;
            if (frame < EVERY_FRAME || frame % AT_TIMES == 0) LeaveEveryWay(here);
            stage_.Restore(here);
            if (!Stay()) {
                LeaveEveryWay(here);
                return;
            }
            if (!here.now.blends && !stage_.Now().blends) {
                Raise(movement_.states[here.now.state], Measure(stage_, here.now, stage_.Now()));
            }
        }
    }

    void LeaveEveryWay(const Stage::Snapshot& here) {
        std::set<int32_t> left;
        for (const FrameInput& input : AllInputs()) {
            stage_.Restore(here.course);
            stage_.Move(ticks_, input);
            const int32_t to = stage_.State();
            if (to == here.now.state || !left.insert(to).second) continue;
            const bool isNew = known_.insert({here.now.state, to}).second;
            if (!isNew && !IsToFollow(here.now, to)) continue;
            stage_.Draw();
            const uint16_t kept = held_;
            held_ = input.controls;
            if (isNew) pending_.push_back(stage_.Save());
            Follow(here.now);
            held_ = kept;
            stage_.Restore(here);
        }
    }

    bool IsToFollow(const Moment& from, int32_t to) {
        if (from.blends && changes_ == Changes::BETWEEN_BLENDS) return false;
        std::vector<Moment>& left = followed_[to];
        if (std::any_of(left.begin(), left.end(), [&](const Moment& other) { return Alike(other, from); }))
            return false;
        left.push_back(from);
        return true;
    }

    // Measures what follows the change that has just happened.
    void Follow(const Moment& before) {
        std::vector<Moment> frames = {before, stage_.Now()};
        for (int after = 0; after < AFTER_BLEND && Stay();) {
            frames.push_back(stage_.Now());
            if (!stage_.Now().blends) ++after;
        }
        auto& found = before.blends ? movement_.broken : movement_.transitions;
        Transition& transition = found[{before.state, frames[1].state}];
        for (size_t i = 1; i < frames.size(); ++i) {
            const Measures step = Measure(stage_, frames[i - 1], frames[i]);
            const bool worse = transition.worstCase.empty() || step.largest > transition.worst.largest;
            Raise(transition.worst, step);
            if (!worse) continue;
            transition.worstCase = frames;
            transition.departure = before.time;
            transition.worstFrame = i;
        }
    }

    Stage& stage_;
    uint32_t ticks_;
    Changes changes_;
    uint16_t held_ = 0;
    Movement movement_;
    std::set<StatePair> known_;
    std::map<std::pair<int32_t, uint32_t>, int>
        walks_;  // for each state and time of its animation the walk that came by first
    int walk_ = 0;
    std::map<int32_t, std::vector<Moment>> followed_;  // in this walk, by the state changed into: the moments left
    std::deque<Stage::Snapshot> pending_;  // the moments just after a change, from which the search has yet to go on
};

}  // namespace

Measures Measure(const Stage& stage, const Moment& before, const Moment& after) {
    Measures measures;
    for (size_t i = 0; i < after.points.size(); ++i) {
        const double step = Distance(before.points[i], after.points[i]);
        measures.largest = std::max(measures.largest, step);
        measures.mean += step / static_cast<double>(after.points.size());
        if (after.onGround) measures.depth = std::max(measures.depth, double{GROUND - after.points[i].y});
    }
    if (before.onGround && after.onGround) {
        measures.slide = std::max(Slide(stage.LeftSole(), before, after), Slide(stage.RightSole(), before, after));
    }
    return measures;
}

void Raise(Measures& worst, const Measures& other) {
    worst.largest = std::max(worst.largest, other.largest);
    worst.mean = std::max(worst.mean, other.mean);
    worst.slide = std::max(worst.slide, other.slide);
    worst.depth = std::max(worst.depth, other.depth);
}

Movement Explore(Stage& stage, uint32_t ticks, Changes changes) {
    return Explorer(stage, ticks, changes).Run();
}

#include "motion/least_measures.h"

#include "character/animation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

namespace {

double Distance(const Vec3& a, const Vec3& b) {
    return std::hypot(double{a.x} - double{b.x}, double{a.y} - double{b.y}, double{a.z} - double{b.z});
}

// By steps towards the farthest place that become ever shorter; too large by a thousandth at most.
double SmallestBall(const std::vector<Vec3>& places) {
    constexpr int STEPS = 1000;
    Vec3 centre = places[0];
    double radius = 0;
    for (int step = 1; step <= STEPS; ++step) {
        const Vec3* farthest = &places[0];
        radius = 0;
        for (const Vec3& place : places) {
            const double distance = Distance(place, centre);
            if (distance > radius) farthest = &place;
            radius = std::max(radius, distance);
        }
        const float share = 1.0f / static_cast<float>(step + 1);
        centre = {centre.x + (farthest->x - centre.x) * share, centre.y + (farthest->y - centre.y) * share,
                  centre.z + (farthest->z - centre.z) * share};
    }
    return radius;
}

constexpr double NEVER = std::numeric_limits<double>::max();

// What a blend shows, by the moment at which it begins, the frame and the frame at which the latest key stands.
class BlendTable {
public:
    BlendTable(Stage& stage, PlayerState from, PlayerState to, const Transition& found)
        : stage_(stage), from_(from), to_(to) {
        frames_.push_back({ANIM_START_TIME, {}});
        for (size_t i = 1; i < found.worstCase.size(); ++i) {
            const Moment& moment = found.worstCase[i];
            frames_.push_back({moment.time, moment.travel});
            if (!moment.blends) break;
        }
        for (uint32_t time = ANIM_START_TIME; time < stage.LengthOf(from); time += ANIM_TICK_UNITS)
            starts_.push_back(Shown(stage.PoseAt(from, time), 0));
    }

    size_t LastFrame() const { return frames_.size() - 1; }

    // The clip's pose at time `pose` comes first.
    double FirstSlide(uint32_t pose) {
        double slide = 0;
        for (size_t s = 0; s < starts_.size(); ++s) {
            const Moment next = Shown(Blend(s, pose, ANIM_START_TIME, 1), 1);
            slide = std::max(slide, Measure(stage_, starts_[s], next).slide);
        }
        return slide;
    }

    // The worst step into a frame, for all moments at which the blend can begin.
    Measures Step(size_t frame, size_t keyBefore, size_t key) {
        Measures worst;
        for (size_t s = 0; s < starts_.size(); ++s)
            Raise(worst, Measure(stage_, At(s, frame - 1, keyBefore), At(s, frame, key)));
        return worst;
    }

private:
    struct Frame {
        uint32_t time;
        Vec3 travel;
    };

    uint32_t EndOfBlend() const { return frames_.back().time; }

    Moment Blend(size_t start, uint32_t pose, uint32_t key, size_t frame) {
        const uint32_t left = ANIM_START_TIME + static_cast<uint32_t>(start) * ANIM_TICK_UNITS;
        return stage_.BlendAt({from_, left}, {{to_, pose}, key}, frames_[frame].time,
                              static_cast<int32_t>(EndOfBlend()));
    }

    Moment Shown(Moment moment, size_t frame) const {
        moment.travel = frames_[frame].travel;
        moment.onGround = true;
        return moment;
    }

    const Moment& At(size_t start, size_t frame, size_t key) {
        if (frame == 0) return starts_[start];
        auto [place, isNew] = shown_.try_emplace({start, frame, frame == LastFrame() ? 0 : key});
        if (isNew) {
            const uint32_t pose = frames_[key].time;
            place->second =
                Shown(frame == LastFrame() ? stage_.PoseAt(to_, EndOfBlend()) : Blend(start, pose, pose, frame), frame);
        }
        return place->second;
    }

    Stage& stage_;
    PlayerState from_, to_;
    std::vector<Frame> frames_;
    std::vector<Moment> starts_;
    std::map<std::array<size_t, 3>, Moment> shown_;
};

// Goes through the frames with the least worst step for each place of the latest key. A key that stands at a frame is
// blended to from the next frame on.
double LeastWorst(BlendTable& table, double Measures::*measure) {
    std::vector<double> least = {0};  // by the latest key
    for (size_t frame = 1; frame <= table.LastFrame(); ++frame) {
        std::vector<double> next(frame, NEVER);
        for (size_t before = 0; before < least.size(); ++before) {
            for (const size_t key : {before, frame - 1})
                next[key] = std::min(next[key], std::max(least[before], table.Step(frame, before, key).*measure));
        }
        least = std::move(next);
    }
    return *std::min_element(least.begin(), least.end());
}

}  // namespace

double LeastStepFrom(Stage& stage, const std::vector<PlayerState>& states) {
    std::vector<std::vector<Vec3>> places;  // by point
    for (const PlayerState state : states) {
        for (uint32_t time = ANIM_START_TIME; time <= stage.LengthOf(state); time += ANIM_TICK_UNITS) {
            const Moment moment = stage.PoseAt(state, time);
            places.resize(moment.points.size());
            for (size_t i = 0; i < places.size(); ++i)
                places[i].push_back(moment.points[i]);
        }
    }
    double least = 0;
    for (const std::vector<Vec3>& ofPoint : places)
        least = std::max(least, SmallestBall(ofPoint));
    return least;
}

double LeastSlideFrom(Stage& stage, PlayerState state, int blendFrames) {
    std::map<size_t, std::pair<float, float>> ways;  // by point of a sole: from where to where it is down
    for (uint32_t time = ANIM_START_TIME; time < stage.LengthOf(state); time += ANIM_TICK_UNITS) {
        const Moment moment = stage.PoseAt(state, time);
        for (const std::vector<size_t>& sole : {stage.LeftSole(), stage.RightSole()}) {
            for (const size_t point : sole) {
                const Vec3 place = moment.points[point];
                if (place.y > GROUND + DOWN) continue;
                auto& [from, to] = ways.try_emplace(point, place.z, place.z).first->second;
                from = std::min<float>(from, place.z);
                to = std::max<float>(to, place.z);
            }
        }
    }
    double longest = 0;
    for (const auto& [point, way] : ways)
        longest = std::max(longest, double{way.second} - double{way.first});
    return longest / 2 / blendFrames;
}

BlendMeasures LeastInBlend(Stage& stage, PlayerState from, PlayerState to, const Transition& found) {
    BlendTable table(stage, from, to, found);
    BlendMeasures least{NEVER, LeastWorst(table, &Measures::slide), LeastWorst(table, &Measures::depth)};
    for (uint32_t pose = ANIM_START_TIME; pose < stage.LengthOf(to); pose += ANIM_TICK_UNITS)
        least.firstSlide = std::min(least.firstSlide, table.FirstSlide(pose));
    return least;
}

#include "explorer/route.h"

#include "explorer/report.h"
#include "math/trig.h"
#include "records/walking_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <tuple>

namespace {

constexpr double REACH_UP = 64;  // world units, the reach of a mark in height
constexpr double SECONDS_PER_TICK = 0.016;
constexpr uint64_t LEG_FRAMES = 600'000;  // tried before a leg is given up
constexpr int QUICKER_TRIES = 6;          // for a quicker way of a leg
constexpr size_t RETURNS = 15;            // legs given up before the route is
constexpr size_t FARTHEST_RETURN = 3;     // how many legs before one that is given up are walked again, at most
constexpr float CELL = 48;                // width of a cell; of two ways to a cell the quicker is kept
constexpr double ROUND_DEGREES = 57.29577951308232;

// How a piece of the way is played.
struct Manner {
    bool toTheMark;  // turning to it all the time
    uint16_t controls;
    uint32_t frames;
};

class LegSearch {
public:
    LegSearch(Walker& walker, const MarkedPlace& mark, std::mt19937& random)
        : walker_(walker), mark_(mark), random_(random) {}

    // Ends at the mark, or else as near as it got. moreTries: for a quicker way, once there is one.
    bool Run(int moreTries) {
        const Body start = walker_.Save();
        bool there = TryFrom(start, LEG_FRAMES);
        for (int i = 0; there && i < moreTries; ++i)
            TryFrom(start, MORE_FRAMES);
        if (!there) end_ = nodes_[closest_];
        walker_.Restore(end_.body);
        return there;
    }

    const KeyPlay& Play() const { return end_.play; }

private:
    static constexpr int PIECES = 6;
    static constexpr uint64_t MORE_FRAMES = 25000;

    struct Node {
        Body body;
        KeyPlay play;
        int visits;
    };

    // Whether there is a way, quicker than the one known.
    bool TryFrom(const Body& start, uint64_t frames) {
        nodes_.clear();
        cells_.clear();
        closest_ = 0;
        Keep({start, {}, 0});
        for (uint64_t played = 0; played < frames;) {
            Node node = nodes_[Pick()];
            walker_.Restore(node.body);
            for (int i = 0; i < PIECES; ++i) {
                const Manner manner = RandomManner(i == 0 && node.visits == 0);
                const bool there = Play(manner, node);
                played += manner.frames;
                node.body = walker_.Save();
                node.visits = 0;
                if (node.body.frames >= mostFrames_) break;
                if (there) {
                    mostFrames_ = node.body.frames;
                    end_ = std::move(node);
                    return true;
                }
                Keep(node);
            }
        }
        return false;
    }

    double Across(const Vec3& p) const {
        const double x = double{p.x} - mark_.x, z = double{p.z} - mark_.z;
        return std::sqrt(x * x + z * z);
    }

    double Distance(const Vec3& p) const { return Across(p) + 2 * std::abs(double{p.y} - mark_.y); }

    bool IsThere() const {
        const Vec3& p = walker_.Position();
        return PlayerActor.contactSlope > LANDING_SLOPE && std::abs(double{p.y} - mark_.y) <= REACH_UP &&
               Across(p) <= mark_.reach;
    }

    uint32_t Random(uint32_t below) { return static_cast<uint32_t>(random_() % below); }

    // The closest, a recent one or any.
    size_t Pick() {
        const auto count = static_cast<uint32_t>(nodes_.size());
        size_t picked = closest_;
        const uint32_t choice = Random(3);
        if (choice == 1) picked = count - 1 - Random(std::min(count, 16U));
        if (choice == 2) picked = Random(count);
        ++nodes_[picked].visits;
        return picked;
    }

    Manner RandomManner(bool first) {
        const uint32_t ticks = first ? 250 : 8U << Random(6);
        Manner manner{first || Random(10) < 6, CTL_UP, std::max(1U, ticks / walker_.Ticks())};
        if (!first && Random(3) == 0) manner.controls |= CTL_SPACE;
        if (!manner.toTheMark) {
            if (Random(3) == 0) manner.controls |= CTL_LEFT;
            if (Random(3) == 0) manner.controls |= CTL_RIGHT;
            if (Random(8) == 0) manner.controls ^= CTL_UP;
        }
        return manner;
    }

    uint16_t Steer() const {
        const Vec3& p = walker_.Position();
        const double radians = double{PlayerActor.angles.y} / ROUND_DEGREES;
        const double forward[2] = {-Sin(radians), Cos(radians)};
        const double to[2] = {mark_.x - double{p.x}, mark_.z - double{p.z}};
        const double left = forward[0] * to[1] - forward[1] * to[0];
        const double ahead = forward[0] * to[0] + forward[1] * to[1];
        if (ahead > 0 && std::abs(left) < ahead * walker_.Ticks() / ROUND_DEGREES) return 0;
        return left > 0 ? CTL_LEFT : CTL_RIGHT;
    }

    bool Play(const Manner& manner, Node& node) {
        for (uint32_t i = 0; i < manner.frames; ++i) {
            const auto controls = static_cast<uint16_t>(manner.controls | (manner.toTheMark ? Steer() : 0));
            walker_.Frame(controls);
            if (!node.play.empty() && node.play.back().controls == controls) {
                ++node.play.back().frames;
            } else {
                node.play.push_back({controls, 1});
            }
            if (IsThere()) return true;
        }
        return false;
    }

    void Keep(const Node& node) {
        const Vec3& p = node.body.Position();
        if (p.y < walker_.Low().y) return;
        const auto part = [](float value) { return static_cast<int>(std::floor(value / CELL)); };
        const auto [entry, isNew] =
            cells_.emplace(std::tuple(part(p.x), part(p.y), part(p.z), node.body.actor.onContact), nodes_.size());
        if (isNew) {
            nodes_.push_back(node);
        } else if (nodes_[entry->second].body.frames > node.body.frames) {
            nodes_[entry->second] = node;
        }
        if (Distance(p) < Distance(nodes_[closest_].body.Position())) closest_ = entry->second;
    }

    Walker& walker_;
    const MarkedPlace& mark_;
    std::mt19937& random_;
    std::vector<Node> nodes_;
    std::map<std::tuple<int, int, int, int>, size_t> cells_;
    size_t closest_ = 0;
    Node end_{};
    uint32_t mostFrames_ = UINT32_MAX;  // a way must take fewer
};

}  // namespace

bool RouteReport::WithinTime(const PlacesFile& places) const {
    const bool arrives = legs.empty() || legs.back().reached;
    return arrives && (places.routeTime == 0 || seconds <= places.routeTime);
}

RouteReport WalkRoute(Walker& walker, const PlacesFile& places, uint32_t seed) {
    std::vector<const MarkedPlace*> marks;
    for (const MarkedPlace& mark : places.marks)
        if (mark.order != 0) marks.push_back(&mark);
    std::mt19937 random(seed);
    struct Way {
        Body start;
        RouteLeg leg;
        KeyPlay play;
    };
    std::vector<Way> ways;
    size_t returns = 0, farthest = 0;
    while (ways.size() < marks.size()) {
        const Body start = walker.Save();
        LegSearch search(walker, *marks[ways.size()], random);
        // The quickest way to a mark may end where none goes on: what is walked again need not be as quick.
        const bool reached = search.Run(ways.size() < farthest ? 0 : QUICKER_TRIES);
        const double seconds = (walker.Save().frames - start.frames) * walker.Ticks() * SECONDS_PER_TICK;
        ways.push_back({start, {marks[ways.size()], reached, seconds, walker.Position()}, search.Play()});
        if (reached) continue;
        if (returns == RETURNS || ways.size() == 1) break;
        const size_t legs = std::min(ways.size() - 1, 1 + returns % FARTHEST_RETURN);
        ++returns;
        farthest = std::max(farthest, ways.size());
        walker.Restore(ways[ways.size() - 1 - legs].start);
        ways.erase(ways.end() - 1 - static_cast<std::ptrdiff_t>(legs), ways.end());
    }
    RouteReport report;
    for (const Way& way : ways) {
        report.legs.push_back(way.leg);
        report.seconds += way.leg.seconds;
        report.play.insert(report.play.end(), way.play.begin(), way.play.end());
    }
    return report;
}

std::string RouteText(const RouteReport& report, const PlacesFile& places) {
    std::string text;
    for (const RouteLeg& leg : report.legs) {
        const auto at = [](double value) { return static_cast<float>(value); };
        text += fmt::format("{:3} {:32} {:6.1f} s  {}{}\n", leg.mark->order, leg.mark->name, leg.seconds,
                            PlaceText({at(leg.mark->x), at(leg.mark->y), at(leg.mark->z)}, places.frame),
                            leg.reached ? "" : ", not reached: no nearer than " + PlaceText(leg.closest, places.frame));
    }
    text += fmt::format("route: {} marks, {:.1f} s", report.legs.size(), report.seconds);
    if (places.routeTime > 0) text += fmt::format(" of {:.0f} s", places.routeTime);
    return text + "\n";
}

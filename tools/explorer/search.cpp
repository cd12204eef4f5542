#include "explorer/search.h"

#include "math/vectors.h"
#include "math/world_planes.h"
#include "records/walking_facts.h"
#include "world/collision.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>

namespace {

// Lengths in world units, times in ticks unless they say frames.
constexpr float LIFT_LIMIT = 80;
constexpr float OUTSIDE = 200;         // so far beyond the box of the world
constexpr float ON_THE_NET = 16;       // so near to the ground below everything
constexpr uint32_t TRAP_FRAMES = 600;  // for which there is no way on
constexpr float TRAP_SIZE = 160;       // whoever gets so far away is not trapped
constexpr float SUSPECT_SIZE = 96;     // a rollout that stays in a box of this size may have met a trap
constexpr uint32_t SETTLING_TICKS = 128;
constexpr int TRAP_TRIES = 48;         // plays of random keys, besides those held
constexpr float FAULT_CELL = 128;      // two faults of one kind so near are one
constexpr uint32_t HOLD_TICKS = 7500;  // two minutes
constexpr int ROLLOUT_SEGMENTS = 24;
constexpr uint32_t LONGEST_SEGMENT = 64;
constexpr int START_HEADINGS = 24;
constexpr uint32_t TRAPPED_VISITS = 1000;  // there is nothing to be found from a trap
constexpr int PICKS = 6;                   // the least visited of so many places at random

constexpr uint16_t MOVES[] = {CTL_UP, CTL_DOWN, CTL_LEFT, CTL_RIGHT, CTL_SPACE, CTL_SHIFT};

uint64_t CellOf(const Vec3& p, float width, float height, uint32_t extra = 0) {
    const auto part = [](float value, float size) {
        return static_cast<uint64_t>(static_cast<uint32_t>(static_cast<int32_t>(std::floor(value / size)) + 0x40000)) &
               0x7FFFF;
    };
    return part(p.x, width) | part(p.y, height) << 19 | part(p.z, width) << 38 | uint64_t{extra} << 57;
}

bool StandsOnGround() {
    return PlayerActor.onContact && PlayerActor.contactSlope > LANDING_SLOPE;
}

// A hop that ends where it began leads nowhere.
bool HasLeft(const Vec3& from, const Vec3& now) {
    const Vec3 d = now - from;
    return d.x * d.x + d.z * d.z > TRAP_SIZE * TRAP_SIZE || d.y < -TRAP_SIZE || (d.y > STEP_HEIGHT && StandsOnGround());
}

float DistanceToPlane(const PlaneRecord& plane, const Vec3& p) {
    return plane.nx * p.x + plane.ny * p.y + plane.nz * p.z + plane.d;
}

bool IsInOutline(const PolyRecord& polygon, const Vec3& p) {
    const PlaneRecord& plane = WorldGeometry.planes[polygon.plane];
    const Vec3 normal = {plane.nx, plane.ny, plane.nz};
    for (uint32_t k = 0; k < polygon.cornerCount; ++k) {
        const Vec3& from = CornerPosition(polygon, k);
        const Vec3 edge = CornerPosition(polygon, k + 1u == polygon.cornerCount ? 0 : k + 1) - from;
        if (Dot(p - from, Cross(edge, normal)) > 0) return false;
    }
    return true;
}

// A wall higher than a step, among those that the latest move may have touched, that the middle of the player's sphere
// has gone through from its front to its back.
bool WentThroughAWall(const Vec3& before, const Vec3& after) {
    const Vec3 lowering = {0, SPHERE_LOWERING, 0};
    for (const int32_t* contact = ContactList; *contact != -1; ++contact) {
        const PolyRecord polygon = WorldGeometry.polygons[*contact];
        const PlaneRecord& plane = WorldGeometry.planes[polygon.plane];
        if (std::fabs(plane.ny) > LANDING_SLOPE) continue;
        if (DistanceToPlane(plane, before - lowering) > 0 || DistanceToPlane(plane, after - lowering) <= 0) continue;
        float low = CornerPosition(polygon, 0).y, high = low;
        for (uint32_t k = 1; k < polygon.cornerCount; ++k) {
            low = std::min(low, CornerPosition(polygon, k).y);
            high = std::max(high, CornerPosition(polygon, k).y);
        }
        if (high - low > LEDGE_MAX && IsInOutline(polygon, after - lowering)) return true;
    }
    return false;
}

}  // namespace

Search::Search(Walker& walker, const SearchOptions& options)
    : walker_(walker), options_(options), random_(options.seed) {}

SearchReport Search::Run() {
    const Body start = walker_.Save();
    places_.push_back({start, -1, 0});
    report_.lowest = report_.highest = start.Position();
    HoldAtTheStart();
    while (report_.frames < options_.frames) {
        // A quarter of all frames are of keys held.
        const uint64_t holdFrames = FramesOf(HOLD_TICKS);
        if (Random(static_cast<uint32_t>(holdFrames * 3 / 200) + 1) == 0) {
            const uint16_t first = MOVES[Random(std::size(MOVES))];
            const uint16_t second = Chance(50) ? CTL_UP : MOVES[Random(std::size(MOVES))];
            PlayHeld(PickPlace(), 0, first | second);
        } else {
            PlayAtRandom();
        }
    }
    report_.cells = roughCells_.size();
    std::stable_sort(report_.faults.begin(), report_.faults.end(), [](const Fault& a, const Fault& b) {
        return std::pair(a.kind, a.frames) < std::pair(b.kind, b.frames);
    });
    return std::move(report_);
}

uint32_t Search::FramesOf(uint32_t ticks) const {
    return std::max(1U, ticks / walker_.Ticks());
}

// Forward is held most of the time; lengths are spread evenly over their magnitudes.
HeldKeys Search::RandomKeys() {
    uint16_t controls = 0;
    const auto maybe = [&](uint16_t control, uint32_t percent) {
        if (Chance(percent)) controls |= control;
    };
    maybe(CTL_UP, 65);
    maybe(CTL_DOWN, 12);
    maybe(CTL_LEFT, 25);
    maybe(CTL_RIGHT, 25);
    maybe(CTL_SPACE, 35);
    maybe(CTL_SHIFT, 15);
    const uint32_t longest = std::max(1U, LONGEST_SEGMENT >> Random(6));
    return {controls, FramesOf(1 + Random(longest))};
}

// Half of the time the newest place that nothing was played from, otherwise one of the least visited.
size_t Search::PickPlace() {
    if (!unvisited_.empty() && Chance(50)) {
        const size_t newest = unvisited_.back();
        unvisited_.pop_back();
        return newest;
    }
    size_t best = Random(static_cast<uint32_t>(places_.size()));
    for (int i = 1; i < PICKS; ++i) {
        const size_t other = Random(static_cast<uint32_t>(places_.size()));
        if (places_[other].visits < places_[best].visits) best = other;
    }
    return best;
}

Search::Rollout Search::Begin(size_t place) {
    ++places_[place].visits;
    walker_.Restore(places_[place].body);
    const Vec3& at = walker_.Position();
    return {place, {}, at, at, at};
}

void Search::Note(const Vec3& p) {
    roughCells_.emplace(CellOf(p, 64, 64), 0);
    if (p.y < report_.lowest.y) report_.lowest = p;
    if (p.y > report_.highest.y) report_.highest = p;
}

bool Search::HasFallen(const Vec3& p) const {
    if (options_.net && PlayerActor.onContact && p.y < *options_.net + STANDING_HEIGHT + ON_THE_NET) return true;
    const Vec3 &low = walker_.Low(), &high = walker_.High();
    return p.y < low.y || p.x < low.x - OUTSIDE || p.x > high.x + OUTSIDE || p.z < low.z - OUTSIDE ||
           p.z > high.z + OUTSIDE;
}

Search::Outcome Search::Play(Rollout& rollout, const HeldKeys& keys, bool watchWalls) {
    rollout.pending.push_back({keys.controls, 0});
    uint32_t& played = rollout.pending.back().frames;
    for (uint32_t i = 0; i < keys.frames; ++i) {
        const Vec3 before = walker_.Position();
        walker_.Frame(keys.controls);
        ++played;
        ++report_.frames;
        const Vec3 p = walker_.Position();
        report_.contacts = std::max(report_.contacts, int{ContactCount});
        if (HasFallen(p)) {
            AddFault(FaultKind::Fall, rollout.stood, rollout);
            return Outcome::Over;
        }
        if (PlayerActor.onContact) rollout.stood = p;
        if (p.y - before.y > LIFT_LIMIT) {
            AddFault(FaultKind::Lift, before, rollout);
            return Outcome::Over;
        }
        if (watchWalls && WentThroughAWall(before, p)) {
            AddFault(FaultKind::Creep, before, rollout);
            watchWalls = false;
        }
        rollout.low = {std::min(rollout.low.x, p.x), std::min(rollout.low.y, p.y), std::min(rollout.low.z, p.z)};
        rollout.high = {std::max(rollout.high.x, p.x), std::max(rollout.high.y, p.y), std::max(rollout.high.z, p.z)};
    }
    Note(walker_.Position());
    return Outcome::GoesOn;
}

void Search::PlayAtRandom() {
    Rollout rollout = Begin(PickPlace());
    for (int i = 0; i < ROLLOUT_SEGMENTS; ++i) {
        if (Play(rollout, RandomKeys(), false) == Outcome::Over) return;
        KeepPlace(rollout);
    }
    CheckTrap(rollout);
}

void Search::PlayHeld(size_t place, uint32_t turn, uint16_t controls) {
    Rollout rollout = Begin(place);
    if (turn > 0 && Play(rollout, {CTL_LEFT, turn}, false) == Outcome::Over) return;
    if (Play(rollout, {controls, FramesOf(HOLD_TICKS)}, true) == Outcome::Over) return;
    KeepPlace(rollout);
}

void Search::HoldAtTheStart() {
    Rollout settle = Begin(0);
    if (Play(settle, {0, FramesOf(64)}, false) == Outcome::Over) return;
    KeepPlace(settle);
    const size_t place = places_.size() - 1;
    const uint32_t turn = FramesOf(360 / START_HEADINGS / 2);
    for (uint32_t i = 0; i < START_HEADINGS && report_.frames < options_.frames / 4; ++i)
        PlayHeld(place, i * turn, CTL_UP | CTL_SPACE);
}

// One place a cell and kind of movement: the one that is reached soonest.
void Search::KeepPlace(Rollout& rollout) {
    const Actor& actor = PlayerActor;
    const uint32_t kind = actor.onContact ? 0 : 1;
    const uint64_t cell = CellOf(actor.position, 32, 32, kind);
    const auto [entry, isNew] = placeOfCell_.emplace(cell, places_.size());
    if (!isNew && places_[entry->second].body.frames <= walker_.Save().frames) return;
    int32_t step = places_[rollout.place].step;
    for (const HeldKeys& keys : rollout.pending) {
        steps_.push_back({step, keys});
        step = static_cast<int32_t>(steps_.size()) - 1;
    }
    rollout.pending.clear();
    rollout.place = entry->second;
    if (isNew) {
        places_.emplace_back();
        unvisited_.push_back(rollout.place);
    }
    places_[rollout.place].body = walker_.Save();
    places_[rollout.place].step = step;
}

bool Search::LeavesBy(const Body& body, const KeyPlay& keys) {
    for (const HeldKeys& held : keys) {
        for (uint32_t i = 0; i < held.frames; ++i) {
            walker_.Frame(held.controls);
            ++report_.frames;
            if (HasLeft(body.Position(), walker_.Position())) return true;
        }
    }
    return false;
}

bool Search::IsTrap(const Body& body) {
    for (int i = 0; i < TRAP_TRIES; ++i) {
        walker_.Restore(body);
        KeyPlay keys;
        for (uint32_t frames = 0; frames < TRAP_FRAMES; frames += keys.back().frames)
            keys.push_back(RandomKeys());
        if (LeavesBy(body, keys)) return false;
    }
    for (const uint16_t first : MOVES) {
        for (const uint16_t second : MOVES) {
            walker_.Restore(body);
            if (LeavesBy(body, {{static_cast<uint16_t>(first | second), TRAP_FRAMES}})) return false;
        }
    }
    return true;
}

void Search::CheckTrap(Rollout& rollout) {
    const Vec3 size = rollout.high - rollout.low;
    if (std::max(size.x, size.z) > SUSPECT_SIZE) return;
    // From where it comes to rest: whoever is in the air now may yet go far.
    const Vec3 before = walker_.Position();
    if (Play(rollout, {0, FramesOf(SETTLING_TICKS)}, false) == Outcome::Over) return;
    const Vec3 d = walker_.Position() - before;
    if (std::max(std::fabs(d.x), std::fabs(d.z)) > SUSPECT_SIZE) return;
    const Body body = walker_.Save();
    if (!IsTrap(body)) return;
    walker_.Restore(body);
    AddFault(FaultKind::Trap, body.Position(), rollout);
    places_[rollout.place].visits += TRAPPED_VISITS;
}

KeyPlay Search::PlayTo(const Rollout& rollout) const {
    KeyPlay play(rollout.pending.rbegin(), rollout.pending.rend());
    for (int32_t step = places_[rollout.place].step; step >= 0; step = steps_[static_cast<size_t>(step)].before)
        play.push_back(steps_[static_cast<size_t>(step)].keys);
    std::reverse(play.begin(), play.end());
    return play;
}

void Search::AddFault(FaultKind kind, const Vec3& place, const Rollout& rollout) {
    const uint64_t cell = CellOf(place, FAULT_CELL, FAULT_CELL, static_cast<uint32_t>(kind));
    const auto [entry, isNew] = faultOfCell_.emplace(cell, report_.faults.size());
    const uint32_t frames = walker_.Save().frames;
    if (isNew) {
        report_.faults.push_back({kind, place, walker_.Position(), frames, PlayTo(rollout)});
        return;
    }
    Fault& known = report_.faults[entry->second];
    const int count = known.count + 1;
    if (frames < known.frames) known = {kind, place, walker_.Position(), frames, PlayTo(rollout)};
    known.count = count;
}

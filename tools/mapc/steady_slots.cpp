#include "mapc/steady_slots.h"

#include <map>
#include <tuple>

namespace {

constexpr size_t PAIRS_FROM = 400;  // so many slots or fewer are compared each with each
constexpr double CELL_FIRST = 64;   // engine units; of more, those within a cell are merged first

class SlotMerger {
public:
    SlotMerger(const std::vector<Vec3>& places, const SlotRoom& room) : places_(places), room_(room) {}

    std::vector<SlotShape> Merge(std::vector<SteadyLamp> lamps) {
        for (SteadyLamp& lamp : lamps) {
            const bool lights = std::any_of(lamp.wanted.begin(), lamp.wanted.end(), [](double w) { return w != 0; });
            if (!lights) continue;
            const SlotShape shape = FittedShape({places_, lamp.wanted}, lamp.plain);
            groups_.push_back({std::move(lamp), shape});
        }
        for (double cell = CELL_FIRST; groups_.size() > std::max(PAIRS_FROM, room_.slots); cell *= 2)
            MergeWithinCells(cell);
        const auto all = [](const Group&) { return true; };
        while (groups_.size() > std::max<size_t>(1, room_.slots))
            MergeNearest(all);
        for (const Vec3& place : places_)
            ThinOut(place);
        std::vector<SlotShape> shapes;
        for (const Group& group : groups_)
            shapes.push_back(group.shape);
        return shapes;
    }

private:
    struct Group {
        SteadyLamp lamp;  // the sum of its lamps
        SlotShape shape;
    };

    // The two as one: between them, the stronger nearer, and reaching as far as both.
    Group Joined(const Group& a, const Group& b) const {
        const auto weightOf = [](const Group& g) { return std::abs(g.lamp.plain.intensity) * g.lamp.plain.radius; };
        const double sum = weightOf(a) + weightOf(b);
        const double part = sum > 0 ? weightOf(b) / sum : 0.5;
        const Vec3 from = a.lamp.plain.position;
        const Vec3 to = b.lamp.plain.position;
        Group joined = a;
        SlotShape& plain = joined.lamp.plain;
        plain.position = from + (to - from) * part;
        plain.radius = std::max(Length(plain.position - from) + a.lamp.plain.radius,
                                Length(plain.position - to) + b.lamp.plain.radius);
        plain.intensity = a.lamp.plain.intensity + b.lamp.plain.intensity;
        for (size_t i = 0; i < joined.lamp.wanted.size(); ++i)
            joined.lamp.wanted[i] += b.lamp.wanted[i];
        joined.shape = FittedShape({places_, joined.lamp.wanted}, plain);
        return joined;
    }

    void MergeWithinCells(double size) {
        std::map<std::tuple<double, double, double>, size_t> cells;
        std::vector<Group> merged;
        for (Group& group : groups_) {
            const Vec3 cell = group.lamp.plain.position * (1 / size);
            const auto [entry, isNew] =
                cells.try_emplace({std::floor(cell.x), std::floor(cell.y), std::floor(cell.z)}, merged.size());
            if (isNew) {
                merged.push_back(std::move(group));
            } else {
                merged[entry->second] = Joined(merged[entry->second], group);
            }
        }
        groups_ = std::move(merged);
    }

    // Merges the nearest two of the groups that `concerns` holds for. False: there are fewer than two.
    template <class Concerns>
    bool MergeNearest(Concerns concerns) {
        double least = std::numeric_limits<double>::infinity();
        size_t first = 0;
        size_t second = 0;
        for (size_t i = 0; i < groups_.size(); ++i) {
            if (!concerns(groups_[i])) continue;
            for (size_t k = i + 1; k < groups_.size(); ++k) {
                const double square = LengthSquared(groups_[i].lamp.plain.position - groups_[k].lamp.plain.position);
                if (square >= least || !concerns(groups_[k])) continue;
                least = square;
                first = i;
                second = k;
            }
        }
        if (second == 0) return false;
        groups_[first] = Joined(groups_[first], groups_[second]);
        groups_.erase(groups_.begin() + static_cast<std::ptrdiff_t>(second));
        return true;
    }

    void ThinOut(const Vec3& place) {
        const auto reaches = [&](const SlotShape& shape) { return ReachesPlace(shape, place); };
        const auto others = static_cast<size_t>(std::count_if(room_.others.begin(), room_.others.end(), reaches));
        const auto concerns = [&](const Group& group) { return reaches(group.shape); };
        while (others + static_cast<size_t>(std::count_if(groups_.begin(), groups_.end(), concerns)) > room_.atPlace) {
            if (!MergeNearest(concerns)) return;
        }
    }

    const std::vector<Vec3>& places_;
    const SlotRoom& room_;
    std::vector<Group> groups_;
};

}  // namespace

bool ReachesPlace(const SlotShape& shape, const Vec3& place) {
    const auto narrowed = [](double value) { return static_cast<double>(static_cast<float>(value)); };
    const SlotShape file{{narrowed(shape.position.x), narrowed(shape.position.y), narrowed(shape.position.z)},
                         narrowed(shape.radius)};
    return LengthSquared(file.position - place) <= file.radius * file.radius;
}

FitSums SumsOf(const PlacedLight& light, const Vec3& position, double radius) {
    FitSums sums;
    for (size_t i = 0; i < light.places.size(); ++i) {
        const double wanted = light.wanted[i];
        const double square = LengthSquared(light.places[i] - position);
        const double shown = square < radius * radius ? 1 - std::sqrt(square) / radius : 0;
        sums.wantedShown += wanted * shown;
        sums.shownSquared += shown * shown;
        sums.wantedSquared += wanted * wanted;
    }
    return sums;
}

SlotShape FittedShape(const PlacedLight& light, const SlotShape& plain) {
    SlotShape best = plain;
    double least = std::numeric_limits<double>::infinity();
    for (int step = FIT_STEPS; step >= 1; --step) {
        const double radius = plain.radius * step / FIT_STEPS;
        const FitSums sums = SumsOf(light, plain.position, radius);
        const double intensity = sums.BestIntensity();
        const double error = sums.Error(intensity);
        if (error < least && intensity != 0) {
            least = error;
            best = {plain.position, radius, intensity};
        }
    }
    return best;
}

std::vector<SlotShape> SteadySlots(const std::vector<Vec3>& places, std::vector<SteadyLamp> lamps,
                                   const SlotRoom& room) {
    return SlotMerger(places, room).Merge(std::move(lamps));
}

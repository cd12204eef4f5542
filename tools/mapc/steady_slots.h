// The slots by which steady lamps light the character. What they do to the world is baked, so any number of lamps may
// share a slot: near ones do, until the slots fit.
#pragma once

#include "mapc/bake.h"

// How a slot lights the character.
struct SlotShape {
    Vec3 position;
    double radius = 0;
    double intensity = 0;
};

// Whether the engine counts the slot among those that reach the place.
bool ReachesPlace(const SlotShape& shape, const Vec3& place);

// Sums over the places that tell how near a shape comes to the light that is there.
struct FitSums {
    double wantedShown = 0;
    double shownSquared = 0;
    double wantedSquared = 0;

    double BestIntensity() const { return shownSquared > 0 ? wantedShown / shownSquared : 0; }
    double Error(double intensity) const {
        return wantedSquared - 2 * intensity * wantedShown + intensity * intensity * shownSquared;
    }
};

// Light that arrives at places, as intensities of a slot right beside them.
struct PlacedLight {
    const std::vector<Vec3>& places;
    const std::vector<double>& wanted;  // one a place
};

constexpr int FIT_STEPS = 8;  // steps in which radius and height are tried

FitSums SumsOf(const PlacedLight& light, const Vec3& position, double radius);
// The radius and intensity that come nearest to the light from a position; a smaller radius keeps it from shining on
// through walls. `plain` when nothing is better, with its intensity.
SlotShape FittedShape(const PlacedLight& light, const SlotShape& plain);

struct SteadyLamp {
    SlotShape plain;             // as the map has it
    std::vector<double> wanted;  // its light at each place
};

struct SlotRoom {
    size_t slots = 0;               // slots that are left for the steady lamps
    size_t atPlace = 0;             // slots that may reach a place, with the others
    std::vector<SlotShape> others;  // slots that are taken already
};

// A slot for each lamp that lights a place; near lamps share one where there is no room for all. One slot stays at
// least, whatever the others take.
std::vector<SlotShape> SteadySlots(const std::vector<Vec3>& places, std::vector<SteadyLamp> lamps,
                                   const SlotRoom& room);

// Light as maps from elsewhere have it, in the keys that mapc reads. There a lamp's "light" is its brightness, 255
// being the brightness of the textures, and at the same time the map units at which it has faded to nothing.
#pragma once

#include "mapc/map_file.h"
#include "mapconvert/rules.h"

#include <set>

class LampReader {
public:
    explicit LampReader(const ForeignRules& rules) : rules_(rules) {}

    // Nothing for a lamp that does not shine. unused: gets the names of keys that had no use.
    std::optional<MapEntity> LampOf(const MapEntity& entity, std::set<std::string>& unused);
    void ReadSun(const MapEntity& entity);    // an entity for the sun
    void ReadWorld(const MapEntity& entity);  // what keys of worldspawn say of sun and even light
    void AddTo(MapEntity& world, bool hasSky) const;
    void WriteNotes(std::vector<std::string>& notes) const;

private:
    const ForeignRules& rules_;
    std::optional<double> sun_, skyLight_, ambient_;  // light bytes
    std::optional<Vec3> sunDirection_;
    size_t changing_ = 0;  // lamps that change; more than some are made steady
};

// Numbers of a key, none where it is missing or not all of it are numbers.
std::vector<double> NumbersOf(const MapEntity& entity, const std::string& name);

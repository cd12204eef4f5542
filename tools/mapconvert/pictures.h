// The pictures that maps from elsewhere name: PNG files in folders, and WAD files.
#pragma once

#include "mapconvert/wad_file.h"

#include <map>

class Pictures {
public:
    // places: folders, searched with all folders in them, .wad and .png files; the first that has a name counts.
    // notes: what could not be read, a line each; must live as long.
    Pictures(const std::vector<std::filesystem::path>& places, const Palette& palette, std::vector<std::string>& notes);

    // The picture of that name, whatever its case, with or without the folders that the name begins with.
    std::optional<Image> Find(const std::string& name) const;

private:
    struct Place {
        std::filesystem::path png;
        size_t wad = 0, entry = 0;  // where there is no png
    };

    void AddFile(const std::filesystem::path& path, const std::filesystem::path& folder);
    void AddWad(const std::filesystem::path& path);
    const Place* PlaceOf(std::string name) const;

    const Palette palette_;
    std::vector<std::string>& notes_;
    std::vector<WadFile> wads_;
    std::map<std::string, Place> places_;  // by names in lower case
};

// A checker with the name on it, where there is no picture.
Image NamedChecker(const std::string& name);

#include "mapconvert/pictures.h"

#include "formats/error.h"
#include "formats/files.h"
#include "formats/texture_file.h"
#include "mapconvert/rules.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace fs = std::filesystem;

namespace {

constexpr size_t FILES_MAX = 50000;  // in one folder

std::vector<fs::path> FilesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    const auto options = fs::directory_options::skip_permission_denied;
    std::error_code failed;
    for (fs::recursive_directory_iterator at(folder, options, failed), end; !failed && at != end;
         at.increment(failed)) {
        if (files.size() == FILES_MAX)
            Refuse(folder.string(), 0, fmt::format("holds more than {} files", FILES_MAX), "name a smaller folder");
        std::error_code unknown;
        if (at->is_regular_file(unknown)) files.push_back(at->path());
    }
    if (failed) Refuse(folder.string(), 0, "cannot be read (" + failed.message() + ")", "check the folder");
    std::sort(files.begin(), files.end());
    return files;
}

// The name without its first folder; empty when there is none.
std::string WithoutFolder(const std::string& name) {
    const size_t slash = name.find('/');
    return slash == std::string::npos ? "" : name.substr(slash + 1);
}

}  // namespace

Pictures::Pictures(const std::vector<fs::path>& places, const Palette& palette, std::vector<std::string>& notes)
    : palette_(palette), notes_(notes) {
    for (const fs::path& place : places) {
        if (!fs::is_directory(place)) {
            AddFile(place, place.parent_path());
            continue;
        }
        for (const fs::path& file : FilesIn(place))
            AddFile(file, place);
    }
}

void Pictures::AddFile(const fs::path& path, const fs::path& folder) {
    const std::string kind = LowerCase(path.extension().string());
    if (kind == ".wad") AddWad(path);
    if (kind != ".png") return;
    const std::string name = LowerCase(path.lexically_relative(folder).replace_extension().generic_string());
    for (std::string part = name; !part.empty(); part = WithoutFolder(part))
        places_.emplace(part, Place{path, 0, 0});
}

void Pictures::AddWad(const fs::path& path) {
    try {
        wads_.push_back(ReadWad(ReadWholeFile(path), path.string()));
    } catch (const ContentError& error) {
        notes_.push_back(error.what());
        return;
    }
    const WadFile& wad = wads_.back();
    for (size_t i = 0; i < wad.pictures.size(); ++i)
        places_.emplace(LowerCase(wad.pictures[i].name), Place{{}, wads_.size() - 1, i});
}

const Pictures::Place* Pictures::PlaceOf(std::string name) const {
    for (; !name.empty(); name = WithoutFolder(name)) {
        if (const auto found = places_.find(name); found != places_.end()) return &found->second;
    }
    return nullptr;
}

std::optional<Image> Pictures::Find(const std::string& name) const {
    std::string key = LowerCase(name);
    const Place* place = PlaceOf(key);
    if (!place) {
        // Files cannot be named with it everywhere.
        std::replace(key.begin(), key.end(), '*', '#');
        place = PlaceOf(key);
    }
    if (!place) return std::nullopt;
    try {
        if (!place->png.empty()) return ReadPng(place->png);
        const WadFile& wad = wads_[place->wad];
        return DecodeWadPicture(wad, wad.pictures[place->entry], palette_);
    } catch (const ContentError& error) {
        notes_.push_back(error.what());
        return std::nullopt;
    }
}

namespace {

// Letters 3 wide and 5 high; a row, from the top, is an octal digit.
constexpr const char* LETTERS = "0123456789abcdefghijklmnopqrstuvwxyz_-+.*/{}!~?";
constexpr std::array<int, 47> LETTER_ROWS = {
    075557, 026227, 071747, 071717, 055711, 074717, 074757, 071122, 075757, 075717, 025755, 065656,
    034443, 065556, 074647, 074644, 034553, 055755, 072227, 011152, 055655, 044447, 057755, 065555,
    025552, 065644, 025573, 065655, 034216, 072222, 055557, 055552, 055775, 055255, 055222, 071247,
    000007, 000700, 002720, 000002, 052500, 011244, 032623, 062326, 022202, 003600, 071302,
};
constexpr int LETTER_ZOOM = 2;
constexpr int LETTER_STEP = 4 * LETTER_ZOOM;
constexpr int LINE_STEP = 7 * LETTER_ZOOM;

void DrawLetter(char letter, int left, int top, Image& image) {
    const char* known = std::strchr(LETTERS, letter);
    const int rows = LETTER_ROWS[known && letter ? static_cast<size_t>(known - LETTERS) : LETTER_ROWS.size() - 1];
    for (int y = 0; y < 5 * LETTER_ZOOM; ++y) {
        for (int x = 0; x < 3 * LETTER_ZOOM; ++x) {
            const int bit = (4 - y / LETTER_ZOOM) * 3 + 2 - x / LETTER_ZOOM;
            if (rows >> bit & 1) image.At(left + x, top + y) = {255, 255, 255, 255};
        }
    }
}

}  // namespace

Image NamedChecker(const std::string& name) {
    constexpr int SIDE = TEXTURE_SIDE_MAX;
    constexpr int FIELD = 32;
    constexpr size_t ROW = SIDE / LETTER_STEP - 1;
    Image image(SIDE, SIDE);
    for (int y = 0; y < SIDE; ++y) {
        for (int x = 0; x < SIDE; ++x)
            image.At(x, y) = (x / FIELD + y / FIELD) % 2 == 0 ? Rgba{150, 40, 130, 255} : Rgba{40, 40, 50, 255};
    }
    const std::string text = LowerCase(name);
    const int lines = static_cast<int>((text.size() + ROW - 1) / ROW);
    // Again and again, so that small faces show it, too.
    for (int top = LINE_STEP / 2; top + LINE_STEP <= SIDE; top += (lines + 1) * LINE_STEP) {
        for (size_t i = 0; i < text.size(); ++i) {
            const int y = top + static_cast<int>(i / ROW) * LINE_STEP;
            if (y + LINE_STEP > SIDE) break;
            DrawLetter(text[i], LETTER_STEP / 2 + static_cast<int>(i % ROW) * LETTER_STEP, y, image);
        }
    }
    return image;
}

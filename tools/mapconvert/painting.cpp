#include "mapconvert/painting.h"

#include "formats/error.h"
#include "formats/picture_scale.h"
#include "mapconvert/rules.h"
#include "texc/level_textures.h"
#include "texc/page_packing.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace {

constexpr size_t MATERIALS_MAX = SLOT_CLIP - TEXTURE_CYCLE_LENGTH;
constexpr Rgba PLAIN_SKY{112, 140, 176, 255};
constexpr size_t NAME_BYTES_MAX = 40;
constexpr size_t TEXTURES_READ_MAX = 4096;

struct Texture {
    std::string name;      // in the source
    std::string material;  // a name that files can have, or of the one whose picture it shares
    double area = 0;
    int width = 0, height = 0;  // size of the source's picture, pixels
    Image image;
};

std::string Listed(const std::vector<std::string>& names) {
    constexpr size_t SHOWN_MAX = 8;
    const size_t shown = std::min(names.size(), SHOWN_MAX);
    std::string text =
        fmt::format("{}", fmt::join(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(shown), ", "));
    if (shown < names.size()) text += fmt::format(" and {} more", names.size() - shown);
    return text;
}

class Painter {
public:
    Painter(const Pictures& pictures, std::vector<std::string>& notes) : pictures_(pictures), notes_(notes) {}

    void Add(const std::string& name, double area) {
        Texture texture{name, MaterialName(name), area, 0, 0, {}};
        std::optional<Image> image = pictures_.Find(name);
        if (!image) {
            missing_.push_back(Shown(name));
            image = NamedChecker(name);
        }
        Take(texture, *image);
    }

    // Skies twice as wide as high hold two layers side by side, the farther one at the right.
    std::string AddSky(const std::string& name) {
        Texture texture{"", MaterialName(name.empty() ? "plain_sky" : name), 1e12, 0, 0, {}};
        std::optional<Image> image = pictures_.Find(name);
        if (!image) {
            notes_.push_back(fmt::format("the sky has no picture {}: it is plain", Shown(name)));
            image = Image(8, 8, PLAIN_SKY);
        } else if (image->width == 2 * image->height) {
            Image right(image->height, image->height);
            for (int y = 0; y < right.height; ++y) {
                for (int x = 0; x < right.width; ++x)
                    right.At(x, y) = image->At(image->width - right.width + x, y);
            }
            image = std::move(right);
        }
        for (Rgba& pixel : image->pixels)
            pixel.a = 255;  // nothing lies behind
        Take(texture, *image);
        return texture.material;
    }

    void MakeRoom() {
        std::stable_sort(textures_.begin(), textures_.end(),
                         [](const Texture& a, const Texture& b) { return a.area > b.area; });
        if (!missing_.empty()) {
            notes_.push_back(fmt::format("{} textures have no picture, and show their names: {}", missing_.size(),
                                         Listed(missing_)));
        }
        Share();
        Shrink();
    }

    const std::vector<Texture>& Textures() const { return textures_; }

private:
    std::string MaterialName(const std::string& name) {
        std::string safe = name.substr(0, NAME_BYTES_MAX);
        for (char& c : safe) {
            const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '+';
            if (!plain) c = '_';
        }
        std::string unique = safe;
        for (int i = 2; !taken_.insert(unique).second; ++i)
            unique = fmt::format("{}_{}", safe, i);
        return unique;
    }

    void Take(Texture& texture, const Image& image) {
        texture.width = image.width;
        texture.height = image.height;
        texture.image = ScaledToTexture(image);
        textures_.push_back(texture);
    }

    static std::array<int, 4> MeanOf(const Image& image) {
        const Rgba mean = Scaled(image, 1, 1).pixels[0];
        const bool hasHoles =
            std::any_of(image.pixels.begin(), image.pixels.end(), [](const Rgba& p) { return p.a == 0; });
        return {mean.r, mean.g, mean.b, hasHoles ? 1000 : 0};
    }

    // Those that find no slot take the picture that looks most like theirs.
    void Share() {
        if (textures_.size() <= MATERIALS_MAX) return;
        std::vector<std::array<int, 4>> means;
        for (size_t i = 0; i < MATERIALS_MAX; ++i)
            means.push_back(MeanOf(textures_[i].image));
        std::vector<std::string> shared;
        for (size_t i = MATERIALS_MAX; i < textures_.size(); ++i) {
            const std::array<int, 4> mean = MeanOf(textures_[i].image);
            const auto distance = [&](const std::array<int, 4>& other) {
                int sum = 0;
                for (size_t k = 0; k < 4; ++k)
                    sum += (mean[k] - other[k]) * (mean[k] - other[k]);
                return sum;
            };
            const auto nearest = std::min_element(
                means.begin(), means.end(), [&](const auto& a, const auto& b) { return distance(a) < distance(b); });
            const Texture& like = textures_[static_cast<size_t>(nearest - means.begin())];
            textures_[i].material = like.material;
            shared.push_back(fmt::format("{} shows {}", Shown(textures_[i].name), Shown(like.name)));
        }
        notes_.push_back(fmt::format("{} textures, {} are possible; those that cover least share pictures: {}",
                                     textures_.size(), MATERIALS_MAX, Listed(shared)));
    }

    // Whether they fit with what every level has: the picture of what is not seen, and the character's.
    bool FitPages() const {
        std::vector<TextureSize> sizes(2, {TEXTURE_SIDE_MIN, TEXTURE_SIDE_MIN});
        sizes.resize(sizes.size() + CHAR_TEXTURE_COUNT, {TEXTURE_SIDE_MAX, TEXTURE_SIDE_MAX});
        for (size_t i = 0; i < std::min(textures_.size(), MATERIALS_MAX); ++i)
            sizes.push_back({textures_[i].image.width, textures_[i].image.height});
        try {
            PackPages(sizes, "");
            return true;
        } catch (const ContentError&) {
            return false;
        }
    }

    // Halves the pictures that show least for the room they take, until all fit.
    void Shrink() {
        std::set<std::string> smaller;
        while (!FitPages()) {
            const auto shown = [](const Texture& texture) {
                const double texels = static_cast<double>(texture.image.pixels.size());
                return texels <= TEXTURE_SIDE_MIN * TEXTURE_SIDE_MIN * 4 ? 1e300 : texture.area / texels;
            };
            const auto last =
                textures_.begin() + static_cast<std::ptrdiff_t>(std::min(textures_.size(), MATERIALS_MAX));
            const auto least = std::min_element(
                textures_.begin(), last, [&](const Texture& a, const Texture& b) { return shown(a) < shown(b); });
            const Image& image = least->image;
            least->image = Scaled(image, std::max(image.width / 2, TEXTURE_SIDE_MIN),
                                  std::max(image.height / 2, TEXTURE_SIDE_MIN));
            smaller.insert(Shown(least->name));
        }
        if (smaller.empty()) return;
        notes_.push_back(fmt::format("{} pictures are shown smaller to find room in {} pages: {}", smaller.size(),
                                     TEXTURE_PAGES_MAX, Listed({smaller.begin(), smaller.end()})));
    }

    const Pictures& pictures_;
    std::vector<std::string>& notes_;
    std::vector<Texture> textures_;
    std::vector<std::string> missing_;
    std::set<std::string> taken_{"clip", "sky", "zero_body", "zero_head", "tarnwick_body", "tarnwick_head"};
};

// The face shows the picture as often as before, and counts its texels from now on.
void Repaint(MapFace& face, const Texture& texture, const Image& picture) {
    const double across = static_cast<double>(picture.width) / (face.inRepeats ? 1 : texture.width);
    const double down = static_cast<double>(picture.height) / (face.inRepeats ? 1 : texture.height);
    face.inRepeats = false;
    face.texture = texture.material;
    face.uScale /= across;
    face.vScale /= down;
    face.uOffset *= across;
    face.vOffset *= down;
}

}  // namespace

Painting PaintMap(MapFile& map, const std::map<std::string, double>& area, const std::string& sky,
                  const Pictures& pictures, std::vector<std::string>& notes) {
    if (area.size() > TEXTURES_READ_MAX)
        Refuse(map.name, 0, fmt::format("names more than {} textures", TEXTURES_READ_MAX), "divide it");
    Painter painter(pictures, notes);
    Painting painting;
    painting.sky = sky.empty() ? "" : painter.AddSky(sky);
    for (const auto& [name, covered] : area)
        painter.Add(name, covered);
    painter.MakeRoom();
    std::map<std::string, const Texture*> byName;
    for (const Texture& texture : painter.Textures()) {
        if (!texture.name.empty()) byName[texture.name] = &texture;
        painting.pictures.try_emplace(texture.material, texture.image);
    }
    for (MapEntity& entity : map.entities) {
        for (MapBrush& brush : entity.brushes) {
            for (MapFace& face : brush.faces) {
                if (const auto found = byName.find(face.texture); found != byName.end())
                    Repaint(face, *found->second, painting.pictures[found->second->material]);
            }
        }
    }
    return painting;
}

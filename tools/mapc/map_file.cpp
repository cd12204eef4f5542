#include "mapc/map_file.h"

#include "formats/error.h"
#include "formats/files.h"

#include <fmt/format.h>

#include <charconv>
#include <sstream>
#include <string_view>

namespace {

constexpr double SCALE_MIN = 0.001;

struct Token {
    std::string_view text;
    bool quoted = false;
    int line = 0;
};

class Scanner {
public:
    Scanner(std::string_view text, const std::string& file)
        : text_(text), file_(std::make_shared<const std::string>(file)) {
        Advance();
    }

    SourceLine LineOf(const Token& token) const { return {file_, token.line, nullptr}; }
    SourceLine Line() const { return LineOf(next_); }
    const Token& Next() const { return next_; }
    bool AtEnd() const { return next_.text.empty() && !next_.quoted; }
    bool Is(std::string_view word) const { return !next_.quoted && next_.text == word; }

    Token Take() {
        if (AtEnd()) Fail("", "");
        const Token token = next_;
        Advance();
        return token;
    }

    void Expect(std::string_view word) {
        if (!Is(word)) Fail(fmt::format("\"{}\" instead of \"{}\"", Shown(next_.text), word), "save the map again");
        Advance();
    }

    double TakeNumber() {
        const Token token = Take();
        double value = 0;
        const std::string_view digits = token.text.substr(token.text.starts_with('+') ? 1 : 0);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        const bool whole = error == std::errc() && end == digits.data() + digits.size();
        if (!whole || !(std::abs(value) < 1e9)) {
            Refuse(LineOf(token), fmt::format("\"{}\" is not a number", Shown(token.text)), "save the map again");
        }
        return value;
    }

    bool NextIsNumber() const {
        return !next_.quoted && !next_.text.empty() &&
               next_.text.find_first_not_of("+-.eE0123456789") == std::string_view::npos;
    }

    // Refuses one thing more than the map may hold.
    void Count(size_t count, size_t most, const char* what) const {
        if (count < most) return;
        Refuse(Line(), fmt::format("more than {} {}", most, what), "leave some out, or divide the level");
    }

    void CountBrush() { Count(brushes_++, MAP_BRUSHES_MAX, "brushes in one map"); }
    void CountFace() { Count(faces_++, MAP_FACES_MAX, "faces in one map"); }

    [[noreturn]] void Fail(const std::string& problem, const std::string& remedy) const {
        if (AtEnd()) Refuse(Line(), "the file ends too early", "it was cut short; save the map again");
        Refuse(Line(), problem, remedy);
    }

private:
    void SkipBlanks() {
        while (at_ < text_.size()) {
            const char c = text_[at_];
            if (text_.substr(at_, 2) == "//") {
                while (at_ < text_.size() && text_[at_] != '\n')
                    ++at_;
            } else if (c == '\n') {
                ++line_;
                ++at_;
            } else if (c == ' ' || c == '\t' || c == '\r') {
                ++at_;
            } else {
                return;
            }
        }
    }

    void Advance() {
        SkipBlanks();
        next_ = {{}, false, line_};
        if (at_ == text_.size()) return;
        if (text_[at_] == '"') {
            const size_t close = text_.find_first_of("\"\n", at_ + 1);
            if (close == std::string_view::npos || text_[close] == '\n') {
                Refuse({file_, line_, nullptr}, "a quoted text has no end", "close the quotes on the same line");
            }
            next_ = {text_.substr(at_ + 1, close - at_ - 1), true, line_};
            at_ = close + 1;
            return;
        }
        const size_t end = std::min(text_.find_first_of(" \t\r\n", at_), text_.size());
        next_.text = text_.substr(at_, end - at_);
        at_ = end;
    }

    std::string_view text_;
    const std::shared_ptr<const std::string> file_;
    size_t at_ = 0;
    int line_ = 1;
    size_t brushes_ = 0, faces_ = 0;  // read so far
    Token next_;
};

Vec3 TakePoint(Scanner& in) {
    in.Expect("(");
    Vec3 p;
    for (int axis = 0; axis < 3; ++axis)
        p[axis] = in.TakeNumber();
    in.Expect(")");
    return p;
}

void TakeAxis(Scanner& in, Vec3& direction, double& offset) {
    in.Expect("[");
    for (int axis = 0; axis < 3; ++axis)
        direction[axis] = in.TakeNumber();
    offset = in.TakeNumber();
    in.Expect("]");
}

// Across and down on a face of this direction: level, and at right angles to that.
std::array<Vec3, 2> PrimitiveAxes(const Vec3& normal) {
    const double level = std::hypot(normal.x, normal.y);
    const bool isFlat = level < 1e-6;
    const double cosine = isFlat ? 1 : normal.x / level;
    const double sine = isFlat ? 0 : normal.y / level;
    return {{{-sine, cosine, 0}, {normal.z * cosine, normal.z * sine, isFlat ? 0 : -level}}};
}

void TakeMatrix(Scanner& in, MapFace& face) {
    const auto& [a, b, c] = face.points;
    const Vec3 normal = Cross(c - a, b - a);
    const double length = Length(normal);
    const auto [across, down] = PrimitiveAxes(length > 0 ? normal * (1 / length) : Vec3{0, 0, 1});
    in.Expect("(");
    const Vec3 u = TakePoint(in);
    const Vec3 v = TakePoint(in);
    in.Expect(")");
    face.uAxis = across * u.x + down * u.y;
    face.vAxis = across * v.x + down * v.y;
    face.uOffset = u.z;
    face.vOffset = v.z;
    face.uScale = face.vScale = 1;
    face.hasAxes = face.inRepeats = true;
}

void TakeTexels(Scanner& in, MapFace& face) {
    face.hasAxes = in.Is("[");
    if (face.hasAxes) {
        TakeAxis(in, face.uAxis, face.uOffset);
        TakeAxis(in, face.vAxis, face.vOffset);
    } else {
        face.uOffset = in.TakeNumber();
        face.vOffset = in.TakeNumber();
    }
    face.rotation = in.TakeNumber();
    face.uScale = in.TakeNumber();
    face.vScale = in.TakeNumber();
    for (const double scale : {face.uScale, face.vScale}) {
        if (scale == 0 || std::abs(scale) >= SCALE_MIN) continue;
        Refuse(face.line, fmt::format("a texture scale of {}", scale), "use the editor's default scale");
    }
}

MapFace TakeFace(Scanner& in) {
    MapFace face;
    face.line = in.Line();
    for (Vec3& p : face.points)
        p = TakePoint(in);
    const bool hasMatrix = in.Is("(");
    if (hasMatrix) TakeMatrix(in, face);
    face.texture = in.Take().text;
    if (!hasMatrix) TakeTexels(in, face);
    while (in.NextIsNumber())
        in.Take();  // of any size
    return face;
}

MapBrush TakeBrush(Scanner& in) {
    MapBrush brush;
    brush.line = in.Line();
    in.CountBrush();
    in.Expect("{");
    const bool isPrimitive = in.Is("brushDef");
    if (isPrimitive) {
        in.Take();
        in.Expect("{");
    }
    while (!in.Is("}")) {
        if (!in.Is("(")) {
            in.Fail(fmt::format("\"{}\" where a face should begin", Shown(in.Next().text)),
                    "only brushes of flat faces are supported: Standard, Valve 220 or brushDef");
        }
        in.CountFace();
        in.Count(brush.faces.size(), MAP_BRUSH_FACES_MAX, "faces on one brush");
        brush.faces.push_back(TakeFace(in));
    }
    if (isPrimitive) in.Expect("}");
    in.Expect("}");
    return brush;
}

MapEntity TakeEntity(Scanner& in) {
    MapEntity entity;
    entity.line = in.Line();
    in.Expect("{");
    while (!in.Is("}")) {
        if (in.Is("{")) {
            entity.brushes.push_back(TakeBrush(in));
            continue;
        }
        if (!in.Next().quoted) {
            in.Fail(
                fmt::format("\"{}\" where a key, a brush or the end of the entity should be", Shown(in.Next().text)),
                "write keys as \"name\" \"value\"");
        }
        in.Count(entity.keys.size(), MAP_KEYS_MAX, "keys of one entity");
        const Token name = in.Take();
        if (!in.Next().quoted) in.Fail("a key without a value", "write keys as \"name\" \"value\"");
        entity.keys.push_back({std::string(name.text), std::string(in.Take().text), in.LineOf(name)});
    }
    in.Expect("}");
    return entity;
}

}  // namespace

const MapKey* MapEntity::Find(const std::string& name) const {
    for (const MapKey& key : keys) {
        if (key.name == name) return &key;
    }
    return nullptr;
}

std::string MapEntity::ClassName() const {
    const MapKey* key = Find("classname");
    return key ? key->value : std::string();
}

MapFile ParseMap(const std::string& text, const std::string& name) {
    MapFile map{name, {}};
    Scanner in(text, map.name);
    while (!in.AtEnd()) {
        in.Count(map.entities.size(), MAP_ENTITIES_MAX, "entities");
        map.entities.push_back(TakeEntity(in));
    }
    return map;
}

MapFile ReadMapFile(const std::filesystem::path& path) {
    const std::vector<uint8_t> content = ReadWholeFile(path);
    return ParseMap(std::string(content.begin(), content.end()), path.string());
}

std::string PlaceText(const Vec3& p) {
    return fmt::format("({:.0f} {:.0f} {:.0f})", p.x, p.y, p.z);
}

double NumberKey(const MapEntity& entity, const std::string& name, double ifMissing) {
    const MapKey* key = entity.Find(name);
    if (!key) return ifMissing;
    double value = 0;
    const char* end = key->value.data() + key->value.size();
    const auto result = std::from_chars(key->value.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || !(std::abs(value) < 1e9)) {
        Refuse(key->line, fmt::format("the key {} is \"{}\"", name, Shown(key->value)), "give it one number");
    }
    return value;
}

double NumberKeyIn(const MapEntity& entity, const std::string& name, double ifMissing, double least, double most) {
    const double value = NumberKey(entity, name, ifMissing);
    if (value < least || value > most) {
        Refuse(entity.Find(name)->line, fmt::format("the key {} is {}", name, value),
               fmt::format("use {} to {}", least, most));
    }
    return value;
}

std::optional<Vec3> VectorKey(const MapEntity& entity, const std::string& name) {
    const MapKey* key = entity.Find(name);
    if (!key) return std::nullopt;
    std::istringstream words(key->value);
    Vec3 vector;
    size_t count = 0;
    for (std::string word; words >> word; ++count) {
        double value = 0;
        const auto result = std::from_chars(word.data(), word.data() + word.size(), value);
        if (count == 3 || result.ec != std::errc() || result.ptr != word.data() + word.size()) count = 99;
        if (count < 3) vector[static_cast<int>(count)] = value;
    }
    if (count != 3 || !(LengthSquared(vector) < 1e18)) {
        Refuse(key->line, fmt::format("the key {} is \"{}\"", name, Shown(key->value)), "give it three numbers");
    }
    return vector;
}

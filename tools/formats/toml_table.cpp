#include "formats/toml_table.h"

#include "formats/error.h"
#include "formats/files.h"
#include "formats/nesting.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <sstream>

struct TomlTable::Document {
    toml::table root;
};

namespace {

constexpr size_t DESCRIPTION_MAX = 200;  // bytes quoted of a message of the TOML library
constexpr size_t LIST_MAX = 4096;        // entries of a list

const toml::table& Table(const void* table) {
    return *static_cast<const toml::table*>(table);
}

const toml::node& Node(const void* node) {
    return *static_cast<const toml::node*>(node);
}

int LineOf(const toml::node& node) {
    return static_cast<int>(node.source().begin.line);
}

// A value as messages quote it, in the notation of TOML.
std::string ShownValue(const toml::node& node) {
    std::ostringstream text;
    node.visit([&](const auto& value) { text << value; });
    return Shown(text.str());
}

}  // namespace

TomlTable TomlTable::Load(const std::filesystem::path& path) {
    const std::vector<uint8_t> content = ReadWholeFile(path, TEXT_BYTES_MAX);
    return Parse({reinterpret_cast<const char*>(content.data()), content.size()}, path.string());
}

TomlTable TomlTable::Parse(std::string_view text, const std::string& fileName) {
    CheckNesting(text, NestedText::Toml, fileName);
    try {
        auto document = std::make_shared<Document>();
        document->root = toml::parse(text, fileName);
        TomlTable settings;
        settings.table_ = &document->root;
        settings.document_ = std::move(document);
        settings.file_ = fileName;
        return settings;
    } catch (const toml::parse_error& error) {
        Refuse(fileName, static_cast<int>(error.source().begin.line), Shown(error.description(), DESCRIPTION_MAX),
               "correct the TOML text");
    }
}

const void* TomlTable::Find(const std::string& key) const {
    read_.insert(key);
    return Table(table_).get(key);
}

bool TomlTable::Has(const std::string& key) const {
    return Table(table_).contains(key);
}

void TomlTable::Need(const std::string& key) const {
    if (!Has(key)) RefuseTable(fmt::format("'{}' is missing", key), "add it");
}

int TomlTable::Int(const std::string& key, int fallback, int least, int most) const {
    const void* found = Find(key);
    if (!found) return fallback;
    const auto value = Node(found).value_exact<int64_t>();
    if (!value || *value < least || *value > most) {
        RefuseKey(key, "is " + ShownValue(Node(found)), fmt::format("give a whole number from {} to {}", least, most));
    }
    return static_cast<int>(*value);
}

int TomlTable::NeedInt(const std::string& key, int least, int most) const {
    Need(key);
    return Int(key, least, least, most);
}

float TomlTable::Number(const std::string& key, float fallback, float least, float most) const {
    const void* found = Find(key);
    if (!found) return fallback;
    const auto value = Node(found).value<double>();
    if (!value || !(*value >= static_cast<double>(least) && *value <= static_cast<double>(most))) {
        RefuseKey(key, "is " + ShownValue(Node(found)), fmt::format("give a number from {} to {}", least, most));
    }
    return static_cast<float>(*value);
}

bool TomlTable::Flag(const std::string& key, bool fallback) const {
    const void* found = Find(key);
    if (!found) return fallback;
    const auto value = Node(found).value_exact<bool>();
    if (!value) RefuseKey(key, "is " + ShownValue(Node(found)), "write true or false");
    return *value;
}

std::string TomlTable::Text(const std::string& key, const std::string& fallback) const {
    const void* found = Find(key);
    if (!found) return fallback;
    const auto value = Node(found).value_exact<std::string>();
    if (!value) RefuseKey(key, "is " + ShownValue(Node(found)) + ", which is no text", "write it in quotes");
    return *value;
}

std::string TomlTable::NeedText(const std::string& key) const {
    Need(key);
    return Text(key, "");
}

size_t TomlTable::Choice(const std::string& key, const std::string& fallback,
                         const std::vector<std::string>& choices) const {
    const std::string text = Text(key, fallback);
    const auto found = std::find(choices.begin(), choices.end(), text);
    if (found == choices.end()) {
        RefuseKey(key, fmt::format("'{}' is not known", Shown(text)),
                  fmt::format("use one of {}", fmt::join(choices, ", ")));
    }
    return static_cast<size_t>(found - choices.begin());
}

void TomlTable::CheckList(const std::string& key, size_t entries) const {
    if (entries > LIST_MAX)
        RefuseKey(key, fmt::format("has {} entries or more", entries), fmt::format("{} are the most", LIST_MAX));
}

std::vector<std::string> TomlTable::Texts(const std::string& key) const {
    const void* found = Find(key);
    std::vector<std::string> texts;
    if (!found) return texts;
    const toml::array* list = Node(found).as_array();
    if (!list) return {Text(key, "")};
    CheckList(key, list->size());
    for (const toml::node& item : *list) {
        const auto text = item.value_exact<std::string>();
        if (!text)
            RefuseKey(key, fmt::format("holds {}, which is no text", ShownValue(item)), "write every entry in quotes");
        texts.push_back(*text);
    }
    return texts;
}

std::vector<float> TomlTable::Numbers(const std::string& key) const {
    const void* found = Find(key);
    std::vector<float> numbers;
    const auto add = [&](const toml::node& item) {
        const auto value = item.value<double>();
        if (!value || !(*value > -1e6 && *value < 1e6)) {
            RefuseKey(key, "holds " + ShownValue(item), "write plain numbers between -1000000 and 1000000");
        }
        CheckList(key, numbers.size() + 1);
        numbers.push_back(static_cast<float>(*value));
    };
    if (!found) return numbers;
    const toml::array* list = Node(found).as_array();
    if (!list) {
        add(Node(found));
        return numbers;
    }
    for (const toml::node& item : *list) {
        if (const toml::array* inner = item.as_array()) {
            for (const toml::node& number : *inner)
                add(number);
        } else {
            add(item);
        }
    }
    return numbers;
}

std::vector<float> TomlTable::Numbers(const std::string& key, size_t count, const std::vector<float>& fallback) const {
    if (!Has(key)) return fallback;
    std::vector<float> numbers = Numbers(key);
    if (numbers.size() != count) {
        RefuseKey(key, fmt::format("has {} numbers", numbers.size()), fmt::format("give {}", count));
    }
    return numbers;
}

std::vector<TomlTable> TomlTable::Tables(const std::string& key) const {
    std::vector<TomlTable> tables;
    const auto add = [&](const toml::node& item) {
        if (!item.is_table())
            RefuseKey(key, fmt::format("is {}, not a table", ShownValue(item)), fmt::format("write it as [[{}]]", key));
        TomlTable settings;
        settings.document_ = document_;
        settings.table_ = item.as_table();
        settings.file_ = file_;
        tables.push_back(std::move(settings));
    };
    const void* found = Find(key);
    if (!found) return tables;
    if (const toml::array* list = Node(found).as_array()) {
        for (const toml::node& item : *list)
            add(item);
    } else {
        add(Node(found));
    }
    return tables;
}

void TomlTable::Finish() const {
    for (const auto& [key, node] : Table(table_)) {
        if (!read_.contains(std::string(key.str()))) {
            Refuse(file_, LineOf(node), fmt::format("'{}' is not known here", Shown(key.str())),
                   "check the spelling or remove it");
        }
    }
}

void TomlTable::RefuseKey(const std::string& key, const std::string& problem, const std::string& remedy) const {
    const toml::node* node = Table(table_).get(key);
    Refuse(file_, LineOf(node ? *node : Table(table_)), fmt::format("'{}' {}", key, problem), remedy);
}

int TomlTable::Line() const {
    return LineOf(Table(table_));
}

void TomlTable::RefuseTable(const std::string& problem, const std::string& remedy) const {
    Refuse(file_, Line(), problem, remedy);
}

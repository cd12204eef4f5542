// One table of a TOML file, read key by key; the limits are given where a key is read. Every refusal names file and
// line. Keys that nobody asked for are refused by Finish, so that a misspelt key is never silently ignored. A file has
// at most TEXT_BYTES_MAX (formats/files.h), a list at most 4096 entries.
#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

class TomlTable {
public:
    static TomlTable Load(const std::filesystem::path& path);
    static TomlTable Parse(std::string_view text, const std::string& fileName);

    const std::string& File() const { return file_; }
    bool Has(const std::string& key) const;

    // The fallback is returned as it is when the key is missing; Need* refuse a missing key.
    int Int(const std::string& key, int fallback, int least, int most) const;
    int NeedInt(const std::string& key, int least, int most) const;
    float Number(const std::string& key, float fallback, float least, float most) const;
    bool Flag(const std::string& key, bool fallback) const;
    std::string Text(const std::string& key, const std::string& fallback) const;
    std::string NeedText(const std::string& key) const;
    // The position of the text in `choices`.
    size_t Choice(const std::string& key, const std::string& fallback, const std::vector<std::string>& choices) const;
    // A single value counts as a list of one; a missing key is an empty list.
    std::vector<std::string> Texts(const std::string& key) const;
    std::vector<float> Numbers(const std::string& key) const;  // [1, 2] and [[1, 2], [3, 4]] alike, flattened
    std::vector<float> Numbers(const std::string& key, size_t count, const std::vector<float>& fallback) const;
    std::vector<TomlTable> Tables(const std::string& key) const;  // a table or an array of tables

    void Finish() const;
    [[noreturn]] void RefuseKey(const std::string& key, const std::string& problem, const std::string& remedy) const;
    int Line() const;  // where this table begins
    [[noreturn]] void RefuseTable(const std::string& problem, const std::string& remedy) const;

private:
    struct Document;
    TomlTable() = default;
    const void* Find(const std::string& key) const;  // the TOML node, or null; marks the key as read
    void Need(const std::string& key) const;
    void CheckList(const std::string& key, size_t entries) const;

    std::shared_ptr<const Document> document_;  // keeps the whole file alive for its tables
    const void* table_ = nullptr;
    std::string file_;
    mutable std::set<std::string> read_;
};

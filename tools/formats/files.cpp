#include "formats/files.h"

#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;

[[noreturn]] void RefuseWriting(const fs::path& path, const std::string& reason) {
    Refuse(path.string(), 0, fmt::format("cannot be written ({})", reason),
           "check the folder's permissions and the free space");
}

bool Holds(const fs::path& path, const Bytes& content) {
    std::error_code error;
    if (fs::file_size(path, error) != content.size() || error) return false;
    std::ifstream stream(path, std::ios::binary);
    std::vector<char> known(content.size());
    stream.read(known.data(), static_cast<std::streamsize>(known.size()));
    return stream && std::equal(content.begin(), content.end(), known.begin(),
                                [](uint8_t a, char b) { return a == static_cast<uint8_t>(b); });
}

// A file until it is complete. Without Commit it vanishes again.
class PartFile {
public:
    PartFile(const fs::path& path, const Bytes& content) : path_(path) {
        std::error_code error;  // an error here shows up again when the file is written
        if (fs::exists(path_, error)) path_ = fs::canonical(path_, error);  // the file that a link points to is written
        if (fs::exists(path_, error) && !fs::is_regular_file(path_, error)) {
            Refuse(path.string(), 0, "is no regular file", "name a file to write");
        }
        if (Holds(path_, content)) return;
        if (path_.has_parent_path()) fs::create_directories(path_.parent_path(), error);
        part_ = path_.string() + ".part";
        Write(content);
    }
    ~PartFile() { Remove(); }
    PartFile(PartFile&& other) noexcept : path_(std::move(other.path_)), part_(std::exchange(other.part_, {})) {}

    void Commit() {
        if (part_.empty()) return;
        std::error_code error;
        fs::rename(part_, path_, error);
        if (error) RefuseWriting(path_, error.message());
        part_.clear();
    }

private:
    void Write(const Bytes content) {
        errno = 0;
        std::ofstream stream(part_, std::ios::binary | std::ios::trunc);
        stream.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
        stream.close();
        if (stream) return;
        const std::string reason = std::strerror(errno);
        Remove();
        RefuseWriting(path_, reason);
    }

    void Remove() {
        std::error_code ignored;
        if (!part_.empty()) fs::remove(part_, ignored);
        part_.clear();
    }

    fs::path path_, part_;  // part_ is empty when nothing is left to do
};

}  // namespace

std::vector<uint8_t> ReadWholeFile(const fs::path& path, size_t mostBytes) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        Refuse(path.string(), 0, "is no regular file", "name a file");
    }
    const uintmax_t size = fs::file_size(path, error);
    if (!error && size > mostBytes) {
        Refuse(path.string(), 0, fmt::format("has {} bytes", size), fmt::format("{} are the most", mostBytes));
    }
    std::ifstream stream(path, std::ios::binary);
    std::vector<uint8_t> content(error ? 0 : size);
    stream.read(reinterpret_cast<char*>(content.data()), static_cast<std::streamsize>(content.size()));
    if (error || !stream) Refuse(path.string(), 0, "cannot be read", "check the name and the permissions");
    return content;
}

void WriteWholeFiles(const std::vector<OutputFile>& files) {
    std::vector<PartFile> parts;
    for (const OutputFile& file : files)
        parts.emplace_back(file.path, file.content);
    for (PartFile& part : parts)
        part.Commit();
}

void WriteWholeFile(const fs::path& path, const std::vector<uint8_t>& content) {
    PartFile(path, content).Commit();
}

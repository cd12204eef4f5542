#include "formats/files.h"
#include "support/content_error.h"

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

namespace fs = std::filesystem;

namespace {

const fs::path FOLDER = fs::path(testing::TempDir()) / "files";
const std::vector<uint8_t> OLD(100, 1), LARGE(100000, 2);

// No file grows beyond so many bytes, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    void (*handler_)(int);
    rlimit before_{};
};

}  // namespace

TEST(Files, AFailedWriteLeavesEveryFileAsItWas) {
    WriteWholeFile(FOLDER / "a", OLD);
    {
        const FullDisk disk(10000);
        ExpectRefusal("a: cannot be written (File too large): check the folder's permissions and the free space",
                      [] { WriteWholeFile(FOLDER / "a", LARGE); });
        ExpectRefusal("new: cannot be written", [] {
            WriteWholeFiles({{FOLDER / "a", {3}}, {FOLDER / "new", LARGE}});
        });
    }
    EXPECT_EQ(ReadWholeFile(FOLDER / "a"), OLD);
    EXPECT_EQ(std::distance(fs::directory_iterator(FOLDER), {}), 1);

    fs::create_symlink("a", FOLDER / "link");
    WriteWholeFile(FOLDER / "link", LARGE);
    EXPECT_TRUE(fs::is_symlink(FOLDER / "link"));
    EXPECT_EQ(ReadWholeFile(FOLDER / "a"), LARGE);
}

TEST(Files, OnlyRegularFilesOfABoundedSize) {
    // Only files of the test are written to: a faulty tool would destroy what it replaces.
    fs::create_directories(FOLDER);
    ASSERT_EQ(mkfifo((FOLDER / "pipe").c_str(), 0600), 0);
    for (const fs::path& path : {FOLDER, FOLDER / "pipe"})
        ExpectRefusal("is no regular file", [&] { WriteWholeFile(path, OLD); });
    for (const fs::path& path : {FOLDER, fs::path("/dev/zero")})
        ExpectRefusal("is no regular file", [&] { ReadWholeFile(path); });
    WriteWholeFile(FOLDER / "large", LARGE);
    ExpectRefusal("large: has 100000 bytes: 99999 are the most", [] { ReadWholeFile(FOLDER / "large", 99999); });
    EXPECT_EQ(ReadWholeFile(FOLDER / "large", 100000), LARGE);
    ExpectRefusal("none: cannot be read", [] { ReadWholeFile(FOLDER / "none"); });
}

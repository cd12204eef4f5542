// Linked into every test program: testing::TempDir() and std::filesystem::temp_directory_path() are a fresh folder of
// this process, so that tests that run at the same time do not meet in their files. It is gone when the process, not a
// fork of it, ends.
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace {

char Folder[] = "/tmp/tarnwick-test-XXXXXX";
pid_t Owner;

// Runs before the constructors of static objects, some of which ask for the folder.
[[gnu::constructor(101)]] void MakeFolder() {
    Owner = getpid();
    if (mkdtemp(Folder) == nullptr) return;
    setenv("TEST_TMPDIR", Folder, 1);
    setenv("TMPDIR", Folder, 1);
}

struct RemoveAtExit {
    ~RemoveAtExit() {
        if (getpid() != Owner) return;
        std::error_code ignored;
        std::filesystem::remove_all(Folder, ignored);
    }
};
const RemoveAtExit removeAtExit;

}  // namespace

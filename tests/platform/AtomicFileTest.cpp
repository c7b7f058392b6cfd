// The temporaries that killed writers leave behind: the next save removes them
// once their writer is gone, and never one whose writer still runs.

#include "utl/TempDir.h"

#include <KORVAutlwin/platform/AtomicFile.h>

#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// The id of a process that has ended and was reaped.
pid_t EndedPid()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

TEST(AtomicFileTest, ASaveRemovesOnlyTheTemporariesOfWritersThatAreGone)
{
    const TempDir dir;
    const fs::path folder = dir.Path();
    const std::string target = (folder / "settings.ini").string();
    const auto temporary = [&](pid_t pid, const char* rest) {
        return folder / (".settings.ini.tmp-" + std::to_string(pid) + rest);
    };
    const fs::path ended = temporary(EndedPid(), "-0123456789abcdef");
    const fs::path running = temporary(1, "-0123456789abcdef"); // init: alive, and not ours to signal
    const fs::path otherShape = temporary(EndedPid(), "-backup");
    for (const fs::path& path : {ended, running, otherShape})
        std::ofstream(path) << "left behind";

    korva::AtomicFile earlier(target); // a writer of this process that is still at work
    korva::AtomicFile file(target);
    ASSERT_TRUE(file.Write("new", 3) && file.Commit());
    EXPECT_TRUE(earlier.Write("newer", 5) && earlier.Commit());

    EXPECT_TRUE(!fs::exists(ended) && fs::exists(running) && fs::exists(otherShape));
    EXPECT_EQ(ReadFile(target), "newer");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 3);
}

} // namespace

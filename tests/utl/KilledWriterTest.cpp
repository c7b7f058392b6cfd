// A writer killed in the middle of a save leaves its temporary file behind;
// the next save of either settings back-end removes it, and the file holds
// what that save wrote.

#include "TempDir.h"

#include <KORVAutlwin/platform/AtomicFile.h>
#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace {

// Starts a save of `target` in a child that SIGKILL ends half way through.
void KilledMidSave(const std::string& target)
{
    const pid_t child = fork();
    if (child == 0) {
        korva::AtomicFile file(target);
        const std::string half(64 * 1024, 'x');
        file.Write(half.data(), half.size());
        raise(SIGKILL);
        _exit(1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

int Temporaries(const std::string& folder)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        count += entry.path().filename().string().find(".tmp-") != std::string::npos;
    return count;
}

TEST(KilledWriterTest, TheNextSaveRemovesWhatAKilledWriterLeft)
{
    TempDir folder;
    using Open = std::function<std::unique_ptr<ConfigurationSection>(const std::string&)>;
    const struct { const char* name; Open open; } rows[] = {
        {"settings.xml", [](const std::string& path) { return std::make_unique<XMLSection>(path.c_str(), true); }},
        {"settings.ini", [](const std::string& path) { return std::make_unique<IniFileSection>(path.c_str(), "S"); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string path = folder.File(row.name);
        KilledMidSave(path);
        ASSERT_EQ(Temporaries(folder.Path()), 1);
        const auto section = row.open(path);
        ASSERT_TRUE(section->WriteKey("k", "v"));
        ASSERT_TRUE(section->Flush());
        EXPECT_EQ(Temporaries(folder.Path()), 0);
        std::string read;
        EXPECT_TRUE(row.open(path)->ReadKey("k", read));
        EXPECT_EQ(read, "v");
    }
}

} // namespace

// Crashes for real, in a child process (the helper program): a fault outside every guard, on the main thread and on a
// worker, a stack overflow and an uncaught exception must each leave a dump and end the process as a crash.

#include "frame/helpers/ChildProcess.h"

#include <cerrno>
#include <regex>

namespace {

using korva::test::RunHelper;

bool Has(const std::string& text, const std::string& pattern)
{
    return std::regex_search(text, std::regex(pattern));
}

TEST(FailureDumpTest, EveryCrashLeavesACompleteDumpAndEndsAsACrash)
{
    const struct { const char* mode; int signal; bool worker; std::vector<std::string> parts; } cases[] = {
        // The faulting instruction lies in the helper itself.
        {"crash-main", SIGSEGV, false, {"\nsignal: 11 SIGSEGV\n", "\ncode: 0xc0000005\n", "\nfault address: 0x0000000000000010\n",
                                 "\nprogram counter: 0x[0-9a-f]+ \\S*korva_failure_helper\\+0x"}},
        {"crash-thread", SIGSEGV, true, {"\nfault address: 0x0000000000000020\n"}},
        {"crash-thread-under-guard", SIGSEGV, true, {"\nfault address: 0x0000000000000020\n"}},
        {"overflow-main", SIGSEGV, false, {"\ncode: 0xc00000fd\n"}},
        {"terminate", SIGABRT, true, {"\nexception: The helper gave up.\n"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        TempDir folder;
        const auto end = RunHelper(c.mode, folder.Path());
        EXPECT_EQ(end.signal, c.signal) << "ended by the signal, as an unhandled crash ends";
        EXPECT_EQ(ReadFile(folder.File("dumped")), folder.File("crash.dmp"));
        // The helper initialised a second time with other functions: the first ones stay.
        EXPECT_FALSE(std::filesystem::exists(folder.File("failed")) || std::filesystem::exists(folder.File("second.dmp")));
        const std::string dump = ReadFile(folder.File("crash.dmp"));
        for (const std::string& part : c.parts)
            EXPECT_TRUE(Has(dump, part)) << part << " in\n" << dump;
        // Registers, a backtrace into the helper with module offsets, and the
        // memory map with the helper's own mapping and the stack, complete to its end.
#if defined(__x86_64__)
        EXPECT_TRUE(Has(dump, "registers:\n(  [a-z0-9]+ 0x[0-9a-f]{16}\n)*  rip 0x[0-9a-f]{16}\n")) << dump;
#endif
        EXPECT_TRUE(Has(dump, "\n  #[0-9]+ 0x[0-9a-f]{16} \\S*korva_failure_helper\\+0x[0-9a-f]+\n"));
        const std::string map = dump.substr(std::min(dump.find("memory map:\n"), dump.size()));
        EXPECT_TRUE(Has(map, "\n[0-9a-f]+-[0-9a-f]+ r-xp [^\n]*korva_failure_helper\n")) << dump;
        EXPECT_TRUE(map.find("[stack]") != std::string::npos && map.ends_with("\nend of dump\n"));
        // Written on the failing thread: a worker's is not the process's.
        std::smatch ids;
        ASSERT_TRUE(std::regex_search(dump, ids, std::regex("process: ([0-9]+)\nthread: ([0-9]+)\n")));
        EXPECT_EQ(ids[1].str() != ids[2].str(), c.worker);
    }
}

TEST(FailureDumpTest, UnwritableDumpPathCallsOnFailed)
{
    TempDir folder;
    EXPECT_EQ(RunHelper("crash-unwritable", folder.Path()).signal, SIGSEGV);
    // The folder of the dump does not exist: the system's error is ENOENT.
    EXPECT_EQ(ReadFile(folder.File("failed")), folder.File("missing/crash.dmp") + "\n" + std::to_string(ENOENT));
    EXPECT_FALSE(std::filesystem::exists(folder.File("dumped")));
}

} // namespace

// Crashes for real, in a child process (the helper program): a fault outside
// every guard, on the main thread and on a worker, a stack overflow and an
// uncaught exception must each leave a dump and end the process as a crash.

#include "frame/helpers/ChildProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <regex>
#include <string>

#include <signal.h>

namespace {

using korva::test::ReadWholeFile;
using korva::test::RunHelper;
using korva::test::TempFolder;

bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

// What every dump holds: registers, a backtrace into the helper with module
// offsets, and the memory map, complete to its end.
void ExpectCompleteDump(const std::string& dump)
{
    EXPECT_TRUE(Contains(dump, "registers:\n")) << dump;
#if defined(__x86_64__)
    EXPECT_TRUE(std::regex_search(dump, std::regex("\n  rip 0x[0-9a-f]{16}\n"))) << dump;
    EXPECT_TRUE(std::regex_search(dump, std::regex("\n  rsp 0x[0-9a-f]{16}\n"))) << dump;
#endif
    EXPECT_TRUE(std::regex_search(dump, std::regex("\n  #[0-9]+ 0x[0-9a-f]{16} \\S*korva_failure_helper\\+0x[0-9a-f]+\n")))
        << dump;
    const auto map = dump.find("memory map:\n");
    ASSERT_NE(map, std::string::npos) << dump;
    // The map lists the helper's own mapping and the stack, and the dump ends after it.
    EXPECT_TRUE(std::regex_search(dump.substr(map), std::regex("\n[0-9a-f]+-[0-9a-f]+ r-xp [^\n]*korva_failure_helper\n")));
    EXPECT_TRUE(Contains(dump.substr(map), "[stack]"));
    EXPECT_TRUE(dump.size() > 13 && dump.substr(dump.size() - 12) == "end of dump\n");
}

// Runs the helper in `mode`, which must end by `signal` after reporting its
// dump as written, and gives the dump.
std::string DumpOf(const char* mode, const TempFolder& folder, int signal)
{
    const auto end = RunHelper(mode, folder.Path());
    EXPECT_TRUE(end.started && !end.timedOut) << mode;
    // Ended by the signal, as an unhandled crash ends.
    EXPECT_EQ(end.signal, signal) << mode;
    EXPECT_EQ(ReadWholeFile(folder.File("dumped")), folder.File("crash.dmp")) << mode;
    return ReadWholeFile(folder.File("crash.dmp"));
}

TEST(FailureDumpTest, FaultOnTheMainThreadLeavesADump)
{
    TempFolder folder;
    const std::string dump = DumpOf("crash-main", folder, SIGSEGV);
    EXPECT_TRUE(Contains(dump, "\nsignal: 11 SIGSEGV\n")) << dump;
    EXPECT_TRUE(Contains(dump, "\ncode: 0xc0000005\n")) << dump;
    EXPECT_TRUE(Contains(dump, "\nfault address: 0x0000000000000010\n")) << dump;
    // The faulting instruction lies in the helper itself.
    EXPECT_TRUE(std::regex_search(dump, std::regex("\nprogram counter: 0x[0-9a-f]+ \\S*korva_failure_helper\\+0x")))
        << dump;
    ExpectCompleteDump(dump);
    EXPECT_FALSE(std::filesystem::exists(folder.File("failed")));
}

TEST(FailureDumpTest, FaultOnAWorkerThreadLeavesADump)
{
    TempFolder folder;
    const std::string dump = DumpOf("crash-thread", folder, SIGSEGV);
    EXPECT_TRUE(Contains(dump, "\nfault address: 0x0000000000000020\n")) << dump;
    // Written on the failing thread, which is not the main one.
    std::smatch ids;
    ASSERT_TRUE(std::regex_search(dump, ids, std::regex("process: ([0-9]+)\nthread: ([0-9]+)\n"))) << dump;
    EXPECT_NE(ids[1].str(), ids[2].str());
    ExpectCompleteDump(dump);
}

TEST(FailureDumpTest, StackOverflowAndUncaughtException)
{
    TempFolder overflow;
    const std::string overflowDump = DumpOf("overflow-main", overflow, SIGSEGV);
    EXPECT_TRUE(Contains(overflowDump, "\ncode: 0xc00000fd\n")) << overflowDump;
    ExpectCompleteDump(overflowDump);

    TempFolder uncaught;
    const std::string uncaughtDump = DumpOf("terminate", uncaught, SIGABRT);
    EXPECT_TRUE(Contains(uncaughtDump, "\nexception: The helper gave up.\n")) << uncaughtDump;
    ExpectCompleteDump(uncaughtDump);
}

TEST(FailureDumpTest, UnwritableDumpPathCallsOnFailed)
{
    TempFolder folder;
    const auto end = RunHelper("crash-unwritable", folder.Path());
    ASSERT_FALSE(end.timedOut);
    EXPECT_EQ(end.signal, SIGSEGV);
    // The folder of the dump does not exist: the system's error is ENOENT.
    EXPECT_EQ(ReadWholeFile(folder.File("failed")), folder.File("missing/crash.dmp") + "\n" + std::to_string(ENOENT));
    EXPECT_FALSE(std::filesystem::exists(folder.File("dumped")));
}

TEST(FailureDumpTest, SecondInitializeKeepsTheFirstFunctions)
{
    TempFolder folder;
    DumpOf("crash-twice", folder, SIGSEGV);
    EXPECT_TRUE(std::filesystem::exists(folder.File("crash.dmp")));
    EXPECT_FALSE(std::filesystem::exists(folder.File("second.dmp")));
    EXPECT_FALSE(std::filesystem::exists(folder.File("dumped-second")));
}

} // namespace

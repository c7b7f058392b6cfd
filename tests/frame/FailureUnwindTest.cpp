// Going on after a fault in event dispatch, for real, in the helper program: the faulting frames are unwound (locks
// released, counted objects gone, Qt's emission state cleaned up), so the process survives the dialog and the
// deletion of the button whose handler faulted, a hundred times over.

#include "frame/helpers/ChildProcess.h"

#include <KORVAutl/LanguageString.h>

#include <map>
#include <sstream>

namespace {

using korva::test::RunHelper;

std::map<std::string, std::string> ReadReport(const std::string& path)
{
    std::map<std::string, std::string> values;
    std::istringstream lines(ReadFile(path));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t blank = line.find(' ');
        if (blank != std::string::npos)
            values[line.substr(0, blank)] = line.substr(blank + 1);
    }
    return values;
}

std::string FaultText(unsigned int id)
{
    return std::string(LanguageString::Get(13293)) + LanguageString::Get(id);
}

TEST(FailureUnwindTest, FaultsInAHandlerWithoutContextUnwindAndTheProcessGoesOn)
{
    const struct { const char* mode; std::map<std::string, std::string> expected; } cases[] = {
        // 101 clicks, each a fault answered "go on"; every round released both locks and both counted objects and
        // left the fault signals unblocked; then the button's window was deleted without a fault.
        {"unwind-lambda",
         {{"answered", "101"}, {"released", "101"}, {"open", "101"}, {"text", FaultText(13294)}, {"deleted", "1"}}},
        // A stack overflow and a fault in a noexcept function jump back to the guard instead, and are recovered too;
        // a later fault is unwound again.
        {"unwind-jump", {{"overflow", FaultText(13312)}, {"answered", "3"}, {"released", "1"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        TempDir folder;
        const auto end = RunHelper(c.mode, folder.Path());
        EXPECT_EQ(end.signal, 0);
        EXPECT_EQ(end.exitCode, 0);
        EXPECT_FALSE(std::filesystem::exists(folder.File("crash.dmp")));
        std::map<std::string, std::string> report = ReadReport(folder.File("report"));
        const std::string growth = report["growth"];
        report.erase("growth");
        EXPECT_EQ(report, c.expected);
        // The dialog is made and destroyed each round: what stays behind per round is small.
        if (report.count("released") && report["released"] == "101") {
            ASSERT_FALSE(growth.empty());
            EXPECT_LT(std::stoll(growth), 2048) << "bytes kept per round";
        }
    }
}

} // namespace

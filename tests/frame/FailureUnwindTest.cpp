// Going on after faults in event dispatch, for real, in the helper program: the faulting frames are unwound (locks
// released, counted objects gone, the signal mask open and the rounding mode kept, Qt's emission state clean), a
// hundred times over, and the button whose handler faulted is deleted without a fault.

#include "frame/helpers/ChildProcess.h"

#include <KORVAutl/LanguageString.h>

#include <map>
#include <sstream>

namespace {

std::string FaultText(unsigned int id)
{
    return std::string(LanguageString::Get(13293)) + LanguageString::Get(id);
}

TEST(FailureUnwindTest, FaultsInHandlersWithoutContextAreRecoveredAndTheProcessGoesOn)
{
    const std::string violation = FaultText(13294);
    const struct { const char* mode; std::map<std::string, std::string> expected; } cases[] = {
        {"unwind-lambda", {{"released", "101"}, {"text", violation}, {"deleted", "1"}}},
        // Faults that cannot be unwound jump back to the guard; the next one unwinds again.
        {"unwind-jump", {{"overflow", FaultText(13312)}, {"noexcept", violation}, {"released", "1"}, {"text", violation}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        TempDir folder;
        const auto end = korva::test::RunHelper(c.mode, folder.Path());
        EXPECT_TRUE(end.signal == 0 && end.exitCode == 0) << end.signal << " " << end.exitCode;
        std::map<std::string, std::string> report;
        std::istringstream lines(ReadFile(folder.File("report")));
        for (std::string name, value; lines >> name && std::getline(lines >> std::ws, value);)
            report[name] = value;
        // The dialog is made and destroyed each round: what stays behind per round is small.
        EXPECT_LT(std::stoll(report["growth"] + "0") / 10, 2048) << "bytes kept per round";
        report.erase("growth");
        EXPECT_EQ(report, c.expected);
    }
}

} // namespace

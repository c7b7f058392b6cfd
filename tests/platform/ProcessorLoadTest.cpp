// The processor load between two readings of a file in the layout of /proc/stat.
#include "utl/TempDir.h"

#include <KORVAutlwin/platform/ProcessorLoad.h>

namespace {

struct LoadCase
{
    const char* name;
    const char* earlier;
    const char* later;
    long percent;  // -1: no load to be had
};

const LoadCase kLoads[] = {
    {"Half", "cpu  100 0 100 800 0 0 0 0 0 0\ncpu0 1 2 3 4\n", "cpu  150 0 150 900 0 0 0 0 0 0\n", 50},
    {"NiceIrqAndStealAreBusy", "cpu  0 0 0 0 0 0 0 0\n", "cpu  0 10 0 60 0 10 10 10\n", 40},
    {"IoWaitIsIdle", "cpu  0 0 0 0 0 0 0 0\n", "cpu  10 0 0 0 90 0 0 0\n", 10},
    {"RoundsToNearest", "cpu  0 0 0 0\n", "cpu  2 0 0 1\n", 67},
    {"NoTimePassed", "cpu  5 5 5 5\n", "cpu  5 5 5 5\n", 0},
    {"CountersSteppedBack", "cpu  500 0 0 500\n", "cpu  400 0 0 400\n", 0},
    {"OldKernelFourFields", "cpu  0 0 0 0\n", "cpu  25 0 25 50\n", 50},
    {"NoCpuLine", "cpu  0 0 0 0\n", "intr 1 2 3\n", -1},
    {"TooFewFields", "cpu  0 0 0 0\n", "cpu  1 2\n", -1},
    {"Missing", "cpu  0 0 0 0\n", nullptr, -1},
};

TEST(ProcessorLoad, BetweenTwoReadings)
{
    for (const LoadCase& row : kLoads) {
        SCOPED_TRACE(row.name);
        TempDir folder;
        const std::string stat = folder.File("stat");
        WriteFile(stat, row.earlier);
        korva::ProcessorLoad load(stat);
        long percent = -1;
        ASSERT_TRUE(load.Collect());
        EXPECT_FALSE(load.GetPercent(percent));  // one reading is no load yet
        if (row.later)
            WriteFile(stat, row.later);
        else
            std::remove(stat.c_str());
        EXPECT_EQ(load.Collect(), row.percent >= 0);
        EXPECT_EQ(load.GetPercent(percent), row.percent >= 0);
        if (row.percent >= 0) {
            EXPECT_EQ(percent, row.percent);
        }
    }
}

} // namespace

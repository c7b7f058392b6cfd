#pragma once
/// \class korva::ProcessorLoad
/// The total processor load, from the "cpu" line of /proc/stat: the share of the
/// time between two readings that the processors spent outside idle and I/O wait.

#include <string>

namespace korva {

class ProcessorLoad
{
public:
    /// Reads `statFile` (a file in the layout of /proc/stat).
    explicit ProcessorLoad(std::string statFile = "/proc/stat");

    /// Takes a reading; false when the file can't be read or holds no "cpu" line.
    bool Collect();
    /// The load between the last two readings in whole per cent (0 to 100;
    /// 0 when no time passed). False until two readings were taken.
    bool GetPercent(long& percent) const;

private:
    std::string mStatFile;
    unsigned long long mBusy[2] = {0, 0};   // earlier, later
    unsigned long long mTotal[2] = {0, 0};
    int mReadings = 0;
};

} // namespace korva

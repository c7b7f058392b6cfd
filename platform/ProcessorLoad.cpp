#include <KORVAutlwin/platform/ProcessorLoad.h>

#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace korva {

ProcessorLoad::ProcessorLoad(std::string statFile)
    : mStatFile(std::move(statFile))
{
}

bool ProcessorLoad::Collect()
{
    // The first line is all we need; the kernel makes the whole file anyway, so
    // one small read is the cheapest way to it.
    char text[512];
    const int fd = open(mStatFile.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const ssize_t length = read(fd, text, sizeof text - 1);
    close(fd);
    if (length <= 0)
        return false;
    text[length] = '\0';
    if (std::strncmp(text, "cpu ", 4) != 0)
        return false;
    // user nice system idle iowait irq softirq steal; guest time is counted in user already.
    unsigned long long fields[8] = {};
    char* at = text + 4;
    int read = 0;
    for (; read < 8; ++read) {
        char* end = nullptr;
        fields[read] = std::strtoull(at, &end, 10);
        if (end == at || (*end != ' ' && *end != '\n'))
            break;
        at = end;
    }
    if (read < 4)
        return false;
    unsigned long long total = 0;
    for (const unsigned long long field : fields)
        total += field;
    const unsigned long long idle = fields[3] + fields[4];
    mBusy[0] = mBusy[1];
    mTotal[0] = mTotal[1];
    mBusy[1] = total - idle;
    mTotal[1] = total;
    if (mReadings < 2)
        ++mReadings;
    return true;
}

bool ProcessorLoad::GetPercent(long& percent) const
{
    if (mReadings < 2)
        return false;
    // Counters may step back a little when a processor goes offline: no negative load.
    const unsigned long long total = mTotal[1] > mTotal[0] ? mTotal[1] - mTotal[0] : 0;
    const unsigned long long busy = mBusy[1] > mBusy[0] ? mBusy[1] - mBusy[0] : 0;
    if (total == 0) {
        percent = 0;
        return true;
    }
    percent = static_cast<long>((busy * 100 + total / 2) / total);
    if (percent > 100)
        percent = 100;
    return true;
}

} // namespace korva

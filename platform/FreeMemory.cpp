#include <KORVAutlwin/platform/FreeMemory.h>

#include <fstream>
#include <sstream>
#include <string>

namespace korva {

bool ReadFreeMemory(FreeMemory& memory)
{
    memory = FreeMemory{};
    std::ifstream meminfo("/proc/meminfo");
    bool haveAvailable = false;
    std::uint64_t free = 0;
    std::uint64_t caches = 0;
    std::string line;
    while (std::getline(meminfo, line)) {
        std::istringstream fields(line);
        std::string key;
        std::uint64_t kilobytes = 0;
        if (!(fields >> key >> kilobytes))
            continue;
        if (key == "MemTotal:") {
            memory.total = kilobytes;
        } else if (key == "MemAvailable:") {
            memory.available = kilobytes;
            haveAvailable = true;
        } else if (key == "MemFree:") {
            free = kilobytes;
        } else if (key == "Buffers:" || key == "Cached:") {
            caches += kilobytes;
        } else if (key == "SwapTotal:") {
            memory.swapTotal = kilobytes;
        } else if (key == "SwapFree:") {
            memory.swapFree = kilobytes;
        }
    }
    // Kernels before 3.14 do not estimate the available memory.
    if (!haveAvailable)
        memory.available = free + caches;
    return memory.total > 0;
}

} // namespace korva

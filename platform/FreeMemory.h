#pragma once
// How much memory the machine has and how much of it is free, as the kernel counts it.

#include <cstdint>

namespace korva {

/// Physical memory and swap, in kilobytes.
struct FreeMemory
{
    std::uint64_t total = 0;
    /// Free physical memory, counting the caches that the kernel can give back.
    std::uint64_t available = 0;
    std::uint64_t swapTotal = 0;
    std::uint64_t swapFree = 0;
};

/// Reads the current numbers (/proc/meminfo); false when the kernel tells no
/// total of physical memory.
bool ReadFreeMemory(FreeMemory& memory);

} // namespace korva

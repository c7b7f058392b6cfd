// Both ends of the break window connection read records written by another
// process, which may be of another version, damaged or not ours at all. Decode
// must refuse what is not a record without reading past it, and what it accepts
// must come out of Encode the same again.

#include <KORVAutlwin/progress/BreakWire.h>

#include "FuzzCheck.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    BreakWire::Message message;
    if (BreakWire::Decode(data, size, message) != BreakWire::eDecoded)
        return 0;
    Check(size == BreakWire::RecordSize(message.type));

    // A text field without its NUL is cut, so a second trip is the fixed point.
    BreakWire::Buffer first;
    const std::size_t firstSize = BreakWire::Encode(message, first);
    Check(firstSize == size);
    BreakWire::Message again;
    Check(BreakWire::Decode(first.data(), firstSize, again) == BreakWire::eDecoded);
    BreakWire::Buffer second;
    Check(BreakWire::Encode(again, second) == firstSize);
    Check(std::memcmp(first.data(), second.data(), firstSize) == 0);
    return 0;
}

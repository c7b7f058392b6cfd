// The remembered column widths come from the profile, which a user or another
// program may have damaged: nothing may crash, and what is accepted must be
// what the list would write again.

#include <KORVAutlwin/controls/ListRules.h>

#include "FuzzCheck.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string value(reinterpret_cast<const char*>(data), size);
    for (int columns : {0, 1, 3, 7}) {
        std::vector<int> widths = {-5};
        if (!ListRules::ParseColumnWidths(value.c_str(), columns, widths)) {
            Check(widths == std::vector<int>{-5}); // a refused value changes nothing
            continue;
        }
        Check(static_cast<int>(widths.size()) <= columns);
        if (static_cast<int>(widths.size()) == columns) {
            std::vector<int> again;
            Check(ListRules::ParseColumnWidths(ListRules::FormatColumnWidths(widths), columns, again));
            Check(again == widths);
        }
    }
    return 0;
}

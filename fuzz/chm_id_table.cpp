// Map-id tables come from help files of any origin. The reader must reject a
// table that its stream can't hold with STG_E_READFAULT, never read beyond the
// stream, and keep length / 8 pairs of a table it accepts, in the file's order.

#include <KORVAutlwin/help/ChmMapIds.h>
#include <KORVAutlwin/help/ChmStorage.h>

#include "FuzzCheck.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    ChmStream stream(bytes);
    std::vector<ChmMapIdPair> table = {{1, 2}};
    const HRESULT result = ChmMapIds::ReadIdTable(stream, table);
    if (size < 4) {
        Check(result == STG_E_READFAULT);
        return 0;
    }
    const std::uint32_t length = std::uint32_t(data[0]) | std::uint32_t(data[1]) << 8 |
                                 std::uint32_t(data[2]) << 16 | std::uint32_t(data[3]) << 24;
    if (length > size - 4) {
        Check(result == STG_E_READFAULT);
        return 0;
    }
    Check(result == S_OK);
    Check(table.size() == length / 8);
    for (std::size_t i = 0; i < table.size(); ++i) {
        const std::uint8_t* pair = data + 4 + i * 8;
        Check(table[i].id == (std::uint32_t(pair[0]) | std::uint32_t(pair[1]) << 8 | std::uint32_t(pair[2]) << 16 |
                              std::uint32_t(pair[3]) << 24));
        Check(table[i].offset == (std::uint32_t(pair[4]) | std::uint32_t(pair[5]) << 8 |
                                  std::uint32_t(pair[6]) << 16 | std::uint32_t(pair[7]) << 24));
    }
    return 0;
}

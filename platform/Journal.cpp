#include <KORVAutlwin/platform/Journal.h>

#include <vector>

#include <sys/uio.h>
#include <systemd/sd-journal.h>

namespace korva {

int Journal::Send(const std::string_view* fields, std::size_t count)
{
    // Entries are a dozen fields or so: the common case needs no allocation.
    constexpr std::size_t kOnStack = 32;
    iovec onStack[kOnStack];
    std::vector<iovec> onHeap;
    iovec* vectors = onStack;
    if (count > kOnStack) {
        onHeap.resize(count);
        vectors = onHeap.data();
    }
    for (std::size_t i = 0; i < count; ++i)
        vectors[i] = iovec{const_cast<char*>(fields[i].data()), fields[i].size()};
    return sd_journal_sendv(vectors, static_cast<int>(count));
}

} // namespace korva

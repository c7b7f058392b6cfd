#include <KORVAutlwin/progress/BreakWindowChannel.h>

#include <KORVAutlwin/progress/Progress.h>

namespace {

BreakWindowChannel* gChannel = nullptr;

} // namespace

BreakWindowChannel::~BreakWindowChannel() = default;

BreakWindowChannel* BreakWindowChannel::GetChannel()
{
    return gChannel;
}

BreakWindowChannel* BreakWindowChannel::SetChannel(BreakWindowChannel* channel)
{
    BreakWindowChannel* previous = gChannel;
    gChannel = channel;
    return previous;
}

QWidget* BreakWindowChannel::GetWidget() const
{
    return nullptr;
}

void BreakWindowChannel::SetBreakPressed(Progress& client)
{
    client.breakPressed.store(true, std::memory_order_relaxed);
}

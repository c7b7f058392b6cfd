#include <KORVAutl/UserComm.h>

#include <atomic>
#include <utility>

namespace {
std::atomic<UserComm*> gUserComm{nullptr};
}

UserComm* UserComm::GetUserComm()
{
    return gUserComm.load(std::memory_order_acquire);
}

UserComm* UserComm::SetUserComm(UserComm* channel)
{
    return gUserComm.exchange(channel, std::memory_order_acq_rel);
}

UserComm::~UserComm() = default;

TellingUserComm::TellingUserComm(Tell tell) : mTell(std::move(tell)), mPrevious(UserComm::SetUserComm(this)) {}

TellingUserComm::~TellingUserComm()
{
    UserComm::SetUserComm(mPrevious);
}

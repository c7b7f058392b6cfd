#include <KORVAutlwin/operations/TsSid.h>

#include <KORVAutlwin/platform/UserIdentity.h>

#include <cstring>
#include <mutex>

namespace {

// The binary layout of an identifier: revision, sub-authority count, a 48-bit
// authority (big-endian), then the sub-authorities as 32-bit words.
constexpr unsigned char kRevision = 1;
constexpr unsigned char kMaxSubAuthorities = 15;
constexpr unsigned long kHeaderSize = 8;
constexpr unsigned char kUnixUserAuthority = 22;
constexpr unsigned int kUnixUserDomain = 1;

unsigned int SubAuthority(const unsigned char* sid, int index)
{
    unsigned int value;
    std::memcpy(&value, sid + kHeaderSize + 4 * index, 4);
    return value;
}

// What looking up an account gives: the identifier of the Unix user `name`.
bool LookupAccountName(const char* system, const std::string& name, unsigned char* sid, unsigned long& size)
{
    if (system && *system)
        return false;  // no other machine can be asked
    unsigned int uid = 0;
    if (name.empty() || !korva::UserIdOfName(name, uid))
        return false;
    const unsigned int subAuthorities[] = {kUnixUserDomain, uid};
    size = kHeaderSize + sizeof subAuthorities;
    std::memset(sid, 0, kHeaderSize);
    sid[0] = kRevision;
    sid[1] = 2;
    sid[7] = kUnixUserAuthority;
    std::memcpy(sid + kHeaderSize, subAuthorities, sizeof subAuthorities);
    return true;
}

} // namespace

TsSid::TsSid(const char* system)
{
    // Callers make one per event; the user database is asked once per user of the process.
    static std::mutex cacheLock;
    static unsigned int cachedUid = 0;
    static std::shared_ptr<unsigned char[]> cached;
    const bool local = !system || !*system;
    const unsigned int uid = korva::UserId();
    if (local) {
        std::lock_guard<std::mutex> lock(cacheLock);
        if (cached && cachedUid == uid) {
            mSid = cached;
            return;
        }
    }
    const std::string name = korva::UserName();
    unsigned char found[4096];
    unsigned long size = 0;
    if (!LookupAccountName(system, name, found, size) || !IsValidSid(found))
        return;
    std::shared_ptr<unsigned char[]> copy(new unsigned char[size]);
    std::memcpy(copy.get(), found, size);
    if (GetLengthSid(copy.get()) != size || std::memcmp(copy.get(), found, size) != 0)
        return;
    mSid = std::move(copy);
    if (local) {
        std::lock_guard<std::mutex> lock(cacheLock);
        cachedUid = uid;
        cached = mSid;
    }
}

TsSid::~TsSid() = default;

bool TsSid::IsValidSid(const void* sid)
{
    const auto* bytes = static_cast<const unsigned char*>(sid);
    return bytes && bytes[0] == kRevision && bytes[1] <= kMaxSubAuthorities;
}

unsigned long TsSid::GetLengthSid(const void* sid)
{
    return kHeaderSize + 4ul * static_cast<const unsigned char*>(sid)[1];
}

std::string TsSid::ToString() const
{
    const unsigned char* sid = mSid.get();
    if (!sid)
        return {};
    unsigned long long authority = 0;
    for (int i = 2; i < 8; ++i)
        authority = authority << 8 | sid[i];
    std::string text = "S-" + std::to_string(sid[0]) + "-" + std::to_string(authority);
    for (int i = 0; i < sid[1]; ++i)
        text += "-" + std::to_string(SubAuthority(sid, i));
    return text;
}

#include <KORVAutl/AuditTrailSettings.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutlwin/platform/Registry.h>

#include <cstdint>
#include <optional>
#include <string>

namespace {

std::string AuditTrailKey(const char* registryBase)
{
    return std::string(registryBase ? registryBase : "") + "\\" + AuditTrailSettings::msAuditTrail + "\\";
}

/// A REG_DWORD value of an open key; nothing when it is missing or of another type.
std::optional<int> ReadDword(HKEY key, const char* name)
{
    DWORD type = 0;
    std::uint32_t number = 0;
    DWORD size = sizeof(number);
    if (RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size) != ERROR_SUCCESS ||
        type != REG_DWORD || size != sizeof(number))
        return std::nullopt;
    return static_cast<int>(number);
}

/// The key opened for reading, closed again at scope end.
class OpenKey
{
public:
    OpenKey(HKEY root, const std::string& path, REGSAM access, bool create)
    {
        if (create)
            mOk = RegCreateKeyExA(root, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr, &mKey,
                                  nullptr) == ERROR_SUCCESS;
        else
            mOk = RegOpenKeyExA(root, path.c_str(), 0, access, &mKey) == ERROR_SUCCESS;
    }
    ~OpenKey()
    {
        if (mOk)
            RegCloseKey(mKey);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    explicit operator bool() const { return mOk; }
    HKEY Get() const { return mKey; }

private:
    HKEY mKey = nullptr;
    bool mOk = false;
};

} // namespace

AuditTrailSettings::AuditTrailSettings(ConfigurationSection* section) : mSection(section) {}

AuditTrailSettings::~AuditTrailSettings() = default;

void AuditTrailSettings::Load()
{
    if (!mSection)
        return;
    mSection->ReadInt(msLogEvents, mLogEvents);
    mSection->ReadBool(msPromptForExtendedUserInfo, mPromptForExtendedUserInfo);
    mSection->ReadBool(msLockedUI, mLockedUI);
    mSection->ReadKey(msExtendedUserInfo, mExtendedUserInfo);
}

bool AuditTrailSettings::Save()
{
    if (!mSection)
        return false;
    bool ok = mSection->WriteInt(msLogEvents, mLogEvents);
    ok = mSection->WriteBool(msPromptForExtendedUserInfo, mPromptForExtendedUserInfo) && ok;
    ok = mSection->WriteBool(msLockedUI, mLockedUI) && ok;
    ok = mSection->WriteKey(msExtendedUserInfo, mExtendedUserInfo) && ok;
    return mSection->Flush() && ok;
}

bool AuditTrailSettings::ApplyAdminSettings(ConfigurationSection* user, const char* registryBase)
{
    OpenKey admin(HKEY_LOCAL_MACHINE, AuditTrailKey(registryBase), KEY_READ, false);
    if (!admin || !user)
        return false;
    if (const auto value = ReadDword(admin.Get(), msLogEvents)) {
        int current = 0;
        // A user can't turn the trail off against an administrator's 2.
        if (!user->ReadInt(msLogEvents, current) || current == 0 || *value >= 2)
            user->WriteInt(msLogEvents, *value);
    }
    for (const char* name : {msPromptForExtendedUserInfo, msLockedUI}) {
        const auto value = ReadDword(admin.Get(), name);
        bool current = false;
        if (value && (!user->ReadBool(name, current) || !current))
            user->WriteBool(name, *value != 0);
    }
    return true;
}

bool AuditTrailSettings::GetPromptForExtendedUserInfo(const char* registryBase)
{
    bool result = false;
    for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        if (result)
            break;
        OpenKey key(root, AuditTrailKey(registryBase), KEY_READ, false);
        if (key)
            result = ReadDword(key.Get(), msPromptForExtendedUserInfo).value_or(0) != 0;
    }
    return result;
}

bool AuditTrailSettings::SetPromptForExtendedUserInfo(const char* registryBase, bool value)
{
    const std::uint32_t number = value ? 1 : 0;
    // A user without rights on the machine's hive gets a private setting.
    for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        OpenKey key(root, AuditTrailKey(registryBase), KEY_WRITE, true);
        if (key)
            return RegSetValueExA(key.Get(), msPromptForExtendedUserInfo, 0, REG_DWORD,
                                  reinterpret_cast<const BYTE*>(&number), sizeof(number)) == ERROR_SUCCESS;
    }
    return false;
}

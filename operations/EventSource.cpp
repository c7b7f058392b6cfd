#include <KORVAutlwin/operations/EventSource.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutlwin/platform/Registry.h>

#include <cstring>
#include <vector>

EventSource::EventSource(const char* source, const char* log)
    : mSource(source), mLog(log)
{
    const std::string path = std::string(EventLog::REGISTRY_ROOT) + "\\" + mLog + "\\" + mSource;
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        EventLog::REGISTRY_ACCESS, nullptr, &key, nullptr) != ERROR_SUCCESS)
        throw Exception(LanguageString::Get(13274));
    mKey.reset(key, RegCloseKey);
    // A key left behind by someone else starts afresh as well.
    for (const char* name : {"EventMessageFile", "CategoryCount", "CategoryMessageFile", "ParameterMessageFile"})
        RegDeleteValueA(key, name);
    SetNumber("TypesSupported", 7);
}

bool EventSource::SetMessageFile(const char* path)
{
    return SetText("EventMessageFile", path);
}

bool EventSource::SetCategoryFile(const char* path)
{
    return SetText("CategoryMessageFile", path);
}

bool EventSource::SetParameterFile(const char* path)
{
    return SetText("ParameterMessageFile", path);
}

std::string EventSource::GetMessageFile() const
{
    return GetText("EventMessageFile");
}

std::string EventSource::GetCategoryFile() const
{
    return GetText("CategoryMessageFile");
}

std::string EventSource::GetParameterFile() const
{
    return GetText("ParameterMessageFile");
}

bool EventSource::SetNumCategories(unsigned long count)
{
    if (count == 0) {
        const LONG result = RegDeleteValueA(mKey.get(), "CategoryCount");
        return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND;
    }
    return SetNumber("CategoryCount", count);
}

unsigned long EventSource::GetNumCategories() const
{
    return GetNumber("CategoryCount");
}

bool EventSource::SetSupportedEventTypes(EventLog::EventType types)
{
    return SetNumber("TypesSupported", types);
}

EventLog::EventType EventSource::GetSupportedEventTypes() const
{
    return static_cast<EventLog::EventType>(GetNumber("TypesSupported"));
}

bool EventSource::SetText(const char* name, const char* text)
{
    if (!text || !*text) {
        const LONG result = RegDeleteValueA(mKey.get(), name);
        return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND;
    }
    return RegSetValueExA(mKey.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                          static_cast<DWORD>(std::strlen(text) + 1)) == ERROR_SUCCESS;
}

std::string EventSource::GetText(const char* name) const
{
    DWORD type = REG_NONE;
    DWORD size = 0;
    if (RegQueryValueExA(mKey.get(), name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS ||
        (type != REG_SZ && type != REG_EXPAND_SZ))
        return {};
    std::vector<BYTE> data(size + 1, 0);
    if (RegQueryValueExA(mKey.get(), name, nullptr, &type, data.data(), &size) != ERROR_SUCCESS)
        return {};
    return reinterpret_cast<const char*>(data.data());  // up to the terminator
}

bool EventSource::SetNumber(const char* name, unsigned long value)
{
    const DWORD word = static_cast<DWORD>(value);
    return RegSetValueExA(mKey.get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&word), sizeof word) ==
           ERROR_SUCCESS;
}

unsigned long EventSource::GetNumber(const char* name) const
{
    DWORD type = REG_NONE;
    DWORD word = 0;
    DWORD size = sizeof word;
    if (RegQueryValueExA(mKey.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(&word), &size) != ERROR_SUCCESS ||
        type != REG_DWORD || size != sizeof word)
        return 0;
    return word;
}

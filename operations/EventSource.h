#pragma once
/// \class EventSource
/// One event source's registry key, through which its message files, category
/// count and supported types are set. Only EventLog::CreateEventSource makes one;
/// copies share the open key, which closes with the last of them.
///
/// Values of the key (`HKEY_LOCAL_MACHINE\System\CurrentControlSet\Services\EventLog\<log>\<source>`):
///   "EventMessageFile", "CategoryMessageFile", "ParameterMessageFile"   REG_SZ paths
///   "CategoryCount", "TypesSupported"                                   REG_DWORD

#include <KORVAutlwin/operations/EventLog.h>

#include <memory>
#include <string>

struct HKEY__;

class EventSource
{
public:
    const char* GetSource() const { return mSource.c_str(); }
    const char* GetLog() const { return mLog.c_str(); }

    /// A null or empty path deletes the value, any other writes it. True when
    /// the registry took the change (deleting a missing value counts).
    bool SetMessageFile(const char* path);
    bool SetCategoryFile(const char* path);
    bool SetParameterFile(const char* path);
    /// The path, or empty when the value is missing.
    std::string GetMessageFile() const;
    std::string GetCategoryFile() const;
    std::string GetParameterFile() const;

    /// Zero deletes "CategoryCount", any other number writes it.
    bool SetNumCategories(unsigned long count);
    /// 0 when missing.
    unsigned long GetNumCategories() const;
    /// Always writes "TypesSupported", zero included.
    bool SetSupportedEventTypes(EventLog::EventType types);
    /// 0 when missing.
    EventLog::EventType GetSupportedEventTypes() const;

private:
    friend class EventLog;

    /// Opens the key of `source` in `log`, creating it, and leaves "TypesSupported" = 7
    /// as its one value. Throws Exception when the key cannot be created.
    EventSource(const char* source, const char* log);

    bool SetText(const char* name, const char* text);
    std::string GetText(const char* name) const;
    bool SetNumber(const char* name, unsigned long value);
    unsigned long GetNumber(const char* name) const;

    std::string mSource;
    std::string mLog;
    std::shared_ptr<HKEY__> mKey;  // the open key, closed with the last copy
};

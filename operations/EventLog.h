#pragma once
/// \class EventLog
/// The event log: entries written under a source name with the writer's security
/// identifier attached, and the static operations that find, create and delete
/// event sources.
///
/// Entries go to journald, one record per entry, with these fields:
///   MESSAGE            the insertion strings, separated by a space; "Event <id>" without any
///   PRIORITY           3 for an error, 4 for a warning, 6 for every other type
///   SYSLOG_IDENTIFIER  the source name
///   EVENT_ID, EVENT_TYPE, EVENT_CATEGORY   the numbers, in decimal
///   EVENT_USER         the writer's identifier, "S-1-22-1-<uid>"; absent when it could not be found
///   EVENT_STRING_1 ... the insertion strings one by one, in order
///   EVENT_DATA         the raw data in hex, two lower-case digits a byte; absent without data
/// Read them back with, for example, `journalctl -o json SYSLOG_IDENTIFIER=<source>`.
///
/// Event sources live in the registry store under HKEY_LOCAL_MACHINE:
///   `System\CurrentControlSet\Services\EventLog\<log>\<source>`
/// A source name is unique across all logs, without regard to case. Writing
/// does not need a registered source: the registry only says which log a
/// source belongs to and where its message files are.
///
/// Writing never reports failure: without journald, or with an object whose
/// source was refused, an entry is dropped silently.

#include <KORVAutlwin/operations/TsSid.h>

#include <memory>
#include <string>
#include <vector>

class EventSource;  // <KORVAutlwin/operations/EventSource.h>; include it to call CreateEventSource
class NTServiceApp;

class EventLog
{
public:
    /// "Application"
    static const char* const APPLICATION_LOG;
    /// "System"
    static const char* const SYSTEM_LOG;

    /// The standard event type bits; a mask of them says which types a source supports.
    enum EventType : unsigned int
    {
        eError = 1,
        eWarning = 2,
        eInformation = 4
    };

    /// Makes the identifier of the current user on the local system and
    /// registers `source` for writing. Never fails: a null or empty source
    /// leaves the object without a handle, and its entries go nowhere.
    explicit EventLog(const char* source);
    /// A copy shares the identifier and the handle.
    EventLog(const EventLog& other) = default;
    EventLog& operator=(const EventLog& other) = default;
    ~EventLog();

    /// Whether some log holds `source` (without regard to case).
    static bool SourceExists(const char* source);
    /// The log that holds `source`, spelled as in the registry; empty when none
    /// does. Creates the registry root when it is missing; throws Exception when
    /// it can be neither opened nor created.
    static std::string LogNameFromSourceName(const char* source);
    /// Registers `source` in `log` with "TypesSupported" = 7 and no other value.
    /// Throws Exception "The event source already exists" when any log holds it
    /// (in any case), and Exception when the key cannot be created.
    static EventSource CreateEventSource(const char* source, const char* log);
    /// Removes `source` with everything below its key. False when no log holds
    /// it or the registry refuses; never throws.
    static bool DeleteEventSource(const char* source);

    /// Writes one entry with no insertion strings. Type defaults to
    /// information, category to 0, data to none.
    void WriteEntry(unsigned long eventId);
    void WriteEntry(unsigned long eventId, EventType type);
    void WriteEntry(unsigned long eventId, EventType type, unsigned short category);
    /// `dataSize` bytes at `data` go along in hex; a null `data` means none.
    void WriteEntry(unsigned long eventId, EventType type, unsigned short category, unsigned long dataSize,
                    const void* data);

    /// Writes one entry with one insertion string (null counts as empty).
    void WriteEntry(const char* string, unsigned long eventId);
    void WriteEntry(const char* string, unsigned long eventId, EventType type);
    void WriteEntry(const char* string, unsigned long eventId, EventType type, unsigned short category);
    void WriteEntry(const char* string, unsigned long eventId, EventType type, unsigned short category,
                    unsigned long dataSize, const void* data);

    /// Writes one entry with the insertion strings `strings`, in order.
    void WriteEntry(const std::vector<std::string>& strings, unsigned long eventId);
    void WriteEntry(const std::vector<std::string>& strings, unsigned long eventId, EventType type);
    void WriteEntry(const std::vector<std::string>& strings, unsigned long eventId, EventType type,
                    unsigned short category);
    void WriteEntry(const std::vector<std::string>& strings, unsigned long eventId, EventType type,
                    unsigned short category, unsigned long dataSize, const void* data);

    /// The journald priority of an entry of `type`.
    static int PriorityFromType(EventType type);

private:
    friend class NTServiceApp;
    friend class EventSource;

    /// The registry key that holds the logs, below HKEY_LOCAL_MACHINE.
    static const char* const REGISTRY_ROOT;
    /// Read and write: query, set, create and enumerate children, notify.
    static const unsigned long REGISTRY_ACCESS = 0x2001F;

    /// What the twelve forms come to, for callers that hold raw strings: a null
    /// `strings` or a null string among them counts as empty.
    void InternalWriteEntry(unsigned long stringCount, const char* const* strings, unsigned long eventId,
                            EventType type, unsigned short category, unsigned long dataSize,
                            const void* data);

    struct Registration;

    TsSid mSid;
    std::shared_ptr<const Registration> mHandle;  // null when registering failed
};

#include <KORVAutlwin/operations/EventLog.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutlwin/operations/EventSource.h>
#include <KORVAutlwin/platform/Journal.h>
#include <KORVAutlwin/platform/Registry.h>

#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

#include <strings.h>

const char* const EventLog::APPLICATION_LOG = "Application";
const char* const EventLog::SYSTEM_LOG = "System";
const char* const EventLog::REGISTRY_ROOT = "System\\CurrentControlSet\\Services\\EventLog";

// What registering a source gives: the fields that every entry of the object carries.
struct EventLog::Registration
{
    std::string identifier;  // "SYSLOG_IDENTIFIER=<source>"
    std::string user;        // "EVENT_USER=<identifier>", empty without one
};

namespace {

// An open key, closed at scope end.
struct OpenKey
{
    HKEY key = nullptr;
    OpenKey() = default;
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    ~OpenKey()
    {
        if (key)
            RegCloseKey(key);
    }
};

std::vector<std::string> SubKeyNames(HKEY key)
{
    std::vector<std::string> names;
    DWORD count = 0;
    DWORD longest = 0;
    if (RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &count, &longest, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr) != ERROR_SUCCESS)
        return names;
    std::vector<char> name(longest + 1);
    for (DWORD index = 0; index < count; ++index) {
        DWORD length = longest + 1;
        if (RegEnumKeyExA(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name.data(), length);
    }
    return names;
}

// Deletes the key `name` below `parent` with every key below it, deepest first.
bool DeleteTree(HKEY parent, const std::string& name, REGSAM access)
{
    {
        OpenKey key;
        if (RegOpenKeyExA(parent, name.c_str(), 0, access, &key.key) != ERROR_SUCCESS)
            return false;
        for (const std::string& child : SubKeyNames(key.key))
            if (!DeleteTree(key.key, child, access))
                return false;
    }
    return RegDeleteKeyA(parent, name.c_str()) == ERROR_SUCCESS;
}

void AppendNumber(std::string& text, unsigned long value)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    text.append(digits, end);
}

void AppendHex(std::string& text, const unsigned char* data, unsigned long size)
{
    static const char kDigits[] = "0123456789abcdef";
    const std::size_t at = text.size();
    text.resize(at + 2 * std::size_t{size});
    char* out = text.data() + at;
    for (unsigned long i = 0; i < size; ++i) {
        *out++ = kDigits[data[i] >> 4];
        *out++ = kDigits[data[i] & 15];
    }
}

} // namespace

EventLog::EventLog(const char* source)
    : mSid(nullptr)
{
    if (!source || !*source)
        return;
    auto registration = std::make_shared<Registration>();
    registration->identifier = std::string("SYSLOG_IDENTIFIER=") + source;
    const std::string user = mSid.ToString();
    if (!user.empty())
        registration->user = "EVENT_USER=" + user;
    mHandle = std::move(registration);
}

EventLog::~EventLog() = default;

bool EventLog::SourceExists(const char* source)
{
    return !LogNameFromSourceName(source).empty();
}

std::string EventLog::LogNameFromSourceName(const char* source)
{
    OpenKey root;
    if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, REGISTRY_ROOT, 0, nullptr, REG_OPTION_NON_VOLATILE, REGISTRY_ACCESS,
                        nullptr, &root.key, nullptr) != ERROR_SUCCESS)
        throw Exception(LanguageString::Get(13274));
    if (!source || !*source)
        return {};
    for (const std::string& log : SubKeyNames(root.key)) {
        OpenKey logKey;
        if (RegOpenKeyExA(root.key, log.c_str(), 0, REGISTRY_ACCESS, &logKey.key) != ERROR_SUCCESS)
            continue;
        for (const std::string& name : SubKeyNames(logKey.key))
            if (strcasecmp(name.c_str(), source) == 0)
                return log;
    }
    return {};
}

EventSource EventLog::CreateEventSource(const char* source, const char* log)
{
    // A name with a separator would make keys on levels where logs or values belong.
    for (const char* name : {source, log})
        if (!name || !*name || std::strchr(name, '\\'))
            throw Exception("The event source name or log name is not valid");
    if (!LogNameFromSourceName(source).empty())
        throw Exception("The event source already exists");
    return EventSource(source, log);
}

bool EventLog::DeleteEventSource(const char* source)
{
    try {
        const std::string log = LogNameFromSourceName(source);
        if (log.empty())
            return false;
        OpenKey logKey;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, (std::string(REGISTRY_ROOT) + "\\" + log).c_str(), 0, REGISTRY_ACCESS,
                          &logKey.key) != ERROR_SUCCESS)
            return false;
        // The registry's own spelling, which may differ in case from `source`.
        for (const std::string& name : SubKeyNames(logKey.key))
            if (strcasecmp(name.c_str(), source) == 0)
                return DeleteTree(logKey.key, name, REGISTRY_ACCESS);
        return false;
    } catch (const Exception&) {
        return false;
    }
}

int EventLog::PriorityFromType(EventType type)
{
    if (type & eError)
        return 3;
    if (type & eWarning)
        return 4;
    return 6;
}

void EventLog::WriteEntry(unsigned long eventId)
{
    InternalWriteEntry(0, nullptr, eventId, eInformation, 0, 0, nullptr);
}

void EventLog::WriteEntry(unsigned long eventId, EventType type)
{
    InternalWriteEntry(0, nullptr, eventId, type, 0, 0, nullptr);
}

void EventLog::WriteEntry(unsigned long eventId, EventType type, unsigned short category)
{
    InternalWriteEntry(0, nullptr, eventId, type, category, 0, nullptr);
}

void EventLog::WriteEntry(unsigned long eventId, EventType type, unsigned short category, unsigned long dataSize,
                          const void* data)
{
    InternalWriteEntry(0, nullptr, eventId, type, category, dataSize, data);
}

void EventLog::WriteEntry(const char* string, unsigned long eventId)
{
    InternalWriteEntry(1, &string, eventId, eInformation, 0, 0, nullptr);
}

void EventLog::WriteEntry(const char* string, unsigned long eventId, EventType type)
{
    InternalWriteEntry(1, &string, eventId, type, 0, 0, nullptr);
}

void EventLog::WriteEntry(const char* string, unsigned long eventId, EventType type, unsigned short category)
{
    InternalWriteEntry(1, &string, eventId, type, category, 0, nullptr);
}

void EventLog::WriteEntry(const char* string, unsigned long eventId, EventType type, unsigned short category,
                          unsigned long dataSize, const void* data)
{
    InternalWriteEntry(1, &string, eventId, type, category, dataSize, data);
}

namespace {

// The string pointers of a vector; null for an empty one.
struct StringPointers
{
    explicit StringPointers(const std::vector<std::string>& strings)
    {
        pointers.reserve(strings.size());
        for (const std::string& text : strings)
            pointers.push_back(text.c_str());
    }
    const char* const* Get() const { return pointers.empty() ? nullptr : pointers.data(); }
    std::vector<const char*> pointers;
};

} // namespace

void EventLog::WriteEntry(const std::vector<std::string>& strings, unsigned long eventId)
{
    WriteEntry(strings, eventId, eInformation, 0, 0, nullptr);
}

void EventLog::WriteEntry(const std::vector<std::string>& strings, unsigned long eventId, EventType type)
{
    WriteEntry(strings, eventId, type, 0, 0, nullptr);
}

void EventLog::WriteEntry(const std::vector<std::string>& strings, unsigned long eventId, EventType type,
                          unsigned short category)
{
    WriteEntry(strings, eventId, type, category, 0, nullptr);
}

void EventLog::WriteEntry(const std::vector<std::string>& strings, unsigned long eventId, EventType type,
                          unsigned short category, unsigned long dataSize, const void* data)
{
    const StringPointers pointers(strings);
    InternalWriteEntry(static_cast<unsigned long>(strings.size()), pointers.Get(), eventId, type, category, dataSize,
                       data);
}

void EventLog::InternalWriteEntry(unsigned long stringCount, const char* const* strings, unsigned long eventId,
                                  EventType type, unsigned short category, unsigned long dataSize, const void* data)
{
    if (!mHandle)
        return;
    if (!strings)
        stringCount = 0;
    // One buffer for all the composed fields, kept per thread: an entry costs no allocation once it has grown.
    thread_local std::string text;
    thread_local std::vector<std::pair<std::size_t, std::size_t>> spans;
    thread_local std::vector<std::string_view> fields;
    text.clear();
    spans.clear();
    std::size_t start = 0;
    const auto open = [&](std::string_view name) {
        start = text.size();
        text += name;
    };
    const auto close = [&] { spans.emplace_back(start, text.size() - start); };

    open("MESSAGE=");
    if (stringCount == 0) {
        text += "Event ";
        AppendNumber(text, eventId);
    }
    for (unsigned long i = 0; i < stringCount; ++i) {
        if (i > 0)
            text += ' ';
        text += strings[i] ? strings[i] : "";
    }
    close();
    open("PRIORITY=");
    AppendNumber(text, static_cast<unsigned long>(PriorityFromType(type)));
    close();
    open("EVENT_ID=");
    AppendNumber(text, eventId);
    close();
    open("EVENT_TYPE=");
    AppendNumber(text, type);
    close();
    open("EVENT_CATEGORY=");
    AppendNumber(text, category);
    close();
    for (unsigned long i = 0; i < stringCount; ++i) {
        open("EVENT_STRING_");
        AppendNumber(text, i + 1);
        text += '=';
        text += strings[i] ? strings[i] : "";
        close();
    }
    if (data && dataSize > 0) {
        open("EVENT_DATA=");
        AppendHex(text, static_cast<const unsigned char*>(data), dataSize);
        close();
    }

    fields.clear();
    fields.emplace_back(mHandle->identifier);
    if (!mHandle->user.empty())
        fields.emplace_back(mHandle->user);
    for (const auto& [at, length] : spans)
        fields.emplace_back(text.data() + at, length);
    // Without journald the entry is dropped: writing never fails to the caller.
    korva::Journal::Send(fields.data(), fields.size());
    // One huge entry shouldn't pin its size to the thread for good.
    if (text.capacity() > 65536)
        std::string().swap(text);
}

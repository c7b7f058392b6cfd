// Event sources in the registry store: the uniqueness rule across logs and
// cases, creation, deletion and the values of a source's key.
#include "utl/TempDir.h"

#include <KORVAutl/Exception.h>
#include <KORVAutlwin/operations/EventSource.h>
#include <KORVAutlwin/operations/TsSid.h>
#include <KORVAutlwin/platform/Registry.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

const std::string kRoot = "System\\CurrentControlSet\\Services\\EventLog";

class RegistryFolder : public TempDir
{
public:
    RegistryFolder()
    {
        setenv("KORVA_REGISTRY_DIR", Path().c_str(), 1);
        korva::RegistryStore::Reset();
    }
    ~RegistryFolder() { korva::RegistryStore::Reset(); }
};

std::vector<std::string> Children(const std::string& path)
{
    std::vector<std::string> names;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return names;
    char name[256];
    for (DWORD i = 0;; ++i) {
        DWORD length = sizeof name;
        if (RegEnumKeyExA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name, length);
    }
    RegCloseKey(key);
    return names;
}

// Every "<log>\<source>" below the root, in enumeration order.
std::vector<std::string> Sources()
{
    std::vector<std::string> all;
    for (const std::string& log : Children(kRoot))
        for (const std::string& source : Children(kRoot + "\\" + log))
            all.push_back(log + "\\" + source);
    return all;
}

// "name=value" for every value of a key, numbers in decimal.
std::vector<std::string> Values(const std::string& path)
{
    std::vector<std::string> values;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return values;
    for (DWORD i = 0;; ++i) {
        char name[256];
        DWORD nameLength = sizeof name;
        BYTE data[512] = {};
        DWORD size = sizeof data;
        DWORD type = 0;
        if (RegEnumValueA(key, i, name, &nameLength, nullptr, &type, data, &size) != ERROR_SUCCESS)
            break;
        DWORD word = 0;
        std::memcpy(&word, data, sizeof word);
        values.push_back(std::string(name) + "=" +
                         (type == REG_DWORD ? std::to_string(word) : reinterpret_cast<const char*>(data)));
    }
    RegCloseKey(key);
    return values;
}

struct SourceCase
{
    const char* name;
    std::vector<std::string> before;  // "<log>\<source>" keys made first
    char operation;                   // 'c' CreateEventSource, 'd' DeleteEventSource
    const char* source;
    const char* log;
    std::string result;               // "true", "false", or the exception's text
    std::vector<std::string> after;
    bool exists;                      // SourceExists(source) afterwards
};

void PrintTo(const SourceCase& row, std::ostream* out)
{
    *out << row.name;
}

const SourceCase kSourceCases[] = {
    {"CreateBesideOthers", {"System\\Disk"}, 'c', "Sample", "Application", "true",
     {"Application\\Sample", "System\\Disk"}, true},
    {"TakenInAnotherLogOtherCase", {"System\\Sample"}, 'c', "sAMPLE", "Application",
     "The event source already exists", {"System\\Sample"}, true},
    {"TakenInTheSameLog", {"Application\\Sample"}, 'c', "Sample", "Application", "The event source already exists",
     {"Application\\Sample"}, true},
    {"EmptyName", {}, 'c', "", "Application", "The event source name or log name is not valid", {}, false},
    {"NullLog", {}, 'c', "Sample", nullptr, "The event source name or log name is not valid", {}, false},
    {"SeparatorInName", {}, 'c', "Deep\\Sample", "Application", "The event source name or log name is not valid", {}, false},
    {"DeleteUnknown", {"Application\\Sample"}, 'd', "Other", nullptr, "false", {"Application\\Sample"}, false},
    {"DeleteNull", {"Application\\Sample"}, 'd', nullptr, nullptr, "false", {"Application\\Sample"}, false},
    {"DeleteOtherCaseWithChildren",
     {"Application\\Keep", "System\\Sample", "System\\Sample\\a", "System\\Sample\\a\\b", "System\\Sample\\c"}, 'd',
     "SAMPLE", nullptr, "true", {"Application\\Keep"}, false},
};

class EventSourceRules : public testing::TestWithParam<SourceCase>
{
};

TEST_P(EventSourceRules, UniqueAcrossLogsWithoutCase)
{
    const SourceCase& row = GetParam();
    RegistryFolder folder;
    for (const std::string& key : row.before) {
        HKEY made = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, (kRoot + "\\" + key).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                  nullptr, &made, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(made);
    }
    std::string result;
    if (row.operation == 'c') {
        result = Thrown([&] { EventLog::CreateEventSource(row.source, row.log); });
        if (result == "(nothing thrown)")
            result = "true";
    } else {
        result = EventLog::DeleteEventSource(row.source) ? "true" : "false";
    }
    EXPECT_EQ(result, row.result);
    EXPECT_EQ(Sources(), row.after);
    EXPECT_EQ(EventLog::SourceExists(row.source), row.exists);
}

INSTANTIATE_TEST_SUITE_P(Cases, EventSourceRules, testing::ValuesIn(kSourceCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(EventSource, KeyValuesAndTheirRemoval)
{
    RegistryFolder folder;
    // Looking up makes the root, so that a first install finds it.
    EXPECT_EQ(EventLog::LogNameFromSourceName("Sample"), "");
    EXPECT_EQ(Children("System\\CurrentControlSet\\Services"), std::vector<std::string>{"EventLog"});

    const std::string key = kRoot + "\\Application\\Sample";
    {
        EventSource source = EventLog::CreateEventSource("Sample", EventLog::APPLICATION_LOG);
        EXPECT_STREQ(source.GetSource(), "Sample");
        EXPECT_STREQ(source.GetLog(), "Application");
        EXPECT_EQ(Values(key), std::vector<std::string>{"TypesSupported=7"});
        EXPECT_EQ(EventLog::LogNameFromSourceName("SAMPLE"), "Application");

        EXPECT_TRUE(source.SetMessageFile("/usr/lib/sample/messages"));
        EXPECT_TRUE(source.SetCategoryFile("/usr/lib/sample/categories"));
        EXPECT_TRUE(source.SetParameterFile("/usr/lib/sample/parameters"));
        EXPECT_TRUE(source.SetNumCategories(12));
        const EventSource copy = source;  // shares the open key
        EXPECT_TRUE(source.SetSupportedEventTypes(EventLog::eError));
        EXPECT_EQ(copy.GetMessageFile(), "/usr/lib/sample/messages");
        EXPECT_EQ(copy.GetCategoryFile(), "/usr/lib/sample/categories");
        EXPECT_EQ(copy.GetParameterFile(), "/usr/lib/sample/parameters");
        EXPECT_EQ(copy.GetNumCategories(), 12u);
        EXPECT_EQ(copy.GetSupportedEventTypes(), EventLog::eError);

        EXPECT_TRUE(source.SetMessageFile(""));
        EXPECT_TRUE(source.SetCategoryFile(nullptr));
        EXPECT_TRUE(source.SetNumCategories(0));
        EXPECT_TRUE(source.SetNumCategories(0));  // nothing left to delete is no failure
        EXPECT_TRUE(source.SetSupportedEventTypes(static_cast<EventLog::EventType>(0)));
        EXPECT_EQ(source.GetMessageFile(), "");
        EXPECT_EQ(source.GetNumCategories(), 0u);
        EXPECT_EQ(Values(key), (std::vector<std::string>{"ParameterMessageFile=/usr/lib/sample/parameters",
                                                         "TypesSupported=0"}));
    }
    EXPECT_TRUE(EventLog::DeleteEventSource("sample"));
    EXPECT_FALSE(EventLog::SourceExists("Sample"));
    EXPECT_FALSE(EventLog::DeleteEventSource("Sample"));
}

TEST(TsSid, TheUidAsAUnixUserIdentifier)
{
    const TsSid own;
    ASSERT_NE(static_cast<void*>(own), nullptr) << "the user who runs the tests has no entry in the user database";
    EXPECT_EQ(own.ToString(), "S-1-22-1-" + std::to_string(getuid()));
    EXPECT_TRUE(TsSid::IsValidSid(own));
    EXPECT_EQ(TsSid::GetLengthSid(own), 16u);
    const TsSid copy = own;
    EXPECT_EQ(static_cast<void*>(copy), static_cast<void*>(own));

    // No other machine can be asked.
    const TsSid remote("elsewhere");
    EXPECT_EQ(static_cast<void*>(remote), nullptr);
    EXPECT_EQ(remote.ToString(), "");
}

} // namespace

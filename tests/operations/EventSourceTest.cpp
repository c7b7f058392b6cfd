// Event sources in the registry store: unique across logs and cases, their
// creation and deletion, and the values of a source's key.
#include "utl/TempDir.h"

#include <KORVAutl/Exception.h>
#include <KORVAutlwin/operations/EventSource.h>
#include <KORVAutlwin/platform/Registry.h>

#include <cstdlib>
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

// The names of the children of `path`, or with `values` the number of its values.
std::vector<std::string> Children(const std::string& path, DWORD* values = nullptr)
{
    std::vector<std::string> names;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return names;
    if (values)
        RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, values, nullptr, nullptr, nullptr,
                         nullptr);
    char name[256];
    for (DWORD i = 0, length = sizeof name;
         RegEnumKeyExA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, length = sizeof name)
        names.emplace_back(name, length);
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

const char* const kTaken = "The event source already exists";
const char* const kInvalid = "The event source name or log name is not valid";

const SourceCase kSourceCases[] = {
    {"CreateBesideOthers", {"System\\Disk"}, 'c', "Sample", "Application", "true",
     {"Application\\Sample", "System\\Disk"}, true},
    {"TakenInAnotherLogOtherCase", {"System\\Sample"}, 'c', "sAMPLE", "Application", kTaken, {"System\\Sample"}, true},
    {"TakenInTheSameLog", {"Application\\Sample"}, 'c', "Sample", "Application", kTaken, {"Application\\Sample"}, true},
    {"EmptyName", {}, 'c', "", "Application", kInvalid, {}, false},
    {"NullLog", {}, 'c', "Sample", nullptr, kInvalid, {}, false},
    {"SeparatorInName", {}, 'c', "Deep\\Sample", "Application", kInvalid, {}, false},
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
        result = result == "(nothing thrown)" ? "true" : result;
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
    DWORD values = 0;
    {
        EventSource source = EventLog::CreateEventSource("Sample", EventLog::APPLICATION_LOG);
        EXPECT_STREQ(source.GetLog(), "Application");
        Children(key, &values);
        EXPECT_EQ(values, 1u);
        EXPECT_EQ(source.GetSupportedEventTypes(), 7u);
        EXPECT_EQ(EventLog::LogNameFromSourceName("SAMPLE"), "Application");

        EXPECT_TRUE(source.SetMessageFile("/usr/lib/sample/messages"));
        EXPECT_TRUE(source.SetCategoryFile("/usr/lib/sample/categories"));
        EXPECT_TRUE(source.SetParameterFile("/usr/lib/sample/parameters"));
        EXPECT_TRUE(source.SetNumCategories(12));
        EXPECT_TRUE(source.SetSupportedEventTypes(EventLog::eError));
        const EventSource copy = source;  // shares the open key
        EXPECT_EQ(copy.GetMessageFile() + copy.GetCategoryFile() + copy.GetParameterFile(),
                  "/usr/lib/sample/messages/usr/lib/sample/categories/usr/lib/sample/parameters");
        EXPECT_EQ(copy.GetNumCategories(), 12u);
        EXPECT_EQ(copy.GetSupportedEventTypes(), EventLog::eError);

        EXPECT_TRUE(source.SetMessageFile(""));
        EXPECT_TRUE(source.SetCategoryFile(nullptr));
        EXPECT_TRUE(source.SetNumCategories(0));
        EXPECT_TRUE(source.SetNumCategories(0));  // nothing left to delete is no failure
        EXPECT_TRUE(source.SetSupportedEventTypes(static_cast<EventLog::EventType>(0)));
        EXPECT_EQ(source.GetMessageFile() + source.GetCategoryFile(), "");
        EXPECT_EQ(source.GetNumCategories(), 0u);
        Children(key, &values);
        EXPECT_EQ(values, 2u);  // "ParameterMessageFile" and "TypesSupported" = 0
    }
    EXPECT_TRUE(EventLog::DeleteEventSource("sample"));
    EXPECT_FALSE(EventLog::SourceExists("Sample"));
}

TEST(TsSid, TheUidAsAUnixUserIdentifier)
{
    const TsSid own;
    ASSERT_NE(static_cast<void*>(own), nullptr) << "the user who runs the tests has no entry in the user database";
    EXPECT_EQ(own.ToString(), "S-1-22-1-" + std::to_string(getuid()));
    EXPECT_EQ(TsSid::GetLengthSid(own), 16u);
    EXPECT_EQ(static_cast<void*>(TsSid(own)), static_cast<void*>(own));
    EXPECT_EQ(static_cast<void*>(TsSid("elsewhere")), nullptr);  // no other machine can be asked
}

} // namespace

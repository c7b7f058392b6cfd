// The event log against a real systemd-journald in a sandbox of the test's own:
// what each form of WriteEntry leaves in the journal, read back with journalctl.
#include "../../bench/eventlog/JournalSandbox.h"
#include "utl/TempDir.h"

#include <KORVAutlwin/operations/EventLog.h>

#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <thread>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using Entry = std::map<std::string, std::string>;

// The entries of the journal files below `folder` that `match` ("FIELD=value",
// blank-separated for several) selects, read with `journalctl -o json` once there are `count` or 10 s have passed.
std::vector<Entry> Entries(const std::string& folder, const std::string& match, std::size_t count)
{
    std::vector<Entry> entries;
    for (int attempt = 0; attempt < 200 && entries.size() < count; ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(attempt ? 50 : 0));
        std::string command = "/usr/bin/journalctl -q -o json " + match;
        for (const auto& file : std::filesystem::recursive_directory_iterator(folder))
            if (file.is_regular_file() && file.path().extension() == ".journal")
                command += " --file='" + file.path().string() + "'";
        FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
        std::string lines;
        for (char buffer[4096]; std::size_t length = std::fread(buffer, 1, sizeof buffer, pipe);)
            lines.append(buffer, length);
        pclose(pipe);
        entries.clear();
        for (std::size_t start = 0, end; (end = lines.find('\n', start)) != std::string::npos; start = end + 1) {
            const QJsonObject object =
                QJsonDocument::fromJson(QByteArray::fromStdString(lines.substr(start, end - start))).object();
            Entry& entry = entries.emplace_back();
            for (auto field = object.begin(); field != object.end(); ++field)
                entry[field.key().toStdString()] = field.value().toString().toStdString();
        }
    }
    return entries;
}

struct FormCase
{
    const char* name;
    std::function<void(EventLog&, unsigned long id)> write;
    // Fields expected besides the ones every entry has; "-" means absent.
    std::vector<std::pair<std::string, std::string>> fields;
};

const unsigned char kData[] = {0x00, 0x7f, 0xA5, 0xff};
const std::vector<std::string> kStrings = {"first", "", "line\nbreak", "gr\xc3\xbc\xc3\x9f"};

const FormCase kForms[] = {
    {"Id", [](EventLog& log, unsigned long id) { log.WriteEntry(id); },
     {{"PRIORITY", "6"}, {"EVENT_TYPE", "4"}, {"EVENT_CATEGORY", "0"}, {"EVENT_STRING_1", "-"}, {"EVENT_DATA", "-"}}},
    {"IdType", [](EventLog& log, unsigned long id) { log.WriteEntry(id, EventLog::eError); },
     {{"PRIORITY", "3"}, {"EVENT_TYPE", "1"}, {"EVENT_CATEGORY", "0"}}},
    {"IdTypeCategory", [](EventLog& log, unsigned long id) { log.WriteEntry(id, EventLog::eWarning, 65535); },
     {{"PRIORITY", "4"}, {"EVENT_TYPE", "2"}, {"EVENT_CATEGORY", "65535"}, {"EVENT_DATA", "-"}}},
    {"IdData",
     [](EventLog& log, unsigned long id) { log.WriteEntry(id, EventLog::eInformation, 7, sizeof kData, kData); },
     {{"PRIORITY", "6"}, {"EVENT_CATEGORY", "7"}, {"EVENT_DATA", "007fa5ff"}}},
    {"IdSizeWithoutData", [](EventLog& log, unsigned long id) { log.WriteEntry(id, EventLog::eError, 1, 10, nullptr); },
     {{"EVENT_DATA", "-"}}},
    {"String", [](EventLog& log, unsigned long id) { log.WriteEntry("only one", id); },
     {{"MESSAGE", "only one"}, {"EVENT_STRING_1", "only one"}, {"EVENT_STRING_2", "-"}, {"PRIORITY", "6"}}},
    {"NullString", [](EventLog& log, unsigned long id) { log.WriteEntry(static_cast<const char*>(nullptr), id); },
     {{"MESSAGE", ""}, {"EVENT_STRING_1", ""}}},
    {"StringType", [](EventLog& log, unsigned long id) { log.WriteEntry("s", id, EventLog::eWarning); },
     {{"PRIORITY", "4"}, {"EVENT_STRING_1", "s"}}},
    {"StringTypeCategory", [](EventLog& log, unsigned long id) { log.WriteEntry("s", id, EventLog::eError, 3); },
     {{"PRIORITY", "3"}, {"EVENT_CATEGORY", "3"}}},
    {"StringData",
     [](EventLog& log, unsigned long id) { log.WriteEntry("s", id, EventLog::eInformation, 2, 2, kData + 2); },
     {{"EVENT_CATEGORY", "2"}, {"EVENT_DATA", "a5ff"}}},
    {"Strings", [](EventLog& log, unsigned long id) { log.WriteEntry(kStrings, id); },
     {{"MESSAGE", "first  line\nbreak gr\xc3\xbc\xc3\x9f"}, {"EVENT_STRING_1", "first"}, {"EVENT_STRING_2", ""},
      {"EVENT_STRING_3", "line\nbreak"}, {"EVENT_STRING_4", "gr\xc3\xbc\xc3\x9f"}, {"EVENT_STRING_5", "-"}}},
    {"EmptyStrings", [](EventLog& log, unsigned long id) { log.WriteEntry(std::vector<std::string>{}, id); },
     {{"EVENT_STRING_1", "-"}}},
    {"StringsType", [](EventLog& log, unsigned long id) { log.WriteEntry({"a", "b"}, id, EventLog::eError); },
     {{"MESSAGE", "a b"}, {"PRIORITY", "3"}, {"EVENT_STRING_2", "b"}}},
    {"StringsTypeCategory", [](EventLog& log, unsigned long id) { log.WriteEntry({"a"}, id, EventLog::eWarning, 9); },
     {{"PRIORITY", "4"}, {"EVENT_CATEGORY", "9"}}},
    {"StringsData",
     [](EventLog& log, unsigned long id) { log.WriteEntry({"a"}, id, EventLog::eError, 0, 1, kData + 1); },
     {{"PRIORITY", "3"}, {"EVENT_DATA", "7f"}}},
};

class EventLogJournal : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const std::string why = JournalSandbox::Unavailable(); !why.empty())
            GTEST_SKIP() << why;
    }

    TempDir mFolder;
};

TEST_F(EventLogJournal, EachFormWritesOneEntry)
{
    JournalSandbox journal(mFolder.Path(), false);
    ASSERT_TRUE(journal.Start());
    const std::string source = "korva-forms-" + std::to_string(getpid());
    EventLog log(source.c_str());
    unsigned long id = 1000;
    for (const FormCase& row : kForms)
        row.write(log, id++);

    const auto entries = Entries(mFolder.Path(), "SYSLOG_IDENTIFIER=" + source, std::size(kForms));
    ASSERT_EQ(entries.size(), std::size(kForms));
    id = 1000;
    for (std::size_t i = 0; i < entries.size(); ++i, ++id) {
        const FormCase& row = kForms[i];
        SCOPED_TRACE(row.name);
        Entry entry = entries[i];  // a copy: absent fields read as empty
        EXPECT_EQ(entry["EVENT_ID"], std::to_string(id));
        EXPECT_EQ(entry["EVENT_USER"], "S-1-22-1-" + std::to_string(getuid()));
        if (!entry.count("EVENT_STRING_1")) {
            EXPECT_EQ(entry["MESSAGE"], "Event " + std::to_string(id));
        }
        for (const auto& [name, value] : row.fields) {
            if (value == "-")
                EXPECT_EQ(entry.count(name), 0u) << name;
            else
                EXPECT_EQ(entry[name], value) << name;
        }
    }
}

TEST_F(EventLogJournal, DroppedWithoutJournaldOrSource)
{
    JournalSandbox journal(mFolder.Path(), false);
    const std::string source = "korva-resume-" + std::to_string(getpid());
    EventLog log(source.c_str());
    log.WriteEntry("while nobody listens", 1);

    ASSERT_TRUE(journal.Start());
    EventLog(nullptr).WriteEntry("nowhere", 2);
    EventLog("").WriteEntry("nowhere", 3);
    log.WriteEntry("once journald runs", 4);
    // Entries of one sender arrive in order: with the last one in, nothing else is on its way.
    // (Kernel messages carry the process ids of their day: only our own transport counts.)
    const auto ours = Entries(mFolder.Path(), "_TRANSPORT=journal _PID=" + std::to_string(getpid()), 1);
    ASSERT_EQ(ours.size(), 1u);
    EXPECT_EQ(ours[0].at("MESSAGE"), "once journald runs");
}

} // namespace

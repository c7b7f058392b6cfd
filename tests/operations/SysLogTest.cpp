// SysLog without a daemon: name tables, the settings file, where the file is
// found, the live filter, and the faults that must end in a false result.
#include "operations/SysLogKit.h"

#include <KORVAutl/IniFileSection.h>
#include <KORVAutlwin/operations/SysLog.h>
#include <KORVAutlwin/platform/Registry.h>

#include <cctype>

namespace {

// Every row by index, by value and by its name in upper case; the fallback past the end and for junk.
template <typename Value>
void CheckTable(unsigned int rows, const char* (*atIndex)(unsigned int), const char* (*toString)(Value),
                Value (*toValue)(const char*), const char* fallback)
{
    SCOPED_TRACE(fallback);
    for (unsigned int row = 0; row < rows; ++row) {
        std::string upper = atIndex(row);
        for (char& c : upper)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        EXPECT_STREQ(toString(Value(row)), atIndex(row));
        EXPECT_EQ(toValue(upper.c_str()), Value(row)) << upper;
    }
    for (const char* name : {atIndex(rows), toString(Value(rows)), toString(Value(-1)), toString(toValue("junk")),
                             toString(toValue(nullptr))})
        EXPECT_STREQ(name, fallback);
}

TEST(SysLogNames, TablesRoundTripWithoutCaseAndFallBack)
{
    CheckTable(24, SysLog::FacilityAtIndex, SysLog::FacilityToString, SysLog::StringToFacility, "local7");
    CheckTable(8, SysLog::SeverityAtIndex, SysLog::SeverityToString, SysLog::StringToSeverity, "debug");
    CheckTable(2, SysLog::SocketTypeAtIndex, SysLog::SocketTypeToString, SysLog::StringToSocketType, "udp");
}

TEST(SysLogSettings, WriteNamesAndNumbersAndReadThemBack)
{
    SysLogFolder folder;
    const std::string ini = folder.File("SysLog.ini");
    const char* path = ini.c_str();
    SysLog::SetPort(path, 70000);
    SysLog::SetAddress(path, "syslog.example");
    SysLog::SetBaseSeverity(path, SysLog::eNotice);
    SysLog::SetFacility(path, SysLog::eCron);
    SysLog::SetSocketType(path, SysLog::eTcp);
    EXPECT_EQ(std::to_string(SysLog::GetPort(path)) + SysLog::GetAddress(path) + std::to_string(SysLog::GetBaseSeverity(path)) +
                  std::to_string(SysLog::GetFacility(path)) + std::to_string(SysLog::GetSocketType(path)),
              "70000syslog.example5150");
    EXPECT_NE(ReadFile(ini).find("cron"), std::string::npos) << "names, not numbers, go to the file";

    // Values outside the tables write the fallback names.
    SysLog::SetBaseSeverity(path, SysLog::ESeverity(12));
    SysLog::SetFacility(path, SysLog::EFacility(99));
    SysLog::SetSocketType(path, SysLog::ESocketType(5));
    IniFileSection file(path, "SysLogSettings");
    const auto read = [&](const char* key) {
        std::string value;
        file.ReadKey(key, value);
        return value + ";";
    };
    EXPECT_EQ(read("BaseSeverity") + read("Facility") + read("SocketType"), "debug;local7;udp;");
    file.WriteKey("Port", "-1");
    EXPECT_EQ(SysLog::GetPort(path), 4294967295u) << "as atoi reads it";
}

TEST(SysLogIniPath, RegistryValueFirstThenTheApplicationsFolder)
{
    SysLogFolder folder;
    const std::string found = InChild([] {
        std::string out = "[" + SysLog::GetIniPath() + "]";
        SysLog::SetApplicationHooks([] { return std::string("SOFTWARE\\Test\\Hook"); },
                                    [] { return std::string("/common/app"); });
        out += "[" + SysLog::GetIniPath() + "]";
        SysLog::SetIniPath("/etc/own/SysLog.ini");
        out += "[" + SysLog::GetIniPath() + "]";
        HKEY key = nullptr;
        char value[64] = {};
        DWORD size = sizeof value;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Test\\Hook\\SysLog", 0, KEY_READ, &key) == ERROR_SUCCESS &&
            RegQueryValueExA(key, "IniPath", nullptr, nullptr, reinterpret_cast<BYTE*>(value), &size) == ERROR_SUCCESS)
            out += std::string("[") + value + "]";
        SysLog::SetIniPath("");
        out += "[" + SysLog::GetIniPath() + "]";
        SysLog::SetApplicationHooks([] { return std::string("SOFTWARE\\Test\\Hook"); }, [] { return std::string(); });
        out += "[" + SysLog::GetIniPath() + "]";
        return out;
    });
    EXPECT_EQ(found, "[][/common/app/SysLog.ini][/etc/own/SysLog.ini][/etc/own/SysLog.ini][/common/app/SysLog.ini][]");
}

TEST(SysLogFilter, ContextsKeepTheBaseSeverityOfTheirFirstSight)
{
    SysLogFolder folder;
    const std::string ini = folder.File("SysLog.ini");
    const std::string limits = InChild([&] {
        SysLog::SetIniPath(ini.c_str());
        std::string out;
        const auto limit = [&](const char* context) { out += std::to_string(SysLog::GetSeverityLimit(context)); };
        limit("A");
        SysLog::SetSeverityLimit(SysLog::eErr, nullptr);
        limit("A");
        limit("B");
        limit(nullptr);
        SysLog::SetSeverityLimit(SysLog::eCrit, "A");
        limit("A");
        limit("a");
        return out;
    });
    EXPECT_EQ(limits, "773323");
    EXPECT_EQ(SysLog::GetBaseSeverity(ini.c_str()), SysLog::eErr) << "a new base severity goes to the file";
    EXPECT_TRUE(IniFileSection(ini.c_str(), "SysLogContextSeverities").IsEmpty()) << "context limits stay in memory";
}

TEST(SysLogFaults, EndInFalseWithoutCrashOrHang)
{
    SysLogFolder folder;
    const std::string port = std::to_string(FreePort(SOCK_STREAM));
    const std::pair<const char*, std::string> rows[] = {
        {"no INI path", ""},
        {"unresolvable host", "[SysLogSettings]\nAddress=no.such.host.invalid\n"},
        {"refused connection", "[SysLogSettings]\nSocketType=tcp\nPort=" + port + "\n"},
    };
    for (const auto& [name, text] : rows) {
        SCOPED_TRACE(name);
        const std::string ini = folder.File("SysLog.ini");
        if (!text.empty())
            WriteFile(ini, text);
        const std::string results = InChild([&] {
            if (!text.empty())
                SysLog::SetIniPath(ini.c_str());
            return std::to_string(SysLog::LogMessage(SysLog::eEmerg, "ctx", "lost"));
        });
        EXPECT_EQ(results, "0");
    }
}

TEST(SysLogFaults, PeerThatHangsUpEndsInFalseNotInSigpipe)
{
    SysLogFolder folder;
    const std::string ini = folder.File("SysLog.ini");
    const std::string results = InChild([&] {
        int port = 0;
        const int listener = BoundSocket(SOCK_STREAM, port);
        listen(listener, 1);
        WriteFile(ini, "[SysLogSettings]\nSocketType=tcp\nPort=" + std::to_string(port) + "\n");
        SysLog::SetIniPath(ini.c_str());
        std::string out = std::to_string(SysLog::LogMessage(SysLog::eDebug, "c", "one"));
        close(accept(listener, nullptr, nullptr));  // unread data: the peer resets the connection
        for (int i = 0; i < 3; ++i)
            out += std::to_string(SysLog::LogMessage(SysLog::eDebug, "c", "after"));
        return out;
    });
    EXPECT_EQ(results, "1000");
}

} // namespace

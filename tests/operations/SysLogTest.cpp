// SysLog without a daemon: name tables, the settings file, where the file is
// found, the live filter, and the faults that must end in a false result.
#include "operations/SysLogKit.h"

#include <KORVAutl/IniFileSection.h>
#include <KORVAutlwin/operations/SysLog.h>
#include <KORVAutlwin/platform/Registry.h>

#include <cctype>

namespace {

TEST(SysLogNames, TablesRoundTripWithoutCaseAndFallBack)
{
    struct Table
    {
        unsigned int rows;
        std::function<const char*(unsigned int)> atIndex;
        std::function<const char*(int)> toString;
        std::function<int(const char*)> toValue;
        const char* fallback;
    };
    const Table tables[] = {
        {24, SysLog::FacilityAtIndex, [](int v) { return SysLog::FacilityToString(SysLog::EFacility(v)); },
         SysLog::StringToFacility, "local7"},
        {8, SysLog::SeverityAtIndex, [](int v) { return SysLog::SeverityToString(SysLog::ESeverity(v)); },
         SysLog::StringToSeverity, "debug"},
        {2, SysLog::SocketTypeAtIndex, [](int v) { return SysLog::SocketTypeToString(SysLog::ESocketType(v)); },
         SysLog::StringToSocketType, "udp"},
    };
    for (const Table& table : tables) {
        SCOPED_TRACE(table.fallback);
        for (unsigned int row = 0; row < table.rows; ++row) {
            std::string upper = table.atIndex(row);
            for (char& c : upper)
                c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            EXPECT_STREQ(table.toString(static_cast<int>(row)), table.atIndex(row));
            EXPECT_EQ(table.toValue(upper.c_str()), static_cast<int>(row)) << upper;
        }
        EXPECT_STREQ(table.atIndex(table.rows), table.fallback);
        EXPECT_STREQ(table.toString(-1), table.fallback);
        EXPECT_STREQ(table.toString(static_cast<int>(table.rows)), table.fallback);
        EXPECT_STREQ(table.atIndex(table.toValue("no such name")), table.fallback);
        EXPECT_STREQ(table.atIndex(table.toValue(nullptr)), table.fallback);
    }
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
    EXPECT_EQ(SysLog::GetPort(path), 70000u);
    EXPECT_EQ(SysLog::GetAddress(path), "syslog.example");
    EXPECT_EQ(SysLog::GetBaseSeverity(path), SysLog::eNotice);
    EXPECT_EQ(SysLog::GetFacility(path), SysLog::eCron);
    EXPECT_EQ(SysLog::GetSocketType(path), SysLog::eTcp);
    EXPECT_NE(ReadText(ini).find("cron"), std::string::npos) << "names, not numbers, go to the file";

    // Values outside the tables write the fallback names.
    SysLog::SetBaseSeverity(path, SysLog::ESeverity(12));
    SysLog::SetFacility(path, SysLog::EFacility(99));
    SysLog::SetSocketType(path, SysLog::ESocketType(5));
    std::string value;
    IniFileSection file(path, "SysLogSettings");
    for (const auto& [key, expected] : {std::pair{"BaseSeverity", "debug"}, {"Facility", "local7"}, {"SocketType", "udp"}}) {
        EXPECT_TRUE(file.ReadKey(key, value));
        EXPECT_EQ(value, expected) << key;
    }
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
            WriteText(ini, text);
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
        const int listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address);
        listen(listener, 1);
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
        WriteText(ini, "[SysLogSettings]\nSocketType=tcp\nPort=" + std::to_string(ntohs(address.sin_port)) + "\n");
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

// SysLog against a real rsyslogd: what arrives, byte for byte, for the settings
// of a SysLog.ini, and what the file holds afterwards.
#include "operations/SysLogKit.h"

#include <KORVAutl/IniFileSection.h>
#include <KORVAutlwin/operations/SysLog.h>

namespace {

struct Send
{
    SysLog::ESeverity severity;
    const char* contexts;  // one name: the one-context form; "a|b": a list; "": an empty list
    std::string text;
};

struct WireCase
{
    const char* name;
    const char* ini;  // %U, %T: rsyslogd's UDP and TCP ports; %C: the UDP port plus 65536
    std::vector<Send> sends;
    const char* results;  // of LogMessage, one digit per send
    std::vector<std::string> received;
};

void PrintTo(const WireCase& row, std::ostream* out)
{
    *out << row.name;
}

const std::string kMegabyte(1 << 20, 'm');

const WireCase kWireCases[] = {
    {"Defaults", "[SysLogSettings]\nPort=%U\n",
     {{SysLog::eDebug, "app", "udp a"}, {SysLog::eInfo, "app|db", "udp b"}, {SysLog::eDebug, "", "udp -"},
      {SysLog::eDebug, "app", kMegabyte}, {SysLog::eDebug, "app", "udp c"}},
     "11001", {"<191>udp a", "<190>udp b", "<191>udp c"}},
    {"NamesWithoutCase", "[SysLogSettings]\nPort=%U\nFacility=KeRn\nBaseSeverity=EMERG\n",
     {{SysLog::eEmerg, "k", "kern a"}, {SysLog::eAlert, "k", "kern b"}, {SysLog::eEmerg, "k", "kern c"}},
     "101", {"<0>kern a", "<0>kern c"}},
    {"Filter",
     "[SysLogSettings]\nPort=%U\nBaseSeverity=err\n[SysLogContextSeverities]\nNarrow=crit\nWide=DEBUG\n"
     "[SysLogInfo]\nValidFacilities=stale\n",
     {{SysLog::eWarning, "app", "filter 1"}, {SysLog::eErr, "Narrow", "filter 2"}, {SysLog::eErr, "narrow", "filter 3"},
      {SysLog::eWarning, "Wide", "filter 4"}, {SysLog::eCrit, "Narrow|Wide", "filter 5"},
      {SysLog::eErr, "Wide|Narrow|Later", "filter 6"}, {SysLog::eErr, nullptr, "filter 7"}},
     "0010100", {"<187>filter 3", "<186>filter 5"}},
    {"GarbageNames", "[SysLogSettings]\nPort=%U\nFacility=nonsense\nBaseSeverity=LOUD\nSocketType=pigeon\n",
     {{SysLog::eDebug, "g", "garbage a"}}, "1", {"<191>garbage a"}},
    {"PortCutTo16Bits", "[SysLogSettings]\nPort=%C\n", {{SysLog::eDebug, "c", "cut a"}}, "1", {"<191>cut a"}},
    {"TcpWithoutFraming", "[SysLogSettings]\nPort=%T\nSocketType=TCP\n",
     {{SysLog::eDebug, "t", "tcp one"}, {SysLog::eInfo, "t", "tcp two\n"}}, "11", {"<191>tcp one<190>tcp two"}},
};

std::string Fill(std::string text, const Rsyslogd& daemon)
{
    const std::pair<const char*, int> ports[] = {
        {"%U", daemon.mUdpPort}, {"%T", daemon.mTcpPort}, {"%C", daemon.mUdpPort + 65536}};
    for (const auto& [mark, port] : ports)
        for (std::size_t at; (at = text.find(mark)) != std::string::npos;)
            text.replace(at, 2, std::to_string(port));
    return text;
}

std::vector<std::pair<std::string, std::string>> Keys(const std::string& ini, const char* section)
{
    IniFileSection file(ini.c_str(), section);
    std::vector<std::pair<std::string, std::string>> keys;
    for (const std::string& name : file.GetKeyNames()) {
        std::string value;
        file.ReadKey(name.c_str(), value);
        keys.emplace_back(name, value);
    }
    return keys;
}

class SysLogWire : public testing::TestWithParam<WireCase>
{
};

TEST_P(SysLogWire, ArrivesByteForByte)
{
    if (Rsyslogd::Program().empty())
        GTEST_SKIP() << "rsyslogd is not installed; scripts/install-deps installs it";
    const WireCase& row = GetParam();
    SysLogFolder folder;
    Rsyslogd daemon(folder);
    ASSERT_TRUE(daemon.Listening()) << "rsyslogd did not start listening";
    const std::string ini = folder.File("SysLog.ini");
    WriteFile(ini, Fill(row.ini, daemon));
    const auto settingsBefore = Keys(ini, "SysLogSettings");
    const auto contextsBefore = Keys(ini, "SysLogContextSeverities");

    const std::string results = InChild([&] {
        SysLog::SetIniPath(ini.c_str());
        std::string out;
        for (const Send& send : row.sends) {
            const std::string names = send.contexts ? send.contexts : "";
            bool sent;
            if (!send.contexts || (names.find('|') == std::string::npos && !names.empty())) {
                sent = SysLog::LogMessage(send.severity, send.contexts, send.text.c_str());
            } else {
                std::vector<std::string> list;
                std::istringstream in(names);
                for (std::string name; std::getline(in, name, '|');)
                    list.push_back(name);
                sent = SysLog::LogMessage(send.severity, list, send.text.c_str());
            }
            out += sent ? '1' : '0';
        }
        return out;
    });
    EXPECT_EQ(results, row.results);
    const std::string& first = row.received.front();
    const std::string tag = first.substr(first.find('>') + 1, first.find(' ') - first.find('>'));
    EXPECT_EQ(daemon.Lines(tag, row.received.back()), row.received);

    // The first run completes the file; values given stay, even bad ones.
    const auto settings = Keys(ini, "SysLogSettings");
    EXPECT_EQ(settings.size(), 5u);
    for (const auto& given : settingsBefore)
        EXPECT_NE(std::find(settings.begin(), settings.end(), given), settings.end()) << given.first;
    EXPECT_EQ(Keys(ini, "SysLogInfo"),
              (std::vector<std::pair<std::string, std::string>>{
                  {"ValidFacilities", "kern,user,mail,daemon,auth,syslog,lpr,news,uucp,sys9,sys10,sys11,sys12,sys13,"
                                      "sys14,cron,local0,local1,local2,local3,local4,local5,local6,local7"},
                  {"ValidSeverities", "emerg,alert,crit,err,warning,notice,info,debug"},
                  {"ValidSocketTypes", "tcp,udp"}}));
    EXPECT_EQ(Keys(ini, "SysLogContextSeverities"), contextsBefore) << "context limits are never written";
}

INSTANTIATE_TEST_SUITE_P(Daemon, SysLogWire, testing::ValuesIn(kWireCases),
                         [](const testing::TestParamInfo<WireCase>& info) { return info.param.name; });

} // namespace

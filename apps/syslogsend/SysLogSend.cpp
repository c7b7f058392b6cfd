// syslogsend: sends a message through SysLog, exactly as an application of the
// suite would, and shows the settings that SysLog reads from SysLog.ini. An
// operator who edits the file sees at once what a process would do with it.

#include <KORVAutlwin/operations/SysLog.h>

#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/TsSystemInfo.h>

#include <cstdio>
#include <cstdlib>
#include <strings.h>
#include <filesystem>
#include <string>
#include <vector>

namespace {

const char* const kHelp = R"(Usage:
  syslogsend [OPTIONS] MESSAGE...   send MESSAGE (the words joined by blanks)
  syslogsend [OPTIONS] --show       show where SysLog.ini is and what it sets
  syslogsend [OPTIONS] --set-ini-path PATH
                                    keep PATH as the application's SysLog.ini
                                    (the registry value "IniPath" below
                                    HKEY_LOCAL_MACHINE); "" goes back to the
                                    application's common data folder
  syslogsend --help                 show this text

Options:
  --app NAME        act for the application NAME (default: syslogsend)
  --version X.Y     ... in its version X.Y (default: the suite's)
  --severity NAME   the message's severity (default: info); one of
                    emerg alert crit err warning notice info debug
  --context NAME    a context the message belongs to (default: syslogsend);
                    give it again for more. The message is sent only when its
                    severity is within the base severity and every context's limit.

The message goes out as "<priority>MESSAGE", with nothing added, to the address,
port and socket type of SysLog.ini. Reading the file writes back the defaults of
missing settings, as every application does on its first start.

Exit status: 0 sent (or shown, or kept), 1 not sent (filtered, or no
connection, or the registry refused), 2 wrong use, 3 no SysLog.ini for this
application.
)";

int WrongUse(const char* text, const char* argument)
{
    std::fprintf(stderr, "syslogsend: %s%s\nTry syslogsend --help.\n", text, argument ? argument : "");
    return 2;
}

int Show(const std::string& ini)
{
    const char* path = ini.c_str();
    const unsigned int port = SysLog::GetPort(path);
    std::printf("INI file        %s\n", path);
    std::printf("Address         %s\n", SysLog::GetAddress(path).c_str());
    std::printf("Port            %u", port);
    if (port > 0xFFFFu)
        std::printf(" (connects to %u)", port & 0xFFFFu);
    std::printf("\nSocketType      %s\n", SysLog::SocketTypeToString(SysLog::GetSocketType(path)));
    std::printf("Facility        %s\n", SysLog::FacilityToString(SysLog::GetFacility(path)));
    std::printf("BaseSeverity    %s\n", SysLog::SeverityToString(SysLog::GetBaseSeverity(path)));
    IniFileSection contexts(path, "SysLogContextSeverities");
    std::printf("Context limits ");
    const std::vector<std::string> names = contexts.GetKeyNames();
    if (names.empty())
        std::printf(" none");
    for (const std::string& name : names) {
        std::string value;
        contexts.ReadKey(name.c_str(), value);
        std::printf(" %s=%s", name.c_str(), SysLog::SeverityToString(SysLog::StringToSeverity(value.c_str())));
    }
    std::printf("\n");
    if (!contexts.IsWritable())
        std::printf("(the file cannot be written: missing settings are not kept)\n");
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    std::string app = "syslogsend";
    std::string version = TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort);
    std::string severity = "info";
    std::vector<std::string> contexts;
    std::string message;
    const char* iniPath = nullptr;
    bool show = false;
    bool haveMessage = false;

    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool hasValue = i + 1 < argc;
        if (argument == "--help") {
            std::fputs(kHelp, stdout);
            return 0;
        } else if (argument == "--show") {
            show = true;
        } else if (argument == "--app" || argument == "--version" || argument == "--severity" ||
                   argument == "--context" || argument == "--set-ini-path") {
            if (!hasValue)
                return WrongUse("a value is missing after ", argv[i]);
            const char* value = argv[++i];
            if (argument == "--app")
                app = value;
            else if (argument == "--version")
                version = value;
            else if (argument == "--severity")
                severity = value;
            else if (argument == "--context")
                contexts.push_back(value);
            else
                iniPath = value;
        } else if (argument.size() > 1 && argument[0] == '-' && argument[1] == '-') {
            return WrongUse("unknown option ", argv[i]);
        } else {
            message += (haveMessage ? " " : "") + argument;
            haveMessage = true;
        }
    }
    if (int(show) + int(iniPath != nullptr) + int(haveMessage) != 1)
        return WrongUse("give a MESSAGE, --show or --set-ini-path", nullptr);
    const SysLog::ESeverity level = SysLog::StringToSeverity(severity.c_str());
    if (level == SysLog::eDebug && strcasecmp(severity.c_str(), "debug") != 0)
        return WrongUse("unknown severity ", severity.c_str());
    if (contexts.empty())
        contexts.push_back("syslogsend");

    // The application's registry branch and common data folder, as its application object gives them.
    const std::string base = "SOFTWARE\\Tessmark\\" + app + "\\" + version;
    const char* common = std::getenv("KORVA_COMMON_APPDATA");
    const std::string folder = std::string(common && *common ? common : "/var/lib") + "/Tessmark/" + app + "/" + version;
    SysLog::SetApplicationHooks([base] { return base; },
                                [folder] {
                                    std::error_code ignored;
                                    std::filesystem::create_directories(folder, ignored);
                                    return folder;
                                });

    if (iniPath) {
        if (!SysLog::SetIniPath(iniPath)) {
            std::fprintf(stderr, "syslogsend: the registry refused to keep the path (HKEY_LOCAL_MACHINE\\%s\\SysLog)\n",
                         base.c_str());
            return 1;
        }
        return 0;
    }
    const std::string ini = SysLog::GetIniPath();
    if (ini.empty()) {
        std::fprintf(stderr, "syslogsend: no SysLog.ini for %s %s\n", app.c_str(), version.c_str());
        return 3;
    }
    if (show)
        return Show(ini);
    if (!SysLog::LogMessage(level, contexts, message.c_str())) {
        std::fprintf(stderr, "syslogsend: not sent (filtered, or no connection: see --show)\n");
        return 1;
    }
    return 0;
}

#include <KORVAutlwin/operations/NTServiceControl.h>

#include <KORVAutlwin/operations/EventLog.h>
#include <KORVAutlwin/operations/EventSource.h>
#include <KORVAutlwin/operations/ServiceMapping.h>
#include <KORVAutlwin/platform/AtomicFile.h>
#include <KORVAutlwin/platform/SystemdBus.h>
#include <KORVAutlwin/platform/UserAccount.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsSystemInfo.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

struct ScHandle
{
    std::shared_ptr<korva::SystemdBus> bus;
    std::string unit;  // empty for the manager
    std::string path;  // the unit's object path
};

namespace {

const char* const kClass = "NTServiceControl";

// A start or stop waits this long for the service to report running or to end.
const int kJobTimeoutMs = 30000;

struct ErrorRow
{
    const char* function;
    unsigned long code;
    const char* text;
};

const struct
{
    const char* function;
    const char* format;
} kFormats[] = {
    {"OpenSCM", "Windows error - OpenSCManager returned error %lu: %s."},
    {"CloseSCM", "Windows error - CloseServiceHandle returned error %lu: %s."},
    {"CreateService", "Windows error - CreateService returned error %lu: %s."},
    {"DeleteService", "Windows error - DeleteService returned error %lu: %s."},
    {"OpenService", "Windows error - OpenService returned error %lu: %s."},
    {"CloseService", "Windows error - CloseServiceHandle returned error %lu: %s."},
    {"StartService", "Windows error - StartService returned error %lu: %s."},
    {"QueryService", "Windows error - QueryServiceStatus returned error %lu: %s."},
    {"ControlService", "Windows error - ControlService returned error %lu: %s."},
    {"GetFileName", "Windows error - GetModuleFileName returned error %lu: %s."},
};

const ErrorRow kErrors[] = {
    {"OpenSCM", 5, "The requested access was denied"},
    {"OpenSCM", 87, "A specified parameter is invalid"},
    {"OpenSCM", 1065, "The specified database does not exist."},
    {"CloseSCM", 6, "The specified handle is invalid"},
    {"CreateService", 5, "The handle to the specified service control manager database does not have SC_MANAGER_CREATE_SERVICE access"},
    {"CreateService", 6, "The handle to the specified service control manager database is invalid"},
    {"CreateService", 52, "The display name already exists in the service control manager database either as a service name or as another display name"},
    {"CreateService", 87, "A parameter that was specified is invalid"},
    {"CreateService", 123, "The specified service name is invalid"},
    {"CreateService", 1057, "The user account name specified in the lpServiceStartName parameter does not exist"},
    {"CreateService", 1059, "A circular service dependency was specified"},
    {"CreateService", 1073, "The specified service already exists in this database"},
    {"DeleteService", 5, "The specified handle was not opened with DELETE access"},
    {"DeleteService", 6, "The specified handle is invalid"},
    {"DeleteService", 1072, "The specified service has already been marked for deletion"},
    {"OpenService", 5, "The specified service control manager database handle does not have access to the service"},
    {"OpenService", 6, "The specified handle is invalid"},
    {"OpenService", 123, "The specified service name is invalid"},
    {"OpenService", 1060, "The specified service does not exist"},
    {"CloseService", 6, "The specified handle is invalid"},
    {"StartService", 3, "The service binary file could not be found"},
    {"StartService", 5, "The specified handle was not opened with SERVICE_START access"},
    {"StartService", 6, "The specified handle is invalid"},
    {"StartService", 1053, "The process for the service was started, but it did not call StartServiceCtrlDispatcher, or the thread that called StartServiceCtrlDispatcher may be blocked in a control handler function."},
    {"StartService", 1054, "A thread could not be created for the service"},
    {"StartService", 1055, "The database is locked"},
    {"StartService", 1056, "An instance of the service is already running"},
    {"StartService", 1058, "The service has been disabled"},
    {"StartService", 1068, "The service depends on another service that has failed to start"},
    {"StartService", 1069, "The service could not be logged on. This error occurs if the service was started from an account that does not have the \"Log on as a service\" right"},
    {"StartService", 1072, "The service has been marked for deletion"},
    {"StartService", 1075, "The service depends on a service that does not exist or has been marked for deletion"},
    {"QueryService", 5, "The specified handle was not opened with SERVICE_QUERY_STATUS access"},
    {"QueryService", 6, "The specified handle is invalid"},
    {"ControlService", 5, "The specified handle was not opened with the necessary access"},
    {"ControlService", 6, "The specified handle was not obtained using CreateService or OpenService, or the handle is no longer valid"},
    {"ControlService", 87, "The requested control code is undefined"},
    {"ControlService", 1051, "The service cannot be stopped because other running services are dependent on it"},
    {"ControlService", 1052, "The requested control code is not valid, or it is unacceptable to the service"},
    {"ControlService", 1053, "The process for the service was started, but it did not call StartServiceCtrlDispatcher, or the thread that called StartServiceCtrlDispatcher may be blocked in a control handler function"},
    {"ControlService", 1061, "The requested control code cannot be sent to the service because the state of the service is SERVICE_STOPPED, SERVICE_START_PENDING, or SERVICE_STOP_PENDING"},
    {"ControlService", 1062, "The service has not been started"},
    {"ControlService", 1115, "The system is shutting down"},
};

std::string Printf(const char* format, const char* text)
{
    char buffer[600];
    std::snprintf(buffer, sizeof buffer, format, text);
    return buffer;
}

unsigned long CodeOf(const korva::SystemdBus::Error& error)
{
    return ServiceMapping::ErrorFromBus(error.name, error.errnoValue);
}

// The exit statuses of the manager for a program it could not run, or not as the user.
const int kExitExec = 203;
const int kExitUser = 217;

// The manager quotes arguments like a shell does in double quotes.
std::string QuoteCommand(const std::string& file)
{
    if (file.find_first_of(" \t\"\\") == std::string::npos)
        return file;
    std::string quoted = "\"";
    for (char c : file) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

// A unit of Type=notify, so that the manager waits for the service host's
// READY=1; never written over. 0, or the errno of the failure.
int WriteUnitFile(const std::string& unitFile, const char* serviceName, const char* commandLine,
                  const std::string& user)
{
    std::string text = "[Unit]\nDescription=" + std::string(serviceName) + "\n\n[Service]\nType=notify\nExecStart="
        + commandLine + "\n";
    if (!user.empty())
        text += "User=" + user + "\n";
    text += "\n[Install]\nWantedBy=multi-user.target\n";
    korva::AtomicFile writer(unitFile);
    if (writer.IsOpen() && writer.SetMode(0644) && writer.Write(text.data(), text.size()) && writer.Commit(true))
        return 0;
    return writer.Error() ? writer.Error() : EIO;
}

} // namespace

NTServiceControl::NTServiceControl(const char* serviceName, const char* machineName)
    : serviceName(serviceName), machineName(machineName)
{
}

NTServiceControl::~NTServiceControl()
{
    if (manager) {
        LogMessage("~NTServiceControl", "Service Control Manager not closed.", Log::eLogicFailure);
        CloseSCM();
    }
}

bool NTServiceControl::SetEventMsgId(unsigned long id1, unsigned long id2, unsigned long id3, unsigned long id4)
{
    eventMsgIds[0] = id1;
    eventMsgIds[1] = id2;
    eventMsgIds[2] = id3;
    eventMsgIds[3] = id4;
    return true;
}

void NTServiceControl::LogMessage(const char* function, const char* text, Log::Importance importance)
{
    Log::WriteMessage(kClass, function, text, importance, false);
}

std::string NTServiceControl::GetErrorText(unsigned long code)
{
    return ServiceMapping::SystemErrorText(code);
}

void NTServiceControl::LogWindowsError(const char* function, unsigned long code)
{
    lastError = code;
    std::string text;
    for (const ErrorRow& row : kErrors)
        if (row.code == code && std::strcmp(row.function, function) == 0)
            text = row.text;
    if (text.empty())
        text = GetErrorText(code);
    for (const auto& format : kFormats)
        if (std::strcmp(format.function, function) == 0) {
            char buffer[600];
            std::snprintf(buffer, sizeof buffer, format.format, code, text.c_str());
            LogMessage(function, buffer, Log::eSystemCallFailed);
            return;
        }
}

bool NTServiceControl::OpenSCM()
{
    if (manager) {
        LogMessage("OpenSCM", "Service Control Manager already open.", Log::eLogicFailure);
        return true;
    }
    auto bus = std::make_shared<korva::SystemdBus>();
    if (const int error = bus->Open(machineName)) {
        LogWindowsError("OpenSCM", error == ENOENT ? 1065 : ServiceMapping::ErrorFromErrno(error));
        return false;
    }
    manager = new ScHandle{std::move(bus), {}, {}};
    return true;
}

bool NTServiceControl::CloseSCM()
{
    if (!manager) {
        LogMessage("CloseSCM", "Service Control Manager not opened.", Log::eLogicFailure);
        return true;
    }
    delete manager;
    manager = nullptr;
    return true;
}

SC_HANDLE NTServiceControl::OpenServiceA(unsigned long)
{
    // The manager checks access by its own policy at each call, not at open.
    if (!OpenSCM()) {
        LogMessage("OpenService", "OpenSCM failed.", Log::eSystemCallFailed);
        return nullptr;
    }
    SC_HANDLE service = nullptr;
    const std::string unit = std::string(serviceName ? serviceName : "") + ".service";
    korva::SystemdBus::Error error;
    std::string path;
    std::string loadState;
    if (!serviceName || !korva::SystemdBus::IsValidUnitName(unit))
        LogWindowsError("OpenService", 123);
    else if (!manager->bus->LoadUnit(unit, path, error)
             || !manager->bus->GetProperty(path, korva::SystemdBus::kUnitInterface, "LoadState", loadState, error))
        LogWindowsError("OpenService", CodeOf(error));
    else if (loadState == "not-found")
        LogWindowsError("OpenService", 1060);
    else
        service = new ScHandle{manager->bus, unit, path};
    if (!CloseSCM())
        LogMessage("OpenService", "CloseSCM failed.", Log::eSystemCallFailed);
    return service;
}

bool NTServiceControl::CloseService(SC_HANDLE service)
{
    if (!service) {
        LogWindowsError("CloseService", 6);
        return false;
    }
    delete service;
    return true;
}

SC_HANDLE NTServiceControl::CreateServiceA(const char* file, const char* account, const char*)
{
    if (!OpenSCM()) {
        LogMessage("CreateService", "OpenSCM failed.", Log::eSystemCallFailed);
        return nullptr;
    }
    SC_HANDLE service = nullptr;
    const std::string unit = std::string(serviceName ? serviceName : "") + ".service";
    const std::string unitFile = korva::SystemdBus::UnitFileDirectory() + "/" + unit;
    korva::SystemdBus::Error error;
    std::string path;
    if (!serviceName || !korva::SystemdBus::IsValidUnitName(unit)) {
        LogWindowsError("CreateService", 123);
    } else if (!file || !*file) {
        LogWindowsError("CreateService", 87);
    } else {
        std::string user = account ? account : "";
        if (const auto slash = user.rfind('\\'); slash != std::string::npos)
            user.erase(0, slash + 1);
        if (user == "LocalSystem")
            user.clear();
        int written = 0;
        if (!user.empty() && !korva::AccountExists(user))
            LogWindowsError("CreateService", 1057);
        else if ((written = WriteUnitFile(unitFile, serviceName, file, user)) != 0)
            LogWindowsError("CreateService", written == EEXIST ? 1073 : ServiceMapping::ErrorFromErrno(written));
        else if (!manager->bus->Reload(error) || !manager->bus->LoadUnit(unit, path, error)
                 || (startType == SERVICE_AUTO_START && !manager->bus->EnableUnitFile(unitFile, error))) {
            std::error_code ignored;
            std::filesystem::remove(unitFile, ignored);  // nothing stays half installed
            LogWindowsError("CreateService", CodeOf(error));
        } else {
            service = new ScHandle{manager->bus, unit, path};
        }
    }
    if (!CloseSCM())
        LogMessage("CreateService", "CloseSCM failed.", Log::eSystemCallFailed);
    return service;
}

bool NTServiceControl::DeleteService(SC_HANDLE service)
{
    const std::string unitFile = korva::SystemdBus::UnitFileDirectory() + "/" + service->unit;
    std::error_code removeError;
    if (!std::filesystem::remove(unitFile, removeError)) {
        LogWindowsError("DeleteService", removeError ? ServiceMapping::ErrorFromErrno(removeError.value()) : 1072);
        return false;
    }
    korva::SystemdBus::Error error;
    if (!service->bus->Reload(error)) {
        LogWindowsError("DeleteService", CodeOf(error));
        return false;
    }
    return true;
}

bool NTServiceControl::ReadActiveState(SC_HANDLE service, std::string& state, const char* function)
{
    korva::SystemdBus::Error error;
    if (service->bus->GetProperty(service->path, korva::SystemdBus::kUnitInterface, "ActiveState", state, error))
        return true;
    LogWindowsError(function, CodeOf(error));
    return false;
}

bool NTServiceControl::ReadStatus(SC_HANDLE service, SERVICE_STATUS& status, const char* function)
{
    korva::SystemdBus::Error error;
    std::string activeState;
    std::string result;
    std::int32_t exitStatus = 0;
    auto& bus = *service->bus;
    if (!bus.GetProperty(service->path, korva::SystemdBus::kUnitInterface, "ActiveState", activeState, error)
        || !bus.GetProperty(service->path, korva::SystemdBus::kServiceInterface, "Result", result, error)
        || !bus.GetProperty(service->path, korva::SystemdBus::kServiceInterface, "ExecMainStatus", exitStatus, error)) {
        LogWindowsError(function, CodeOf(error));
        return false;
    }
    status = ServiceMapping::StatusOfUnit(activeState, result, exitStatus);
    return true;
}

bool NTServiceControl::StartServiceA(SC_HANDLE service)
{
    std::string activeState;
    if (!ReadActiveState(service, activeState, "StartService"))
        return false;
    if (ServiceMapping::IsUnitActive(activeState)) {
        LogWindowsError("StartService", 1056);
        return false;
    }
    korva::SystemdBus::Error error;
    std::string jobResult;
    if (!service->bus->RunJob("StartUnit", service->unit, kJobTimeoutMs, jobResult, error)) {
        LogWindowsError("StartService", CodeOf(error));
        return false;
    }
    // A job that failed because the program could not be run is a failed start; a
    // service that ran and ended with an error has started, and says so in its status.
    unsigned long code = 0;
    if (jobResult == "failed") {
        std::int32_t exitStatus = 0;
        if (service->bus->GetProperty(service->path, korva::SystemdBus::kServiceInterface, "ExecMainStatus",
                                      exitStatus, error))
            code = exitStatus == kExitExec ? 3 : exitStatus == kExitUser ? 1069 : 0;
    } else if (jobResult == "dependency") {
        code = 1068;
    } else if (jobResult == "timeout" || jobResult == "canceled") {
        code = 1053;
    }
    if (code) {
        LogWindowsError("StartService", code);
        return false;
    }
    return true;
}

bool NTServiceControl::QueryService(SC_HANDLE service, SERVICE_STATUS* status)
{
    return ReadStatus(service, *status, "QueryService");
}

bool NTServiceControl::ControlService(SC_HANDLE service, unsigned long control, SERVICE_STATUS* status)
{
    if (control != SERVICE_CONTROL_STOP && control != SERVICE_CONTROL_INTERROGATE) {
        LogWindowsError("ControlService", control == 0 || control > 255 ? 87 : 1052);
        return false;
    }
    std::string activeState;
    if (!ReadActiveState(service, activeState, "ControlService"))
        return false;
    if (!ServiceMapping::IsUnitActive(activeState)) {
        LogWindowsError("ControlService", 1062);
        return false;
    }
    if (activeState != "active" && activeState != "reloading") {
        LogWindowsError("ControlService", 1061);
        return false;
    }
    korva::SystemdBus::Error error;
    std::string jobResult;
    const bool sent = control == SERVICE_CONTROL_STOP
        ? service->bus->RunJob("StopUnit", service->unit, kJobTimeoutMs, jobResult, error)
        : service->bus->KillUnit(service->unit, "main", ServiceMapping::InterrogateSignal(), error);
    if (!sent) {
        LogWindowsError("ControlService", CodeOf(error));
        return false;
    }
    return ReadStatus(service, *status, "ControlService");
}

bool NTServiceControl::StopService(SC_HANDLE service)
{
    SERVICE_STATUS status;
    return ControlService(service, SERVICE_CONTROL_STOP, &status);
}

bool NTServiceControl::GetFileName(char* buffer, int size)
{
    const std::string path = TsSystemInfo::GetExecutablePath();
    if (path.empty() || static_cast<int>(path.size()) >= size) {
        LogWindowsError("GetFileName", path.empty() ? 2 : 122);
        return false;
    }
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return true;
}

bool NTServiceControl::IsInstalled()
{
    SC_HANDLE service = OpenServiceA(SERVICE_QUERY_CONFIG);
    if (!service)
        return false;
    CloseService(service);
    return true;
}

bool NTServiceControl::Install(const char* file, const char* messageFile, bool applicationLog, const char* account,
                               const char* password)
{
    if (SC_HANDLE existing = OpenServiceA(SERVICE_QUERY_CONFIG)) {
        CloseService(existing);
        LogMessage("Install", Printf("Service %s already installed.", serviceName).c_str(), Log::eLogicFailure);
        lastError = 1073;
        return false;
    }
    char fileName[260];
    std::string quotedFile;
    if (!file) {
        if (!GetFileName(fileName, sizeof fileName)) {
            LogMessage("Install", "GetFileName failed.", Log::eSystemCallFailed);
            return false;
        }
        file = fileName;
        // The command line is the file and its arguments: a path with blanks goes in quotes.
        if (std::strpbrk(fileName, " \t\"\\")) {
            quotedFile = QuoteCommand(fileName);
            file = quotedFile.c_str();
        }
    }
    if (!messageFile)
        messageFile = file;
    SC_HANDLE service = CreateServiceA(file, account, password);
    if (!service) {
        LogMessage("Install", "CreateService failed.", Log::eSystemCallFailed);
        return false;
    }
    LogMessage("Install", Printf("Service %s installed.", serviceName).c_str(), Log::eMilestone);
    if (!CloseService(service))
        LogMessage("Install", "CloseServiceHandle failed.", Log::eSystemCallFailed);
    try {
        EventSource source =
            EventLog::CreateEventSource(serviceName, applicationLog ? EventLog::APPLICATION_LOG : EventLog::SYSTEM_LOG);
        source.SetMessageFile(messageFile);
        LogMessage("Install", Printf("Creation of event source for service %s succeeded.", serviceName).c_str(),
                   Log::eMilestone);
    } catch (const Exception&) {
        LogMessage("Install", Printf("Creation of event source for service %s failed.", serviceName).c_str(),
                   Log::eSystemCallFailed);
    }
    return true;
}

bool NTServiceControl::Uninstall()
{
    SC_HANDLE service = OpenServiceA(SERVICE_QUERY_CONFIG);
    if (!service) {
        LogMessage("Uninstall", Printf("Service %s is not installed.", serviceName).c_str(), Log::eSystemCallFailed);
        return false;
    }
    CloseService(service);
    service = OpenServiceA(SERVICE_ALL_ACCESS);
    if (!service) {
        LogMessage("Uninstall", "OpenService failed.", Log::eSystemCallFailed);
        return false;
    }
    SERVICE_STATUS status;
    if (!QueryService(service, &status)) {
        LogMessage("Uninstall", "QueryService failed.", Log::eSystemCallFailed);
        CloseService(service);
        return false;
    }
    if (status.dwCurrentState != SERVICE_STOPPED) {
        lastError = 1056;
        CloseService(service);
        return false;
    }
    if (!DeleteService(service)) {
        LogMessage("Uninstall", "DeleteService failed.", Log::eSystemCallFailed);
        CloseService(service);
        return false;
    }
    LogMessage("Uninstall", Printf("Service %s uninstalled.", serviceName).c_str(), Log::eMilestone);
    if (!CloseService(service))
        LogMessage("Uninstall", "CloseService failed.", Log::eSystemCallFailed);
    const bool deleted = EventLog::DeleteEventSource(serviceName);
    LogMessage("Uninstall",
               Printf(deleted ? "Deletion of event source for service %s succeeded."
                              : "Deletion of event source for service %s failed.",
                      serviceName)
                   .c_str(),
               deleted ? Log::eMilestone : Log::eSystemCallFailed);
    return true;
}

bool NTServiceControl::Start()
{
    SC_HANDLE service = OpenServiceA(SERVICE_ALL_ACCESS);
    if (!service)
        return false;
    const bool started = StartServiceA(service);
    CloseService(service);
    LogMessage("Start", Printf("Service %s started.", serviceName).c_str(), Log::eMilestone);
    return started;
}

bool NTServiceControl::Stop()
{
    SC_HANDLE service = OpenServiceA(SERVICE_ALL_ACCESS);
    if (!service)
        return false;
    const bool stopped = StopService(service);
    CloseService(service);
    LogMessage("Stop", Printf("Service %s stopped.", serviceName).c_str(), Log::eMilestone);
    return stopped;
}

bool NTServiceControl::Status(unsigned long& state)
{
    SC_HANDLE service = OpenServiceA(SERVICE_ALL_ACCESS);
    if (!service)
        return false;
    SERVICE_STATUS status;
    const bool known =
        ControlService(service, SERVICE_CONTROL_INTERROGATE, &status) || QueryService(service, &status);
    if (known)
        state = status.dwCurrentState;
    CloseService(service);
    return known;
}

bool NTServiceControl::QueryStatus(SERVICE_STATUS& status)
{
    status = SERVICE_STATUS();
    SC_HANDLE service = OpenServiceA(SERVICE_ALL_ACCESS);
    if (!service)
        return false;
    const bool known = QueryService(service, &status);
    CloseService(service);
    return known;
}

std::string NTServiceControl::CurrentStateToString(unsigned long state)
{
    static const unsigned int ids[] = {0, 13355, 13353, 13354, 13352, 13349, 13350, 13351};
    if (state >= 1 && state <= 7)
        return LanguageString::Get(ids[state]);
    char suffix[32];
    std::snprintf(suffix, sizeof suffix, " (%lu)", state);
    return std::string(LanguageString::Get(13356)) + suffix;
}

#include <KORVAutlwin/operations/ServiceMapping.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace {

std::string Format(const char* format, unsigned long a, unsigned long b = 0)
{
    char buffer[160];
    std::snprintf(buffer, sizeof buffer, format, a, b);
    return buffer;
}

} // namespace

std::string ServiceMapping::NotifyState(const SERVICE_STATUS& status, const std::string& stateText)
{
    // The manager reads STATUS= up to the line end.
    std::string text = stateText;
    for (char& c : text)
        if (c == '\n')
            c = ' ';
    const std::string extend =
        status.dwWaitHint ? Format("\nEXTEND_TIMEOUT_USEC=%lu000", status.dwWaitHint) : std::string();
    switch (status.dwCurrentState) {
    case SERVICE_START_PENDING:
        return "STATUS=" + text + extend;
    case SERVICE_RUNNING:
        return "READY=1\nSTATUS=" + text;
    case SERVICE_STOP_PENDING:
        return "STOPPING=1\nSTATUS=" + text + extend;
    case SERVICE_STOPPED:
        if (status.dwWin32ExitCode)
            text += Format(" (error %lu, service-specific %lu)", status.dwWin32ExitCode,
                           status.dwServiceSpecificExitCode);
        return "STATUS=" + text + Format("\nEXIT_STATUS=%lu", static_cast<unsigned long>(ExitStatusOf(status)));
    default:
        return "STATUS=" + text;
    }
}

int ServiceMapping::ExitStatusOf(const SERVICE_STATUS& status)
{
    if (status.dwServiceSpecificExitCode)
        return static_cast<int>(status.dwServiceSpecificExitCode & 0xFF ? status.dwServiceSpecificExitCode & 0xFF : 1);
    return status.dwWin32ExitCode ? 1 : 0;
}

SERVICE_STATUS ServiceMapping::StatusOfUnit(const std::string& activeState, const std::string& result,
                                            int execMainStatus)
{
    SERVICE_STATUS status;
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    if (activeState == "activating")
        status.dwCurrentState = SERVICE_START_PENDING;
    else if (activeState == "deactivating")
        status.dwCurrentState = SERVICE_STOP_PENDING;
    else if (activeState == "active" || activeState == "reloading")
        status.dwCurrentState = SERVICE_RUNNING;
    else
        status.dwCurrentState = SERVICE_STOPPED;
    const bool pending =
        status.dwCurrentState == SERVICE_START_PENDING || status.dwCurrentState == SERVICE_STOP_PENDING;
    status.dwControlsAccepted = pending ? 0 : SERVICE_ACCEPT_STOP_AND_SHUTDOWN;
    if (status.dwCurrentState == SERVICE_STOPPED && !result.empty() && result != "success") {
        if (result == "exit-code" && execMainStatus > 0) {
            status.dwWin32ExitCode = ERROR_SERVICE_SPECIFIC_ERROR;
            status.dwServiceSpecificExitCode = static_cast<unsigned long>(execMainStatus);
        } else {
            status.dwWin32ExitCode = 1067;
        }
    }
    return status;
}

bool ServiceMapping::IsUnitActive(const std::string& activeState)
{
    return activeState == "active" || activeState == "activating" || activeState == "reloading"
        || activeState == "deactivating";
}

unsigned long ServiceMapping::ControlOfSignal(int signal)
{
    switch (signal) {
    case SIGTERM:
    case SIGINT:
        return SERVICE_CONTROL_STOP;
    case SIGUSR1:
        return SERVICE_CONTROL_INTERROGATE;
    case SIGHUP:
        return SERVICE_CONTROL_PARAMCHANGE;
    default:
        return 0;
    }
}

int ServiceMapping::InterrogateSignal()
{
    return SIGUSR1;
}

unsigned long ServiceMapping::ErrorFromErrno(int error)
{
    switch (error) {
    case 0:
        return 0;
    case EACCES:
    case EPERM:
        return 5;
    case ENOENT:
        return 2;
    case EBADF:
        return 6;
    case ENOMEM:
        return 8;
    case EINVAL:
        return 87;
    case EEXIST:
        return 183;
    case ETIMEDOUT:
        return 1460;
    case ESRCH:
        return 1062;
    case ECONNREFUSED:
    case ENOTCONN:
    case ECONNRESET:
    case EHOSTUNREACH:
        return 1065;  // no manager to talk to
    default:
        return 31;
    }
}

unsigned long ServiceMapping::ErrorFromBus(const std::string& name, int error)
{
    static const struct
    {
        const char* name;
        unsigned long code;
    } names[] = {
        {"org.freedesktop.systemd1.NoSuchUnit", 1060},
        {"org.freedesktop.systemd1.UnitMasked", 1058},
        {"org.freedesktop.systemd1.NoSuchProcess", 1062},
        {"org.freedesktop.systemd1.JobTypeNotApplicable", 1052},
        {"org.freedesktop.systemd1.OnlyByDependency", 1052},
        {"org.freedesktop.systemd1.TransactionIsDestructive", 1051},
        {"org.freedesktop.systemd1.ShuttingDown", 1115},
        {"org.freedesktop.DBus.Error.AccessDenied", 5},
        {"org.freedesktop.DBus.Error.InteractiveAuthorizationRequired", 5},
        {"org.freedesktop.DBus.Error.InvalidArgs", 87},
        {"org.freedesktop.DBus.Error.ServiceUnknown", 1065},
        {"org.freedesktop.DBus.Error.NameHasNoOwner", 1065},
        {"org.freedesktop.DBus.Error.NoReply", 1053},
        {"org.freedesktop.DBus.Error.Timeout", 1053},
        {"org.freedesktop.DBus.Error.UnknownObject", 6},
        {"org.freedesktop.DBus.Error.UnknownMethod", 6},
    };
    for (const auto& row : names)
        if (name == row.name)
            return row.code;
    return ErrorFromErrno(error);
}

std::string ServiceMapping::SystemErrorText(unsigned long code)
{
    static const struct
    {
        unsigned long code;
        const char* text;
    } texts[] = {
        {2, "The system cannot find the file specified."},
        {3, "The system cannot find the path specified."},
        {5, "Access is denied."},
        {6, "The handle is invalid."},
        {8, "Not enough memory resources are available to process this command."},
        {13, "The data is invalid."},
        {31, "A device attached to the system is not functioning."},
        {87, "The parameter is incorrect."},
        {122, "The data area passed to a system call is too small."},
        {123, "The filename, directory name, or volume label syntax is incorrect."},
        {183, "Cannot create a file when that file already exists."},
        {1051, "A stop control has been sent to a service that other running services are dependent on."},
        {1052, "The requested control is not valid for this service."},
        {1053, "The service did not respond to the start or control request in a timely fashion."},
        {1056, "An instance of the service is already running."},
        {1058, "The service cannot be started, either because it is disabled or because it has no enabled devices associated with it."},
        {1060, "The specified service does not exist as an installed service."},
        {1061, "The service cannot accept control messages at this time."},
        {1062, "The service has not been started."},
        {1063, "The service process could not connect to the service controller."},
        {1065, "The database specified does not exist."},
        {1066, "The service has returned a service-specific error code."},
        {1067, "The process terminated unexpectedly."},
        {1068, "The dependency service or group failed to start."},
        {1069, "The service did not start due to a logon failure."},
        {1072, "The specified service has been marked for deletion."},
        {1073, "The specified service already exists."},
        {1115, "A system shutdown is in progress."},
        {1460, "This operation returned because the timeout period expired."},
    };
    for (const auto& row : texts)
        if (row.code == code)
            return row.text;
    return "Unknown error.";
}

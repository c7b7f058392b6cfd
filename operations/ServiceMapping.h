#pragma once
/// \class ServiceMapping
/// How a service's life on Linux maps onto the service control manager's
/// numbers: the unit states of systemd and the notify protocol on one side,
/// SERVICE_STATUS, controls and Win32 error codes on the other.

#include <KORVAutlwin/operations/ServiceStatus.h>

#include <string>

class ServiceMapping
{
public:
    /// The notify message that reports `status`, with `stateText` as STATUS=:
    ///   start pending  STATUS=, EXTEND_TIMEOUT_USEC= of the wait hint (none for 0)
    ///   running        READY=1, STATUS=
    ///   stop pending   STOPPING=1, STATUS=, EXTEND_TIMEOUT_USEC=
    ///   stopped        STATUS= with the exit codes, EXIT_STATUS= (see ExitStatusOf)
    static std::string NotifyState(const SERVICE_STATUS& status, const std::string& stateText);
    /// The process exit status that carries a stopped status's exit codes: the
    /// service-specific code when there is one (the manager keeps 0-255 of it),
    /// else 1 for a Win32 error, else 0.
    static int ExitStatusOf(const SERVICE_STATUS& status);

    /// A unit's status from its properties: ActiveState of the unit, Result and
    /// ExecMainStatus of its service. A unit that ended with an exit code reports
    /// 1066 with that code as the specific one; one that ended otherwise badly, 1067.
    static SERVICE_STATUS StatusOfUnit(const std::string& activeState, const std::string& result,
                                       int execMainStatus);
    /// Whether a unit in `activeState` runs or is on its way (activating, active, reloading, deactivating).
    static bool IsUnitActive(const std::string& activeState);

    /// The control that a signal stands for: SIGTERM and SIGINT stop (the host
    /// tells shutdown apart by the manager's state), SIGUSR1 interrogates, SIGHUP
    /// is a parameter change; 0 for other signals.
    static unsigned long ControlOfSignal(int signal);
    /// The signal that delivers interrogation.
    static int InterrogateSignal();

    /// A Win32 error code for an errno.
    static unsigned long ErrorFromErrno(int error);
    /// A Win32 error code for a D-Bus error of the manager (`name` may be empty;
    /// then `error`, the errno, decides).
    static unsigned long ErrorFromBus(const std::string& name, int error);
    /// The system's message text of a Win32 error code this library reports, or
    /// "Unknown error." for others.
    static std::string SystemErrorText(unsigned long code);
};

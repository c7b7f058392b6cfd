#pragma once
/// \class NTServiceControl
/// The client side of a service: installs, uninstalls, starts, stops and
/// inspects one named service through the service manager (systemd's D-Bus API;
/// the service is the unit "<name>.service"), and registers the service's event
/// source along with it.
///
/// Every failed call is logged as "Windows error - <call> returned error <code>:
/// <text>." with a fixed text per operation and code, and the code stays readable
/// through GetLastError(). The manager's errors are mapped onto those Win32 codes
/// (ServiceMapping). Install writes the unit file (Type=notify, the binary, the
/// account) into SystemdBus::UnitFileDirectory() and has the manager reload.
/// The manager's connection is open only during one operation unless the caller
/// opens it with OpenSCM.

#include <KORVAutlwin/operations/ServiceStatus.h>

#include <KORVAutl/Log.h>

#include <string>

/// A handle on the manager or on one service; opaque to callers.
struct ScHandle;
using SC_HANDLE = ScHandle*;

class NTServiceControl
{
public:
    /// Keeps both pointers (not the texts). A null `machineName` means this machine.
    NTServiceControl(const char* serviceName, const char* machineName = nullptr);
    /// Closes a manager still open, with a log line saying so.
    virtual ~NTServiceControl();
    /// Copies every field, the manager handle included: only one copy may close it.
    NTServiceControl(const NTServiceControl&) = default;
    NTServiceControl& operator=(const NTServiceControl&) = default;

    /// The code of the last failed call (Win32 numbering), 0 while none failed.
    unsigned long GetLastError() const { return lastError; }
    /// Stores four event identifiers; not used by this class. True.
    bool SetEventMsgId(unsigned long id1, unsigned long id2, unsigned long id3, unsigned long id4);

    /// Connects to the manager; true when connected (or when it already was, with a log line).
    bool OpenSCM();
    /// Drops the connection; true also when there was none (with a log line).
    bool CloseSCM();

    /// Whether the service's unit is known to the manager. A missing one logs a Windows error line.
    bool IsInstalled();
    /// Installs the service: the unit file runs the command line `file` (null:
    /// this program; a path with blanks must be in double quotes) as
    /// `account` (null or "LocalSystem": root; a "DOMAIN\\" prefix is dropped).
    /// `password` is not used: the manager starts services without one. Then
    /// registers the event source in the application log (`applicationLog`) or
    /// the system log, with `messageFile` (null: `file`) as its message file;
    /// a failure there does not fail the installation. False with GetLastError()
    /// 1073 when the service exists.
    bool Install(const char* file, const char* messageFile, bool applicationLog, const char* account,
                 const char* password);
    /// Removes a stopped service and its event source. False with GetLastError()
    /// 1056 and no log line when it still runs.
    bool Uninstall();
    /// Starts the service and waits until it reports running or ends; true when
    /// its program was started, even if the service then failed by itself.
    bool Start();
    /// Stops the service and waits until it has ended.
    bool Stop();
    /// The current state: interrogation first, the manager's record when that fails.
    bool Status(unsigned long& state);
    /// The manager's record of the service.
    bool QueryStatus(SERVICE_STATUS& status);
    /// The state's text from the language resources; unknown states get " (<state>)".
    static std::string CurrentStateToString(unsigned long state);

protected:
    /// The start type written at install; 3 (on demand) unless a derived class changes it.
    unsigned long startType = SERVICE_DEMAND_START;

private:
    SC_HANDLE CreateServiceA(const char* file, const char* account, const char* password);
    bool DeleteService(SC_HANDLE service);
    SC_HANDLE OpenServiceA(unsigned long access);
    bool CloseService(SC_HANDLE service);
    bool StartServiceA(SC_HANDLE service);
    bool QueryService(SC_HANDLE service, SERVICE_STATUS* status);
    bool ControlService(SC_HANDLE service, unsigned long control, SERVICE_STATUS* status);
    bool StopService(SC_HANDLE service);
    bool GetFileName(char* buffer, int size);
    static std::string GetErrorText(unsigned long code);
    void LogMessage(const char* function, const char* text, Log::Importance importance);

    /// Stores `code` and logs it by the table of `function`.
    void LogWindowsError(const char* function, unsigned long code);
    /// The unit's ActiveState, Result and ExecMainStatus as a status; false with the error logged under `function`.
    bool ReadStatus(SC_HANDLE service, SERVICE_STATUS& status, const char* function);
    /// The unit's ActiveState; false with the error logged under `function`.
    bool ReadActiveState(SC_HANDLE service, std::string& state, const char* function);

    const char* serviceName;
    const char* machineName;
    SC_HANDLE manager = nullptr;
    unsigned long eventMsgIds[4] = {0, 0, 0, 0};
    unsigned long lastError = 0;
};

#pragma once
/// \class NTServiceApp
/// The application object of a service program. An application derives from it,
/// gives OnServiceInit, OnServiceRun and OnServiceStop, and leaves InitInstance
/// in place: that enters the dispatcher, and the main thread stays there for as
/// long as the service lives. A service creates no QApplication: its main()
/// constructs the object, calls InitInstance() and returns ExitInstance().
///
/// On Linux the service manager is systemd, with the unit's Type=notify:
///  - status reports go out through the notify protocol ($NOTIFY_SOCKET):
///    start pending as STATUS= with EXTEND_TIMEOUT_USEC= of the wait hint,
///    running as READY=1, stop pending as STOPPING=1, stopped with EXIT_STATUS=;
///  - controls arrive as signals, read by the dispatcher loop on the main
///    thread: SIGTERM (and SIGINT) stop, or shut down when the manager's
///    SystemState says the system is stopping; SIGUSR1 interrogates; SIGHUP is
///    a control that the handler ignores. A stop while the service is start or
///    stop pending is held until the service accepts stops again;
///  - a program started without $NOTIFY_SOCKET was started by hand: the
///    dispatcher fails with 1063 after telling the user so.
/// ServiceMain runs on a thread of its own, as the manager's dispatcher would run it.

#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/operations/ServiceStatus.h>

#include <KORVAutl/Log.h>

#include <atomic>
#include <string>

namespace korva {
class SignalWait;
}

class NTServiceApp : public TsApp
{
public:
    /// `serviceName` (kept as a pointer) names the service with the manager and
    /// as event source; `appName` goes to TsApp. A second object in the process
    /// logs "Application object already exist." and stays without service fields.
    NTServiceApp(const char* serviceName, const char* appName);
    ~NTServiceApp() override;

    /// Sets event identifiers 1 to 4: 3 is written when the service has started,
    /// 4 when it has stopped; 1 and 2 are kept for derived classes. 0 writes nothing. True.
    bool SetEventMsgId(unsigned long id1, unsigned long id2, unsigned long id3, unsigned long id4);

    /// Runs the dispatcher until the service has ended; false whatever happened,
    /// so that no event loop runs.
    bool InitInstance() override;
    /// The exit status that tells the manager how the service ended: the
    /// service-specific code of the last stopped report (0-255), 1 for another
    /// error, else 0.
    int ExitInstance() override;

    /// The one service object of the process, read by the two callbacks.
    static NTServiceApp* mgpTheApp;

protected:
    /// Prepares the work: 0 on success, else a service-specific exit code.
    virtual unsigned long OnServiceInit() = 0;
    /// Does the work; reports SERVICE_RUNNING when ready, returns when the service is to end. False: it failed.
    virtual bool OnServiceRun() = 0;
    /// Called on the dispatcher's thread to make OnServiceRun return. False: it failed.
    virtual bool OnServiceStop() = 0;
    /// Repeats the current state to the manager. True.
    virtual bool OnInterrogate();

    bool StartDispatcher();
    void Main();
    void Start();
    void Stop();
    void Shutdown();
    void Interrogate();
    void Handler(unsigned long control);
    /// Tells the manager the status; false (logged) when the report could not go out.
    bool ReportStatus(unsigned long state, unsigned long checkPoint, unsigned long waitHint,
                      unsigned long win32ExitCode, unsigned long specificExitCode);
    void LogEvent(unsigned long id);
    void LogErrorEvent(unsigned long id, const char* text);
    static std::string GetErrorText(unsigned long code);

    const char* serviceName = nullptr;
    /// Non-null once the handler is registered.
    void* statusHandle = nullptr;
    SERVICE_STATUS status;
    unsigned long eventMsgIds[5] = {0, 0, 0, 0, 0};

private:
    static void ServiceMain(unsigned long argc, char** argv);
    static void ServiceHandler(unsigned long control);

    /// The dispatcher proper; false with `error` set when it could not run.
    bool RunDispatcher(unsigned long& error);
    /// The control that a stop signal stands for: shutdown while the system stops.
    static unsigned long StopOrShutdown();
    /// The message box of a program started by hand.
    void ShowStartedByHand();
    void LogWindowsError(const char* function, const char* format, unsigned long code, const char* text);

    /// The dispatcher's signal reader while it runs; a status report wakes it.
    std::atomic<korva::SignalWait*> dispatcherSignals{nullptr};
};

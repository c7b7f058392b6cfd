#include <KORVAutlwin/operations/NTServiceApp.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/operations/EventLog.h>
#include <KORVAutlwin/operations/NTServiceControl.h>
#include <KORVAutlwin/operations/ServiceMapping.h>
#include <KORVAutlwin/platform/NotifySocket.h>
#include <KORVAutlwin/platform/SignalWait.h>
#include <KORVAutlwin/platform/SystemdBus.h>

#include <QApplication>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <thread>
#include <utility>

NTServiceApp* NTServiceApp::mgpTheApp = nullptr;

namespace {

const char* const kClass = "NTServiceApp";
const char* const kDispatcherError = "Windows error - StartServiceCtrlDispatcher returned error %lu: %s.";
const char* const kStartedByHand =
    "This application is a service, to start it go to Control Panel | Administrative Tools | Services.";
const unsigned int kMessageBoxFlags = 48;  // a warning icon, an OK button

void Write(const char* function, const char* text, Log::Importance importance, bool force = false)
{
    Log::WriteMessage(kClass, function, text, importance, force);
}

} // namespace

NTServiceApp::NTServiceApp(const char* serviceName, const char* appName) : TsApp(appName)
{
    if (mgpTheApp) {
        Write("NTServiceApp", "Application object already exist.", Log::eLogicFailure);
        return;
    }
    this->serviceName = serviceName;
    statusHandle = nullptr;
    mgpTheApp = this;
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = SERVICE_STOPPED;
}

NTServiceApp::~NTServiceApp()
{
    if (mgpTheApp == this)
        mgpTheApp = nullptr;
}

bool NTServiceApp::SetEventMsgId(unsigned long id1, unsigned long id2, unsigned long id3, unsigned long id4)
{
    eventMsgIds[0] = id1;
    eventMsgIds[1] = id2;
    eventMsgIds[2] = id3;
    eventMsgIds[3] = id4;
    return true;
}

bool NTServiceApp::InitInstance()
{
    StartDispatcher();
    return false;
}

int NTServiceApp::ExitInstance()
{
    if (status.dwCurrentState != SERVICE_STOPPED)
        return 0;
    return ServiceMapping::ExitStatusOf(status);
}

bool NTServiceApp::OnInterrogate()
{
    ReportStatus(status.dwCurrentState, 0, 0, 0, 0);
    return true;
}

std::string NTServiceApp::GetErrorText(unsigned long code)
{
    return ServiceMapping::SystemErrorText(code);
}

void NTServiceApp::LogWindowsError(const char* function, const char* format, unsigned long code, const char* text)
{
    char buffer[600];
    std::snprintf(buffer, sizeof buffer, format, code, text);
    Write(function, buffer, Log::eSystemCallFailed);
}

bool NTServiceApp::StartDispatcher()
{
    Write("StartDispatcher", "Service dispatcher launched.", Log::eMilestone);
    unsigned long error = 0;
    if (RunDispatcher(error))
        return true;
    std::string text;
    switch (error) {
    case 13:
        text = "The specified dispatch table contains entries that are not in the proper format";
        break;
    case 1056:
        text = "An instance of the service is already running";
        break;
    case 1063:
        ShowStartedByHand();
        text = GetErrorText(error);
        break;
    default:
        text = GetErrorText(error);
    }
    LogWindowsError("StartDispatcher", kDispatcherError, error, text.c_str());
    return false;
}

bool NTServiceApp::RunDispatcher(unsigned long& error)
{
    if (!korva::NotifySocket::IsAvailable()) {
        error = 1063;
        return false;
    }
    if (!serviceName || !*serviceName) {
        error = 13;
        return false;
    }
    if (dispatcherSignals) {
        error = 1056;
        return false;
    }
    // Blocked before ServiceMain's thread exists, so that it inherits the mask
    // and every control reaches the loop below.
    korva::SignalWait controlSignals({SIGTERM, SIGINT, SIGUSR1, SIGHUP});
    if (!controlSignals.IsOpen()) {
        error = ServiceMapping::ErrorFromErrno(controlSignals.Error());
        return false;
    }
    dispatcherSignals = &controlSignals;
    std::atomic<bool> ended{false};
    std::thread serviceThread([&controlSignals, &ended] {
        ServiceMain(0, nullptr);
        ended = true;
        controlSignals.Wake();
    });
    // A stop that comes while the service is pending waits until it accepts one.
    unsigned long deferred = 0;
    for (int signal = 0; !ended && (signal = controlSignals.Wait()) >= 0;) {
        unsigned long control = signal ? ServiceMapping::ControlOfSignal(signal) : 0;
        if (control == SERVICE_CONTROL_STOP && signal == SIGTERM)
            control = StopOrShutdown();
        if (control == SERVICE_CONTROL_STOP || control == SERVICE_CONTROL_SHUTDOWN)
            deferred = std::exchange(control, 0);
        if (control)
            ServiceHandler(control);
        // A service that has stopped has nothing left to stop; one not yet started gets it once pending ends.
        if (statusHandle && status.dwCurrentState == SERVICE_STOPPED)
            deferred = 0;
        if (deferred && statusHandle && status.dwControlsAccepted & SERVICE_ACCEPT_STOP_AND_SHUTDOWN)
            ServiceHandler(std::exchange(deferred, 0));
    }
    dispatcherSignals = nullptr;
    serviceThread.join();
    return true;
}

unsigned long NTServiceApp::StopOrShutdown()
{
    korva::SystemdBus bus;
    korva::SystemdBus::Error error;
    std::string state;
    if (bus.Open(nullptr) == 0 && bus.GetManagerProperty("SystemState", state, error) && state == "stopping")
        return SERVICE_CONTROL_SHUTDOWN;
    return SERVICE_CONTROL_STOP;
}

void NTServiceApp::ShowStartedByHand()
{
    // Without a window system the console is where the user started us.
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
        CustomMessageBoxDlg box(kMessageBoxFlags, 0, nullptr);
        box.SetTitle(serviceName ? serviceName : "");
        box.SetText(kStartedByHand);
        box.exec();
        return;
    }
    std::fprintf(stderr, "%s: %s\n", serviceName ? serviceName : "", kStartedByHand);
}

void NTServiceApp::ServiceMain(unsigned long, char**)
{
    if (!mgpTheApp) {
        Write("ServiceMain", "Application object is not set", Log::eLogicFailure);
        return;
    }
    mgpTheApp->Main();
}

void NTServiceApp::ServiceHandler(unsigned long control)
{
    if (!mgpTheApp) {
        Write("ServiceHandler", "Application object is not set", Log::eLogicFailure);
        return;
    }
    mgpTheApp->Handler(control);
}

void NTServiceApp::Main()
{
    // Registering the handler: the manager knows us by a valid unit name and listens.
    unsigned long error = 0;
    if (!serviceName || !korva::SystemdBus::IsValidUnitName(std::string(serviceName) + ".service"))
        error = 123;
    else if (!korva::NotifySocket::IsAvailable())
        error = 1060;
    if (error) {
        std::string text = error == 123 ? "The specified service name is invalid" : "The specified service does not exist";
        LogWindowsError("Main", kDispatcherError, error, text.c_str());
        return;
    }
    statusHandle = &status;
    Start();
}

void NTServiceApp::Start()
{
    ReportStatus(SERVICE_START_PENDING, 1, 10000, 0, 0);
    const unsigned long r = OnServiceInit();
    if (r == 0) {
        Write("Start", "Service started.", Log::eMilestone);
        LogEvent(eventMsgIds[2]);
        if (!OnServiceRun())
            Write("Start", "Service failed while running", Log::eLogicFailure);
    } else {
        Write("Start", "Service failed to initialize", Log::eLogicFailure);
    }
    Write("Start", "Service stopped.", Log::eMilestone);
    if (r == 0) {
        LogEvent(eventMsgIds[3]);
        ReportStatus(SERVICE_STOPPED, 0, 0, 0, 0);
    } else {
        ReportStatus(SERVICE_STOPPED, 0, 0, ERROR_SERVICE_SPECIFIC_ERROR, r);
    }
}

void NTServiceApp::Handler(unsigned long control)
{
    switch (control) {
    case SERVICE_CONTROL_STOP:
        Write("Handler", "Stop message arrived at service handler.", Log::eMilestone, true);
        Stop();
        break;
    case SERVICE_CONTROL_INTERROGATE:
        Write("Handler", "Interrogate message arrived at service handler.", Log::eRoutine);
        OnInterrogate();
        break;
    case SERVICE_CONTROL_SHUTDOWN:
        Write("Handler", "Shutdown message arrived at service handler.", Log::eMilestone, true);
        Shutdown();
        break;
    default:
        Write("Handler", "Other message arrived at service handler.", Log::eRoutine);
    }
}

void NTServiceApp::Stop()
{
    ReportStatus(SERVICE_STOP_PENDING, 1, 10000, 0, 0);
    if (!OnServiceStop())
        Write("Stop", "Service failed during stopping.", Log::eLogicFailure);
}

void NTServiceApp::Shutdown()
{
    LogEvent(eventMsgIds[4]);
    ReportStatus(SERVICE_STOP_PENDING, 1, 10000, 0, 0);
    if (!OnServiceStop())
        Write("Shutdown", "Service failed during stop", Log::eLogicFailure);
}

void NTServiceApp::Interrogate()
{
    OnInterrogate();
}

bool NTServiceApp::ReportStatus(unsigned long state, unsigned long checkPoint, unsigned long waitHint,
                                unsigned long win32ExitCode, unsigned long specificExitCode)
{
    const bool pending = state == SERVICE_START_PENDING || state == SERVICE_STOP_PENDING;
    status.dwControlsAccepted = pending ? 0 : SERVICE_ACCEPT_STOP_AND_SHUTDOWN;
    status.dwCurrentState = state;
    status.dwCheckPoint = checkPoint;
    status.dwWaitHint = waitHint;
    status.dwWin32ExitCode = specificExitCode ? ERROR_SERVICE_SPECIFIC_ERROR : win32ExitCode;
    status.dwServiceSpecificExitCode = specificExitCode;

    unsigned long error = 6;
    if (statusHandle) {
        const int sent = korva::NotifySocket::Send(
            ServiceMapping::NotifyState(status, NTServiceControl::CurrentStateToString(state)));
        if (sent == 0) {
            // The dispatcher looks again at a control it held back.
            if (korva::SignalWait* waiting = dispatcherSignals)
                waiting->Wake();
            return true;
        }
        error = sent == ENOENT || sent == EBADF || sent == ECONNREFUSED ? 6
            : sent == EINVAL                                            ? 13
                                                                        : ServiceMapping::ErrorFromErrno(sent);
    }
    const std::string text = error == 6 ? "The specified handle is invalid"
        : error == 13                   ? "The specified service status structure is invalid"
                                        : GetErrorText(error);
    LogWindowsError("ReportStatus", "Windows error - SetServiceStatus returned error %lu: %s.", error, text.c_str());
    return false;
}

void NTServiceApp::LogEvent(unsigned long id)
{
    if (id == 0)
        return;
    EventLog log(serviceName);
    const char* strings[] = {serviceName};
    log.InternalWriteEntry(1, strings, id, EventLog::eInformation, 0, 0, nullptr);
}

void NTServiceApp::LogErrorEvent(unsigned long id, const char* text)
{
    if (id == 0)
        return;
    EventLog log(serviceName);
    const char* strings[] = {serviceName, text};
    log.InternalWriteEntry(2, strings, id, EventLog::eError, 0, 0, nullptr);
}

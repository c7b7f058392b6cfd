// sampleservice: a service that does nothing but live, for trying out the
// service host and its control with the service manager.
//
//   sampleservice                      run as the service (the manager starts it so)
//   sampleservice --install [ACCOUNT]  install it for the manager, running as ACCOUNT
//   sampleservice --uninstall          remove it again (it must be stopped)
//   sampleservice --fail-init=N        run, but let OnServiceInit fail with N
//   sampleservice --slow-init=MS       run, but take MS milliseconds to start
//
// The service writes its log lines to the application log and its start and stop
// to the event log under the source "sampleservice".

#include <KORVAutlwin/operations/NTServiceApp.h>
#include <KORVAutlwin/operations/NTServiceControl.h>

#include <KORVAutl/TsString.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <thread>
#include <string>

namespace {

const char* const kServiceName = "sampleservice";

// Event identifiers of the sample's messages: started and stopped.
const unsigned long kEventStarted = 1000;
const unsigned long kEventStopped = 1001;

class SampleService : public NTServiceApp
{
public:
    SampleService(unsigned long initResult, int initMilliseconds)
        : NTServiceApp(kServiceName, "SampleService"), mInitResult(initResult), mInitMilliseconds(initMilliseconds)
    {
        SetEventMsgId(0, 0, kEventStarted, kEventStopped);
    }

protected:
    unsigned long OnServiceInit() override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(mInitMilliseconds));
        return mInitResult;
    }

    bool OnServiceRun() override
    {
        ReportStatus(SERVICE_RUNNING, 0, 0, 0, 0);
        std::unique_lock<std::mutex> lock(mMutex);
        mStopped.wait(lock, [this] { return mStopRequested; });
        return true;
    }

    // Runs on the dispatcher's thread while OnServiceRun waits on the other.
    bool OnServiceStop() override
    {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mStopRequested = true;
        }
        mStopped.notify_all();
        return true;
    }

private:
    unsigned long mInitResult;
    int mInitMilliseconds;
    std::mutex mMutex;
    std::condition_variable mStopped;
    bool mStopRequested = false;
};

int Usage()
{
    std::fprintf(stderr, "usage: sampleservice [--install [ACCOUNT] | --uninstall | [--fail-init=N] [--slow-init=MS]]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string option = argc > 1 ? argv[1] : "";
    if (option == "--install" || option == "--uninstall") {
        NTServiceControl control(kServiceName);
        const bool install = option == "--install";
        const bool done = install ? control.Install(nullptr, nullptr, true, argc > 2 ? argv[2] : nullptr, nullptr)
                                  : control.Uninstall();
        if (!done) {
            std::fprintf(stderr, "sampleservice: %s failed with error %lu\n", install ? "installing" : "uninstalling",
                         control.GetLastError());
            return 1;
        }
        std::printf("sampleservice: %s\n", install ? "installed" : "uninstalled");
        return 0;
    }
    int initResult = 0;
    int initMilliseconds = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const auto equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        int& value = name == "--fail-init" ? initResult : initMilliseconds;
        if ((name != "--fail-init" && name != "--slow-init") || equals == std::string::npos
            || !TsString::ToInt(argument.c_str() + equals + 1, value) || value < 0)
            return Usage();
    }
    SampleService service(static_cast<unsigned long>(initResult), initMilliseconds);
    service.InitInstance();
    return service.ExitInstance();
}

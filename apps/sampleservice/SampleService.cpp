// sampleservice: a service that does nothing but live, for trying out the
// service host and its control with the service manager.
//
//   sampleservice                      run as the service (the manager starts it so)
//   sampleservice --install [ACCOUNT]  install it for the manager, running as ACCOUNT
//   sampleservice --uninstall          remove it again (it must be stopped)
//   sampleservice --fail-init=N        run, but let OnServiceInit fail with N
//
// The service writes its log lines to the application log and its start and stop
// to the event log under the source "sampleservice".

#include <KORVAutlwin/operations/NTServiceApp.h>
#include <KORVAutlwin/operations/NTServiceControl.h>

#include <KORVAutl/TsString.h>

#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

namespace {

const char* const kServiceName = "sampleservice";

// Event identifiers of the sample's messages: started and stopped.
const unsigned long kEventStarted = 1000;
const unsigned long kEventStopped = 1001;

class SampleService : public NTServiceApp
{
public:
    explicit SampleService(unsigned long initResult)
        : NTServiceApp(kServiceName, "SampleService"), mInitResult(initResult)
    {
        SetEventMsgId(0, 0, kEventStarted, kEventStopped);
    }

protected:
    unsigned long OnServiceInit() override { return mInitResult; }

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
    std::mutex mMutex;
    std::condition_variable mStopped;
    bool mStopRequested = false;
};

int Usage()
{
    std::fprintf(stderr, "usage: sampleservice [--install [ACCOUNT] | --uninstall | --fail-init=N]\n");
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
    unsigned long initResult = 0;
    if (option.rfind("--fail-init=", 0) == 0) {
        int value = 0;
        if (!TsString::ToInt(option.c_str() + std::strlen("--fail-init="), value) || value <= 0)
            return Usage();
        initResult = static_cast<unsigned long>(value);
    } else if (!option.empty()) {
        return Usage();
    }
    SampleService service(initResult);
    service.InitInstance();
    return service.ExitInstance();
}

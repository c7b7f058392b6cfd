#pragma once
// Stands in for systemd's manager in the service control tests, because systemd
// cannot run on the test machines (it would clean /tmp and start every installed
// service). A private dbus-daemon, started with its own configuration and socket
// in a test folder and stopped by its PID, carries the real D-Bus traffic; the
// peer owns org.freedesktop.systemd1 there and answers the part of the Manager,
// Unit and Service interfaces that NTServiceControl calls, with systemd's object
// paths, signatures, property names and error names. It reads unit files from
// one folder, runs a unit's ExecStart as its child with a notify socket, and
// moves the unit's state on that socket's reports and on the child's end as
// systemd does for Type=notify.

#include <KORVAutlwin/platform/ChildProcess.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

struct sd_bus;

/// A dbus-daemon of the test's own; Address() is empty when it did not come up.
class PrivateBus
{
public:
    explicit PrivateBus(const std::string& folder);
    ~PrivateBus();
    const std::string& Address() const { return mAddress; }

private:
    korva::ChildProcess mDaemon;
    std::string mAddress;
};

class SystemdPeer
{
public:
    struct Unit
    {
        std::string name, path, execStart, job;
        bool loaded = false, jobIsStart = false;
        std::string activeState = "inactive", result = "success";
        int execMainStatus = 0, notifyFd = -1;
        korva::ChildProcess child;
        unsigned jobId = 0;
    };

    /// Serves the manager on the bus at `address` with the unit files in `unitFolder`;
    /// notify sockets go to `folder`. Ready() tells whether it owns the name.
    SystemdPeer(const std::string& address, const std::string& unitFolder, const std::string& folder);
    ~SystemdPeer();
    bool Ready() const { return mReady; }
    /// The manager's SystemState ("running"; "stopping" during a shutdown).
    void SetSystemState(const std::string& state);

    // For the bus handlers, which run on the peer's thread with `mutex` held.
    std::mutex mutex;
    std::string systemState = "running";
    std::map<std::string, std::unique_ptr<Unit>> units;
    Unit& Load(const std::string& name);
    std::string StartOrStop(Unit& unit, bool start);

private:
    void Serve();
    void Watch(Unit& unit);
    void FinishJob(Unit& unit, const char* result);

    sd_bus* mBus = nullptr;
    std::string mUnitFolder, mFolder;
    bool mReady = false, mQuit = false;
    unsigned mJobs = 0;
    std::vector<std::tuple<unsigned, std::string, std::string, std::string>> mFinished;  // JobRemoved to send
    std::thread mThread;
};

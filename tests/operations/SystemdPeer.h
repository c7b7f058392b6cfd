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
#include <vector>

struct sd_bus;
struct sd_bus_slot;

/// A dbus-daemon of the test's own.
class PrivateBus
{
public:
    explicit PrivateBus(const std::string& folder);
    ~PrivateBus();
    /// "unix:path=...", empty when the daemon did not come up.
    std::string Address() const { return mAddress; }

private:
    korva::ChildProcess mDaemon;
    std::string mAddress;
};

class SystemdPeer
{
public:
    struct Unit;

    /// Serves the manager on the bus at `address` with the unit files in `unitFolder`;
    /// notify sockets go to `folder`. Ready() tells whether it owns the name.
    SystemdPeer(const std::string& address, const std::string& unitFolder, const std::string& folder);
    ~SystemdPeer();
    bool Ready() const { return mReady; }

    /// The manager's SystemState ("running"; "stopping" during a shutdown).
    void SetSystemState(const std::string& state);
    /// The notify messages the unit's processes sent, in order.
    std::vector<std::string> Notifications(const std::string& unit);

    // The bus handlers reach the state through these.
    std::mutex mutex;
    std::string systemState = "running";
    std::map<std::string, std::unique_ptr<Unit>> units;
    Unit& Load(const std::string& name);
    void StartUnit(Unit& unit);
    void StopUnit(Unit& unit);
    std::string NewJob(Unit& unit);
    void FinishJob(Unit& unit, const char* result);

private:
    void Serve();
    void Watch(Unit& unit);

    sd_bus* mBus = nullptr;
    std::vector<sd_bus_slot*> mSlots;
    std::string mUnitFolder;
    std::string mFolder;
    bool mReady = false;
    bool mQuit = false;
    unsigned mJobs = 0;
    std::vector<std::tuple<unsigned, std::string, std::string, std::string>> mFinished;  // JobRemoved to send
    std::thread mThread;
};

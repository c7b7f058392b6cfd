#include "operations/SystemdPeer.h"

#include "utl/TempDir.h"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

PrivateBus::PrivateBus(const std::string& folder)
{
    // The daemon prints its address once it takes connections.
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0)
        return;
    const std::string address = "unix:path=" + folder + "/system_bus_socket";
    if (mDaemon.Spawn("/usr/bin/dbus-daemon", {"dbus-daemon", "--config-file=" KORVA_TEST_DATA_DIR "/bus.conf",
                                                "--address=" + address, "--print-address=3", "--nofork",
                                                "--nopidfile", "--nosyslog"},
                      {{ready[1], 3}})
        == 0) {
        close(ready[1]);
        pollfd printed{ready[0], POLLIN, 0};
        char buffer[256];
        if (poll(&printed, 1, 10000) > 0 && read(ready[0], buffer, sizeof buffer) > 0)
            mAddress = address;
    } else {
        close(ready[1]);
    }
    close(ready[0]);
}

PrivateBus::~PrivateBus()
{
    if (mDaemon.Pid()) {
        mDaemon.Kill(SIGTERM);
        mDaemon.Wait();
    }
}

namespace {

const char* const kManagerPath = "/org/freedesktop/systemd1";
const char* const kUnitPrefix = "/org/freedesktop/systemd1/unit";

SystemdPeer& Peer(void* data)
{
    return *static_cast<SystemdPeer*>(data);
}

// The manager's answer to a malformed name, to a unit without a file, and to a
// kill without a process.
SystemdPeer::Unit* Find(sd_bus_message* message, void* data, sd_bus_error* error, bool needFile, int* signal = nullptr)
{
    const char* name = nullptr;
    const char* mode = nullptr;
    const char* signature = signal ? "ssi" : std::strcmp(sd_bus_message_get_member(message), "LoadUnit") ? "ss" : "s";
    if (sd_bus_message_read(message, signature, &name, &mode, signal) < 0 || !*name || std::strpbrk(name, "/ \t")
        || !std::strchr(name, '.')) {
        sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "Unit name %s is not valid.", name ? name : "");
        return nullptr;
    }
    SystemdPeer::Unit& unit = Peer(data).Load(name);
    if (needFile && !unit.loaded) {
        sd_bus_error_setf(error, "org.freedesktop.systemd1.NoSuchUnit", "Unit %s not found.", name);
        return nullptr;
    }
    return &unit;
}

int LoadUnit(sd_bus_message* message, void* data, sd_bus_error* error)
{
    SystemdPeer::Unit* unit = Find(message, data, error, false);
    return unit ? sd_bus_reply_method_return(message, "o", unit->path.c_str()) : -EINVAL;
}

int StartOrStopUnit(sd_bus_message* message, void* data, sd_bus_error* error)
{
    SystemdPeer::Unit* unit = Find(message, data, error, true);
    if (!unit)
        return -ENOENT;
    const bool start = std::strcmp(sd_bus_message_get_member(message), "StartUnit") == 0;
    return sd_bus_reply_method_return(message, "o", Peer(data).StartOrStop(*unit, start).c_str());
}

int KillUnit(sd_bus_message* message, void* data, sd_bus_error* error)
{
    int signal = 0;
    SystemdPeer::Unit* unit = Find(message, data, error, true, &signal);
    if (!unit)
        return -ENOENT;
    if (!unit->child.Pid())
        return sd_bus_error_setf(error, "org.freedesktop.systemd1.NoSuchProcess", "No main process to kill");
    unit->child.Kill(signal);
    return sd_bus_reply_method_return(message, "");
}

// Unit files are read at each look-up, so a reload has nothing left to do.
int Acknowledge(sd_bus_message* message, void*, sd_bus_error*)
{
    return sd_bus_reply_method_return(message, "");
}

int SystemState(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* data, sd_bus_error*)
{
    return sd_bus_message_append(reply, "s", Peer(data).systemState.c_str());
}

int UnitProperty(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply, void* data,
                 sd_bus_error*)
{
    const auto& unit = *static_cast<SystemdPeer::Unit*>(data);
    if (std::strcmp(property, "ExecMainStatus") == 0)
        return sd_bus_message_append(reply, "i", unit.execMainStatus);
    const std::string value = std::strcmp(property, "LoadState") == 0 ? (unit.loaded ? "loaded" : "not-found")
        : std::strcmp(property, "ActiveState") == 0                   ? unit.activeState
                                                                      : unit.result;
    return sd_bus_message_append(reply, "s", value.c_str());
}

int FindUnit(sd_bus*, const char* path, const char*, void* data, void** found, sd_bus_error*)
{
    char* name = nullptr;
    if (sd_bus_path_decode(path, kUnitPrefix, &name) <= 0)
        return 0;
    const auto unit = Peer(data).units.find(name);
    std::free(name);
    if (unit == Peer(data).units.end())
        return 0;
    *found = unit->second.get();
    return 1;
}

const sd_bus_vtable kManager[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("LoadUnit", "s", "o", LoadUnit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("StartUnit", "ss", "o", StartOrStopUnit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("StopUnit", "ss", "o", StartOrStopUnit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("KillUnit", "ssi", "", KillUnit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Reload", "", "", Acknowledge, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Subscribe", "", "", Acknowledge, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("SystemState", "s", SystemState, 0, 0),
    SD_BUS_SIGNAL("JobRemoved", "uoss", 0),
    SD_BUS_VTABLE_END};

const sd_bus_vtable kUnit[] = {SD_BUS_VTABLE_START(0), SD_BUS_PROPERTY("LoadState", "s", UnitProperty, 0, 0),
                               SD_BUS_PROPERTY("ActiveState", "s", UnitProperty, 0, 0), SD_BUS_VTABLE_END};

const sd_bus_vtable kService[] = {SD_BUS_VTABLE_START(0), SD_BUS_PROPERTY("Result", "s", UnitProperty, 0, 0),
                                  SD_BUS_PROPERTY("ExecMainStatus", "i", UnitProperty, 0, 0), SD_BUS_VTABLE_END};

} // namespace

SystemdPeer::SystemdPeer(const std::string& address, const std::string& unitFolder, const std::string& folder)
    : mUnitFolder(unitFolder), mFolder(folder)
{
    if (sd_bus_new(&mBus) < 0 || sd_bus_set_address(mBus, address.c_str()) < 0 || sd_bus_set_bus_client(mBus, 1) < 0
        || sd_bus_start(mBus) < 0
        || sd_bus_add_object_vtable(mBus, nullptr, kManagerPath, "org.freedesktop.systemd1.Manager", kManager, this) < 0
        || sd_bus_add_fallback_vtable(mBus, nullptr, kUnitPrefix, "org.freedesktop.systemd1.Unit", kUnit, FindUnit, this) < 0
        || sd_bus_add_fallback_vtable(mBus, nullptr, kUnitPrefix, "org.freedesktop.systemd1.Service", kService, FindUnit,
                                      this) < 0)
        return;
    mReady = sd_bus_request_name(mBus, "org.freedesktop.systemd1", 0) >= 0;
    if (mReady)
        mThread = std::thread([this] { Serve(); });
}

SystemdPeer::~SystemdPeer()
{
    {
        std::lock_guard<std::mutex> lock(mutex);
        mQuit = true;
    }
    if (mThread.joinable())
        mThread.join();
    for (auto& [name, unit] : units) {
        if (unit->child.Pid()) {
            unit->child.Kill(SIGKILL);
            unit->child.Wait();
        }
        if (unit->notifyFd >= 0)
            close(unit->notifyFd);
    }
    sd_bus_flush_close_unref(mBus);
}

void SystemdPeer::SetSystemState(const std::string& state)
{
    std::lock_guard<std::mutex> lock(mutex);
    systemState = state;
}

SystemdPeer::Unit& SystemdPeer::Load(const std::string& name)
{
    auto& unit = units[name];
    if (!unit) {
        unit = std::make_unique<Unit>();
        unit->name = name;
        char* path = nullptr;
        sd_bus_path_encode(kUnitPrefix, name.c_str(), &path);
        unit->path = path;
        std::free(path);
    }
    std::ifstream file(mUnitFolder + "/" + name);
    unit->loaded = file.is_open();
    for (std::string line; std::getline(file, line);)
        if (line.rfind("ExecStart=", 0) == 0)
            unit->execStart = line.substr(10);
    return *unit;
}

void SystemdPeer::FinishJob(Unit& unit, const char* result)
{
    if (!unit.job.empty())
        mFinished.emplace_back(unit.jobId, unit.job, unit.name, result);
    unit.job.clear();
}

std::string SystemdPeer::StartOrStop(Unit& unit, bool start)
{
    unit.jobId = ++mJobs;
    unit.job = std::string(kManagerPath) + "/job/" + std::to_string(unit.jobId);
    unit.jobIsStart = start;
    const std::string job = unit.job;
    if (!start || unit.child.Pid()) {
        if (!start && unit.child.Pid()) {
            unit.child.Kill(SIGTERM);
            unit.activeState = "deactivating";
        } else {
            FinishJob(unit, "done");
        }
        return job;
    }
    const std::string socketPath = mFolder + "/" + unit.name + ".notify";
    unlink(socketPath.c_str());
    unit.notifyFd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
    bind(unit.notifyFd, reinterpret_cast<sockaddr*>(&address), sizeof address);

    // env hands the socket to the program alone; ChildProcess gives it a clean signal state, as systemd does.
    std::vector<std::string> words{"env", "NOTIFY_SOCKET=" + socketPath};
    std::istringstream line(unit.execStart);
    for (std::string word; line >> word;)
        words.push_back(word);
    const bool runnable = words.size() > 2 && access(words[2].c_str(), X_OK) == 0;
    const int spawned = runnable ? unit.child.Spawn("/usr/bin/env", words) : ENOENT;
    unit.result = "success";
    unit.execMainStatus = 0;
    unit.activeState = "activating";
    if (spawned != 0) {
        unit.activeState = "failed";
        unit.result = "exit-code";
        unit.execMainStatus = 203;  // systemd's status for a program it could not run
        FinishJob(unit, "failed");
    }
    return job;
}

void SystemdPeer::Watch(Unit& unit)
{
    char buffer[4096];
    for (ssize_t got; unit.notifyFd >= 0 && (got = recv(unit.notifyFd, buffer, sizeof buffer, 0)) > 0;) {
        const std::string report(buffer, got);
        if (report.find("READY=1") != std::string::npos && unit.activeState == "activating") {
            unit.activeState = "active";
            FinishJob(unit, "done");
        }
        if (report.find("STOPPING=1") != std::string::npos)
            unit.activeState = "deactivating";
    }
    int status = 0;
    if (!unit.child.Pid() || waitpid(unit.child.Pid(), &status, WNOHANG) != unit.child.Pid())
        return;
    unit.child = korva::ChildProcess();  // reaped here, with its status
    close(unit.notifyFd);
    unit.notifyFd = -1;
    const bool exited = WIFEXITED(status);
    unit.execMainStatus = exited ? WEXITSTATUS(status) : WTERMSIG(status);
    // As systemd does, SIGTERM, SIGINT, SIGHUP and SIGPIPE count as a clean end.
    const int signal = exited ? 0 : unit.execMainStatus;
    const bool clean = exited ? unit.execMainStatus == 0
                              : signal == SIGTERM || signal == SIGINT || signal == SIGHUP || signal == SIGPIPE;
    unit.activeState = clean ? "inactive" : "failed";
    unit.result = clean ? "success" : exited ? "exit-code" : "signal";
    FinishJob(unit, unit.jobIsStart ? "failed" : "done");
}

void SystemdPeer::Serve()
{
    for (;;) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (mQuit)
                return;
            while (sd_bus_process(mBus, nullptr) > 0) {
            }
            for (auto& [name, unit] : units)
                Watch(*unit);
            for (const auto& [id, job, unit, result] : mFinished)
                sd_bus_emit_signal(mBus, kManagerPath, "org.freedesktop.systemd1.Manager", "JobRemoved", "uoss", id,
                                   job.c_str(), unit.c_str(), result.c_str());
            mFinished.clear();
            sd_bus_flush(mBus);
        }
        sd_bus_wait(mBus, 20000);
    }
}

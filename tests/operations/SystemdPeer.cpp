#include "operations/SystemdPeer.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

extern char** environ;

struct SystemdPeer::Unit
{
    std::string name, path, execStart;
    bool loaded = false;
    std::string activeState = "inactive", subState = "dead", result = "success";
    int execMainStatus = 0, execMainCode = 0;
    pid_t pid = 0;
    int notifyFd = -1;
    std::string job;
    unsigned jobId = 0;
    bool jobIsStart = false;
    std::vector<std::string> notes;
};

PrivateBus::PrivateBus(const std::string& folder)
{
    const std::string socket = folder + "/system_bus_socket";
    std::ofstream(folder + "/bus.conf")
        << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig><listen>unix:path=" << socket << "</listen><auth>EXTERNAL</auth>\n"
           "<policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
           "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>\n";
    if (mDaemon.Spawn("/usr/bin/dbus-daemon", {"dbus-daemon", "--config-file=" + folder + "/bus.conf", "--nofork",
                                                "--nopidfile", "--nosyslog"}) != 0)
        return;
    for (int i = 0; i < 250 && !std::filesystem::exists(socket); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    if (std::filesystem::exists(socket))
        mAddress = "unix:path=" + socket;
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

bool ValidName(const std::string& name)
{
    return !name.empty() && name.find_first_of("/ \t") == std::string::npos && name.find('.') != std::string::npos;
}

int LoadUnit(sd_bus_message* message, void* data, sd_bus_error* error)
{
    const char* name = nullptr;
    if (int result = sd_bus_message_read(message, "s", &name); result < 0)
        return result;
    if (!ValidName(name))
        return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "Unit name %s is not valid.", name);
    return sd_bus_reply_method_return(message, "o", Peer(data).Load(name).path.c_str());
}

// StartUnit, StopUnit and KillUnit look up a unit that has a file.
SystemdPeer::Unit* Known(sd_bus_message* message, void* data, sd_bus_error* error, const char* signature,
                         int* signal = nullptr)
{
    const char* name = nullptr;
    const char* mode = nullptr;
    if (sd_bus_message_read(message, signature, &name, &mode, signal) < 0 || !ValidName(name)) {
        sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "Unit name is not valid.");
        return nullptr;
    }
    SystemdPeer::Unit& unit = Peer(data).Load(name);
    if (!unit.loaded) {
        sd_bus_error_setf(error, "org.freedesktop.systemd1.NoSuchUnit", "Unit %s not found.", name);
        return nullptr;
    }
    return &unit;
}

int StartUnit(sd_bus_message* message, void* data, sd_bus_error* error)
{
    SystemdPeer::Unit* unit = Known(message, data, error, "ss");
    if (!unit)
        return -sd_bus_error_get_errno(error);
    const std::string job = Peer(data).NewJob(*unit);
    Peer(data).StartUnit(*unit);
    return sd_bus_reply_method_return(message, "o", job.c_str());
}

int StopUnit(sd_bus_message* message, void* data, sd_bus_error* error)
{
    SystemdPeer::Unit* unit = Known(message, data, error, "ss");
    if (!unit)
        return -sd_bus_error_get_errno(error);
    const std::string job = Peer(data).NewJob(*unit);
    Peer(data).StopUnit(*unit);
    return sd_bus_reply_method_return(message, "o", job.c_str());
}

int KillUnit(sd_bus_message* message, void* data, sd_bus_error* error)
{
    int signal = 0;
    SystemdPeer::Unit* unit = Known(message, data, error, "ssi", &signal);
    if (!unit)
        return -sd_bus_error_get_errno(error);
    if (!unit->pid)
        return sd_bus_error_setf(error, "org.freedesktop.systemd1.NoSuchProcess", "No main process to kill");
    kill(unit->pid, signal);
    return sd_bus_reply_method_return(message, "");
}

int Reload(sd_bus_message* message, void* data, sd_bus_error*)
{
    for (auto& [name, unit] : Peer(data).units)
        Peer(data).Load(name);
    return sd_bus_reply_method_return(message, "");
}

int Subscribe(sd_bus_message* message, void*, sd_bus_error*)
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
    const std::string name = property;
    if (name == "LoadState")
        return sd_bus_message_append(reply, "s", unit.loaded ? "loaded" : "not-found");
    if (name == "ActiveState")
        return sd_bus_message_append(reply, "s", unit.activeState.c_str());
    if (name == "SubState")
        return sd_bus_message_append(reply, "s", unit.subState.c_str());
    if (name == "Result")
        return sd_bus_message_append(reply, "s", unit.result.c_str());
    if (name == "ExecMainStatus")
        return sd_bus_message_append(reply, "i", unit.execMainStatus);
    if (name == "ExecMainCode")
        return sd_bus_message_append(reply, "i", unit.execMainCode);
    return sd_bus_message_append(reply, "u", static_cast<std::uint32_t>(unit.pid));
}

int FindUnit(sd_bus*, const char* path, const char*, void* data, void** found, sd_bus_error*)
{
    char* name = nullptr;
    if (sd_bus_path_decode(path, kUnitPrefix, &name) <= 0)
        return 0;
    auto& units = Peer(data).units;
    const auto unit = units.find(name);
    std::free(name);
    if (unit == units.end())
        return 0;
    *found = unit->second.get();
    return 1;
}

const sd_bus_vtable kManager[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("LoadUnit", "s", "o", LoadUnit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("StartUnit", "ss", "o", StartUnit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("StopUnit", "ss", "o", StopUnit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("KillUnit", "ssi", "", KillUnit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Reload", "", "", Reload, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Subscribe", "", "", Subscribe, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("SystemState", "s", SystemState, 0, 0),
    SD_BUS_SIGNAL("JobRemoved", "uoss", 0),
    SD_BUS_VTABLE_END};

const sd_bus_vtable kUnit[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("LoadState", "s", UnitProperty, 0, 0),
    SD_BUS_PROPERTY("ActiveState", "s", UnitProperty, 0, 0),
    SD_BUS_PROPERTY("SubState", "s", UnitProperty, 0, 0),
    SD_BUS_VTABLE_END};

const sd_bus_vtable kService[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Result", "s", UnitProperty, 0, 0),
    SD_BUS_PROPERTY("ExecMainStatus", "i", UnitProperty, 0, 0),
    SD_BUS_PROPERTY("ExecMainCode", "i", UnitProperty, 0, 0),
    SD_BUS_PROPERTY("MainPID", "u", UnitProperty, 0, 0),
    SD_BUS_VTABLE_END};

} // namespace

SystemdPeer::SystemdPeer(const std::string& address, const std::string& unitFolder, const std::string& folder)
    : mUnitFolder(unitFolder), mFolder(folder)
{
    if (sd_bus_new(&mBus) < 0)
        return;
    sd_bus_set_address(mBus, address.c_str());
    sd_bus_set_bus_client(mBus, 1);
    if (sd_bus_start(mBus) < 0)
        return;
    const struct
    {
        const char* interface;
        const sd_bus_vtable* table;
        bool fallback;
    } objects[] = {{"org.freedesktop.systemd1.Manager", kManager, false},
                   {"org.freedesktop.systemd1.Unit", kUnit, true},
                   {"org.freedesktop.systemd1.Service", kService, true}};
    for (const auto& object : objects) {
        sd_bus_slot* slot = nullptr;
        const int added = object.fallback
            ? sd_bus_add_fallback_vtable(mBus, &slot, kUnitPrefix, object.interface, object.table, FindUnit, this)
            : sd_bus_add_object_vtable(mBus, &slot, kManagerPath, object.interface, object.table, this);
        if (added < 0)
            return;
        mSlots.push_back(slot);
    }
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
        if (unit->pid) {
            kill(unit->pid, SIGKILL);
            waitpid(unit->pid, nullptr, 0);
        }
        if (unit->notifyFd >= 0)
            close(unit->notifyFd);
    }
    for (sd_bus_slot* slot : mSlots)
        sd_bus_slot_unref(slot);
    sd_bus_flush_close_unref(mBus);
}

void SystemdPeer::SetSystemState(const std::string& state)
{
    std::lock_guard<std::mutex> lock(mutex);
    systemState = state;
}

std::vector<std::string> SystemdPeer::Notifications(const std::string& unit)
{
    std::lock_guard<std::mutex> lock(mutex);
    return units.count(unit) ? units[unit]->notes : std::vector<std::string>();
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

std::string SystemdPeer::NewJob(Unit& unit)
{
    unit.jobId = ++mJobs;
    unit.job = std::string(kManagerPath) + "/job/" + std::to_string(unit.jobId);
    return unit.job;
}

void SystemdPeer::FinishJob(Unit& unit, const char* result)
{
    if (!unit.job.empty())
        mFinished.emplace_back(unit.jobId, unit.job, unit.name, result);
    unit.job.clear();
}

void SystemdPeer::StartUnit(Unit& unit)
{
    unit.jobIsStart = true;
    if (unit.pid) {
        FinishJob(unit, "done");
        return;
    }
    const std::string socketPath = mFolder + "/" + unit.name + ".notify";
    unlink(socketPath.c_str());
    unit.notifyFd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
    bind(unit.notifyFd, reinterpret_cast<sockaddr*>(&address), sizeof address);

    std::vector<std::string> words;
    std::istringstream line(unit.execStart);
    for (std::string word; line >> word;)
        words.push_back(word);
    std::vector<std::string> variables = {"NOTIFY_SOCKET=" + socketPath};
    for (char** variable = environ; *variable; ++variable)
        variables.push_back(*variable);
    std::vector<char*> argv, envp;
    for (auto& word : words)
        argv.push_back(word.data());
    for (auto& variable : variables)
        envp.push_back(variable.data());
    argv.push_back(nullptr);
    envp.push_back(nullptr);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    pid_t pid = 0;
    const int spawned = words.empty() ? ENOENT : posix_spawn(&pid, argv[0], nullptr, &attributes, argv.data(), envp.data());
    posix_spawnattr_destroy(&attributes);
    unit.result = "success";
    unit.execMainCode = unit.execMainStatus = 0;
    if (spawned != 0) {
        // systemd's exit status for a program it could not run
        unit.activeState = unit.subState = "failed";
        unit.result = "exit-code";
        unit.execMainCode = CLD_EXITED;
        unit.execMainStatus = 203;
        FinishJob(unit, "failed");
        return;
    }
    unit.pid = pid;
    unit.activeState = "activating";
    unit.subState = "start";
}

void SystemdPeer::StopUnit(Unit& unit)
{
    unit.jobIsStart = false;
    if (!unit.pid) {
        FinishJob(unit, "done");
        return;
    }
    kill(unit.pid, SIGTERM);
    unit.activeState = "deactivating";
    unit.subState = "stop-sigterm";
}

void SystemdPeer::Watch(Unit& unit)
{
    char buffer[4096];
    for (ssize_t got; unit.notifyFd >= 0 && (got = recv(unit.notifyFd, buffer, sizeof buffer, 0)) > 0;) {
        const std::string note(buffer, got);
        unit.notes.push_back(note);
        if (note.find("READY=1") != std::string::npos && unit.activeState == "activating") {
            unit.activeState = "active";
            unit.subState = "running";
            FinishJob(unit, "done");
        }
        if (note.find("STOPPING=1") != std::string::npos && unit.activeState == "active") {
            unit.activeState = "deactivating";
            unit.subState = "stop-sigterm";
        }
    }
    int status = 0;
    if (!unit.pid || waitpid(unit.pid, &status, WNOHANG) != unit.pid)
        return;
    unit.pid = 0;
    close(unit.notifyFd);
    unit.notifyFd = -1;
    const bool exited = WIFEXITED(status);
    unit.execMainCode = exited ? CLD_EXITED : CLD_KILLED;
    unit.execMainStatus = exited ? WEXITSTATUS(status) : WTERMSIG(status);
    // As systemd does, SIGTERM, SIGINT, SIGHUP and SIGPIPE count as a clean end.
    const int signal = exited ? 0 : unit.execMainStatus;
    const bool clean = exited ? unit.execMainStatus == 0
                              : signal == SIGTERM || signal == SIGINT || signal == SIGHUP || signal == SIGPIPE;
    unit.activeState = clean ? "inactive" : "failed";
    unit.subState = clean ? "dead" : "failed";
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

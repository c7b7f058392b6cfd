#include <KORVAutlwin/platform/SystemdBus.h>

#include <cctype>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <map>

#include <systemd/sd-bus.h>

namespace korva {

namespace {

/// Frees an sd_bus_error and copies what it said.
class CallError
{
public:
    explicit CallError(SystemdBus::Error& target) : mTarget(target) {}
    ~CallError() { sd_bus_error_free(&mError); }
    sd_bus_error* operator&() { return &mError; }
    bool Fail(int result)
    {
        mTarget.errnoValue = result < 0 ? -result : result;
        mTarget.name = mError.name ? mError.name : "";
        mTarget.message = mError.message ? mError.message : std::strerror(mTarget.errnoValue);
        return false;
    }

private:
    SystemdBus::Error& mTarget;
    sd_bus_error mError = SD_BUS_ERROR_NULL;
};

struct MessageRef
{
    sd_bus_message* message = nullptr;
    ~MessageRef() { sd_bus_message_unref(message); }
};

struct JobWatch
{
    std::map<std::string, std::string> finished;  // job path -> result
};

int OnJobRemoved(sd_bus_message* message, void* data, sd_bus_error*)
{
    std::uint32_t id = 0;
    const char* job = nullptr;
    const char* unit = nullptr;
    const char* result = nullptr;
    if (sd_bus_message_read(message, "uoss", &id, &job, &unit, &result) >= 0)
        static_cast<JobWatch*>(data)->finished[job] = result;
    return 0;
}

} // namespace

SystemdBus::~SystemdBus()
{
    sd_bus_flush_close_unref(mBus);
}

int SystemdBus::Open(const char* machine)
{
    sd_bus_flush_close_unref(mBus);
    mBus = nullptr;
    const int result = machine && *machine ? sd_bus_open_system_remote(&mBus, machine) : sd_bus_open_system(&mBus);
    if (result < 0) {
        mBus = nullptr;
        return -result;
    }
    return 0;
}

bool SystemdBus::IsValidUnitName(const std::string& unit)
{
    static const char* const types[] = {".service", ".socket", ".target", ".device", ".mount", ".automount",
                                        ".swap", ".timer", ".path", ".slice", ".scope"};
    if (unit.empty() || unit.size() > 255)
        return false;
    for (char c : unit)
        if (!std::isalnum(static_cast<unsigned char>(c)) && !std::strchr(":-_.\\@", c))
            return false;
    const auto dot = unit.rfind('.');
    if (dot == std::string::npos || dot == 0)
        return false;
    for (const char* type : types)
        if (unit.compare(dot, std::string::npos, type) == 0)
            return true;
    return false;
}

std::string SystemdBus::UnitFileDirectory()
{
    const char* folder = std::getenv("KORVA_SYSTEMD_UNIT_DIR");
    return folder && *folder == '/' ? folder : "/etc/systemd/system";
}

bool SystemdBus::LoadUnit(const std::string& unit, std::string& path, Error& error)
{
    CallError callError(error);
    MessageRef reply;
    int result = sd_bus_call_method(mBus, kService, kManagerPath, kManagerInterface, "LoadUnit", &callError,
                                    &reply.message, "s", unit.c_str());
    if (result < 0)
        return callError.Fail(result);
    const char* objectPath = nullptr;
    result = sd_bus_message_read(reply.message, "o", &objectPath);
    if (result < 0)
        return callError.Fail(result);
    path = objectPath;
    return true;
}

bool SystemdBus::GetProperty(const std::string& path, const char* interface, const char* name, std::string& value,
                             Error& error)
{
    CallError callError(error);
    char* text = nullptr;
    const int result = sd_bus_get_property_string(mBus, kService, path.c_str(), interface, name, &callError, &text);
    if (result < 0)
        return callError.Fail(result);
    value = text;
    std::free(text);
    return true;
}

bool SystemdBus::GetProperty(const std::string& path, const char* interface, const char* name, std::int32_t& value,
                             Error& error)
{
    CallError callError(error);
    const int result =
        sd_bus_get_property_trivial(mBus, kService, path.c_str(), interface, name, &callError, 'i', &value);
    return result < 0 ? callError.Fail(result) : true;
}

bool SystemdBus::GetManagerProperty(const char* name, std::string& value, Error& error)
{
    return GetProperty(kManagerPath, kManagerInterface, name, value, error);
}

bool SystemdBus::Reload(Error& error)
{
    CallError callError(error);
    const int result =
        sd_bus_call_method(mBus, kService, kManagerPath, kManagerInterface, "Reload", &callError, nullptr, "");
    return result < 0 ? callError.Fail(result) : true;
}

bool SystemdBus::RunJob(const char* method, const std::string& unit, int timeoutMs, std::string& jobResult,
                        Error& error)
{
    CallError callError(error);
    // The match comes first, so that a job that ends at once is not missed.
    JobWatch watch;
    sd_bus_slot* slot = nullptr;
    int result = sd_bus_match_signal(mBus, &slot, kService, kManagerPath, kManagerInterface, "JobRemoved",
                                     OnJobRemoved, &watch);
    if (result < 0)
        return callError.Fail(result);
    struct SlotRef
    {
        sd_bus_slot* slot;
        ~SlotRef() { sd_bus_slot_unref(slot); }
    } slotRef{slot};
    // The manager sends job signals only to subscribers; a second Subscribe is harmless.
    sd_bus_call_method(mBus, kService, kManagerPath, kManagerInterface, "Subscribe", nullptr, nullptr, "");

    MessageRef reply;
    result = sd_bus_call_method(mBus, kService, kManagerPath, kManagerInterface, method, &callError, &reply.message,
                                "ss", unit.c_str(), "replace");
    if (result < 0)
        return callError.Fail(result);
    const char* job = nullptr;
    result = sd_bus_message_read(reply.message, "o", &job);
    if (result < 0)
        return callError.Fail(result);
    const std::string jobPath = job;

    jobResult.clear();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        while ((result = sd_bus_process(mBus, nullptr)) > 0) {
        }
        if (result < 0)
            return callError.Fail(result);
        if (const auto found = watch.finished.find(jobPath); found != watch.finished.end()) {
            jobResult = found->second;
            return true;
        }
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return true;
        result = sd_bus_wait(mBus, static_cast<std::uint64_t>(left.count()));
        if (result < 0)
            return callError.Fail(result);
    }
}

bool SystemdBus::EnableUnitFile(const std::string& unitFile, Error& error)
{
    CallError callError(error);
    sd_bus_message* call = nullptr;
    int result = sd_bus_message_new_method_call(mBus, &call, kService, kManagerPath, kManagerInterface,
                                                "EnableUnitFiles");
    if (result >= 0)
        result = sd_bus_message_append(call, "asbb", 1, unitFile.c_str(), 0, 0);
    if (result >= 0)
        result = sd_bus_call(mBus, call, 0, &callError, nullptr);
    sd_bus_message_unref(call);
    return result < 0 ? callError.Fail(result) : true;
}

bool SystemdBus::KillUnit(const std::string& unit, const char* who, int signal, Error& error)
{
    CallError callError(error);
    const int result = sd_bus_call_method(mBus, kService, kManagerPath, kManagerInterface, "KillUnit", &callError,
                                          nullptr, "ssi", unit.c_str(), who, signal);
    return result < 0 ? callError.Fail(result) : true;
}

} // namespace korva

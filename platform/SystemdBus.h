#pragma once
/// \class korva::SystemdBus
/// A connection to the service manager's D-Bus API (org.freedesktop.systemd1 on
/// the system bus): the few Manager and Unit calls that installing, starting,
/// stopping and inspecting a service need.
///
/// $DBUS_SYSTEM_BUS_ADDRESS moves the system bus, $KORVA_SYSTEMD_UNIT_DIR the
/// folder of the unit files this code writes (default /etc/systemd/system).

#include <cstdint>
#include <string>

struct sd_bus;

namespace korva {

class SystemdBus
{
public:
    /// What a failed call said: the errno, and the D-Bus error's name and text
    /// when the manager answered with one.
    struct Error
    {
        int errnoValue = 0;
        std::string name;
        std::string message;
    };

    SystemdBus() = default;
    ~SystemdBus();
    SystemdBus(const SystemdBus&) = delete;
    SystemdBus& operator=(const SystemdBus&) = delete;

    /// Connects to the system bus of this machine (null or empty `machine`) or,
    /// through ssh, of `machine`. 0, or the errno of the failure.
    int Open(const char* machine);
    bool IsOpen() const { return mBus != nullptr; }

    /// The manager's rule: 1 to 255 characters of letters, digits and ":-_.\\@",
    /// a name, then a dot and a known type suffix ("sampleservice.service").
    static bool IsValidUnitName(const std::string& unit);
    /// Where unit files are written.
    static std::string UnitFileDirectory();

    /// Manager.LoadUnit: the unit's object path (also for a unit that has no file).
    bool LoadUnit(const std::string& unit, std::string& path, Error& error);
    /// A property of type "s" or "i" of the object at `path`.
    bool GetProperty(const std::string& path, const char* interface, const char* name, std::string& value,
                     Error& error);
    bool GetProperty(const std::string& path, const char* interface, const char* name, std::int32_t& value,
                     Error& error);
    /// A property of type "s" of the manager itself ("SystemState" ...).
    bool GetManagerProperty(const char* name, std::string& value, Error& error);
    /// Manager.Reload: the manager reads the unit files again.
    bool Reload(Error& error);
    /// Manager.StartUnit or Manager.StopUnit (`method`) in mode "replace", then
    /// waits up to `timeoutMs` for the job to end. `result` gets the job's result
    /// ("done", "failed", "canceled", "timeout", "dependency", ...), or is empty
    /// when the wait ran out first.
    bool RunJob(const char* method, const std::string& unit, int timeoutMs, std::string& result, Error& error);
    /// Manager.EnableUnitFiles for one file: the unit starts with the system.
    bool EnableUnitFile(const std::string& unitFile, Error& error);
    /// Manager.KillUnit: sends `signal` to the unit's processes of role `who` ("main", "all").
    bool KillUnit(const std::string& unit, const char* who, int signal, Error& error);

    static constexpr const char* kService = "org.freedesktop.systemd1";
    static constexpr const char* kManagerPath = "/org/freedesktop/systemd1";
    static constexpr const char* kManagerInterface = "org.freedesktop.systemd1.Manager";
    static constexpr const char* kUnitInterface = "org.freedesktop.systemd1.Unit";
    static constexpr const char* kServiceInterface = "org.freedesktop.systemd1.Service";

private:
    sd_bus* mBus = nullptr;
};

} // namespace korva

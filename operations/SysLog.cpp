#include <KORVAutlwin/operations/SysLog.h>

#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutlwin/platform/Registry.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace {

template <typename Value>
struct NameRow
{
    Value value;
    const char* name;
};

const NameRow<SysLog::ESeverity> kSeverities[] = {
    {SysLog::eEmerg, "emerg"}, {SysLog::eAlert, "alert"},   {SysLog::eCrit, "crit"}, {SysLog::eErr, "err"},
    {SysLog::eWarning, "warning"}, {SysLog::eNotice, "notice"}, {SysLog::eInfo, "info"}, {SysLog::eDebug, "debug"}};

const NameRow<SysLog::EFacility> kFacilities[] = {
    {SysLog::eKern, "kern"},     {SysLog::eUser, "user"},     {SysLog::eMail, "mail"},
    {SysLog::eDaemon, "daemon"}, {SysLog::eAuth, "auth"},     {SysLog::eSyslog, "syslog"},
    {SysLog::eLpr, "lpr"},       {SysLog::eNews, "news"},     {SysLog::eUucp, "uucp"},
    {SysLog::eSys9, "sys9"},     {SysLog::eSys10, "sys10"},   {SysLog::eSys11, "sys11"},
    {SysLog::eSys12, "sys12"},   {SysLog::eSys13, "sys13"},   {SysLog::eSys14, "sys14"},
    {SysLog::eCron, "cron"},     {SysLog::eLocal0, "local0"}, {SysLog::eLocal1, "local1"},
    {SysLog::eLocal2, "local2"}, {SysLog::eLocal3, "local3"}, {SysLog::eLocal4, "local4"},
    {SysLog::eLocal5, "local5"}, {SysLog::eLocal6, "local6"}, {SysLog::eLocal7, "local7"}};

const NameRow<SysLog::ESocketType> kSocketTypes[] = {{SysLog::eTcp, "tcp"}, {SysLog::eUdp, "udp"}};

constexpr const char* kSettings = "SysLogSettings";
constexpr const char* kInfo = "SysLogInfo";
constexpr const char* kContexts = "SysLogContextSeverities";

template <typename Value, std::size_t N>
const char* NameAt(const NameRow<Value> (&table)[N], unsigned int index, const char* fallback)
{
    return index < N ? table[index].name : fallback;
}

template <typename Value, std::size_t N>
const char* NameOf(const NameRow<Value> (&table)[N], Value value, const char* fallback)
{
    for (const auto& row : table)
        if (row.value == value)
            return row.name;
    return fallback;
}

template <typename Value, std::size_t N>
Value ValueOf(const NameRow<Value> (&table)[N], const char* name, Value fallback)
{
    if (name)
        for (const auto& row : table)
            if (strcasecmp(row.name, name) == 0)
                return row.value;
    return fallback;
}

template <typename Value, std::size_t N>
std::string JoinNames(const NameRow<Value> (&table)[N])
{
    std::string names;
    for (const auto& row : table)
        names.append(names.empty() ? "" : ",").append(row.name);
    return names;
}

// A key of "SysLogSettings"; a missing one is written back with its default,
// so that the first run leaves a complete file for the operator to edit.
std::string ReadSetting(const char* iniPath, const char* key, const char* fallback)
{
    IniFileSection section(iniPath, kSettings);
    std::string value;
    if (!section.ReadKey(key, value)) {
        section.WriteKey(key, fallback);
        value = fallback;
    }
    return value;
}

void WriteSetting(const char* iniPath, const char* key, const char* value)
{
    IniFileSection(iniPath, kSettings).WriteKey(key, value);
}

// The application's hooks; a lock of their own, since GetIniPath takes no other.
std::mutex gHookLock;
std::function<std::string()> gRegistryBaseKey;
std::function<std::string()> gCommonAppDataDirectory;

void LogFailure(const char* function, const std::string& text)
{
    Log::WriteMessage("SysLog", function, text.c_str(), Log::eSystemCallFailed);
}

} // namespace

SysLog SysLog::soSysLog;

SysLog::SysLog()
    : mSocket(korva::Socket::kInvalid), mSocketsStarted(false), mInitialized(false), mFacility(eLocal7),
      mBaseSeverity(eDebug)
{
    mSocketsStarted = korva::Socket::Startup();
}

SysLog::~SysLog()
{
    if (mSocket != korva::Socket::kInvalid)
        Close();
    if (mSocketsStarted)
        korva::Socket::Cleanup();
}

const char* SysLog::FacilityAtIndex(unsigned int index)
{
    return NameAt(kFacilities, index, "local7");
}

const char* SysLog::SeverityAtIndex(unsigned int index)
{
    return NameAt(kSeverities, index, "debug");
}

const char* SysLog::SocketTypeAtIndex(unsigned int index)
{
    return NameAt(kSocketTypes, index, "udp");
}

const char* SysLog::FacilityToString(EFacility facility)
{
    return NameOf(kFacilities, facility, "local7");
}

const char* SysLog::SeverityToString(ESeverity severity)
{
    return NameOf(kSeverities, severity, "debug");
}

const char* SysLog::SocketTypeToString(ESocketType type)
{
    return NameOf(kSocketTypes, type, "udp");
}

SysLog::EFacility SysLog::StringToFacility(const char* name)
{
    return ValueOf(kFacilities, name, eLocal7);
}

SysLog::ESeverity SysLog::StringToSeverity(const char* name)
{
    return ValueOf(kSeverities, name, eDebug);
}

SysLog::ESocketType SysLog::StringToSocketType(const char* name)
{
    return ValueOf(kSocketTypes, name, eUdp);
}

std::string SysLog::GetAddress(const char* iniPath)
{
    return ReadSetting(iniPath, "Address", "127.0.0.1");
}

void SysLog::SetAddress(const char* iniPath, const char* address)
{
    WriteSetting(iniPath, "Address", address);
}

unsigned int SysLog::GetPort(const char* iniPath)
{
    return static_cast<unsigned int>(std::atoi(ReadSetting(iniPath, "Port", "514").c_str()));
}

void SysLog::SetPort(const char* iniPath, unsigned int port)
{
    WriteSetting(iniPath, "Port", std::to_string(port).c_str());
}

SysLog::ESeverity SysLog::GetBaseSeverity(const char* iniPath)
{
    return StringToSeverity(ReadSetting(iniPath, "BaseSeverity", "debug").c_str());
}

void SysLog::SetBaseSeverity(const char* iniPath, ESeverity severity)
{
    WriteSetting(iniPath, "BaseSeverity", SeverityToString(severity));
}

SysLog::EFacility SysLog::GetFacility(const char* iniPath)
{
    return StringToFacility(ReadSetting(iniPath, "Facility", "local7").c_str());
}

void SysLog::SetFacility(const char* iniPath, EFacility facility)
{
    WriteSetting(iniPath, "Facility", FacilityToString(facility));
}

SysLog::ESocketType SysLog::GetSocketType(const char* iniPath)
{
    return StringToSocketType(ReadSetting(iniPath, "SocketType", "udp").c_str());
}

void SysLog::SetSocketType(const char* iniPath, ESocketType type)
{
    WriteSetting(iniPath, "SocketType", SocketTypeToString(type));
}

void SysLog::SetApplicationHooks(std::function<std::string()> registryBaseKey,
                                 std::function<std::string()> commonAppDataDirectory)
{
    std::lock_guard lock(gHookLock);
    gRegistryBaseKey = std::move(registryBaseKey);
    gCommonAppDataDirectory = std::move(commonAppDataDirectory);
}

std::string SysLog::RegistryKey()
{
    std::string base;
    {
        std::lock_guard lock(gHookLock);
        if (gRegistryBaseKey)
            base = gRegistryBaseKey();
    }
    // Without an application object, the branch the application's name and version give.
    if (base.empty())
        base = "SOFTWARE\\Tessmark\\" + TsSystemInfo::GetApplicationName() + "\\" +
               TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort);
    return base + "\\SysLog";
}

std::string SysLog::GetIniPath()
{
    std::string path;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, RegistryKey().c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS) {
        DWORD type = REG_NONE;
        DWORD size = 0;
        if (RegQueryValueExA(key, "IniPath", nullptr, &type, nullptr, &size) == ERROR_SUCCESS && type == REG_SZ &&
            size > 0) {
            std::string value(size, '\0');
            if (RegQueryValueExA(key, "IniPath", nullptr, &type, reinterpret_cast<BYTE*>(value.data()), &size) ==
                ERROR_SUCCESS)
                path.assign(value.c_str());  // up to the terminator
        }
        RegCloseKey(key);
    }
    if (path.empty()) {
        std::function<std::string()> folder;
        {
            std::lock_guard lock(gHookLock);
            folder = gCommonAppDataDirectory;
        }
        const std::string directory = folder ? folder() : std::string();
        if (!directory.empty())
            path = directory + "/SysLog.ini";
    }
    return path;
}

bool SysLog::SetIniPath(const char* path)
{
    const std::string value = path ? path : "";
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, RegistryKey().c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE,
                        nullptr, &key, nullptr) != ERROR_SUCCESS)
        return false;
    const LONG result = RegSetValueExA(key, "IniPath", 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                                       static_cast<DWORD>(value.size() + 1));
    RegCloseKey(key);
    return result == ERROR_SUCCESS;
}

void SysLog::Init()
{
    SysLog& log = soSysLog;
    std::lock_guard lock(log.mLock);
    // Once per process, whatever comes of it.
    if (log.mInitialized)
        return;
    log.mInitialized = true;
    log.mIniPath = GetIniPath();
    if (log.mIniPath.empty())
        return;
    const char* ini = log.mIniPath.c_str();

    IniFileSection section(ini, kInfo);
    section.WriteKey("ValidFacilities", JoinNames(kFacilities).c_str());
    section.WriteKey("ValidSeverities", JoinNames(kSeverities).c_str());
    section.WriteKey("ValidSocketTypes", JoinNames(kSocketTypes).c_str());

    section.ChangeSection(kContexts);
    for (const std::string& context : section.GetKeyNames()) {
        std::string value;
        if (section.ReadKey(context.c_str(), value))
            log.mContextSeverities[context] = StringToSeverity(value.c_str());
    }

    log.mBaseSeverity = GetBaseSeverity(ini);
    log.mFacility = GetFacility(ini);
    const std::string address = GetAddress(ini);
    const ESocketType type = GetSocketType(ini);
    const unsigned int port = GetPort(ini);

    log.Close();
    if (!log.Socket(type)) {
        LogFailure("Init", std::string("socket returned error: ") + std::strerror(errno));
        return;
    }
    // The port is cut to 16 bits here, as the file may hold any number.
    if (!log.Connect(address.c_str(), static_cast<unsigned short>(port))) {
        LogFailure("Init", "Cannot reach the syslog daemon at " + address + " port " + std::to_string(port & 0xFFFFu) +
                               " over " + SocketTypeToString(type) + ".");
        log.Close();
    }
}

bool SysLog::Open(const char* address, unsigned int port, ESocketType type)
{
    if (!Socket(type))
        return false;
    if (Connect(address, static_cast<unsigned short>(port)))
        return true;
    Close();
    return false;
}

bool SysLog::Socket(ESocketType type)
{
    Close();
    mSocket = korva::Socket::Open(type == eTcp ? korva::Socket::eStream : korva::Socket::eDatagram);
    return mSocket != korva::Socket::kInvalid;
}

bool SysLog::Connect(const char* address, unsigned short port)
{
    if (!address || mSocket == korva::Socket::kInvalid)
        return false;
    std::uint32_t peer = korva::Socket::ParseAddress(address);
    if (peer == korva::Socket::kAddressNone && !korva::Socket::ResolveHost(address, peer))
        return false;
    return korva::Socket::Connect(mSocket, peer, port);
}

bool SysLog::Close()
{
    if (mSocket == korva::Socket::kInvalid)
        return true;
    const korva::Socket::Handle socket = mSocket;
    mSocket = korva::Socket::kInvalid;
    return korva::Socket::Close(socket);
}

SysLog::ESeverity SysLog::GetSeverityLimit(const char* context)
{
    SysLog& log = soSysLog;
    std::lock_guard lock(log.mLock);
    if (!log.mInitialized)
        Init();
    if (!context)
        return log.mBaseSeverity;
    const auto found = log.mContextSeverities.find(context);
    if (found != log.mContextSeverities.end())
        return found->second;
    const ESeverity limit = log.mBaseSeverity;
    SetSeverityLimit(limit, context);
    return limit;
}

void SysLog::SetSeverityLimit(ESeverity severity, const char* context)
{
    SysLog& log = soSysLog;
    std::lock_guard lock(log.mLock);
    if (!log.mInitialized)
        Init();
    if (context) {
        log.mContextSeverities[context] = severity;
        return;
    }
    log.mBaseSeverity = severity;
    if (!log.mIniPath.empty())
        SetBaseSeverity(log.mIniPath.c_str(), severity);
}

bool SysLog::LogMessage(ESeverity severity, const std::vector<std::string>& contexts, const char* message)
{
    SysLog& log = soSysLog;
    std::lock_guard lock(log.mLock);
    if (!log.mInitialized)
        Init();
    if (contexts.empty() || log.mSocket == korva::Socket::kInvalid)
        return false;
    bool pass = severity <= log.mBaseSeverity;
    // Every context is visited, even after one refused: the visit registers new ones.
    for (const std::string& context : contexts)
        if (severity > GetSeverityLimit(context.c_str()))
            pass = false;
    if (!pass || !message)
        return false;

    char priority[16];
    const auto end = std::to_chars(priority, priority + sizeof priority, static_cast<int>(severity) + log.mFacility * 8).ptr;
    std::string& wire = log.mWire;
    wire.assign(1, '<').append(priority, end).append(1, '>').append(message);
    const long sent = korva::Socket::Send(log.mSocket, wire.data(), wire.size());
    const bool whole = sent >= 0 && static_cast<std::size_t>(sent) == wire.size();
    // A huge message once is no reason to keep its buffer for the life of the process.
    if (wire.capacity() > 65536)
        std::string().swap(wire);
    return whole;
}

bool SysLog::LogMessage(ESeverity severity, const char* context, const char* message)
{
    SysLog& log = soSysLog;
    std::lock_guard lock(log.mLock);
    if (!log.mInitialized)
        Init();
    if (!context || log.mSocket == korva::Socket::kInvalid)
        return false;
    return LogMessage(severity, std::vector<std::string>{context}, message);
}

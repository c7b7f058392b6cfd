#pragma once
/// \class SysLog
/// The process's client of a syslog daemon. Callers never make one: they call
/// the static operations, and the first one that filters or sends reads
/// SysLog.ini, opens one socket and keeps it for the life of the process.
///
/// A message goes out as "<priority>text" and nothing else: no time stamp, no
/// host, no tag, no line end, no framing. The priority is severity + facility * 8.
/// Over TCP successive messages therefore run together in the stream unless the
/// texts end in a line break of their own.
///
/// SysLog.ini (read and written through IniFileSection; names match without case):
///   [SysLogSettings]           Address (127.0.0.1), Port (514), BaseSeverity (debug),
///                              Facility (local7), SocketType (udp); a missing key is
///                              written back with its default, an unknown name means
///                              the default and stays in the file
///   [SysLogInfo]               the valid names, for the person who edits the file;
///                              rewritten on every start, read by nobody
///   [SysLogContextSeverities]  `<context> = <severity name>`, one per context
/// Where the file is: the REG_SZ value "IniPath" in `HKEY_LOCAL_MACHINE\<registry base key>\SysLog`;
/// when that is missing or empty, "SysLog.ini" in the
/// application's common data folder; without an application object, nowhere.
///
/// A message is sent only when its severity is within the base severity and
/// within the limit of every context it names: a context can only narrow. A
/// context seen for the first time is given the base severity of that moment.
///
/// Nothing throws and nothing is shown: every failure (no INI file path,
/// unresolved host, refused connection, failed or partial send) ends in a false
/// result. There is no reconnection: a failure at start-up leaves the process
/// without syslog until it restarts, and a change of the file is seen by the
/// next process only.
///
/// Threads: the filter and sending operations may be called from any thread;
/// they share one recursive lock, held across the send, so a blocked TCP send
/// holds up every other caller. The settings operations take no lock.

#include <KORVAutlwin/platform/Socket.h>

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

class SysLog
{
public:
    enum ESeverity
    {
        eEmerg = 0,
        eAlert = 1,
        eCrit = 2,
        eErr = 3,
        eWarning = 4,
        eNotice = 5,
        eInfo = 6,
        eDebug = 7
    };

    enum EFacility
    {
        eKern = 0,
        eUser = 1,
        eMail = 2,
        eDaemon = 3,
        eAuth = 4,
        eSyslog = 5,
        eLpr = 6,
        eNews = 7,
        eUucp = 8,
        eSys9 = 9,
        eSys10 = 10,
        eSys11 = 11,
        eSys12 = 12,
        eSys13 = 13,
        eSys14 = 14,
        eCron = 15,
        eLocal0 = 16,
        eLocal1 = 17,
        eLocal2 = 18,
        eLocal3 = 19,
        eLocal4 = 20,
        eLocal5 = 21,
        eLocal6 = 22,
        eLocal7 = 23
    };

    enum ESocketType
    {
        eTcp = 0,
        eUdp = 1
    };

    ~SysLog();

    // Name tables. The index forms give the name of a row, the ToString forms
    // the name of a value, the StringTo forms the value of a name (without
    // regard to case). Anything unknown gives local7, debug or udp.
    static const char* FacilityAtIndex(unsigned int index);
    static const char* SeverityAtIndex(unsigned int index);
    static const char* SocketTypeAtIndex(unsigned int index);
    static const char* FacilityToString(EFacility facility);
    static const char* SeverityToString(ESeverity severity);
    static const char* SocketTypeToString(ESocketType type);
    static EFacility StringToFacility(const char* name);
    static ESeverity StringToSeverity(const char* name);
    static ESocketType StringToSocketType(const char* name);

    // Settings in the INI file `iniPath`, section "SysLogSettings". They touch
    // the file only, never the live connection or filter. A getter writes the
    // default back when the key is missing.
    static std::string GetAddress(const char* iniPath);
    static void SetAddress(const char* iniPath, const char* address);
    /// "Port" as atoi reads it; only its low 16 bits are used when connecting.
    static unsigned int GetPort(const char* iniPath);
    static void SetPort(const char* iniPath, unsigned int port);
    static ESeverity GetBaseSeverity(const char* iniPath);
    /// Writes the severity's name; a value outside the table writes "debug".
    static void SetBaseSeverity(const char* iniPath, ESeverity severity);
    static EFacility GetFacility(const char* iniPath);
    static void SetFacility(const char* iniPath, EFacility facility);
    static ESocketType GetSocketType(const char* iniPath);
    static void SetSocketType(const char* iniPath, ESocketType type);

    /// The INI file of this process as the header comment tells; empty when there is none.
    static std::string GetIniPath();
    /// Stores `path` as "IniPath" in the registry; false when the store refuses
    /// (HKEY_LOCAL_MACHINE is writable only by whom the file system lets).
    static bool SetIniPath(const char* path);

    /// How the process finds its registry base key and its common data folder.
    /// The application object sets both and clears them when it ends. Without
    /// it the base key is "SOFTWARE\Tessmark\<application name>\<version>" and
    /// there is no common data folder.
    static void SetApplicationHooks(std::function<std::string()> registryBaseKey,
                                    std::function<std::string()> commonAppDataDirectory);

    /// The limit of `context`; null gives the base severity. An unknown
    /// context is entered with the base severity of this moment.
    static ESeverity GetSeverityLimit(const char* context);
    /// With a null context sets the live base severity and writes it to the
    /// INI file; otherwise sets the context's limit, in memory only.
    static void SetSeverityLimit(ESeverity severity, const char* context);

    /// Sends `message` when `severity` passes the base severity and the limit
    /// of every context; every context is visited, so unknown ones are
    /// registered even after one has refused. An empty list sends nothing.
    /// True when the whole message was sent.
    static bool LogMessage(ESeverity severity, const std::vector<std::string>& contexts, const char* message);
    /// The same with one context; false for a null context.
    static bool LogMessage(ESeverity severity, const char* context, const char* message);

protected:
    SysLog();

    /// Reads the INI file and connects, once per process, successful or not.
    static void Init();
    /// Socket, then Connect; on a failed Connect the socket is closed.
    bool Open(const char* address, unsigned int port, ESocketType type);
    /// Closes any open socket and makes a new one; true when it is valid.
    bool Socket(ESocketType type);
    /// A dotted address or a host name (its first address).
    bool Connect(const char* address, unsigned short port);
    /// True at once without a socket; otherwise the field is cleared first.
    bool Close();

private:
    static std::string RegistryKey();

    static SysLog soSysLog;

    korva::Socket::Handle mSocket;
    bool mSocketsStarted;
    bool mInitialized;
    EFacility mFacility;
    ESeverity mBaseSeverity;
    std::string mIniPath;
    std::recursive_mutex mLock;
    std::map<std::string, ESeverity> mContextSeverities;
    std::string mWire;  // the message being sent; kept to spare an allocation per message
};

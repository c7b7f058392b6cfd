#pragma once
// The status of a service as the service control manager keeps it, with the
// manager's numbers, shared by the service host and the service control.

/// What the manager is told about a service, and what it tells about one.
struct SERVICE_STATUS
{
    unsigned long dwServiceType = 0;
    unsigned long dwCurrentState = 0;
    unsigned long dwControlsAccepted = 0;
    unsigned long dwWin32ExitCode = 0;
    unsigned long dwServiceSpecificExitCode = 0;
    unsigned long dwCheckPoint = 0;
    unsigned long dwWaitHint = 0;
};

inline constexpr unsigned long SERVICE_WIN32_OWN_PROCESS = 16;

inline constexpr unsigned long SERVICE_STOPPED = 1;
inline constexpr unsigned long SERVICE_START_PENDING = 2;
inline constexpr unsigned long SERVICE_STOP_PENDING = 3;
inline constexpr unsigned long SERVICE_RUNNING = 4;
inline constexpr unsigned long SERVICE_CONTINUE_PENDING = 5;
inline constexpr unsigned long SERVICE_PAUSE_PENDING = 6;
inline constexpr unsigned long SERVICE_PAUSED = 7;

inline constexpr unsigned long SERVICE_CONTROL_STOP = 1;
inline constexpr unsigned long SERVICE_CONTROL_INTERROGATE = 4;
inline constexpr unsigned long SERVICE_CONTROL_SHUTDOWN = 5;
inline constexpr unsigned long SERVICE_CONTROL_PARAMCHANGE = 6;

/// Stop and shutdown.
inline constexpr unsigned long SERVICE_ACCEPT_STOP_AND_SHUTDOWN = 5;

inline constexpr unsigned long SERVICE_AUTO_START = 2;
inline constexpr unsigned long SERVICE_DEMAND_START = 3;
inline constexpr unsigned long SERVICE_QUERY_CONFIG = 1;
inline constexpr unsigned long SERVICE_ALL_ACCESS = 0xF01FF;
inline constexpr unsigned long SC_MANAGER_ALL_ACCESS = 0xF003F;

inline constexpr unsigned long ERROR_SERVICE_SPECIFIC_ERROR = 1066;

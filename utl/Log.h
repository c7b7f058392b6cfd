#pragma once
/// \class Log
/// The application log: one line per call, appended to a file in the per-user
/// data folder, `$XDG_CONFIG_HOME/Tessmark/<application>/<version 2>/<application>.log`
/// unless SetLogFile names another. A line reads
///     2026-11-22 10:15:02.417 [3] 4711:4712 NTServiceApp::Run: text
/// with the importance in brackets, then process and thread id. Line feeds in
/// the text are written as "\n" so that every call stays one line.

#include <string>

class Log
{
public:
    enum Importance
    {
        eRoutine = 0,           // routine traffic
        eMilestone = 1,         // milestones
        eNotice = 2,
        eSystemCallFailed = 3,  // failed system calls
        eLogicFailure = 4       // wrong use or failures of the program's own logic
    };

    /// Writes one line. Lines below the minimum importance are dropped unless
    /// `force` is set; forced lines and lines of importance 3 and above reach the
    /// disk at once. Never throws: a log that cannot be written falls back to stderr.
    static void WriteMessage(const char* className, const char* function, const char* text,
                             Importance importance, bool force = false);
    static void WriteMessage(const char* className, const char* function, const char* text,
                             int importance, bool force = false)
    {
        WriteMessage(className, function, text, static_cast<Importance>(importance), force);
    }

    /// Sends the log to `path` from the next line on (created with its folders).
    static void SetLogFile(const char* path);
    /// The file the log goes to.
    static std::string GetLogFile();
    /// Lines below `importance` are dropped (default 0: all are written).
    static void SetMinimumImportance(int importance);
    /// Writes buffered lines to the disk.
    static void Flush();
};

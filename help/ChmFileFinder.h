#pragma once
/// \class ChmFileFinder
/// Finds a compiled help file in the places where help files are kept, first
/// hit wins: the name as given; beside the running program; the current folder;
/// the folder named by the machine's value "Software\\Microsoft\\Windows\\HTML Help";
/// the shared system folder's "Help"; and the "files" section of "hh.ini" in the
/// system folder, whose value "path[,prompt]" may ask the user to insert the
/// medium until the path exists or the user cancels. The helpers that the
/// search uses are here too.

#include <functional>
#include <string>

class ChmFileFinder
{
public:
    /// Size of a path buffer of the search, in bytes.
    static constexpr unsigned int kMaxPath = 260;

    /// Shows `prompt` with OK and Cancel; true for OK. Without one, a prompt counts as cancelled.
    using Prompt = std::function<bool(const std::string& prompt)>;

    /// Searches `name`; true when found, with the path in `out` (which holds kMaxPath
    /// bytes). A cancelled prompt of "hh.ini" is true, too, with the missing path in
    /// `out`: the caller then fails on opening it.
    static bool FindChmFile(const char* name, char* out, const Prompt& prompt = {});

    /// The shared system folder: the machine's value "SharedDir" under
    /// "Software\\Microsoft\\Windows\\CurrentVersion\\Setup", else GetWindowsDirectory.
    static void GetRegWindowsDirectory(char* out);
    /// The system folder: $KORVA_WINDOWS_DIR, else "/usr/share".
    static std::string GetWindowsDirectory();
    /// Appends the separator "/" unless `path` ends in "\\", "/" or ":".
    static void AddTrailingBackslash(std::string& path);
    /// The first `c` in `text`, stepping over whole UTF-8 characters; null when none.
    static const char* StrChrA(const char* text, char c);
    /// The last `c` in `text`, stepping over whole UTF-8 characters; null when none.
    static const char* StrRChrA(const char* text, char c);
};

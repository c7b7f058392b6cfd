#pragma once
/// \class WinApp
/// The application object: one per process. It holds the application's name,
/// the company word and profile name under which its settings live, its main
/// window and main thread, and reads and writes the profile in the registry
/// store (`HKEY_CURRENT_USER\SOFTWARE\<company>\<profile>\<section>`).
///
/// A GUI application runs through Run(), which creates the QApplication, whose
/// event dispatch is the safety net of every window: an exception that leaves an
/// event handler is shown in the internal error dialog when the mask of the
/// event's window (a TsDialog, a frame) lets it, and travels on otherwise.
/// A service does not call Run() and creates no QApplication.

#include <KORVAutlwin/frame/CmdTarget.h>

#include <string>
#include <thread>

class QWidget;

/// A main window that owns modeless windows (tool windows, modeless dialogs)
/// implements this, so that they are disabled while a modal box is up.
class ModelessHost
{
public:
    virtual ~ModelessHost();
    virtual void EnableModelessWindows(bool enable) = 0;
};

class WinApp : public CmdTarget
{
public:
    /// Becomes the current application. A null `appName` takes the application
    /// name of TsSystemInfo (the executable's name). The profile name starts as
    /// the application name; the company word starts empty.
    explicit WinApp(const char* appName = nullptr);
    /// Stops being the current application, if it still is.
    ~WinApp() override;

    WinApp(const WinApp&) = delete;
    WinApp& operator=(const WinApp&) = delete;

    /// The current application object, or null.
    static WinApp* GetApp();

    /// Sets the company word under which the settings live ("SOFTWARE\\<company>\\<profile>")
    /// and resets the profile name to the application name.
    void SetRegistryKey(const char* company);
    /// The company word; empty until SetRegistryKey.
    const char* GetRegistryKey() const { return mRegistryKey.c_str(); }

    /// The profile name: the key below the company word.
    const char* GetProfileName() const { return mProfileName.c_str(); }
    void SetProfileName(const char* profileName);

    const char* GetAppName() const { return mAppName.c_str(); }

    /// Profile values in HKEY_CURRENT_USER\<GetRegistryBaseKeyName()>\<section>.
    /// Reads give the default when the value is missing or of another type.
    int GetProfileInt(const char* section, const char* entry, int defaultValue) const;
    bool WriteProfileInt(const char* section, const char* entry, int value);
    std::string GetProfileString(const char* section, const char* entry, const char* defaultValue = nullptr) const;
    /// A null `value` deletes the entry; a null `entry` deletes the whole section.
    bool WriteProfileString(const char* section, const char* entry, const char* value);

    /// The main window (a frame, usually); null until the application sets one.
    QWidget* GetMainWnd() const { return mMainWnd; }
    void SetMainWnd(QWidget* window) { mMainWnd = window; }
    /// The thread that made the application object.
    std::thread::id GetMainThreadId() const { return mMainThread; }
    bool IsMainThread() const { return std::this_thread::get_id() == mMainThread; }

    /// Creates the QApplication, calls InitInstance and, if that succeeds, runs
    /// the event loop; then ExitInstance, whose result is the exit code.
    int Run(int& argc, char** argv);
    /// The application's start: create the main window here. False ends the run.
    virtual bool InitInstance();
    /// The application's end; the result is the process's exit code.
    virtual int ExitInstance();

    /// Shows a message box in the manner of the framework: `type` holds the MB_*
    /// button and icon bits, the result is the ID* of the button pressed.
    virtual int DoMessageBox(const char* text, unsigned int type, unsigned int helpId);
    /// Disables (false) or enables the main window and the application's modeless windows
    /// around a modal box.
    virtual void EnableModeless(bool enable);

    /// Routes to this object's own handlers: the end of every command route.
    bool OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI) override;

private:
    std::string mAppName;
    std::string mRegistryKey;
    std::string mProfileName;
    QWidget* mMainWnd = nullptr;
    std::thread::id mMainThread;
    int mModelessDisabled = 0;

    static WinApp* msCurrentApp;
};

/// AfxMessageBox: the current application's DoMessageBox, or a plain box without one.
int TsAfxMessageBox(const char* text, unsigned int type = 0, unsigned int helpId = 0);

#pragma once
// The application object: one per process, holding the words that name the
// application's settings. It grows into the full application base later; for
// now it carries what the settings code needs and nothing of a window system.

#include <string>

class WinApp
{
public:
    /// Becomes the current application. A null `appName` takes the application
    /// name of TsSystemInfo (the executable's name). The profile name starts as
    /// the application name; the company word starts empty.
    explicit WinApp(const char* appName = nullptr);
    /// Stops being the current application, if it still is.
    virtual ~WinApp();

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

private:
    std::string mAppName;
    std::string mRegistryKey;
    std::string mProfileName;

    static WinApp* msCurrentApp;
};

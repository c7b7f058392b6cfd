#pragma once
/// \class TsApp
/// The application base class of the suite. It owns the settings roots: the
/// registry branch `HKEY_CURRENT_USER\SOFTWARE\Tessmark\<application>\<version>`,
/// the user's settings file and the machine-wide settings file, and the per-user
/// and machine-wide data folders:
///   GetAppDataDirectory()               `$XDG_CONFIG_HOME/Tessmark/<application>/<version>`
///   GetCommonAppDataDirectory()         `$KORVA_COMMON_APPDATA/Tessmark/<application>/<version>`
///   GetTessmarkCommonAppDataDirectory() $KORVA_COMMON_APPDATA/Tessmark
/// ($XDG_CONFIG_HOME defaults to ~/.config, $KORVA_COMMON_APPDATA to /var/lib.)
/// Each version of an application thus has its own folders and registry branch.
///
/// Stages: the constructor runs XMLSection::Initialize(); the application's
/// InitInstance calls SetRegistryLocation(); the destructor flushes the settings
/// and the registry, runs XMLSection::Terminate() and releases the section.

#include <KORVAutlwin/frame/WinApp.h>

#include <memory>
#include <string>

class ConfigurationSection;
class QWidget;

class TsApp : public WinApp
{
public:
    /// The resource id of the about picture at construction.
    static constexpr unsigned int kDefaultAboutBitmap = 13024;

    explicit TsApp(const char* name = nullptr);
    ~TsApp() override;

    /// Fixes the registry root (company word "Tessmark", profile "<name>\\<version 2>"),
    /// composes the two settings file paths and opens the section "AppSettings"
    /// of the user's file; a new file gets "AppName" and "Version". Throws what
    /// XMLSection throws for a damaged settings file. A damaged registry file is
    /// moved aside first (RegistryStore::MoveAsideDamaged): one line in the log,
    /// and one inform through the user channel, at once if one is installed,
    /// else at the first turn of the event loop.
    void SetRegistryLocation();

    /// The project folder of an application with a project concept; empty here.
    virtual std::string GetProjectPath() const;
    /// The settings section `name` of a feature, from the user's settings; when
    /// missing there, made from the machine-wide file or the embedded defaults
    /// (XML resource `resourceId`, if above 0). The caller owns the result.
    /// Must not be called before SetRegistryLocation.
    virtual ConfigurationSection* GetAppSettings(const char* name, unsigned int resourceId) const;

    /// The folders of the header comment, created when missing; empty when the
    /// base folder cannot be found.
    std::string GetAppDataDirectory() const;
    std::string GetCommonAppDataDirectory() const;
    std::string GetTessmarkCommonAppDataDirectory() const;

    /// The plug-in folder: the one set, if it exists; else "Plugins" in GetAppDataDirectory().
    std::string GetPluginDirectory() const;
    void SetPluginDirectory(const char* directory);
    void SetAboutBitmap(unsigned int bitmapId) { aboutBitmap = bitmapId; }
    unsigned int GetAboutBitmap() const { return aboutBitmap; }

    /// A file beside the executable.
    std::string GetFilePathInExeFolder(const char* name) const;

    /// With muted info messages, boxes that have only an OK button are not shown.
    void MuteInfoMessages(bool mute) { muteInfoMessages = mute; }
    bool MuteInfoMessages() const { return muteInfoMessages; }

    /// Writes "AppName" and "Version" (format 2) into `section`.
    static void WriteAppInfo(ConfigurationSection* section);

    /// With muted info messages, a box with only OK returns 1 at once.
    int DoMessageBox(const char* text, unsigned int type, unsigned int helpId) override;

    /// The About command (ID_APP_ABOUT): the modal about box.
    void OnAppAbout();
    /// Menu text of the About command, with the application name.
    void OnUpdateAppAbout(CCmdUI* cmdUI);

    const std::string& GetSettingsFile() const { return settingsFile; }
    const std::string& GetCommonSettingsFile() const { return commonSettingsFile; }
    /// The section "AppSettings" of the user's settings file; empty before SetRegistryLocation.
    std::shared_ptr<ConfigurationSection> GetAppSettingsSection() const { return appSettings; }

protected:
    unsigned int aboutBitmap = kDefaultAboutBitmap;
    std::string pluginDirectory;
    std::string settingsFile;
    std::string commonSettingsFile;
    bool muteInfoMessages = false;
    std::shared_ptr<ConfigurationSection> appSettings;
};

/// The command id of the About command.
inline constexpr unsigned int ID_APP_ABOUT = 57664;

/// The current application's main window, or null when there is no application object.
QWidget* TsGetMainWnd();

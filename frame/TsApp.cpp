#include <KORVAutlwin/frame/TsApp.h>

#include <KORVAutlwin/art/ProgressArt.h>
#include <KORVAutlwin/frame/AboutDialog.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/operations/SysLog.h>
#include <KORVAutlwin/platform/Registry.h>
#include <KORVAutlwin/platform/UserIdentity.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutl/UserComm.h>
#include <KORVAutl/XMLSection.h>

#include <QCoreApplication>
#include <QTimer>

#include <unistd.h>

#include <cstdlib>

namespace {

constexpr const char* kCompanyWord = "Tessmark";
constexpr const char* kAppSettings = "AppSettings";
constexpr unsigned int kAboutMenuText = 13195;
constexpr unsigned int kRegistryMovedAside = 13276;

std::string EnvironmentFolder(const char* variable, const char* fallback)
{
    const char* value = std::getenv(variable);
    if (value && *value)
        return value;
    return fallback ? fallback : "";
}

// The profile name holds "\\" between name and version; on disk it is a folder level.
std::string ProfileAsPath(const char* profile)
{
    std::string path = profile;
    TsString::Replace(path, "\\", "/");
    return path;
}

// "%s\\%s\\%s" with "/" as separator; the folder is created when missing.
std::string ComposeFolder(const std::string& base, const char* company, const std::string& profile)
{
    if (base.empty())
        return std::string();
    std::string folder = TsPathAppend(base.c_str(), company);
    if (!profile.empty())
        folder = TsPathAppend(folder.c_str(), profile.c_str());
    if (access(folder.c_str(), F_OK) == -1)
        CreateFolder(folder.c_str());
    return folder;
}

// Tells the user through the channel; an application installs its channel
// after SetRegistryLocation, so without one the news waits for the event loop.
void TellUser(const std::string& text, const std::string& title)
{
    if (UserComm* channel = UserComm::GetUserComm()) {
        channel->InformUser(text.c_str(), title.c_str(), 0);
    } else if (QCoreApplication* application = QCoreApplication::instance()) {
        QTimer::singleShot(0, application, [text, title] {
            if (UserComm* channel = UserComm::GetUserComm())
                channel->InformUser(text.c_str(), title.c_str(), 0);
        });
    }
}

// The registry store moves a damaged file aside at the start of a process; the
// log and the user hear of it here, since the store below knows neither.
void ReportDamagedRegistry(const std::string& appName)
{
    for (const korva::RegistryStore::MovedAside& damaged : korva::RegistryStore::MoveAsideDamaged()) {
        if (damaged.movedTo.empty()) {
            Log::WriteMessage("TsApp", "SetRegistryLocation",
                              ("The registry file " + damaged.file + " is damaged and could not be moved aside.").c_str(),
                              Log::eSystemCallFailed, true);
            continue;
        }
        Log::WriteMessage("TsApp", "SetRegistryLocation",
                          ("The registry file " + damaged.file + " was damaged; it was moved to " + damaged.movedTo +
                           " and the registry starts empty.")
                              .c_str(),
                          Log::eNotice, true);
        TellUser(TsString::Format(kRegistryMovedAside, damaged.file.c_str(), damaged.movedTo.c_str()), appName);
    }
}

} // namespace

TsApp::TsApp(const char* name) : WinApp(name)
{
    XMLSection::Initialize();
    OnCommand(ID_APP_ABOUT, [this] { OnAppAbout(); });
    OnUpdateCommand(ID_APP_ABOUT, [this](CCmdUI* cmdUI) { OnUpdateAppAbout(cmdUI); });
    // The pictures of progress come from the plug-in folder too.
    ProgressArt::SetPluginFolder([this] { return GetPluginDirectory(); });
    // The syslog client finds its SysLog.ini through the application's registry branch and data folder.
    SysLog::SetApplicationHooks([] { return std::string(GetRegistryBaseKeyName()); },
                                [this] { return GetCommonAppDataDirectory(); });
}

TsApp::~TsApp()
{
    ProgressArt::SetPluginFolder(nullptr);
    SysLog::SetApplicationHooks(nullptr, nullptr);
    if (appSettings)
        appSettings->Flush();
    // What the application wrote to the registry survives a power cut from here on.
    RegFlushKey(HKEY_CURRENT_USER);
    XMLSection::Terminate();
    appSettings.reset();
}

void TsApp::SetRegistryLocation()
{
    ReportDamagedRegistry(GetAppName());
    const std::string version = TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort);
    SetRegistryKey(kCompanyWord);
    SetProfileName((std::string(GetAppName()) + "\\" + version).c_str());

    const std::string fileName = std::string(GetAppName()) + "." + XMLSection::TessmarkXMLExtension();
    settingsFile = TsPathAppend(GetAppDataDirectory().c_str(), fileName.c_str());
    commonSettingsFile = TsPathAppend(GetCommonAppDataDirectory().c_str(), fileName.c_str());

    appSettings = std::make_shared<XMLSection>(settingsFile.c_str(), true);
    if (!appSettings->ChangeSubSection(kAppSettings)) {
        appSettings.reset(appSettings->CreateSubSection(kAppSettings));
        WriteAppInfo(appSettings.get());
    }
}

std::string TsApp::GetProjectPath() const
{
    return std::string();
}

ConfigurationSection* TsApp::GetAppSettings(const char* name, unsigned int resourceId) const
{
    std::unique_ptr<ConfigurationSection> common;
    if (!commonSettingsFile.empty() && access(commonSettingsFile.c_str(), R_OK) == 0)
        common = std::make_unique<XMLSection>(commonSettingsFile.c_str(), true);
    std::unique_ptr<ConfigurationSection> defaults;
    if (resourceId > 0)
        defaults = std::make_unique<XMLSection>(resourceId, true);

    std::unique_ptr<ConfigurationSection> section(appSettings->Copy());
    if (section->HasSection(name, -1)) {
        section->ChangeSubSection(name);
    } else if (common && common->ChangeSubSection(kAppSettings) && common->HasSection(name, -1)) {
        // The new, empty section is written into the common one: that is the
        // direction this step has always had, and the machine-wide content is
        // not copied to the user.
        section.reset(section->CreateSubSection(name));
        section->WriteToSection(common.get());
    } else if (defaults) {
        defaults->ChangeSubSection(kAppSettings);
        if (defaults->HasSection(name, -1)) {
            section.reset(section->CreateSubSection(name));
            defaults->ChangeSubSection(name);
            defaults->WriteToSection(section.get());
        } else {
            section.reset(section->CreateSubSection(name));
        }
    } else {
        section.reset(section->CreateSubSection(name));
    }
    return section.release();
}

std::string TsApp::GetAppDataDirectory() const
{
    return ComposeFolder(korva::UserConfigFolder(), GetRegistryKey(), ProfileAsPath(GetProfileName()));
}

std::string TsApp::GetCommonAppDataDirectory() const
{
    return ComposeFolder(EnvironmentFolder("KORVA_COMMON_APPDATA", "/var/lib"), GetRegistryKey(),
                         ProfileAsPath(GetProfileName()));
}

std::string TsApp::GetTessmarkCommonAppDataDirectory() const
{
    return ComposeFolder(EnvironmentFolder("KORVA_COMMON_APPDATA", "/var/lib"), GetRegistryKey(), std::string());
}

std::string TsApp::GetPluginDirectory() const
{
    if (!pluginDirectory.empty() && FileExist(pluginDirectory.c_str()) == 1)
        return pluginDirectory;
    return TsPathAppend(GetAppDataDirectory().c_str(), "Plugins");
}

void TsApp::SetPluginDirectory(const char* directory)
{
    pluginDirectory = directory ? directory : "";
}

std::string TsApp::GetFilePathInExeFolder(const char* name) const
{
    return TsPathAppend(TsGetExecutableDirectory().c_str(), name);
}

void TsApp::WriteAppInfo(ConfigurationSection* section)
{
    if (!section)
        return;
    section->WriteKey("AppName", TsSystemInfo::GetApplicationName());
    section->WriteKey("Version", TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort));
}

int TsApp::DoMessageBox(const char* text, unsigned int type, unsigned int helpId)
{
    if (muteInfoMessages && (type & MB_TYPEMASK) == MB_OK)
        return IDOK;
    return WinApp::DoMessageBox(text, type, helpId);
}

void TsApp::OnAppAbout()
{
    AboutDialog dialog(GetMainWnd(), GetAppName(), aboutBitmap);
    dialog.exec();
}

void TsApp::OnUpdateAppAbout(CCmdUI* cmdUI)
{
    cmdUI->SetText(TsString::Format(kAboutMenuText, GetAppName()).c_str());
}

QWidget* TsGetMainWnd()
{
    const WinApp* app = WinApp::GetApp();
    return app ? app->GetMainWnd() : nullptr;
}

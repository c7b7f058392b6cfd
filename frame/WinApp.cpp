#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/GuardedApplication.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/RegistrySection.h>

#include <KORVAutl/TsSystemInfo.h>

#include <QWidget>

#include <memory>

WinApp* WinApp::msCurrentApp = nullptr;

ModelessHost::~ModelessHost() = default;

WinApp::WinApp(const char* appName)
    : mAppName(appName ? appName : TsSystemInfo::GetApplicationName()), mProfileName(mAppName),
      mMainThread(std::this_thread::get_id())
{
    msCurrentApp = this;
}

WinApp::~WinApp()
{
    if (msCurrentApp == this)
        msCurrentApp = nullptr;
}

WinApp* WinApp::GetApp()
{
    return msCurrentApp;
}

void WinApp::SetRegistryKey(const char* company)
{
    mRegistryKey = company ? company : "";
    mProfileName = mAppName;
}

void WinApp::SetProfileName(const char* profileName)
{
    mProfileName = profileName ? profileName : "";
}

namespace {

std::string ProfileKey(const char* section)
{
    std::string key = GetRegistryBaseKeyName();
    if (section && *section)
        key += std::string("\\") + section;
    return key;
}

// Opens the profile section, created when `create` is set; null when that fails.
std::unique_ptr<RegistrySection> OpenProfileSection(const char* section, bool create)
{
    auto result = std::make_unique<RegistrySection>();
    if (!result->Open(HKEY_CURRENT_USER, ProfileKey(section).c_str(), create ? KEY_READ | KEY_WRITE : KEY_READ,
                      create))
        return nullptr;
    return result;
}

} // namespace

int WinApp::GetProfileInt(const char* section, const char* entry, int defaultValue) const
{
    int value = defaultValue;
    if (const auto key = OpenProfileSection(section, false))
        key->ReadInt(entry, value);
    return value;
}

bool WinApp::WriteProfileInt(const char* section, const char* entry, int value)
{
    const auto key = OpenProfileSection(section, true);
    return key && key->WriteInt(entry, value);
}

std::string WinApp::GetProfileString(const char* section, const char* entry, const char* defaultValue) const
{
    std::string value = defaultValue ? defaultValue : "";
    if (const auto key = OpenProfileSection(section, false))
        key->ReadKey(entry, value);
    return value;
}

bool WinApp::WriteProfileString(const char* section, const char* entry, const char* value)
{
    if (!entry) {
        const int result = TsDeleteRegKey(HKEY_CURRENT_USER, ProfileKey(section).c_str());
        return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND;
    }
    const auto key = OpenProfileSection(section, true);
    if (!key)
        return false;
    if (!value)
        return key->DeleteKey(entry) || !key->HasKey(entry);
    return key->WriteKey(entry, value);
}

int WinApp::Run(int& argc, char** argv)
{
    korva::GuardedApplication application(argc, argv);
    application.setApplicationName(QString::fromStdString(mAppName));
    if (!InitInstance())
        return ExitInstance();
    application.exec();
    return ExitInstance();
}

bool WinApp::InitInstance()
{
    return true;
}

int WinApp::ExitInstance()
{
    return 0;
}

namespace {

int ShowMessageBox(QWidget* parent, const std::string& title, const char* text, unsigned int type)
{
    CustomMessageBoxDlg box(type, 0, parent);
    box.SetTitle(title.c_str());
    box.SetText(text);
    const int answer = box.exec();
    // A box with only OK has one answer however it was closed, as the framework's own box has.
    return (type & MB_TYPEMASK) == MB_OK ? IDOK : answer;
}

} // namespace

int WinApp::DoMessageBox(const char* text, unsigned int type, unsigned int)
{
    EnableModeless(false);
    const int result = ShowMessageBox(mMainWnd, mAppName, text, type);
    EnableModeless(true);
    return result;
}

void WinApp::EnableModeless(bool enable)
{
    // Counted, so that nested boxes enable the windows only when the last one closes.
    // Modal boxes block the main window by themselves; what is left are the modeless windows.
    mModelessDisabled += enable ? -1 : 1;
    if (auto* host = dynamic_cast<ModelessHost*>(mMainWnd))
        host->EnableModelessWindows(mModelessDisabled <= 0);
}

bool WinApp::OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI)
{
    return CmdTarget::OnCmdMsg(id, code, cmdUI);
}

int TsAfxMessageBox(const char* text, unsigned int type, unsigned int helpId)
{
    if (WinApp* app = WinApp::GetApp())
        return app->DoMessageBox(text, type, helpId);
    return ShowMessageBox(nullptr, TsSystemInfo::GetApplicationName(), text, type);
}

#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutlwin/frame/GuardedApplication.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/RegistrySection.h>

#include <KORVAutl/TsSystemInfo.h>

#include <QMessageBox>
#include <QPushButton>
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

struct ButtonChoice
{
    QMessageBox::StandardButton button;
    int id;
};

std::vector<ButtonChoice> ButtonsOf(unsigned int type)
{
    switch (type & MB_TYPEMASK) {
    case MB_OKCANCEL:
        return {{QMessageBox::Ok, IDOK}, {QMessageBox::Cancel, IDCANCEL}};
    case MB_ABORTRETRYIGNORE:
        return {{QMessageBox::Abort, IDABORT}, {QMessageBox::Retry, IDRETRY}, {QMessageBox::Ignore, IDIGNORE}};
    case MB_YESNOCANCEL:
        return {{QMessageBox::Yes, IDYES}, {QMessageBox::No, IDNO}, {QMessageBox::Cancel, IDCANCEL}};
    case MB_YESNO:
        return {{QMessageBox::Yes, IDYES}, {QMessageBox::No, IDNO}};
    case MB_RETRYCANCEL:
        return {{QMessageBox::Retry, IDRETRY}, {QMessageBox::Cancel, IDCANCEL}};
    case MB_CANCELTRYCONTINUE:
        return {{QMessageBox::Cancel, IDCANCEL}, {QMessageBox::Retry, IDTRYAGAIN}, {QMessageBox::Ignore, IDCONTINUE}};
    default:
        return {{QMessageBox::Ok, IDOK}};
    }
}

QMessageBox::Icon IconOf(unsigned int type)
{
    switch (type & MB_ICONMASK) {
    case MB_ICONHAND:
        return QMessageBox::Critical;
    case MB_ICONQUESTION:
        return QMessageBox::Question;
    case MB_ICONEXCLAMATION:
        return QMessageBox::Warning;
    case MB_ICONASTERISK:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

int ShowMessageBox(QWidget* parent, const std::string& title, const char* text, unsigned int type)
{
    QMessageBox box(IconOf(type), QString::fromStdString(title), QString::fromUtf8(text ? text : ""),
                    QMessageBox::NoButton, parent);
    const std::vector<ButtonChoice> buttons = ButtonsOf(type);
    for (const ButtonChoice& choice : buttons)
        box.addButton(choice.button);
    const std::size_t defaultIndex = (type & MB_DEFMASK) >> 8;
    if (defaultIndex < buttons.size())
        box.setDefaultButton(buttons[defaultIndex].button);
    // Escape answers Cancel where there is one, and OK in a box with only OK.
    for (const ButtonChoice& choice : buttons)
        if (choice.id == IDCANCEL || buttons.size() == 1)
            box.setEscapeButton(choice.button);
    box.exec();
    const auto pressed = box.standardButton(box.clickedButton());
    for (const ButtonChoice& choice : buttons)
        if (choice.button == pressed)
            return choice.id;
    return IDCANCEL;
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

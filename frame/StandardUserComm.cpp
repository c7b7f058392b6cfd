#include <KORVAutlwin/frame/StandardUserComm.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/FatalErrorDialog.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/frame/YesNoCancelAll.h>
#include <KORVAutlwin/frame/YesNoDialog.h>

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>

#include <atomic>

#include <cstring>

namespace {

// Above this measure a yes/no question goes to the scrolling dialog.
constexpr int kLongQuestion = 30;
// From this measure on a fatal error or an inform goes to the scrolling dialog.
constexpr int kLongMessage = 20;

constexpr int kAnswerYes = 1;
constexpr int kAnswerNo = 3;

bool IsEmptyText(const char* text)
{
    return !text || !*text;
}

// Keeps the application's modeless windows disabled while a box is up.
class ModelessDisabled
{
public:
    ModelessDisabled() : mApp(WinApp::GetApp())
    {
        if (mApp)
            mApp->EnableModeless(false);
    }
    ~ModelessDisabled()
    {
        if (mApp)
            mApp->EnableModeless(true);
    }
    ModelessDisabled(const ModelessDisabled&) = delete;
    ModelessDisabled& operator=(const ModelessDisabled&) = delete;

private:
    WinApp* mApp;
};

// The wait cursor stays until the mouse moves, as a cursor set without a window
// that owns it does; so HourGlassOff has nothing to undo.
class WaitCursorUntilMouseMove;
WaitCursorUntilMouseMove* gWaitCursor = nullptr;

class WaitCursorUntilMouseMove : public QObject
{
public:
    explicit WaitCursorUntilMouseMove(QObject* application) : QObject(application)
    {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        application->installEventFilter(this);
        gWaitCursor = this;
    }
    ~WaitCursorUntilMouseMove() override
    {
        if (gWaitCursor == this)
            gWaitCursor = nullptr;
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::MouseMove && gWaitCursor == this) {
            gWaitCursor = nullptr;
            QCoreApplication::instance()->removeEventFilter(this);
            QGuiApplication::restoreOverrideCursor();
            deleteLater();
        }
        return false;
    }
};

} // namespace

namespace korva {

int MeasureLines(const char* text)
{
    int n = 1;
    if (IsEmptyText(text))
        return n + 1;
    const char* p = text;
    do {
        p = std::strchr(p + 1, '\n');
        ++n;
    } while (p);
    return n;
}

int UserCommMessageBox(const char* text, const char* title, unsigned int type)
{
    ModelessDisabled modelessDisabled;
    // A modal box disables its owner's window by itself; nothing to enable by hand.
    QWidget* owner = GetSafeOwner();
    const unsigned int buttons = type & MB_TYPEMASK;
    if ((type & MB_ICONMASK) == 0 &&
        (buttons == MB_OK || buttons == MB_OKCANCEL || buttons == MB_YESNOCANCEL || buttons == MB_YESNO))
        type |= MB_ICONEXCLAMATION;
    CustomMessageBoxDlg box(type, 0, owner);
    box.SetText(text);
    box.SetTitle(title);
    if (title && !*title)
        box.setWindowTitle(QString());  // only a null title falls back to the application's name
    const int answer = box.exec();
    // A box with only OK has one answer however it was closed.
    return buttons == MB_OK ? IDOK : answer;
}

std::string GetInformSilenceKeyName()
{
    return std::string(GetRegistryBaseKeyName()) + "\\UserCommInformUser";
}

std::string GetInformSilenceValueName(unsigned long silenceId)
{
    // The ids were 32-bit numbers from the start; the name keeps their form.
    return std::to_string(static_cast<std::uint32_t>(silenceId));
}

RegistrySection OpenInformSilenceKey()
{
    return RegistrySection(HKEY_CURRENT_USER, GetInformSilenceKeyName().c_str(), kInformSilenceAccess, true);
}

bool IsInformSilenced(const RegistrySection& key, unsigned long silenceId)
{
    // Anything that does not read as 0, a failed read included, lets the inform through.
    int value = 1;
    return key.ReadInt(GetInformSilenceValueName(silenceId).c_str(), value) && value == 0;
}

bool SilenceInform(RegistrySection& key, unsigned long silenceId)
{
    return key.WriteInt(GetInformSilenceValueName(silenceId).c_str(), 0);
}

namespace {
std::atomic<ProgressHidden::Hook> gHideProgress{nullptr};
std::atomic<ProgressHidden::Hook> gShowProgress{nullptr};
} // namespace

void ProgressHidden::SetHooks(Hook hide, Hook show)
{
    gHideProgress.store(hide);
    gShowProgress.store(show);
}

ProgressHidden::ProgressHidden()
{
    if (Hook hide = gHideProgress.load())
        hide();
}

ProgressHidden::~ProgressHidden()
{
    if (Hook show = gShowProgress.load())
        show();
}

} // namespace korva

StandardUserComm::StandardUserComm() : usage(0) {}

StandardUserComm::~StandardUserComm() = default;

int StandardUserComm::AskUserYesNo(const char* question, const char* details, const char* title, int defaultAnswer)
{
    ++usage;
    korva::ProgressHidden progressHidden;
    YesNoDialog dialog(question, details, title, defaultAnswer, korva::GetSafeOwner());
    return dialog.exec() == IDOK ? kAnswerYes : kAnswerNo;
}

int StandardUserComm::AskUserYesNo(const char* question, const char* title, int defaultAnswer)
{
    ++usage;
    if (question && korva::MeasureLines(question) > kLongQuestion)
        return AskUserYesNo("", question, title, defaultAnswer);
    korva::ProgressHidden progressHidden;
    unsigned int type = MB_YESNO | MB_ICONEXCLAMATION;
    if (defaultAnswer != kAnswerYes)
        type |= MB_DEFBUTTON2;
    return korva::UserCommMessageBox(question, title, type) == IDYES ? kAnswerYes : kAnswerNo;
}

namespace {

// The multi-button questions: one procedure, the flags choose the buttons.
int AskWithToAllButtons(std::int32_t& usage, const char* question, const char* details, const char* title,
                        int defaultAnswer, bool yesToAll, bool no, bool noToAll)
{
    QWidget* parent = korva::GetSafeOwner();
    YesNoCancelAll dialog(question, details, title, YesNoCancelAll::ButtonOfAnswer(defaultAnswer), parent, true,
                          yesToAll, no, noToAll, true);
    ++usage;
    korva::ProgressHidden progressHidden;
    return YesNoCancelAll::AnswerOfButton(dialog.DoModal());
}

} // namespace

int StandardUserComm::AskUserYesYesToAllNoNoToAllCancel(const char* question, const char* details, const char* title,
                                                        int defaultAnswer)
{
    return AskWithToAllButtons(usage, question, details, title, defaultAnswer, true, true, true);
}

int StandardUserComm::AskUserYesYesToAllCancel(const char* question, const char* details, const char* title,
                                               int defaultAnswer)
{
    return AskWithToAllButtons(usage, question, details, title, defaultAnswer, true, false, false);
}

int StandardUserComm::AskUserYesCancel(const char* question, const char* details, const char* title,
                                       int defaultAnswer)
{
    return AskWithToAllButtons(usage, question, details, title, defaultAnswer, false, false, false);
}

void StandardUserComm::FatalError(const char* text, const char* title)
{
    ++usage;
    if (IsEmptyText(text))
        return;
    const int measure = korva::MeasureLines(text);
    korva::ProgressHidden progressHidden;
    if (measure >= kLongMessage) {
        FatalErrorDialog dialog(text, title, korva::GetSafeOwner(), false);
        dialog.exec();
    } else {
        korva::UserCommMessageBox(text, title, MB_ICONHAND);
    }
}

void StandardUserComm::InformUser(const char* text, const char* title, unsigned long silenceId)
{
    ++usage;
    if (IsEmptyText(text))
        return;
    const int measure = korva::MeasureLines(text);
    korva::ProgressHidden progressHidden;
    if (silenceId != 0) {
        RegistrySection key = korva::OpenInformSilenceKey();
        if (korva::IsInformSilenced(key, silenceId))
            return;
        bool checked = false;
        CheckBoxMessageBox(text, checked, 0, nullptr, 0, korva::GetSafeOwner());
        if (checked)
            korva::SilenceInform(key, silenceId);
    } else if (measure >= kLongMessage) {
        FatalErrorDialog dialog(text, title, korva::GetSafeOwner(), true);
        dialog.exec();
    } else {
        korva::UserCommMessageBox(text, title, MB_ICONASTERISK);
    }
}

void StandardUserComm::HourGlassOn()
{
    auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    if (application && !gWaitCursor)
        new WaitCursorUntilMouseMove(application);
}

void StandardUserComm::HourGlassOff() {}

#pragma once
// What the frame and dialog tests share: an application object whose profile lives in a fresh registry store, and the
// means to see and answer its boxes.

#include "TestApplication.h"

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/platform/Registry.h>

#include <KORVAutl/LanguageString.h>

#include <algorithm>
#include <map>
#include <vector>

namespace korva::test {

using Ids = std::vector<int>;

/// The application object `name` of the company "Tessmark" (none for null),
/// with every folder and the registry in a fresh temporary tree.
class MdiFrameFixture : public ::testing::Test
{
protected:
    explicit MdiFrameFixture(const char* name = "MdiFrameTest") : mName(name) {}
    void SetUp() override
    {
        Application();
        setenv("XDG_CONFIG_HOME", mDir.File("user").c_str(), 1);
        setenv("KORVA_COMMON_APPDATA", mDir.File("machine").c_str(), 1);
        setenv("KORVA_REGISTRY_DIR", mDir.File("registry").c_str(), 1);
        std::filesystem::create_directories(mDir.File("registry"));
        RegistryStore::Reset();
        if (mName) {
            mApp = std::make_unique<WinApp>(mName);
            mApp->SetRegistryKey("Tessmark");
        }
        TessmaMDIFrame::SetWarnAboutMemory(true);
    }
    void TearDown() override
    {
        // Only these tests replace the frame's sources; each puts the real ones back.
        TessmaMDIFrame::msFreeMemoryReader = nullptr;
        TessmaMDIFrame::msWorkAreaSource = nullptr;
        mApp.reset();
        RegistryStore::Reset();
        for (const char* name : {"KORVA_REGISTRY_DIR", "KORVA_COMMON_APPDATA", "XDG_CONFIG_HOME"})
            unsetenv(name);
    }

    /// The stored value of `key` among the remembered answers, as text ("" when missing).
    static std::string Stored(const char* key)
    {
        const std::string section = std::string(GetRegistryBaseKeyName()) + "\\DontShowAgainMessages";
        return TsGetRegKey(HKEY_CURRENT_USER, section.c_str(), key, "");
    }

    const char* mName;
    TempDir mDir;
    std::unique_ptr<WinApp> mApp;
};

/// The application "Dialogs", whose name the boxes show as their title.
class MessageDialogTest : public MdiFrameFixture
{
protected:
    MessageDialogTest() : MdiFrameFixture("Dialogs") {}
};

/// The message of a box (the library's or a QMessageBox) without its line breaks.
inline QString BoxText(QWidget* box)
{
    QString text;
    if (auto* message = qobject_cast<QMessageBox*>(box))
        text = message->text();
    if (auto* label = Control<QLabel>(box, 13038))
        text = label->text();
    return text.simplified();
}

/// Answers every modal box with `key` and keeps its text; `during` runs first.
class BoxAnswerer
{
public:
    explicit BoxAnswerer(Qt::Key key = Qt::Key_Return, std::function<void()> during = nullptr)
    {
        QObject::connect(&mTimer, &QTimer::timeout, [this, key, during] {
            QWidget* box = QApplication::activeModalWidget();
            if (!box || !box->isVisible())
                return;
            texts.push_back(BoxText(box));
            if (during)
                during();
            QTest::keyClick(box, key);
        });
        mTimer.start(20);
    }

    std::vector<QString> texts;

private:
    QTimer mTimer;
};

/// The ids of the buttons the user sees, left to right.
inline Ids VisibleButtonIds(QWidget* dialog)
{
    std::vector<QAbstractButton*> buttons;
    for (QAbstractButton* button : dialog->findChildren<QAbstractButton*>())
        if (button->isVisible() && !button->isCheckable())
            buttons.push_back(button);
    std::sort(buttons.begin(), buttons.end(), [](QAbstractButton* a, QAbstractButton* b) {
        return a->mapTo(a->window(), QPoint()).x() < b->mapTo(b->window(), QPoint()).x();
    });
    Ids ids;
    for (QAbstractButton* button : buttons)
        ids.push_back(button->property("ctrlId").toInt());
    return ids;
}

/// What a dialog shows: class, title, buttons left to right, focused control,
/// the texts of the controls not hidden by "ctrlId", a message box's type.
struct Shown
{
    std::string kind;
    std::string title;
    Ids buttons;
    int focused = 0;
    std::map<int, std::string> texts;
    unsigned int type = 0;
};

inline Shown Look(QWidget* dialog)
{
    QWidget* focus = dialog->focusWidget();
    Shown shown{dialog->metaObject()->className(), dialog->windowTitle().toStdString(), VisibleButtonIds(dialog),
                focus ? focus->property("ctrlId").toInt() : 0, {}, 0};
    for (QWidget* control : dialog->findChildren<QWidget*>()) {
        const int id = control->property("ctrlId").toInt();
        if (id == 0 || control->isHidden())
            continue;
        if (auto* label = qobject_cast<QLabel*>(control))
            shown.texts[id] = label->text().toStdString();
        else if (auto* edit = qobject_cast<QPlainTextEdit*>(control))
            shown.texts[id] = edit->toPlainText().toStdString();
        else if (auto* button = qobject_cast<QAbstractButton*>(control))
            shown.texts[id] = button->text().toStdString();
    }
    if (auto* box = qobject_cast<CustomMessageBoxDlg*>(dialog))
        shown.type = box->GetType();
    return shown;
}

/// Notes in `shown` what the next modal dialog shows, then answers it with `answer`.
inline void Answer(Shown& shown, std::function<void(QWidget*)> answer)
{
    shown = Shown();
    WhenModal([&shown, answer](QWidget* dialog) {
        shown = Look(dialog);
        answer(dialog);
    });
}

/// An answer: the key pressed, or (for a non-zero `id`) a click on control `id` after ticking `check`.
inline std::function<void(QWidget*)> Key(Qt::Key key)
{
    return [key](QWidget* dialog) { Press(dialog, key); };
}
inline std::function<void(QWidget*)> ClickOn(int id, int check = 0)
{
    return [id, check](QWidget* dialog) {
        if (check)
            Click(dialog, check);
        Click(dialog, id);
    };
}

/// Counts the dialogs shown while it lives and closes them, so that a call that
/// should show nothing cannot hang the test.
class DialogSpy : public QObject
{
public:
    DialogSpy() { qApp->installEventFilter(this); }
    ~DialogSpy() override { qApp->removeEventFilter(this); }
    int Count() const { return mCount; }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (auto* dialog = qobject_cast<QDialog*>(object); dialog && event->type() == QEvent::Show && ++mCount)
            QTimer::singleShot(0, dialog, [dialog] { dialog->close(); });
        return false;
    }

private:
    int mCount = 0;
};

} // namespace korva::test

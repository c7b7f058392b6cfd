#pragma once
// Helpers of the message dialog tests: controls by their "ctrlId", real key
// presses where the user's keys land, a spy that notices (and closes) every
// dialog that is shown, and a fixture with its own registry and application.

#include "../utl/TempDir.h"
#include "TestApplication.h"

#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/platform/Registry.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

namespace korva::test {

using Ids = std::vector<int>;

/// The control of `dialog` whose "ctrlId" is `id`, or null.
template <class Widget = QWidget>
Widget* Control(QWidget* dialog, int id)
{
    for (Widget* widget : dialog->findChildren<Widget*>())
        if (widget->property("ctrlId").toInt() == id)
            return widget;
    return nullptr;
}

inline QAbstractButton* Button(QWidget* dialog, int id)
{
    return Control<QAbstractButton>(dialog, id);
}

/// The ids of the buttons the user sees, left to right.
inline std::vector<int> VisibleButtonIds(QWidget* dialog)
{
    std::vector<QAbstractButton*> buttons;
    for (QAbstractButton* button : dialog->findChildren<QAbstractButton*>())
        if (button->isVisible() && !button->isCheckable())
            buttons.push_back(button);
    std::sort(buttons.begin(), buttons.end(),
              [](QAbstractButton* a, QAbstractButton* b) { return a->mapTo(a->window(), QPoint()).x() < b->mapTo(b->window(), QPoint()).x(); });
    std::vector<int> ids;
    for (QAbstractButton* button : buttons)
        ids.push_back(button->property("ctrlId").toInt());
    return ids;
}

/// A key press as the user makes it: it goes to the widget with the focus.
inline void Press(QWidget* dialog, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWidget* target = dialog->focusWidget() ? dialog->focusWidget() : dialog;
    QTest::keyClick(target, key, modifiers);
}

inline void Click(QWidget* dialog, int id)
{
    QAbstractButton* button = Button(dialog, id);
    ASSERT_NE(button, nullptr) << "no button " << id;
    QTest::mouseClick(button, Qt::LeftButton);
}

/// Runs `call`, which opens a modal dialog, and answers the dialog with `answer`.
inline void Answering(const std::function<void(QWidget*)>& answer, const std::function<void()>& call)
{
    WhenModal(answer);
    call();
}

/// Notices every dialog that is shown while it lives and closes it at once,
/// so that a call that should show nothing cannot hang the test.
class DialogSpy : public QObject
{
public:
    DialogSpy() { qApp->installEventFilter(this); }
    ~DialogSpy() override { qApp->removeEventFilter(this); }
    int Count() const { return mCount; }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Show)
            if (auto* dialog = qobject_cast<QDialog*>(object)) {
                ++mCount;
                QPointer<QDialog> guarded(dialog);
                QTimer::singleShot(0, [guarded] {
                    if (guarded)
                        guarded->close();
                });
            }
        return false;
    }

private:
    int mCount = 0;
};

/// A fresh registry and an application object "Dialogs" of the company
/// "Tessmark", so that profile values land in HKCU\SOFTWARE\Tessmark\Dialogs.
class MessageDialogTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Application();
        std::filesystem::create_directories(mDir.File("registry"));
        setenv("KORVA_REGISTRY_DIR", mDir.File("registry").c_str(), 1);
        RegistryStore::Reset();
        mApp = std::make_unique<WinApp>("Dialogs");
        mApp->SetRegistryKey("Tessmark");
    }
    void TearDown() override
    {
        mApp.reset();
        RegistryStore::Reset();
        unsetenv("KORVA_REGISTRY_DIR");
    }

    /// The stored value of `key` in the remembered-answers section, as text ("" when missing).
    static std::string Stored(const char* key)
    {
        return TsGetRegKey(HKEY_CURRENT_USER, "SOFTWARE\\Tessmark\\Dialogs\\DontShowAgainMessages", key, "");
    }

    TempDir mDir;
    std::unique_ptr<WinApp> mApp;
};

} // namespace korva::test

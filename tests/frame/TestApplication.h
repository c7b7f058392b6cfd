#pragma once
// One guarded QApplication for the whole test program, made on first use and kept (Qt allows one per process),
// offscreen; and the helpers that find a dialog's controls by "ctrlId" and answer it.

#include "../utl/TempDir.h"

#include <KORVAutlwin/frame/GuardedApplication.h>

#include <QtTest>
#include <QtWidgets>

#include <gtest/gtest.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace korva::test {

inline QApplication* Application()
{
    if (auto* existing = qobject_cast<QApplication*>(QCoreApplication::instance()))
        return existing;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static int argc = 1;
    static char name[] = "frame_tests";
    static char* argv[] = {name, nullptr};
    return new GuardedApplication(argc, argv);
}

/// Calls `action` with the active modal widget (or popup menu) that `accept`
/// takes as soon as one is up, for at most `timeout`; a popup still open then
/// is closed, so that a failing test cannot hang in a menu's loop.
inline void WhenModal(std::function<void(QWidget*)> action, std::chrono::milliseconds timeout = std::chrono::seconds(10),
                      std::function<bool(QWidget*)> accept = nullptr)
{
    auto* timer = new QTimer;
    auto deadline = std::chrono::steady_clock::now() + timeout;
    QObject::connect(timer, &QTimer::timeout, [timer, action, accept, deadline] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal)
            modal = QApplication::activePopupWidget();
        const bool late = std::chrono::steady_clock::now() > deadline;
        if ((modal && modal->isVisible() && (!accept || accept(modal))) || late) {
            timer->stop();
            timer->deleteLater();
            if (!late)
                action(modal);
            else if (QWidget* popup = QApplication::activePopupWidget())
                popup->close();
        }
    });
    timer->start(20);
}

/// The control of `dialog` whose "ctrlId" is `id`, or null.
template <class Widget = QWidget>
Widget* Control(QWidget* dialog, int id)
{
    for (Widget* widget : dialog->findChildren<Widget*>())
        if (widget->property("ctrlId").toInt() == id)
            return widget;
    return nullptr;
}

/// A key press as the user makes it: it goes to the widget with the focus.
inline void Press(QWidget* dialog, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(dialog->focusWidget() ? dialog->focusWidget() : dialog, key, modifiers);
}

/// A mouse click on the control `id`; without one the test fails and the dialog closes.
inline void Click(QWidget* dialog, int id)
{
    if (QWidget* control = Control(dialog, id)) {
        QTest::mouseClick(control, Qt::LeftButton);
    } else {
        ADD_FAILURE() << "no control " << id;
        dialog->close();
    }
}

/// While it lives, this thread's allocations are not reported as leaks: Qt
/// keeps the state of an event whose dispatch an exception left on purpose.
class LeaksAllowed
{
public:
#if defined(__SANITIZE_ADDRESS__)
    LeaksAllowed() { __lsan_disable(); }
    ~LeaksAllowed() { __lsan_enable(); }
#else
    LeaksAllowed() {}   // user-provided, so that a scope holding one is no unused variable
    ~LeaksAllowed() {}
#endif
    LeaksAllowed(const LeaksAllowed&) = delete;
    LeaksAllowed& operator=(const LeaksAllowed&) = delete;
};

} // namespace korva::test

// ExecuteWithProgress: the work on another thread behind a modal ProgressDialog the user cannot close.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/ExecuteWithProgress.h>
#include <KORVAutlwin/progress/IndeterminateProgressCtrl.h>
#include <KORVAutlwin/progress/ProgressDialog.h>

#include <stdexcept>
#include <typeinfo>

namespace {

using namespace std::chrono_literals;

class ExecuteWithProgressTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        korva::test::Application();
        alarm(60);  // a dialog that never closes hangs the test: end it instead
    }
    void TearDown() override
    {
        alarm(0);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }

    // Calls `action` with the dialog once it is up; the work waits at `gate` until the action opens it.
    static void OnDialog(std::function<void(ProgressDialog*)> action)
    {
        korva::test::WhenModal([action](QWidget* modal) { action(static_cast<ProgressDialog*>(modal)); }, 10s,
                               [](QWidget* modal) { return qobject_cast<ProgressDialog*>(modal) != nullptr; });
    }
    std::binary_semaphore gate{0};
};

TEST_F(ExecuteWithProgressTest, WorkThatReturnsAtOnceStillClosesTheDialogAndAFailureIsThrownOnTheCallersThread)
{
    // Often, so that work ending before the dialog is up is among the runs.
    for (int run = 0; run < 25; ++run) {
        std::thread::id worker;
        ExecuteWithProgress([&] { worker = std::this_thread::get_id(); }, "Short", nullptr);
        EXPECT_TRUE(worker != std::thread::id() && worker != std::this_thread::get_id());
    }
    for (QWidget* widget : QApplication::topLevelWidgets())
        EXPECT_EQ(qobject_cast<ProgressDialog*>(widget), nullptr) << "a dialog was left behind";

    struct DerivedException : Exception
    {
        using Exception::Exception;
    };
    // An Exception comes as a new one with its text only; anything else, and no function, as UnknownException.
    auto thrown = [](const std::function<void()>& work) -> std::string {
        try {
            ExecuteWithProgress(work, "Failing", nullptr);
        } catch (const ProgressInfo::UnknownException& exception) {
            return std::string("unknown") + (*exception.Why() ? " with a text" : "");
        } catch (const Exception& exception) {
            return (typeid(exception) == typeid(Exception) ? "Exception " : "derived ") + std::string(exception.Why()) +
                   (exception.Cause() ? " and causes" : "");
        }
        return "nothing";
    };
    EXPECT_EQ(thrown([] { throw Exception("x"); }), "Exception x");
    EXPECT_EQ(thrown([] { throw DerivedException("x", Exception("cause")); }), "Exception x");
    EXPECT_EQ(thrown([] { throw std::runtime_error("not ours"); }), "unknown with a text");
    EXPECT_EQ(thrown([] { throw 42; }), "unknown with a text");
    EXPECT_EQ(thrown(std::function<void()>()), "unknown with a text");
}

TEST_F(ExecuteWithProgressTest, OnlyTheCancelButtonDoesAnythingAndItCallsCancelOnTheCallersThread)
{
    OnDialog([&](ProgressDialog* dialog) {
        EXPECT_FALSE(dialog->GetCancelButton()->isVisible()) << "no cancel function, no button";
        gate.release();
    });
    ExecuteWithProgress([&] { gate.acquire(); }, "Exporting", nullptr);

    std::atomic<bool> cancelled{false};
    std::atomic<int> loops{0};
    std::thread::id cancelThread;
    bool stillUp = false;
    OnDialog([&](ProgressDialog* dialog) {
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Exporting spectra"));
        EXPECT_TRUE(dialog->GetBar()->isVisible());
        QPushButton* cancel = dialog->GetCancelButton();
        EXPECT_TRUE(cancel->isVisible() && cancel->isEnabled());
        // Escape, Return and Enter (even on the focused cancel button) and the close box do nothing.
        dialog->activateWindow();
        cancel->setFocus();
        QTest::keyClick(dialog, Qt::Key_Escape);
        QTest::keyClick(dialog, Qt::Key_Return);
        QTest::keyClick(dialog, Qt::Key_Enter, Qt::KeypadModifier);
        QTest::keyClick(cancel, Qt::Key_Return);
        dialog->close();
        QTest::qWait(100);
        stillUp = dialog->isVisible() && QApplication::activeModalWidget() == dialog && !cancelled;
        QTest::mouseClick(cancel, Qt::LeftButton);
        EXPECT_TRUE(dialog->isVisible()) << "the button closes nothing by itself";
    });
    ExecuteWithProgress(
        [&] {
            for (; !cancelled.load(); ++loops)
                std::this_thread::sleep_for(5ms);
        },
        [&] {
            cancelThread = std::this_thread::get_id();
            cancelled.store(true);
        },
        "Exporting spectra", nullptr);
    EXPECT_TRUE(stillUp);
    EXPECT_TRUE(cancelThread == std::this_thread::get_id() && loops > 0) << "on the caller's thread, while the work ran";
}

} // namespace

// ExecuteWithProgress and its dialog: the work runs on another thread behind a
// modal ProgressDialog that the user cannot close; the dialog closes when the
// work ends, however short; failures of the work come back on the caller's
// thread; the cancel button calls the cancel function. Real input, offscreen.

#include "../frame/TestApplication.h"

#include <KORVAutlwin/progress/ExecuteWithProgress.h>
#include <KORVAutlwin/progress/IndeterminateProgressCtrl.h>
#include <KORVAutlwin/progress/ProgressDialog.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <semaphore>
#include <stdexcept>
#include <thread>
#include <typeinfo>

#include <unistd.h>

namespace {

using namespace std::chrono_literals;

// The work waits at a gate until the test, inside the dialog, opens it.
using Gate = std::binary_semaphore;

bool IsProgressDialog(QWidget* widget)
{
    return qobject_cast<ProgressDialog*>(widget) != nullptr;
}

class ExecuteWithProgressTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        korva::test::Application();
        // A dialog that never closes hangs the test: end it instead.
        alarm(60);
    }
    void TearDown() override
    {
        alarm(0);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
};

TEST_F(ExecuteWithProgressTest, WorkThatReturnsAtOnceStillClosesTheDialog)
{
    // Often, so that work ending before the dialog is up is among the runs.
    const auto caller = std::this_thread::get_id();
    for (int run = 0; run < 25; ++run) {
        std::thread::id worker;
        ExecuteWithProgress([&] { worker = std::this_thread::get_id(); }, "Short", nullptr);
        EXPECT_NE(worker, std::thread::id());
        EXPECT_NE(worker, caller);
    }
    for (QWidget* widget : QApplication::topLevelWidgets())
        EXPECT_FALSE(IsProgressDialog(widget)) << "a dialog was left behind";
}

TEST_F(ExecuteWithProgressTest, DialogIsModalAndTitledWhileTheWorkRuns)
{
    Gate gate{0};
    bool seen = false;
    korva::test::WhenModal(
        [&](QWidget* modal) {
            auto* dialog = static_cast<ProgressDialog*>(modal);
            seen = true;
            EXPECT_TRUE(dialog->isVisible());
            EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Exporting spectra"));
            EXPECT_TRUE(dialog->GetBar()->isVisible());
            EXPECT_EQ(dialog->GetBar()->property("ctrlId").toInt(), ProgressDialog::kBarCtrlId);
            EXPECT_FALSE(dialog->GetCancelButton()->isVisible()) << "no cancel function, no button";
            EXPECT_FALSE(dialog->IsFinished());
            gate.release();
        },
        10s, IsProgressDialog);
    ExecuteWithProgress([&] { gate.acquire(); }, "Exporting spectra", nullptr);
    EXPECT_TRUE(seen);
}

TEST_F(ExecuteWithProgressTest, ExceptionOfTheWorkIsThrownOnTheCallersThreadWithItsText)
{
    class DerivedException : public Exception
    {
    public:
        DerivedException() : Exception("x", Exception("cause")) {}
    };

    const auto caller = std::this_thread::get_id();
    for (int kind = 0; kind < 2; ++kind) {
        std::thread::id thrownOn;
        try {
            ExecuteWithProgress(
                [&] {
                    thrownOn = std::this_thread::get_id();
                    if (kind == 0)
                        throw Exception("x");
                    throw DerivedException();
                },
                "Failing", nullptr);
            ADD_FAILURE() << "nothing thrown";
        } catch (const Exception& exception) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            EXPECT_NE(thrownOn, caller);
            EXPECT_STREQ(exception.Why(), "x");
            // A new Exception with the text: neither the derived class nor the causes come along.
            EXPECT_EQ(typeid(exception), typeid(Exception));
            EXPECT_EQ(exception.Cause(), nullptr);
        }
    }
}

TEST_F(ExecuteWithProgressTest, AnythingElseBecomesUnknownException)
{
    EXPECT_THROW(ExecuteWithProgress([] { throw std::runtime_error("not ours"); }, "Failing", nullptr),
                 ProgressInfo::UnknownException);
    EXPECT_THROW(ExecuteWithProgress([] { throw 42; }, "Failing", nullptr), ProgressInfo::UnknownException);
    EXPECT_THROW(ExecuteWithProgress(std::function<void()>(), "Empty", nullptr), ProgressInfo::UnknownException);
    try {
        ExecuteWithProgress([] { throw 42; }, "Failing", nullptr);
    } catch (const ProgressInfo::UnknownException& exception) {
        EXPECT_STRNE(exception.Why(), "");
    }
}

TEST_F(ExecuteWithProgressTest, EscapeReturnAndTheCloseBoxDoNothingWhileTheWorkRuns)
{
    Gate gate{0};
    int cancelCalls = 0;
    bool stillUp = false;
    korva::test::WhenModal(
        [&](QWidget* modal) {
            auto* dialog = static_cast<ProgressDialog*>(modal);
            QPushButton* cancel = dialog->GetCancelButton();
            dialog->activateWindow();
            cancel->setFocus();
            QTest::keyClick(dialog, Qt::Key_Escape);
            QTest::keyClick(dialog, Qt::Key_Return);
            QTest::keyClick(dialog, Qt::Key_Enter, Qt::KeypadModifier);
            // Return on the focused cancel button must not press it either.
            QTest::keyClick(cancel, Qt::Key_Return);
            dialog->close();
            QTest::qWait(100);
            stillUp = dialog->isVisible() && QApplication::activeModalWidget() == dialog;
            gate.release();
        },
        10s, IsProgressDialog);
    ExecuteWithProgress([&] { gate.acquire(); }, [&] { ++cancelCalls; }, "Busy", nullptr);
    EXPECT_TRUE(stillUp);
    EXPECT_EQ(cancelCalls, 0);
}

TEST_F(ExecuteWithProgressTest, CancelButtonCallsCancelOnTheCallersThreadAndTheWorkEnds)
{
    // Without a cancel function first, for the height.
    int heightWithout = 0;
    Gate first{0};
    korva::test::WhenModal(
        [&](QWidget* modal) {
            heightWithout = modal->height();
            first.release();
        },
        10s, IsProgressDialog);
    ExecuteWithProgress([&] { first.acquire(); }, "Exporting", nullptr);

    const auto caller = std::this_thread::get_id();
    std::atomic<bool> cancelled{false};
    std::atomic<int> loops{0};
    std::thread::id cancelThread;
    int heightWith = 0;
    int buttonHeight = 0;
    korva::test::WhenModal(
        [&](QWidget* modal) {
            auto* dialog = static_cast<ProgressDialog*>(modal);
            QPushButton* cancel = dialog->GetCancelButton();
            heightWith = dialog->height();
            buttonHeight = cancel->height();
            EXPECT_TRUE(cancel->isVisible());
            EXPECT_TRUE(cancel->isEnabled());
            EXPECT_EQ(cancel->property("ctrlId").toInt(), ProgressDialog::kCancelCtrlId);
            QTest::mouseClick(cancel, Qt::LeftButton);
            // The button closes nothing by itself.
            EXPECT_TRUE(dialog->isVisible());
        },
        10s, IsProgressDialog);
    ExecuteWithProgress(
        [&] {
            while (!cancelled.load()) {
                ++loops;
                std::this_thread::sleep_for(5ms);
            }
        },
        [&] {
            cancelThread = std::this_thread::get_id();
            cancelled.store(true);
        },
        "Exporting", nullptr);
    EXPECT_TRUE(cancelled.load());
    EXPECT_EQ(cancelThread, caller);
    EXPECT_GT(loops.load(), 0);
    EXPECT_GE(heightWith - heightWithout, buttonHeight) << "the dialog grows by the button";
}

} // namespace

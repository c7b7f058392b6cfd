// TsDialog's safety net: which exceptions its dispatch catches and shows in the
// internal error dialog, and which it leaves to the frame's.

#include "TestApplication.h"

#include <KORVAutlwin/frame/TsDialog.h>
#include <KORVAutlwin/frame/TsFrameWnd.h>

#include <KORVAutl/Exception.h>

#include <stdexcept>

using namespace korva::test;

namespace {

// Answers the internal error dialog (the one with an error text) with Escape and records its text.
void GoOnAfterError(QString& text, int& shown)
{
    WhenModal(
        [&text, &shown](QWidget* dialog) {
            ++shown;
            text = Control<QPlainTextEdit>(dialog, 13068)->toPlainText();
            QTest::keyClick(dialog, Qt::Key_Escape);
        },
        std::chrono::seconds(10), [](QWidget* modal) { return Control<QPlainTextEdit>(modal, 13068) != nullptr; });
}

class FailingDialog : public TsDialog
{
public:
    explicit FailingDialog(std::function<void()> failure, QWidget* parent = nullptr)
        : TsDialog(0u, parent), button(new QPushButton(QStringLiteral("Go"), this))
    {
        (new QVBoxLayout(this))->addWidget(button);
        connect(button, &QPushButton::clicked, this, [failure] { failure(); });
    }
    QPushButton* button;
};

struct Unknown {};

} // namespace

TEST(DialogGuardTest, TheMaskDecidesWhichExceptionsReachTheDialog)
{
    Application();
    const LeaksAllowed leaksAllowed;
    EXPECT_EQ(TsDialog::GetDefaultExceptionsHandled(), 0xF);
    static const std::runtime_error pointed("pointed failure");
    const struct { const char* name; std::function<void()> failure; int bit; QString text; } cases[] = {
        {"Exception", [] { throw Exception("settings are gone"); }, TsDialog::eHandleException, "settings are gone"},
        {"std::exception", [] { throw std::runtime_error("too long"); }, TsDialog::eHandleStdException, "too long"},
        {"std::exception*", [] { throw &pointed; }, TsDialog::eHandleStdException, "pointed failure"},
        {"unknown", [] { throw Unknown{}; }, TsDialog::eHandleUnknown, kUnknownWindowProcException},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        // With its bit set, the exception ends in the internal error dialog and the program goes on.
        FailingDialog dialog(c.failure);
        dialog.SetExceptionsHandled(c.bit);
        dialog.show();
        QString text;
        int shown = 0;
        GoOnAfterError(text, shown);
        QTest::mouseClick(dialog.button, Qt::LeftButton);
        EXPECT_EQ(shown, 1);
        EXPECT_EQ(text, c.text);

        // Without it, the exception travels on to the caller of the dispatch.
        dialog.SetExceptionsHandled(0xF & ~c.bit);
        EXPECT_ANY_THROW(QTest::mouseClick(dialog.button, Qt::LeftButton));
    }
}

TEST(DialogGuardTest, AnExceptionTheDialogLetsPassReachesTheFramesGuard)
{
    Application();
    const LeaksAllowed leaksAllowed;
    TsFrameWnd frame;
    frame.SetExceptionsHandled(0xF);
    frame.show();
    bool dialogOpened = false;
    frame.OnCommand(32900, [&] {
        FailingDialog dialog([] { throw Exception("from inside the dialog"); }, &frame);
        dialog.SetExceptionsHandled(0);
        dialogOpened = true;
        // The click is posted, as a user's is, so that the dialog's own loop delivers it.
        WhenModal([](QWidget* modal) {
            QPushButton* button = static_cast<FailingDialog*>(modal)->button;
            const QPointF at(button->rect().center()), global(button->mapToGlobal(button->rect().center()));
            for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
                QCoreApplication::postEvent(button, new QMouseEvent(type, at, global, Qt::LeftButton,
                                                                    type == QEvent::MouseButtonPress ? Qt::LeftButton
                                                                                                     : Qt::NoButton,
                                                                    Qt::NoModifier));
        });
        dialog.exec();
    });
    QPushButton trigger(QStringLiteral("Open"), &frame);
    QObject::connect(&trigger, &QPushButton::clicked, [&] { frame.ExecuteCommand(32900); });
    trigger.show();

    QString text;
    int shown = 0;
    GoOnAfterError(text, shown);
    QTest::mouseClick(&trigger, Qt::LeftButton);
    EXPECT_TRUE(dialogOpened);
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(text, QStringLiteral("from inside the dialog"));
}

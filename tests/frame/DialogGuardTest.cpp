#include "TestApplication.h"

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsDialog.h>
#include <KORVAutlwin/frame/TsFrameWnd.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>

#include <QEventLoop>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

// The text of the internal error dialog's error control (ctrlId 13068).
QString ErrorText(QWidget* dialog)
{
    for (auto* text : dialog->findChildren<QPlainTextEdit*>())
        if (text->property("ctrlId").toInt() == 13068)
            return text->toPlainText();
    return QString();
}

// Answers the internal error dialog with Escape (go on) and records its text.
void GoOnAfterError(QString& text, int& shown,
                    std::function<bool(QWidget*)> accept = [](QWidget* modal) { return !ErrorText(modal).isEmpty(); })
{
    korva::test::WhenModal(
        [&text, &shown](QWidget* dialog) {
            ++shown;
            text = ErrorText(dialog);
            QTest::keyClick(dialog, Qt::Key_Escape);
        },
        std::chrono::seconds(10), accept);
}

// A dialog with one button whose click runs `failure`.
class FailingDialog : public TsDialog
{
public:
    explicit FailingDialog(std::function<void()> failure, QWidget* parent = nullptr)
        : TsDialog(0u, parent), button(new QPushButton(QStringLiteral("Go"), this))
    {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(button);
        connect(button, &QPushButton::clicked, this, [failure] { failure(); });
    }
    QPushButton* button;
};

struct Unknown
{
};

} // namespace

TEST(DialogGuardTest, TheMaskDecidesWhichExceptionsReachTheDialog)
{
    korva::test::Application();
    const korva::test::LeaksAllowed leaksAllowed;
    EXPECT_EQ(TsDialog::GetDefaultExceptionsHandled(), 0xF);

    struct Case
    {
        const char* name;
        std::function<void()> failure;
        int bit;
        QString text;
    };
    static const std::runtime_error pointed("pointed failure");
    const std::vector<Case> cases = {
        {"Exception", [] { throw Exception("settings are gone"); }, TsDialog::eHandleException, "settings are gone"},
        {"std::exception", [] { throw std::runtime_error("vector too long"); }, TsDialog::eHandleStdException,
         "vector too long"},
        {"std::exception*", [] { throw &pointed; }, TsDialog::eHandleStdException, "pointed failure"},
        {"unknown", [] { throw Unknown{}; }, TsDialog::eHandleUnknown, kUnknownWindowProcException},
    };
    for (const Case& c : cases) {
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
        bool travelled = false;
        try {
            QTest::mouseClick(dialog.button, Qt::LeftButton);
        } catch (...) {
            travelled = true;
        }
        EXPECT_TRUE(travelled);
    }
}

TEST(DialogGuardTest, AnExceptionTheDialogLetsPassReachesTheFramesGuard)
{
    korva::test::Application();
    const korva::test::LeaksAllowed leaksAllowed;
    TsFrameWnd frame;
    frame.SetExceptionsHandled(0xF);
    frame.show();
    constexpr unsigned int kOpenDialog = 32900;
    bool dialogOpened = false;
    frame.OnCommand(kOpenDialog, [&] {
        FailingDialog dialog([] { throw Exception("from inside the dialog"); }, &frame);
        dialog.SetExceptionsHandled(0);
        dialogOpened = true;
        // The click is posted, as a user's is, so that the dialog's own loop delivers it.
        korva::test::WhenModal([](QWidget* modal) {
            QPushButton* button = static_cast<FailingDialog*>(modal)->button;
            const QPointF at = QPointF(button->rect().center());
            const QPointF global = QPointF(button->mapToGlobal(button->rect().center()));
            QCoreApplication::postEvent(button, new QMouseEvent(QEvent::MouseButtonPress, at, global, Qt::LeftButton,
                                                                Qt::LeftButton, Qt::NoModifier));
            QCoreApplication::postEvent(button, new QMouseEvent(QEvent::MouseButtonRelease, at, global,
                                                                Qt::LeftButton, Qt::NoButton, Qt::NoModifier));
        });
        dialog.exec();
    });
    QPushButton trigger(QStringLiteral("Open"), &frame);
    QObject::connect(&trigger, &QPushButton::clicked, [&] { frame.ExecuteCommand(kOpenDialog); });
    trigger.show();

    QString text;
    int shown = 0;
    // The failing dialog comes up first; the error dialog follows it.
    GoOnAfterError(text, shown);
    QTest::mouseClick(&trigger, Qt::LeftButton);
    EXPECT_TRUE(dialogOpened);
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(text, QStringLiteral("from inside the dialog"));
}

TEST(DialogGuardTest, HelpCommandFollowsTheTopicAndIdleUpdatesReachControls)
{
    korva::test::Application();
    TsDialog dialog(0u, nullptr, 0);
    auto* help = new QPushButton(QStringLiteral("Help"), &dialog);
    help->setProperty("ctrlId", IDHELP);
    auto* apply = new QPushButton(QStringLiteral("Apply"), &dialog);
    apply->setProperty("ctrlId", 1201);
    bool canApply = false;
    dialog.OnUpdateCommand(1201, [&](CCmdUI* cmdUI) { cmdUI->Enable(canApply); });

    unsigned int shownTopic = 0;
    TsDialog::SetHelpTopicHandler([&](unsigned int topic) { shownTopic = topic; });
    dialog.show();
    dialog.OnKickIdle();
    EXPECT_FALSE(help->isEnabled());   // no topic
    EXPECT_FALSE(apply->isEnabled());

    dialog.SetHelpTopicID(4242);
    canApply = true;
    {
        // A loop that really waits goes idle, and idleness updates the controls.
        QEventLoop loop;
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
        loop.exec();
    }
    EXPECT_TRUE(help->isEnabled());
    EXPECT_TRUE(apply->isEnabled());

    QTest::keyClick(&dialog, Qt::Key_F1);
    EXPECT_EQ(shownTopic, 4242u);
    dialog.SetHelpTopicID(static_cast<unsigned int>(-1));
    dialog.OnKickIdle();
    EXPECT_FALSE(help->isEnabled());
    TsDialog::SetHelpTopicHandler(nullptr);
}

TEST(DialogGuardTest, DialogUnitsScaleWithTheFont)
{
    korva::test::Application();
    TsDialog dialog;
    QFont font = dialog.font();
    font.setPixelSize(12);
    dialog.setFont(font);
    const int x1000 = dialog.FromDlgX(1000);
    EXPECT_GT(dialog.FromDlgX(4), 0);
    // Scaling through 1000 units keeps proportions that mapping each value alone would round away.
    EXPECT_NEAR(dialog.FromDlgX(3) * 1000.0 / 3, x1000, 1000.0 / 3);
    EXPECT_EQ(dialog.FromDlgY(8), dialog.FromDlgY(1000) * 8 / 1000);
    font.setPixelSize(24);
    dialog.setFont(font);
    EXPECT_GT(dialog.FromDlgX(1000), x1000 * 3 / 2);
}

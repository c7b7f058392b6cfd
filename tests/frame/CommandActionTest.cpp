// Command actions, the idle update of dialog controls and GUI::Enabler, on real
// offscreen widgets and along the real command route (frame, then application).

#include "TestApplication.h"

#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/GUI.h>
#include <KORVAutlwin/frame/TsFrameWnd.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <QAction>
#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

class CommandTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }
};

// --- CreateCommandAction -------------------------------------------------------

TEST_F(CommandTest, ClickedToolButtonRunsItsCommandThroughTheMainFrame)
{
    WinApp app("CommandTest");
    TsFrameWnd frame;
    app.SetMainWnd(&frame);
    std::vector<const char*> ran;
    frame.OnCommand(4711, [&] { ran.push_back("frame"); });
    app.OnCommand(4711, [&] { ran.push_back("app"); });
    app.OnCommand(4712, [&] { ran.push_back("app 4712"); });

    QToolBar* bar = frame.addToolBar(QStringLiteral("Tools"));
    QAction* action = korva::CreateCommandAction(4711, QStringLiteral("Run"), bar);
    QAction* appAction = korva::CreateCommandAction(4712, QStringLiteral("App"), bar);
    bar->addAction(action);
    bar->addAction(appAction);
    frame.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&frame));

    EXPECT_TRUE(korva::RoutesItself(action));
    QTest::mouseClick(bar->widgetForAction(action), Qt::LeftButton);
    // The frame takes it first; the application sees only what the frame leaves.
    QTest::mouseClick(bar->widgetForAction(appAction), Qt::LeftButton);
    EXPECT_EQ(ran, (std::vector<const char*>{"frame", "app 4712"}));
}

TEST_F(CommandTest, ActionFollowsTheMainWindowOfTheMomentAndFallsBackToTheApplication)
{
    std::unique_ptr<QAction> action(korva::CreateCommandAction(815, QStringLiteral("Go"), nullptr));
    int frameRuns = 0;
    int appRuns = 0;
    action->trigger();   // no application object: goes nowhere, harmlessly

    WinApp app("CommandTest");
    app.OnCommand(815, [&] { ++appRuns; });
    QWidget plain;       // a main window that is no command target
    app.SetMainWnd(&plain);
    action->trigger();
    EXPECT_EQ(appRuns, 1);

    TsFrameWnd frame;
    frame.OnCommand(815, [&] { ++frameRuns; });
    app.SetMainWnd(&frame);
    action->trigger();
    EXPECT_EQ(frameRuns, 1);
    EXPECT_EQ(appRuns, 1);
}

// --- UpdateDialogControls ---------------------------------------------------------

// A dialog on the command route, built from plain Qt controls carrying ctrlId.
class ControlsDialog : public QDialog, public CmdTarget
{
public:
    ControlsDialog()
    {
        auto* layout = new QVBoxLayout(this);
        disabledByHandler = Add<QPushButton>(layout, 11, "Apply");
        orphan = Add<QPushButton>(layout, 12, "Orphan");
        commandOnly = Add<QPushButton>(layout, 13, "Command only");
        autoCheck = Add<QCheckBox>(layout, 14, "Auto");
        threeState = Add<QCheckBox>(layout, 15, "Three states");
        status = Add<QLabel>(layout, 16, "Status");
        auto* group = new QGroupBox(QStringLiteral("Group"), this);
        layout->addWidget(group);
        auto* groupLayout = new QVBoxLayout(group);
        radio = new QRadioButton(QStringLiteral("Radio"), group);
        radio->setProperty(korva::kControlIdProperty, 17);
        groupLayout->addWidget(radio);
        edit = Add<QLineEdit>(layout, 18, "");
        edit->setText(QStringLiteral("typed"));
        // A window of its own, owned by this dialog: it updates its own controls.
        inner = new QDialog(this);
        innerOrphan = new QPushButton(QStringLiteral("Inner"), inner);
        innerOrphan->setProperty(korva::kControlIdProperty, 12);

        OnUpdateCommand(11, [](CCmdUI* ui) { ui->Enable(false); });
        OnCommand(13, [] {});
        OnUpdateCommand(15, [](CCmdUI* ui) { ui->SetCheck(2); });
        OnUpdateCommand(16, [](CCmdUI* ui) { ui->SetText("Ready"); });
        OnUpdateCommand(17, [](CCmdUI* ui) { ui->SetRadio(true); });
        OnUpdateCommand(18, [](CCmdUI* ui) { ui->SetText("typed"); });
    }

    template <class Control>
    Control* Add(QVBoxLayout* layout, int id, const char* text)
    {
        auto* control = new Control(this);
        if constexpr (std::is_base_of_v<QAbstractButton, Control> || std::is_same_v<Control, QLabel>)
            control->setText(QString::fromUtf8(text));
        control->setProperty(korva::kControlIdProperty, id);
        layout->addWidget(control);
        return control;
    }

    QPushButton* disabledByHandler;
    QPushButton* orphan;
    QPushButton* commandOnly;
    QCheckBox* autoCheck;
    QCheckBox* threeState;
    QLabel* status;
    QRadioButton* radio;
    QLineEdit* edit;
    QDialog* inner;
    QPushButton* innerOrphan;
};

TEST_F(CommandTest, DialogControlsFollowTheirUpdateHandlers)
{
    ControlsDialog dialog;
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    dialog.edit->setCursorPosition(2);

    korva::UpdateDialogControls(&dialog, &dialog, false);
    EXPECT_FALSE(dialog.disabledByHandler->isEnabled());
    EXPECT_TRUE(dialog.orphan->isEnabled());
    EXPECT_EQ(dialog.threeState->checkState(), Qt::PartiallyChecked);
    EXPECT_EQ(dialog.status->text(), QStringLiteral("Ready"));
    EXPECT_TRUE(dialog.radio->isChecked());   // found inside its group box
    // The same text is not set again, so the user's cursor stays where it was.
    EXPECT_EQ(dialog.edit->cursorPosition(), 2);

    // Without a handler only plain push buttons are disabled.
    korva::UpdateDialogControls(&dialog, &dialog, true);
    EXPECT_FALSE(dialog.orphan->isEnabled());
    EXPECT_TRUE(dialog.commandOnly->isEnabled());
    EXPECT_TRUE(dialog.autoCheck->isEnabled());
    EXPECT_TRUE(dialog.innerOrphan->isEnabled());

    korva::UpdateDialogControls(&dialog, &dialog, false);
    EXPECT_FALSE(dialog.orphan->isEnabled());   // nobody enables it again by itself
}

TEST_F(CommandTest, DialogOwnHandlersComeBeforeTheTarget)
{
    ControlsDialog dialog;
    CmdTarget owner;
    owner.OnUpdateCommand(16, [](CCmdUI* ui) { ui->SetText("from the owner"); });
    owner.OnUpdateCommand(11, [](CCmdUI* ui) { ui->Enable(true); });
    owner.OnUpdateCommand(12, [](CCmdUI* ui) { ui->SetText("owner's"); });

    korva::UpdateDialogControls(&dialog, &owner, false);
    EXPECT_EQ(dialog.status->text(), QStringLiteral("Ready"));
    EXPECT_FALSE(dialog.disabledByHandler->isEnabled());
    EXPECT_EQ(dialog.orphan->text(), QStringLiteral("owner's"));
    EXPECT_EQ(dialog.innerOrphan->text(), QStringLiteral("Inner"));
}

// --- GUI::Enabler ---------------------------------------------------------------

TEST_F(CommandTest, EnablerAsksTheRouteOfTheMainWindow)
{
    EXPECT_FALSE(GUI::Enabler::IsEnable(1001));   // no application at all

    WinApp app("CommandTest");
    TsFrameWnd frame;
    app.SetMainWnd(&frame);
    int updates = 0;
    frame.OnCommand(1001, [] {});
    frame.OnCommand(1003, [] {});
    frame.OnUpdateCommand(1003, [&](CCmdUI* ui) { ++updates; ui->Enable(false); });
    frame.OnCommand(1005, [] {});
    frame.OnUpdateCommand(1005, [&](CCmdUI* ui) { ++updates; ui->SetCheck(1); });
    app.OnCommand(1004, [] {});                     // reached through the frame
    for (unsigned int invalid : {0u, 0xFFFFu, 0x1FFFFu})
        frame.OnCommand(invalid, [] {});

    EXPECT_TRUE(GUI::Enabler::IsEnable(1001));
    EXPECT_FALSE(GUI::Enabler::IsEnable(1002));      // nobody handles it
    EXPECT_FALSE(GUI::Enabler::IsEnable(1003));
    EXPECT_EQ(updates, 1);                           // disabled: no second round
    EXPECT_TRUE(GUI::Enabler::IsEnable(1004));
    updates = 0;
    EXPECT_TRUE(GUI::Enabler::IsEnable(1005));       // checking says nothing against it
    EXPECT_EQ(updates, 2);                           // enabled: asked once more
    for (unsigned int invalid : {0u, 0xFFFFu, 0x1FFFFu})
        EXPECT_FALSE(GUI::Enabler::IsEnable(invalid)) << invalid;

    // Without a frame as main window the application answers.
    app.SetMainWnd(nullptr);
    EXPECT_TRUE(GUI::Enabler::IsEnable(1004));
    EXPECT_FALSE(GUI::Enabler::IsEnable(1001));
}

TEST_F(CommandTest, RemovedHandlersNoLongerCount)
{
    WinApp app("CommandTest");
    app.OnCommand(1100, [] {});
    app.OnUpdateCommand(1100, [](CCmdUI* ui) { ui->Enable(true); });
    EXPECT_TRUE(GUI::Enabler::IsEnable(1100));
    // Removing the update handler must not leave an empty one to be called.
    app.OnUpdateCommand(1100, nullptr);
    EXPECT_TRUE(GUI::Enabler::IsEnable(1100));
    app.OnCommand(1100, nullptr);
    EXPECT_FALSE(GUI::Enabler::IsEnable(1100));
    EXPECT_FALSE(app.ExecuteCommand(1100));
}

} // namespace

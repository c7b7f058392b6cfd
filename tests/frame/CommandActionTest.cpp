// Command actions, the idle update of dialog controls and GUI::Enabler, on real
// offscreen widgets and along the real command route (frame, then application).

#include "TestApplication.h"

#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/GUI.h>
#include <KORVAutlwin/frame/TsFrameWnd.h>
#include <KORVAutlwin/frame/WinApp.h>

namespace {

class CommandTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }
};

TEST_F(CommandTest, ToolButtonsRunTheirCommandsThroughTheMainWindowOfTheMoment)
{
    std::unique_ptr<QAction> loose(korva::CreateCommandAction(4711, QStringLiteral("Go"), nullptr));
    loose->trigger();   // no application object: goes nowhere, harmlessly
    WinApp app("CommandTest");
    std::vector<std::string> ran;
    app.OnCommand(4711, [&] { ran.push_back("app"); });
    app.OnCommand(4712, [&] { ran.push_back("app 4712"); });
    QWidget plain;   // a main window that is no command target
    app.SetMainWnd(&plain);
    loose->trigger();

    TsFrameWnd frame;
    app.SetMainWnd(&frame);
    frame.OnCommand(4711, [&] { ran.push_back("frame"); });
    loose->trigger();
    QToolBar* bar = frame.addToolBar(QStringLiteral("Tools"));
    QAction* action = korva::CreateCommandAction(4711, QStringLiteral("Run"), bar);
    QAction* appAction = korva::CreateCommandAction(4712, QStringLiteral("App"), bar);
    bar->addActions({action, appAction});
    frame.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&frame));
    // The frame takes it first; the application sees only what the frame leaves.
    QTest::mouseClick(bar->widgetForAction(action), Qt::LeftButton);
    QTest::mouseClick(bar->widgetForAction(appAction), Qt::LeftButton);
    EXPECT_EQ(ran, (std::vector<std::string>{"app", "frame", "frame", "app 4712"}));
}

class ControlsDialog : public QDialog, public CmdTarget
{
public:
    ControlsDialog()
    {
        auto* group = Add<QGroupBox>(this, 0);
        radio = Add<QRadioButton>(group, 17);   // found inside its group box
        edit->setText(QStringLiteral("typed"));
        OnUpdateCommand(11, [](CCmdUI* ui) { ui->Enable(false); });
        OnCommand(13, [] {});
        OnUpdateCommand(15, [](CCmdUI* ui) { ui->SetCheck(2); });
        OnUpdateCommand(16, [](CCmdUI* ui) { ui->SetText("Ready"); });
        OnUpdateCommand(17, [](CCmdUI* ui) { ui->SetRadio(true); });
        OnUpdateCommand(18, [](CCmdUI* ui) { ui->SetText("typed"); });
    }
    template <class Control>
    Control* Add(QWidget* parent, int id)
    {
        auto* control = new Control(parent);
        control->setProperty(korva::kControlIdProperty, id);
        return control;
    }

    QPushButton* disabledByHandler = Add<QPushButton>(this, 11);
    QPushButton* orphan = Add<QPushButton>(this, 12);
    QPushButton* commandOnly = Add<QPushButton>(this, 13);
    QCheckBox* autoCheck = Add<QCheckBox>(this, 14);
    QCheckBox* threeState = Add<QCheckBox>(this, 15);
    QLabel* status = Add<QLabel>(this, 16);
    QRadioButton* radio = nullptr;
    QLineEdit* edit = Add<QLineEdit>(this, 18);
    // A window of its own, owned by this dialog: it updates its own controls.
    QDialog* inner = new QDialog(this);
    QPushButton* innerOrphan = Add<QPushButton>(inner, 12);
};

TEST_F(CommandTest, DialogControlsFollowTheirUpdateHandlersAndTheDialogsOwnComeFirst)
{
    ControlsDialog dialog;
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    dialog.edit->setCursorPosition(2);
    korva::UpdateDialogControls(&dialog, &dialog, false);
    EXPECT_EQ(std::tuple(dialog.disabledByHandler->isEnabled(), dialog.orphan->isEnabled(),
                         dialog.threeState->checkState(), dialog.status->text(), dialog.radio->isChecked()),
              std::tuple(false, true, Qt::PartiallyChecked, "Ready", true));
    EXPECT_EQ(dialog.edit->cursorPosition(), 2) << "the same text is not set again, so the cursor stays";

    // Without a handler only plain push buttons are disabled, and nobody enables them again by itself.
    korva::UpdateDialogControls(&dialog, &dialog, true);
    korva::UpdateDialogControls(&dialog, &dialog, false);
    EXPECT_FALSE(dialog.orphan->isEnabled());
    EXPECT_TRUE(dialog.commandOnly->isEnabled() && dialog.autoCheck->isEnabled() && dialog.innerOrphan->isEnabled());

    // The dialog's own handlers come before those of the target.
    ControlsDialog other;
    CmdTarget owner;
    owner.OnUpdateCommand(16, [](CCmdUI* ui) { ui->SetText("from the owner"); });
    owner.OnUpdateCommand(12, [](CCmdUI* ui) { ui->SetText("owner's"); });
    korva::UpdateDialogControls(&other, &owner, false);
    EXPECT_EQ(other.status->text() + "|" + other.orphan->text() + "|" + other.innerOrphan->text(), "Ready|owner's|");
}

TEST_F(CommandTest, EnablerAsksTheRouteOfTheMainWindow)
{
    EXPECT_FALSE(GUI::Enabler::IsEnable(1001)) << "no application at all";
    WinApp app("CommandTest");
    TsFrameWnd frame;
    app.SetMainWnd(&frame);
    int updates = 0;
    for (unsigned int id : {1001u, 1003u, 1005u, 0u, 0xFFFFu, 0x1FFFFu})
        frame.OnCommand(id, [] {});
    frame.OnUpdateCommand(1003, [&](CCmdUI* ui) { ++updates, ui->Enable(false); });
    frame.OnUpdateCommand(1005, [&](CCmdUI* ui) { ++updates, ui->SetCheck(1); });
    app.OnCommand(1004, [] {});   // reached through the frame

    EXPECT_TRUE(GUI::Enabler::IsEnable(1001));
    EXPECT_FALSE(GUI::Enabler::IsEnable(1002)) << "nobody handles it";
    EXPECT_FALSE(GUI::Enabler::IsEnable(1003));
    EXPECT_EQ(updates, 1) << "disabled: no second round";
    EXPECT_TRUE(GUI::Enabler::IsEnable(1004));
    EXPECT_TRUE(GUI::Enabler::IsEnable(1005)) << "checking says nothing against it";
    EXPECT_EQ(updates, 3) << "enabled: asked once more";
    for (unsigned int invalid : {0u, 0xFFFFu, 0x1FFFFu})
        EXPECT_FALSE(GUI::Enabler::IsEnable(invalid)) << invalid;
    app.SetMainWnd(nullptr);
    EXPECT_TRUE(GUI::Enabler::IsEnable(1004) && !GUI::Enabler::IsEnable(1001));
}

} // namespace

// Menu resources, the menu update through the command route, the popup menu of
// the widget kit and context menus, driven with real keys on offscreen windows.

#include "TestApplication.h"

#include <KORVAutlwin/frame/CmdTarget.h>
#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/GUI.h>
#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/MenuResource.h>
#include <KORVAutlwin/frame/SetResourceInstance.h>
#include <KORVAutlwin/frame/TsFrameWnd.h>
#include <KORVAutlwin/frame/TsMenu.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>

namespace {

using korva::test::WhenModal;

constexpr unsigned int kContextMenu = 1;
constexpr unsigned int kNoPopupMenu = 2;

const char kContextMenuText[] = R"(<menu><popup text="Context">
    <item id="500" text="First"/><item id="501" text="Second"/><item id="502" text="Nobody's"/></popup></menu>)";
const char kNoPopupMenuText[] = R"(<menu><item id="500" text="Flat"/></menu>)";
const char kOwnEditMenuText[] = R"(<menu><popup text="Edit"><item id="57634" text="Kopieren"/></popup></menu>)";
const char kPage[] = "<html><body><p>Hilfe</p></body></html>";

const korva::ResourceModule& TestModule()
{
    static const korva::ResourceEntry resources[] = {
        {kContextMenu, "MENU", kContextMenuText, sizeof kContextMenuText - 1},
        {kNoPopupMenu, "MENU", kNoPopupMenuText, sizeof kNoPopupMenuText - 1},
        {30620, "MENU", kOwnEditMenuText, sizeof kOwnEditMenuText - 1},
        {4100, "HTML", kPage, sizeof kPage - 1},
    };
    static const korva::StringEntry strings[] = {{30602, "Die Menüressource %u gibt es nicht."}};
    static const korva::ResourceModule module("MenuTest", strings, 1, resources, std::size(resources));
    return module;
}

void PickWith(std::vector<Qt::Key> keys)
{
    WhenModal([keys](QWidget* menu) {
        for (Qt::Key key : keys)
            QTest::keyClick(menu, key);
    });
}

QAction* FindAction(QWidget* menu, unsigned int id)
{
    for (QAction* action : menu->actions())
        if (korva::GetCommandId(action) == id)
            return action;
    return nullptr;
}

QMenu* Parse(const std::string& text)
{
    return MenuResource::Parse(text.data(), text.size(), 7);
}

class GuiMenuTest : public ::testing::Test
{
protected:
    GuiMenuTest() { korva::test::Application(); }
};

TEST_F(GuiMenuTest, MenusTextsAndResourcesComeFromTheModuleOfTheScopeWithEnglishBehindIt)
{
    const std::string english = LanguageString::Get(30602);
    const korva::StringEntry strings[] = {{1, "only a string"}};
    const korva::ResourceModule noMenus("NoMenus", strings, 1, nullptr, 0);
    SetResourceInstance noMenusScope(&noMenus);
    std::unique_ptr<QMenu> menu(MenuResource::Load(30620));
    QMenu* edit = menu->actions().front()->menu();
    EXPECT_EQ(edit->title(), QStringLiteral("&Edit"));
    const QList<QAction*> items = edit->actions();
    ASSERT_EQ(items.size(), 8);
    EXPECT_EQ(std::tuple(korva::GetCommandId(items[3]), items[3]->text(), korva::RoutesItself(items[3]),
                         items[6]->isSeparator()),
              std::tuple(57634u, "&Copy\tCtrl+C", false, true));
    {
        SetResourceInstance scope(&TestModule());
        std::unique_ptr<QMenu> own(MenuResource::Load(30620));
        EXPECT_EQ(own->actions().front()->menu()->actions().front()->text(), QStringLiteral("Kopieren"));
        EXPECT_TRUE(MenuResource::Exists(kContextMenu));
        EXPECT_STREQ(LanguageString::Get(30602), "Die Menüressource %u gibt es nicht.");
        EXPECT_EQ(GUIUtilities::ReadResource(4100) + "|" + GUIUtilities::ReadResource(4101), std::string(kPage) + "|");
        {
            SetResourceInstance back(nullptr);   // the English module, for an inner scope
            EXPECT_EQ(LanguageString::Get(30602), english);
            EXPECT_EQ(GUIUtilities::ReadResource(4100), "");
        }
        EXPECT_TRUE(MenuResource::Exists(kContextMenu));
    }
    EXPECT_FALSE(MenuResource::Exists(kContextMenu));
    EXPECT_EQ(LanguageString::Get(30602), english);
    EXPECT_EQ(Thrown([] { delete MenuResource::Load(424242); }), "The menu resource 424242 does not exist.");

    // Invalid menus are refused with where the fault is.
    const std::pair<const char*, const char*> invalid[] = {
        {"<menu>\n<popup text=\"P\">\n<item text=\"no id\"/></popup></menu>", "an item has no valid command id (line 3,"},
        {"<menu>\n<button id=\"4\"/></menu>", "unknown element <button> (line 2,"},
        {"<menu>\n<popup text=\"P\">\n<item id=\"4\" text=\"x\">\n</menu>", "(line 4,"},
        {"<bar><item id=\"4\" text=\"x\"/></bar>", "the root element is not <menu>"},
    };
    for (const auto& [text, detail] : invalid) {
        const std::string why = Thrown([text = text] { delete Parse(text); });
        EXPECT_TRUE(why.starts_with("The menu resource 7 is not a valid menu: ") && why.find(detail) != why.npos)
            << why;
    }
}

TEST_F(GuiMenuTest, EnableMenuUpdatesEveryItemToAnyDepth)
{
    std::unique_ptr<QMenu> root(Parse(R"(<menu><popup text="Top">
        <item id="100" text="Handled"/><separator/><item id="101" text="Unhandled"/>
        <item id="102" text="Old name"/><item id="61536" text="System"/>
        <popup text="Sub"><item id="200" text="Sub first"/><item id="201" text="Radio"/>
          <popup text="Deeper"><item id="300" text="Deep unhandled"/></popup></popup>
        <popup text="Empty"/></popup></menu>)"));
    QMenu* top = root->actions().front()->menu();
    QAction* subEntry = top->actions()[5];
    QMenu* sub = subEntry->menu();
    QAction* deeperEntry = sub->actions()[2];
    QMenu* deeper = deeperEntry->menu();
    CmdTarget target;
    for (unsigned int id : {100u, 201u})
        target.OnCommand(id, [] {});
    target.OnUpdateCommand(100, [](CCmdUI* ui) { ui->SetCheck(1); });
    target.OnUpdateCommand(102, [](CCmdUI* ui) { ui->SetText("New name"); });
    target.OnUpdateCommand(201, [](CCmdUI* ui) { ui->SetRadio(true); });
    int firstItemUpdates = 0;
    target.OnUpdateCommand(200, [&](CCmdUI* ui) {
        ++firstItemUpdates;
        ui->Enable(false);
        ui->SetText("Renamed first");
    });
    GUIUtilities::EnableMenu(&target, root.get());

    EXPECT_TRUE(FindAction(top, 100)->isEnabled() && FindAction(top, 100)->isChecked());
    EXPECT_FALSE(FindAction(top, 101)->isEnabled());
    EXPECT_EQ(FindAction(top, 102)->text(), QStringLiteral("New name"));
    EXPECT_TRUE(FindAction(top, 61536)->isEnabled()) << "system commands stay enabled";
    // The sub-menu's entry takes the state of its first item, but not its text.
    EXPECT_EQ(std::tuple(firstItemUpdates, subEntry->isEnabled(), subEntry->text(), FindAction(sub, 200)->text()),
              std::tuple(2, false, "Sub", "Renamed first"));
    // The radio mark comes from an exclusive group that ties it to no other item.
    QAction* radio = FindAction(sub, 201);
    EXPECT_TRUE(radio->isChecked() && radio->actionGroup()->isExclusive());
    EXPECT_EQ(radio->actionGroup()->actions().size(), 1);
    // A sub-menu is never disabled for want of a handler; its items are.
    EXPECT_TRUE(deeperEntry->isEnabled() && top->actions()[6]->isEnabled());
    EXPECT_FALSE(deeper->actions().front()->isEnabled());
}

TEST_F(GuiMenuTest, TrackPopupMenuFlags)
{
    SetResourceInstance scope(&TestModule());
    std::unique_ptr<QMenu> root(MenuResource::Load(kContextMenu));
    QMenu* popup = root->actions().front()->menu();
    CmdTarget owner;
    int ownerRuns = 0;
    for (unsigned int id : {500u, 501u, 600u})
        owner.OnCommand(id, [&] { ++ownerRuns; });

    // TPM_RETURNCMD only answers; TPM_NONOTIFY leaves the items as they are.
    bool unhandledEnabled = false;
    WhenModal([&](QWidget* menu) {
        unhandledEnabled = FindAction(menu, 502)->isEnabled();
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    EXPECT_EQ(TsMenu::TrackPopupMenu(popup, TPM_RETURNCMD | TPM_NONOTIFY, QPoint(200, 150), &owner), 500u);
    EXPECT_TRUE(unhandledEnabled);

    // Without TPM_NONOTIFY the items are brought up to date first.
    WhenModal([&](QWidget* menu) {
        unhandledEnabled = FindAction(menu, 502)->isEnabled();
        QTest::keyClick(menu, Qt::Key_Escape);
    });
    EXPECT_EQ(TsMenu::TrackPopupMenu(popup, 0, QPoint(400, 300), &owner), 0u);
    EXPECT_FALSE(unhandledEnabled);

    // An action that routes itself is not routed a second time.
    WinApp app("MenuTest");
    int appRuns = 0;
    app.OnCommand(600, [&] { ++appRuns; });
    TsMenu own;
    own.addAction(korva::CreateCommandAction(600, QStringLiteral("Self"), &own));
    PickWith({Qt::Key_Down, Qt::Key_Return});
    EXPECT_EQ(own.TrackPopupMenu(TPM_RIGHTBUTTON, 100, 100, &owner), 600u);
    EXPECT_EQ(std::pair(appRuns, ownerRuns), std::pair(1, 0));
}

class TargetButton : public QPushButton, public CmdTarget
{
public:
    using QPushButton::QPushButton;
};

TEST_F(GuiMenuTest, ContextMenusOpenAtThePointOrTheControlCornerAndRunOnTheirTarget)
{
    SetResourceInstance scope(&TestModule());
    TsFrameWnd frame;
    frame.setGeometry(60, 80, 400, 300);
    frame.setCentralWidget(new QWidget);
    auto* control = new TargetButton(frame.centralWidget());
    control->setGeometry(30, 40, 120, 30);
    auto* plain = new QPushButton(control);
    frame.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&frame));
    std::string ran;
    for (unsigned int id : {500u, 501u}) {
        frame.OnCommand(id, [&ran, id] { ran += "frame " + std::to_string(id) + ";"; });
        control->OnCommand(id, [&ran, id] { ran += "control " + std::to_string(id) + ";"; });
    }
    // Opens the context menu of `wnd` at `at`, picks its second item with the keyboard; what ran.
    QPoint position;
    bool unhandledEnabled = true;
    const auto pickSecond = [&](QWidget* wnd, QPoint at, bool findFrame, CmdTarget* target = nullptr) {
        ran.clear();
        WhenModal([&](QWidget* menu) {
            position = menu->pos();
            unhandledEnabled = FindAction(menu, 502)->isEnabled();
            for (Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return})
                QTest::keyClick(menu, key);
        });
        EXPECT_EQ(GUI::DisplayContextMenu(wnd, kContextMenu, at, findFrame, target), 501u);
        return ran;
    };
    // The keyboard's menu opens at the control's corner; with findFrame, the frame takes the command.
    EXPECT_EQ(pickSecond(control, QPoint(-1, -1), true), "frame 501;");
    EXPECT_EQ(position, control->mapToGlobal(QPoint(5, 5)));
    EXPECT_FALSE(unhandledEnabled) << "brought up to date through the frame";
    EXPECT_EQ(pickSecond(control, QPoint(150, 160), false), "control 501;");
    EXPECT_EQ(position, QPoint(150, 160));
    EXPECT_EQ(pickSecond(plain, QPoint(-1, -1), false), "control 501;") << "the nearest command target around";
    CmdTarget given;
    given.OnCommand(501, [&ran] { ran += "given 501;"; });
    EXPECT_EQ(pickSecond(control, QPoint(-1, -1), true, &given), "given 501;");

    // Cancelling runs nothing; a menu without a sub-menu cannot be shown.
    ran.clear();
    PickWith({Qt::Key_Escape});
    EXPECT_EQ(GUI::DisplayContextMenu(control, kContextMenu, QPoint(-1, -1), true, nullptr), 0u);
    EXPECT_EQ(ran, "");
    EXPECT_EQ(Thrown([&] { GUI::DisplayContextMenu(control, kNoPopupMenu, QPoint(-1, -1), true, nullptr); }),
              "The menu resource 2 has no sub-menu to show.");

    QPointer<TargetButton> alive = control;
    control->OnCommand(500, [control] { delete control; });
    PickWith({Qt::Key_Down, Qt::Key_Return});
    EXPECT_EQ(GUI::DisplayContextMenu(control, kContextMenu, QPoint(-1, -1), false, nullptr), 500u);
    EXPECT_TRUE(alive.isNull());
}

} // namespace

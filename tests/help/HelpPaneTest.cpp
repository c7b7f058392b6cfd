// The help pane and the help window on a real browser, offscreen, showing pages
// served out of help files that chmcmd compiled at build time.

#include "frame/TestApplication.h"

#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/help/CHHCtrl.h>
#include <KORVAutlwin/help/HelpWindow.h>
#include <KORVAutlwin/help/TsHtmlHelp.h>
#include <KORVAutlwin/workspace/HtmlBrowserView.h>

#include <QDialog>
#include <QLineEdit>
#include <QToolBar>
#include <QTreeWidget>
#include <QWebEngineView>

#include <cstdint>

namespace {
const std::string kMapped = KORVA_HELP_CHM_DIR "/mapped.chm";

bool Until(const std::function<bool()>& done, int ms = 20000)
{
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > ms)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

QString Eval(CHHCtrl& pane, const QString& script)
{
    QVariant result;
    bool done = false;
    pane.GetBrowser()->GetPage()->runJavaScript(script, [&](const QVariant& value) { result = value, done = true; });
    Until([&] { return done; });
    return result.toString();
}

struct WithApplication
{
    WithApplication() { korva::test::Application(); }
};

struct Pane : WithApplication
{
    QWidget host;
    CHHCtrl pane;
    Pane(unsigned long buttons, const char* home)
    {
        host.resize(600, 400);
        EXPECT_TRUE(pane.Create(&host, QRect(0, 0, 600, 400), buttons, home, false));
        QObject::connect(&pane, &CHHCtrl::PageComplete, [this] { ++completes; });
        host.show();
    }
    int completes = 0;
    // Each page completes twice: once loaded, once refreshed by the pane.
    bool Shows(const QString& heading)
    {
        const bool shown = Until([&] {
            return completes >= 2 && !pane.GetBusy() && Eval(pane, "document.querySelector('h1').innerText") == heading;
        });
        completes = 0;
        return shown;
    }
};
} // namespace

TEST(HelpPaneTest, PagesByMapIdAndTopicOutOfTheHelpFile)
{
    Pane p(0x1F, reinterpret_cast<const char*>(std::uintptr_t{1001}));
    EXPECT_EQ(p.pane.NavigateChm(1001), STG_E_PATHNOTFOUND);
    ASSERT_TRUE(p.pane.SetChmFile(kMapped.c_str()));
    EXPECT_EQ(p.pane.NavigateChm(7), E_FAIL);
    ASSERT_EQ(p.pane.NavigateChm(1001), S_OK);
    ASSERT_TRUE(p.Shows("Introduction"));
    EXPECT_EQ(p.pane.GetLocationURL(), "its:" + kMapped + "::/intro.htm");
    // A relative link inside the help file leads to its neighbour, served the same way.
    ASSERT_EQ(p.pane.NavigateChm(4000000000u), S_OK);
    ASSERT_TRUE(p.Shows("Details"));
    ASSERT_EQ(Eval(p.pane, "document.querySelector('a').href"), QString::fromStdString("its:" + kMapped + "::/intro.htm"));
    EXPECT_EQ(p.pane.GetIdTable().GetReadCount(), 1);
    // Back through the tool bar's button.
    QAction* back = p.pane.GetToolBarCtrl()->actions().at(1);
    ASSERT_TRUE(Until([&] { return back->isEnabled(); }));
    back->trigger();
    EXPECT_TRUE(p.Shows("Introduction"));
}

TEST(HelpPaneTest, ButtonsAndHomes)
{
    struct Row
    {
        const char* name;
        unsigned long buttons;
        const char* home;
        int actions;   // -1: no tool bar
        QString heading;
    } rows[] = {
        {"no buttons, no tool bar", 0, "intro.htm", -1, "Introduction"},
        {"no home: home left out", 0x7, "", 2, ""},
        {"topic home", 0x1F, "sub/details.htm", 5, "Details"},
        {"map id home", 0x3, reinterpret_cast<const char*>(std::uintptr_t{1001}), 2, "Introduction"},
        {"home with ':' is a URL", 0x1, "data:text/html,<h1>Outside</h1>", 1, "Outside"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Pane p(row.buttons, row.home);
        p.pane.SetChmFile(kMapped.c_str());
        EXPECT_EQ(p.pane.GetToolBarCtrl() ? static_cast<int>(p.pane.GetToolBarCtrl()->actions().size()) : -1,
                  row.actions);
        if (!row.heading.isEmpty()) {
            p.pane.GoHome();
            EXPECT_TRUE(p.Shows(row.heading));
        }
    }
}

TEST(HelpPaneTest, AppLinksClickedRunMappedCommandsOnly)
{
    Pane p(0, "");
    WinApp app("HelpTest");
    struct MainWindow : QWidget, CmdTarget
    {
    } frame;
    app.SetMainWnd(&frame);
    std::vector<unsigned int> ran;
    frame.OnCommand(35150, [&] { ran.push_back(35150); });
    p.pane.SetCmdMap({{"RunDemo", 35150}});
    ASSERT_TRUE(p.pane.SetChmFile(kMapped.c_str()));
    ASSERT_EQ(p.pane.NavigateChm(1001), S_OK);
    ASSERT_TRUE(p.Shows("Introduction"));
    // "app:Unknown" first (nothing runs), then "APP:RunDemo"; the page stays.
    for (const char* index : {"1", "0"}) {
        SCOPED_TRACE(index);
        Eval(p.pane, QString("document.querySelectorAll('p')[1].querySelectorAll('a')[%1].click()").arg(index));
        Until([&] { return !ran.empty(); }, std::string(index) == "0" ? 10000 : 1500);
        EXPECT_EQ(p.pane.GetLocationURL(), "its:" + kMapped + "::/intro.htm");
    }
    EXPECT_EQ(ran, std::vector<unsigned int>{35150});
}

TEST(HelpPaneTest, ViewerShowsContentsAndTopicsByMapId)
{
    korva::test::Application();
    TsHtmlHelp& help = TsHtmlHelp::Instance();
    help.SetHelpFile(KORVA_HELP_CHM_DIR "/missing.chm");
    EXPECT_EQ(help.DisplayTopic(1001), nullptr);
    help.SetHelpFile(kMapped.c_str());
    ASSERT_NE(help.DisplayTopic(1001), nullptr);
    HelpWindow* window = help.GetWindow();
    EXPECT_EQ(window->GetContents()->topLevelItemCount(), 2);
    EXPECT_TRUE(Until([&] { return Eval(*window->GetPane(), "document.title") == "Introduction"; }));
    EXPECT_EQ(help.DisplayTopic(7), nullptr);
    EXPECT_EQ(window->RunSearch("START HERE"), 1);
}

TEST(HelpPaneTest, RightButtonShowsThePanesMenuWhoseBackGoesBack)
{
    Pane p(0, "");
    ASSERT_TRUE(p.pane.SetChmFile(kMapped.c_str()));
    p.pane.NavigateChm(1001);
    ASSERT_TRUE(p.Shows("Introduction"));
    p.pane.NavigateChm(4000000000u);
    ASSERT_TRUE(p.Shows("Details"));
    QWidget* input = p.pane.GetBrowser()->GetBrowser()->focusProxy();
    ASSERT_NE(input, nullptr);
    QStringList items;
    korva::test::WhenModal([&](QWidget* popup) {
        for (QAction* action : popup->actions())
            items << action->text();
        QTest::keyClick(popup, Qt::Key_B);
    });
    QTest::mouseClick(input, Qt::RightButton, {}, QPoint(200, 200));
    EXPECT_TRUE(p.Shows("Introduction"));
    EXPECT_EQ(items.value(0), "&Back");
}

TEST(HelpPaneTest, ContextHelpOfADialogsControl)
{
    korva::test::Application();
    TsHtmlHelp& help = TsHtmlHelp::Instance();
    help.SetHelpFile(kMapped.c_str());
    QDialog dialog;
    dialog.resize(300, 200);
    QWidget* controls[2] = {new QLineEdit(&dialog), new QLineEdit(&dialog)};
    for (int i = 0; i < 2; ++i) {
        controls[i]->setProperty("ctrlId", 100 + i);
        controls[i]->setProperty("contextHelpId", 5001 + i);
    }
    dialog.show();
    struct Row
    {
        int contextType, ctrlId;
        QWidget* control;
        bool handled;
        std::string text;
    } rows[] = {
        {HELPINFO_WINDOW, 101, controls[1], true, "The sample's weight in grams."},
        {HELPINFO_WINDOW, 100, controls[0], true, "The name of the sample, as it appears in reports."},
        {HELPINFO_WINDOW, 0, controls[1], false, "The name of the sample, as it appears in reports."},
        {2, 101, controls[1], false, "The name of the sample, as it appears in reports."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.ctrlId);
        HELPINFO info;
        info.iContextType = row.contextType;
        info.iCtrlId = row.ctrlId;
        info.hItemHandle = row.control;
        EXPECT_EQ(help.DisplayContextHelp(&dialog, &info, "popups.txt"), row.handled);
        EXPECT_EQ(help.GetLastPopupText(), row.text);
    }
    EXPECT_EQ(help.GetContextTable().GetCount(), 2);
}

#include "HelpDemos.h"

#include "DemoMenus.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/help/CHHCtrl.h>
#include <KORVAutlwin/help/TsHtmlHelp.h>

#include <QMdiSubWindow>
#include <QVBoxLayout>

#include <cstdint>

namespace {

constexpr const char* kHelpFile = "Workbench.chm";

// The help file is looked for where help files are kept: beside the program first.
bool UseHelpFile(TessmaMDIFrame& frame)
{
    if (!TsHtmlHelp::Instance().GetHelpFile().empty())
        return true;
    CHHCtrl finder;
    if (!finder.SetChmFile(kHelpFile))
        return false;
    TsHtmlHelp::Instance().SetHelpFile(finder.GetChmFile().c_str());
    frame.SetMessageText(finder.GetChmFile().c_str());
    return true;
}

void OpenPane(TessmaMDIFrame& frame)
{
    auto* holder = new QWidget;
    holder->setWindowTitle(QObject::tr("Help Pane"));
    auto* pane = new CHHCtrl();
    // The home is a map id, not a topic path.
    pane->Create(holder, QRect(0, 0, 600, 420), 0x1F,
                 reinterpret_cast<const char*>(std::uintptr_t{eTopicWelcome}), true);
    pane->SetCmdMap({{"About", ID_APP_ABOUT}, {"Contents", eDemoHelpContents}});
    auto* layout = new QVBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(pane);
    QMdiSubWindow* child = frame.AddMDIChild(holder);
    child->setGeometry(0, 0, 640, 480);
    child->show();
    if (pane->SetChmFile(kHelpFile))
        pane->NavigateChm(eTopicPane);
}

} // namespace

void AddHelpDemos(TessmaMDIFrame& frame)
{
    QMenu* help = MenuOf(frame, QObject::tr("&Help"));
    help->addSeparator();
    frame.AddCommand(help, eDemoHelpContents, QObject::tr("Help &Contents"));
    frame.AddCommand(help, eDemoHelpIndex, QObject::tr("Help &Index"));
    frame.AddCommand(help, eDemoHelpSearch, QObject::tr("&Search Help"));
    frame.AddCommand(help, eDemoHelpTopicById, QObject::tr("Help Topic by &Map Id"));
    frame.AddCommand(help, eDemoHelpPane, QObject::tr("Help &Pane"));
    frame.OnCommand(eDemoHelpContents, [&frame] {
        if (UseHelpFile(frame))
            TsHtmlHelp::Instance().DisplayDefaultTopic();
    });
    frame.OnCommand(eDemoHelpIndex, [&frame] {
        if (UseHelpFile(frame))
            TsHtmlHelp::Instance().DisplayIndex();
    });
    frame.OnCommand(eDemoHelpSearch, [&frame] {
        if (UseHelpFile(frame))
            TsHtmlHelp::Instance().Search();
    });
    frame.OnCommand(eDemoHelpTopicById, [&frame] {
        if (UseHelpFile(frame))
            TsHtmlHelp::Instance().DisplayTopic(eTopicMapIds);
    });
    frame.OnCommand(eDemoHelpPane, [&frame] { OpenPane(frame); });
}

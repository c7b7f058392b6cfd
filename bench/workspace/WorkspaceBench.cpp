// The idle rebuild of the tabbed workspace with 200 MDI children in 20 groups,
// side by side with what a plain Qt program would do at each idle moment:
// QMdiArea::subWindowList() grouped by identifier, and a QTabBar rebuilt from
// scratch.
//
//  - nothing changed: the steady state of every idle moment. The counter
//    strip_events tells how many update, paint or layout events the strip got
//    over the whole run (0 when the rebuild did no widget work).
//  - one title changed per rebuild: the strip shows the new text and the frame
//    lays out again.
//
// Offscreen.

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/workspace/TsTabbedClientWnd.h>
#include <KORVAutlwin/workspace/TsTabbedWorkspace.h>
#include <KORVAutlwin/workspace/TsTabbedWorkspaceWindowIdentifier.h>

#include <QApplication>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTabBar>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>

namespace {

constexpr int kChildren = 200;
constexpr int kGroups = 20;

QApplication& Application()
{
    static int argc = 1;
    static char name[] = "bench_workspace";
    static char* argv[] = {name, nullptr};
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QApplication application(argc, argv);
    return application;
}

// The group of a child is its view's object name.
class GroupPolicy : public TsTabbedWorkspaceWindowIdentifier
{
public:
    std::string GetWindowIdentifier(const QWidget* window) override
    {
        return static_cast<const QMdiSubWindow*>(window)->widget()->objectName().toStdString();
    }
};

class EventCounter : public QObject
{
public:
    int events = 0;
    bool eventFilter(QObject*, QEvent* event) override
    {
        const QEvent::Type type = event->type();
        if (type == QEvent::UpdateRequest || type == QEvent::Paint || type == QEvent::LayoutRequest)
            ++events;
        return false;
    }
};

struct Workspace
{
    Workspace()
    {
        frame.resize(1000, 700);
        frame.show();
        client.Attach(&frame, &policy, 0);
        for (int i = 0; i < kChildren; ++i) {
            auto* view = new QWidget;
            view->setObjectName(QString("group %1").arg(i % kGroups));
            view->setWindowTitle(QString("Window of group %1").arg(i % kGroups));
            children.push_back(frame.AddMDIChild(view));
        }
        for (int i = 0; i < 3; ++i) {
            client.GetTabCtrl()->UpdateContents();
            QApplication::processEvents();
        }
    }
    QApplication& application = Application();
    GroupPolicy policy;
    TessmaMDIFrame frame;
    TsTabbedClientWnd client;
    std::vector<QMdiSubWindow*> children;
};

Workspace& TheWorkspace()
{
    static auto* workspace = new Workspace;
    return *workspace;
}

void BM_IdleRebuild_NothingChanged(benchmark::State& state)
{
    Workspace& workspace = TheWorkspace();
    TsTabbedWorkspace* strip = workspace.client.GetTabCtrl();
    QApplication::processEvents();
    EventCounter counter;
    strip->installEventFilter(&counter);
    for (auto _ : state)
        strip->UpdateContents();
    QApplication::processEvents();
    strip->removeEventFilter(&counter);
    state.counters["tabs"] = strip->GetItemCount();
    state.counters["strip_events"] = counter.events;
}
BENCHMARK(BM_IdleRebuild_NothingChanged)->Unit(benchmark::kMicrosecond);

void BM_IdleRebuild_OneTitleChanged(benchmark::State& state)
{
    Workspace& workspace = TheWorkspace();
    TsTabbedWorkspace* strip = workspace.client.GetTabCtrl();
    // The bottom window of the walk names its tab.
    QMdiSubWindow* named = workspace.frame.GetMDIClient()->subWindowList(QMdiArea::StackingOrder).front();
    int n = 0;
    for (auto _ : state) {
        named->widget()->setWindowTitle(QString("Renamed %1").arg(++n & 1));
        strip->UpdateContents();
    }
    state.counters["tabs"] = strip->GetItemCount();
}
BENCHMARK(BM_IdleRebuild_OneTitleChanged)->Unit(benchmark::kMicrosecond);

// The peer: the child list, grouped, and a tab bar made anew from it.
void BM_SubWindowListAndTabBarRebuilt(benchmark::State& state)
{
    Workspace& workspace = TheWorkspace();
    QMdiArea* area = workspace.frame.GetMDIClient();
    QTabBar bar;
    bar.resize(1000, 30);
    bar.show();
    for (auto _ : state) {
        std::map<QString, QString> groups;
        for (QMdiSubWindow* child : area->subWindowList())
            groups[child->widget()->objectName()] = child->windowTitle();
        while (bar.count() > 0)
            bar.removeTab(bar.count() - 1);
        for (const auto& [group, title] : groups)
            bar.addTab(title);
    }
    state.counters["tabs"] = bar.count();
}
BENCHMARK(BM_SubWindowListAndTabBarRebuilt)->Unit(benchmark::kMicrosecond);

} // namespace

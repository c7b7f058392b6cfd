#include <KORVAutlwin/workspace/TsTabbedClientWnd.h>

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/workspace/TabCtrlStyles.h>
#include <KORVAutlwin/workspace/TabbedWorkspaceLayout.h>
#include <KORVAutlwin/workspace/TsTabbedWorkspace.h>

#include <QChildEvent>
#include <QMdiArea>
#include <QMdiSubWindow>

// The frame's central area while attached: the strip and, above it, the client.
// It lays both out at every new size, and tells the client window when it goes
// with the frame, before the windows inside it are destroyed.
class TsTabbedClientWnd::Area : public QWidget
{
public:
    Area(TsTabbedClientWnd& owner, QWidget* parent) : QWidget(parent), mOwner(owner) {}
    ~Area() override { mOwner.AreaGoing(); }

protected:
    void resizeEvent(QResizeEvent*) override { mOwner.CalcWindowRect(rect()); }

private:
    TsTabbedClientWnd& mOwner;
};

TsTabbedClientWnd::TsTabbedClientWnd(QObject* parent) : QObject(parent) {}

TsTabbedClientWnd::~TsTabbedClientWnd()
{
    Detach();
}

int TsTabbedClientWnd::Attach(TessmaMDIFrame* frame, TsTabbedWorkspaceWindowIdentifier* identifier,
                              unsigned long style)
{
    if (IsAttached() || !frame || !frame->GetMDIClient() || frame->centralWidget() != frame->GetMDIClient())
        return 0;
    mFrame = frame;
    mClient = frame->GetMDIClient();
    frame->takeCentralWidget();
    mArea = new Area(*this, frame);
    mClient->setParent(mArea);
    mWorkspace = new TsTabbedWorkspace(this, identifier, style | TCS_FOCUSNEVER, mArea);
    mWorkspace->lower();
    mClient->show();
    mWorkspace->show();
    frame->setCentralWidget(mArea);
    mClient->installEventFilter(this);
    mClient->viewport()->installEventFilter(this);
    // A frame that goes is past its own part by now: it is only forgotten.
    connect(frame, &QObject::destroyed, this, &TsTabbedClientWnd::AreaGoing);
    RecalcLayout();
    mWorkspace->UpdateContents();
    return 1;
}

int TsTabbedClientWnd::Detach()
{
    if (!IsAttached())
        return 0;
    TessmaMDIFrame* frame = mFrame;
    QMdiArea* client = mClient;
    Area* area = mArea;
    if (mWorkspace) {
        mWorkspace->OnDestroy();
        delete mWorkspace;
        mWorkspace = nullptr;
    }
    client->removeEventFilter(this);
    client->viewport()->removeEventFilter(this);
    disconnect(frame, &QObject::destroyed, this, &TsTabbedClientWnd::AreaGoing);
    mFrame = nullptr;
    mClient = nullptr;
    mArea = nullptr;
    // The client goes back to the frame; the area, now empty, goes.
    frame->takeCentralWidget();
    frame->setCentralWidget(client);
    client->show();
    delete area;
    return 1;
}

void TsTabbedClientWnd::AreaGoing()
{
    if (mFrame)
        disconnect(mFrame, &QObject::destroyed, this, &TsTabbedClientWnd::AreaGoing);
    // The frame is going with its windows: nothing is shown or laid out any more.
    if (mClient) {
        mClient->removeEventFilter(this);
        mClient->viewport()->removeEventFilter(this);
    }
    delete mWorkspace;
    mWorkspace = nullptr;
    mFrame = nullptr;
    mClient = nullptr;
    mArea = nullptr;
}

TsTabbedWorkspace* TsTabbedClientWnd::GetTabCtrl() const
{
    return IsAttached() ? mWorkspace : nullptr;
}

int TsTabbedClientWnd::GetNumTabs() const
{
    return GetTabCtrl() ? mWorkspace->GetItemCount() : 0;
}

int TsTabbedClientWnd::GetCurrentTab() const
{
    return GetTabCtrl() ? mWorkspace->GetCurSel() : -1;
}

std::string TsTabbedClientWnd::GetTabWindowIdentifier(int index) const
{
    return GetTabCtrl() ? mWorkspace->GetTabWindowIdentifier(index) : std::string();
}

void TsTabbedClientWnd::SetActiveTab(const std::string& id)
{
    if (GetTabCtrl())
        mWorkspace->SetActiveTab(id);
}

void TsTabbedClientWnd::SetTabCtrlStyle(unsigned long style)
{
    if (GetTabCtrl()) {
        mWorkspace->SetStyle(mWorkspace->GetStyle() | style);
        RecalcLayout();
    }
}

void TsTabbedClientWnd::RecalcLayout()
{
    if (mArea)
        CalcWindowRect(mArea->rect());
}

void TsTabbedClientWnd::CalcWindowRect(const QRect& rect)
{
    if (!mClient)
        return;
    if (!mWorkspace || mWorkspace->isHidden()) {
        mClient->setGeometry(rect);
        return;
    }
    mWorkspace->setGeometry(rect);
    const auto side = TabbedWorkspaceLayout::SideOfStyle(mWorkspace->GetStyle());
    mClient->setGeometry(TabbedWorkspaceLayout::CalcClientRect(rect, static_cast<int>(mWorkspace->GetOffset()),
                                                               mWorkspace->GetStripExtent(), TsTabbedWorkspace::kPanelBorder, side));
}

bool TsTabbedClientWnd::eventFilter(QObject* watched, QEvent* event)
{
    if (!mWorkspace)
        return false;
    TabbedWorkspaceTabs& tabs = mWorkspace->Tabs();
    if (mClient && watched == mClient->viewport()) {
        if (event->type() == QEvent::ChildAdded) {
            tabs.SetNeedsLayout();
        } else if (event->type() == QEvent::ChildRemoved) {
            // A child going: its tab reference goes now, by the identifier it had.
            if (!tabs.GetNeedsLayout())
                tabs.RemoveTabItem(static_cast<const void*>(static_cast<QChildEvent*>(event)->child()));
            tabs.SetNeedsLayout();
        }
    } else if (watched == mClient) {
        switch (event->type()) {
        case QEvent::Resize:
            tabs.SetNeedsLayout();
            break;
        case QEvent::ShowToParent:
        case QEvent::HideToParent:
            // The client's own visibility, not its parent's: the strip follows it.
            mWorkspace->setVisible(!mClient->isHidden());
            RecalcLayout();
            break;
        default:
            break;
        }
    }
    return false;
}

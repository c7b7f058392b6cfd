#include <KORVAutlwin/favourites/FavouritesView.h>

#include <KORVAutlwin/favourites/FavouritesManager.h>
#include <KORVAutlwin/favourites/FavouritesTree.h>
#include <KORVAutlwin/favourites/FavouritesUtilities.h>

#include <QTimerEvent>
#include <QVBoxLayout>

namespace {

// The styles, switches and binding every favourites tree starts with.
void PrepareTree(FavouritesTree* tree, FavouritesManager* manager)
{
    tree->ModifyStyle(0, TVS_HASBUTTONS | TVS_EDITLABELS | TVS_SHOWSELALWAYS | TVS_NOTOOLTIPS);
    tree->EnableMultiSelect(true);
    tree->EnableDelete(true);
    tree->DragAcceptFiles(true);
    tree->SetFavouritesManager(manager);
}

} // namespace

FavouritesTree* FavouritesUtilities::CreateFavouritesTree(QWidget* parent, FavouritesManager* manager, unsigned int id)
{
    auto* tree = new FavouritesTree(parent, TVS_HASBUTTONS | TVS_EDITLABELS | TVS_SHOWSELALWAYS | TVS_NOTOOLTIPS |
                                                TVS_FULLROWSELECT);
    tree->setProperty("ctrlId", id);
    PrepareTree(tree, manager);
    if (manager)
        manager->OnInitialUpdate();
    return tree;
}

FavouritesView::FavouritesView(FavouritesManager* manager, QWidget* parent)
    : QWidget(parent), manager(manager), tree(new FavouritesTree(this, TVS_HASBUTTONS))
{
    tree->setProperty("ctrlId", kTreeId);
    // The tree is anchored to all four sides.
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(tree);
}

FavouritesView::~FavouritesView() = default;

void FavouritesView::OnInitialUpdate()
{
    if (initialised)
        return;
    initialised = true;
    PrepareTree(tree, manager);
    tree->SetToolBarIDs(toolBarIds);
    if (manager)
        manager->OnInitialUpdate();
}

void FavouritesView::SetToolBarIDs(const unsigned int* ids, unsigned int count)
{
    toolBarIds.assign(ids, ids + count);
    tree->SetToolBarIDs(toolBarIds);
}

void FavouritesView::EnableCommandItems(const unsigned int* ids, unsigned int count)
{
    tree->EnableCommandItems(ids, count);
}

bool FavouritesView::OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI)
{
    return tree->OnCmdMsg(id, code, cmdUI) || CmdTarget::OnCmdMsg(id, code, cmdUI);
}

void FavouritesView::OnIdleUpdateCmdUI()
{
    if (tree->isVisible())
        tree->UpdateAllItems();
}

void FavouritesView::showEvent(QShowEvent* event)
{
    OnInitialUpdate();
    // The focus goes to the tree when the view comes up.
    tree->setFocus();
    if (!idleTimer.isActive())
        idleTimer.start(kIdleInterval, this);
    QWidget::showEvent(event);
}

void FavouritesView::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == idleTimer.timerId())
        OnIdleUpdateCmdUI();
    else
        QWidget::timerEvent(event);
}

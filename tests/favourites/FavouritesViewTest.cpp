#include "../frame/MdiFrameTestSupport.h"

#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>
#include <KORVAutlwin/favourites/FavouritesTree.h>
#include <KORVAutlwin/favourites/FavouritesTreeRows.h>
#include <KORVAutlwin/favourites/FavouritesView.h>

using korva::test::MdiFrameFixture;

// A view in a real frame: a single click runs the frame's command through the
// manager, and the idle update gives an empty folder its text.
TEST_F(MdiFrameFixture, FavouritesViewRunsTheFramesCommandsWithOneClick)
{
    TessmaMDIFrame frame;
    mApp->SetMainWnd(&frame);
    frame.show();
    int ran = 0;
    frame.OnCommand(34960, [&] { ++ran; });
    FavouritesManager manager;
    auto* view = new FavouritesView(&manager, &frame);
    frame.setCentralWidget(view);
    view->show();
    FavouritesTree* tree = view->GetTree();
    EXPECT_EQ(tree->GetSelectionState(), TsTreeCtrl::eMultiSelection);
    EXPECT_TRUE(tree->viewport()->acceptDrops());

    tree->AddToFavourites(new FavouriteCommandItem("Run", 34960));
    HTREEITEM command = tree->GetRootItem();
    tree->ClearSelection();
    tree->SelectItem(nullptr);
    tree->AddToFavourites(new FavouriteFolderItem("Empty", "Nothing here"));
    HTREEITEM folder = tree->GetNextSiblingItem(command);
    QTest::keyClick(tree->findChild<QLineEdit*>(), Qt::Key_Return); // the new folder keeps its name
    QApplication::processEvents();
    view->OnIdleUpdateCmdUI();
    ASSERT_TRUE(tree->GetChildItem(folder));
    EXPECT_EQ(tree->GetItemText(tree->GetChildItem(folder)), "Nothing here");

    QRect label = tree->visualItemRect(TsTreeCtrl::Q(command));
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, QPoint(label.left() + 24, label.center().y()));
    QApplication::processEvents();
    EXPECT_EQ(ran, 1);
    mApp->SetMainWnd(nullptr);
}

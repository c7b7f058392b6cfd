#include "../frame/MdiFrameTestSupport.h"

#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>
#include <KORVAutlwin/frame/DetailsDialog.h>

using korva::test::MdiFrameFixture;

// Favourites opened in a real MDI frame: commands run through the frame's
// route, the new windows are tiled without moving the ones already there, and
// every failure comes in one details dialog.
TEST_F(MdiFrameFixture, OpeningSeveralFavouritesTilesOnlyTheNewWindows)
{
    TessmaMDIFrame frame;
    mApp->SetMainWnd(&frame);
    frame.resize(800, 600);
    frame.show();
    QMdiSubWindow* old = frame.AddMDIChild(new QWidget);
    old->setGeometry(5, 5, 100, 80);
    old->show();
    std::vector<QMdiSubWindow*> made;
    for (unsigned int id : {34920u, 34921u})
        frame.OnCommand(id, [&] {
            made.push_back(frame.AddMDIChild(new QWidget));
            made.back()->show();
        });
    frame.OnCommand(34922, [] {});
    frame.OnUpdateCommand(34922, [](CCmdUI* cmdUI) { cmdUI->Enable(false); });

    std::string summary;
    std::string details;
    korva::test::WhenModal([&](QWidget* dialog) {
        summary = korva::test::Control<QLabel>(dialog, DetailsDialogClass::kTextCtrlId)->text().toStdString();
        korva::test::Click(dialog, DetailsDialogClass::kDetailsButtonCtrlId);
        details = korva::test::Control<QPlainTextEdit>(dialog, DetailsDialogClass::kDetailsCtrlId)->toPlainText().toStdString();
        korva::test::Click(dialog, DetailsDialogClass::kOkCtrlId);
    });
    std::vector<FavouriteItem*> items{new FavouriteCommandItem("List", 34920), new FavouriteCommandItem("Off", 34922),
                                      new FavouriteFileItem("Gone", "/nowhere/gone.tsx"),
                                      new FavouriteCommandItem("Tree", 34921)};
    FavouritesManager().Open(&items);

    ASSERT_EQ(made.size(), 2u);
    EXPECT_EQ(old->geometry(), QRect(5, 5, 100, 80)) << "a window that was there is not tiled";
    EXPECT_FALSE(made[0]->geometry().intersects(made[1]->geometry())) << "the new ones are";
    EXPECT_EQ(summary, LanguageString::Get(16149));
    EXPECT_EQ(details, "Off: Not available.\nGone: Not available.");
    mApp->SetMainWnd(nullptr);
}

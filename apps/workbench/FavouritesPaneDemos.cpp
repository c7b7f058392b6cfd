#include "FavouritesPaneDemos.h"
#include "DemoMenus.h"

#include "FavouritesDemos.h"
#include "WorkspaceDemos.h"

#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>
#include <KORVAutlwin/favourites/FavouritesTree.h>
#include <KORVAutlwin/favourites/FavouritesTreeRows.h>
#include <KORVAutlwin/favourites/FavouritesView.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/TsApp.h>

#include <KORVAutl/Exception.h>

#include <QDockWidget>
#include <QMenuBar>

#include <filesystem>
#include <fstream>

namespace {

constexpr int kPaneCollection = 0;

std::string DataFolder()
{
    const auto* app = dynamic_cast<const TsApp*>(WinApp::GetApp());
    const std::string folder = app ? app->GetAppDataDirectory() : std::filesystem::temp_directory_path().string();
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    return folder;
}

// The pane's favourites: one collection, written to its file after every change.
class PaneFavourites : public FavouritesManager
{
public:
    PaneFavourites() : file(DataFolder() + "/FavouritesPane.xml") {}

    void OnInitialUpdate() override
    {
        if (std::filesystem::exists(file))
            Load();
        else
            AddFirstRows();
    }
    bool OnAddToFavourites(FavouriteItem*, int& collection) override
    {
        collection = kPaneCollection;
        return true;
    }
    void OnFavouritesChanged(int) override { Save(); }
    void OnDestroy() override { Save(); }

private:
    void Load()
    {
        try {
            LoadFavourites(file, kPaneCollection);
        } catch (const Exception&) {
            // A damaged file is kept aside, never written over.
            std::error_code ignored;
            std::filesystem::rename(file, file + ".corrupt", ignored);
            AddFirstRows();
        }
    }
    void Save() const
    {
        if (!GetFavouritesTree())
            return;
        try {
            SaveFavourites(file, kPaneCollection);
        } catch (const Exception&) {
        }
    }
    // What a first run shows: the workbench's window commands and a document.
    void AddFirstRows()
    {
        FavouritesTreeRows* rows = GetFavouritesTree();
        const std::string notes = DataFolder() + "/Favourite notes.txt";
        std::ofstream(notes) << "Notes kept as a favourite: a single click opens them.\n";
        auto add = [rows](FavouriteItem* item, FavouriteRow* parent) {
            FavouriteRow* row = rows->InsertItem(item->GetName(), parent, nullptr);
            rows->SetItemData(row, new FavouriteTreeNode{item, kPaneCollection});
            return row;
        };
        FavouriteRow* windows = add(new FavouriteFolderItem("Windows", "Drop commands here"), nullptr);
        add(new FavouriteCommandItem("New list window", eDemoNewListWindow), windows);
        add(new FavouriteCommandItem("New tree window", eDemoNewTreeWindow), windows);
        FavouriteRow* documents = add(new FavouriteFolderItem("Documents", "Drop files here"), nullptr);
        add(new FavouriteFileItem("Favourite notes", notes.c_str()), documents);
        add(new FavouriteFolderItem("Later", "Drop files here"), nullptr);
        rows->SetItemStyle(windows, FavouritesTreeRows::kStyleBold | FavouritesTreeRows::kStyleExpanded);
        rows->SetItemStyle(documents, FavouritesTreeRows::kStyleExpanded);
        Save();
        // The pictures come from a reload, as on every later start.
        Load();
    }

    std::string file;
};

QDockWidget* Pane(TessmaMDIFrame& frame)
{
    if (auto* dock = frame.findChild<QDockWidget*>(QStringLiteral("FavouritesPane")))
        return dock;
    auto* dock = new QDockWidget(QObject::tr("Favourites"), &frame);
    dock->setObjectName(QStringLiteral("FavouritesPane")); // its place is kept with the frame's
    // The manager outlives the tree, which saves through it as it goes.
    static PaneFavourites manager;
    auto* view = new FavouritesView(&manager, dock);
    static const unsigned int toolBars[] = {kFavouritesDemoToolBar};
    view->SetToolBarIDs(toolBars, 1);
    static const unsigned int menus[] = {30620, kWorkspaceTabMenu};
    view->EnableCommandItems(menus, 2);
    dock->setWidget(view);
    dock->setMinimumWidth(220);
    frame.addDockWidget(Qt::LeftDockWidgetArea, dock);
    return dock;
}


} // namespace

void AddFavouritesPaneDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, ControlsMenu(), QObject::tr("Fa&vourites"));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoFavouritesPane, QObject::tr("Favourites &pane"));
    frame.AddCommand(menu, eDemoFavouritesPaneShown, QObject::tr("Favourites pane with a &selection"));
    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoFavouritesPane, [target] {
        QDockWidget* dock = target->findChild<QDockWidget*>(QStringLiteral("FavouritesPane"));
        if (!dock)
            Pane(*target)->show();
        else
            dock->setVisible(!dock->isVisible());
    });
    frame.OnCommand(eDemoFavouritesPaneShown, [target] {
        QDockWidget* dock = Pane(*target);
        dock->show();
        FavouritesTree* tree = static_cast<FavouritesView*>(dock->widget())->GetTree();
        tree->UpdateAllItems(); // what the first idle moment does, at once
        tree->ClearSelection();
        HTREEITEM folder = tree->GetRootItem();
        for (HTREEITEM item = tree->GetChildItem(folder); item; item = tree->GetNextSiblingItem(item))
            TsTreeCtrl::Q(item)->setSelected(true);
        tree->setFocus();
    });
}

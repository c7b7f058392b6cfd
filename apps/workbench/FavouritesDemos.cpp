#include "FavouritesDemos.h"
#include "DemoMenus.h"

#include "WorkspaceDemos.h"

#include <KORVAutl/Exception.h>
#include <KORVAutlwin/favourites/AddCommandToFavouritesDlg.h>
#include <KORVAutlwin/favourites/CommandsListBox.h>
#include <KORVAutlwin/favourites/FavouriteApplication.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouritesDocument.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/TsApp.h>

#include <QFile>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QMenu>
#include <QObject>
#include <QPlainTextEdit>
#include <QPointer>
#include <QVBoxLayout>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kUserCollection = 1;

std::string DataFile(const char* name)
{
    const auto* app = dynamic_cast<const TsApp*>(WinApp::GetApp());
    const std::string folder = app ? app->GetAppDataDirectory() : std::filesystem::temp_directory_path().string();
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    return folder + "/" + name;
}

QMdiSubWindow* ShowText(TessmaMDIFrame& frame, const QString& title, const QString& text)
{
    // A window of its own kind, so that the workspace gives it a tab of its own.
    auto* view = new QWidget;
    auto* edit = new QPlainTextEdit(text, view);
    edit->setReadOnly(true);
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    (new QVBoxLayout(view))->addWidget(edit);
    view->layout()->setContentsMargins(0, 0, 0, 0);
    view->setWindowTitle(title);
    QMdiSubWindow* child = frame.AddMDIChild(view);
    child->showMaximized();
    return child;
}

FavouriteRow* Add(FavouritesDocument& tree, FavouriteItem* item, FavouriteRow* parent)
{
    FavouriteRow* row = tree.InsertItem(item->GetName(), parent, nullptr);
    tree.SetItemData(row, new FavouriteTreeNode{item, kUserCollection});
    return row;
}

// A user's collection as a tree would hold it, written to a favourites file
// and read back into another tree.
void SaveAndReadBack(TessmaMDIFrame& frame)
{
    const std::string notes = DataFile("Favourite notes.txt");
    std::ofstream(notes) << "Notes kept as a favourite.\n";
    FavouritesManager manager;
    FavouritesDocument tree;
    tree.SetFavouritesManager(&manager);
    FavouriteRow* windows = Add(tree, new FavouriteFolderItem("Windows", "Add commands here"), nullptr);
    Add(tree, new FavouriteCommandItem("New list window", eDemoNewListWindow), windows);
    Add(tree, new FavouriteCommandItem("New tree window", eDemoNewTreeWindow), windows);
    FavouriteRow* documents = Add(tree, new FavouriteFolderItem("Documents", nullptr), nullptr);
    Add(tree, new FavouriteFileItem("Notes", notes.c_str()), documents);
    Add(tree, new FavouriteFileItem("Old results", "/nowhere/Old results.tsx"), documents);
    tree.SetItemStyle(windows, FavouritesTreeRows::kStyleBold | FavouritesTreeRows::kStyleExpanded);
    tree.SetItemStyle(documents, FavouritesTreeRows::kStyleExpanded);

    const std::string file = DataFile("Favourites.xml");
    QString text;
    try {
        manager.SaveFavourites(file, kUserCollection);
        FavouritesDocument back;
        back.SetFavouritesManager(&manager);
        manager.LoadFavourites(file, kUserCollection);
        QFile saved(QString::fromStdString(file));
        saved.open(QIODevice::ReadOnly);
        text = QObject::tr("Written to %1 and read back:\n\n").arg(QString::fromStdString(file));
        for (FavouriteRow* row = back.GetRootItem(); row; row = back.GetNextItem(row)) {
            FavouriteItem* item = back.GetFavouriteItem(row);
            const int style = back.GetItemStyle(row);
            text += QString(back.GetIndentLevel(row) * 4, ' ') + QString::fromStdString(back.GetItemText(row)) +
                    QObject::tr("  [%1%2%3]  tip: %4\n")
                        .arg(QString::fromStdString(item->GetType()))
                        .arg(style & FavouritesTreeRows::kStyleBold ? QObject::tr(", bold") : QString())
                        .arg(style & FavouritesTreeRows::kStyleExpanded ? QObject::tr(", expanded") : QString())
                        .arg(QString::fromStdString(item->GetToolTipText()).replace('\n', ' '));
        }
        text += QObject::tr("\nThe file:\n\n") + QString::fromUtf8(saved.readAll());
    } catch (const Exception& error) {
        text = QString::fromStdString(error.RecursiveWhy());
    }
    ShowText(frame, QObject::tr("Favourites file"), text);
}

// Two commands that open windows, a document, and one that has gone: the new
// windows are tiled, and the one failure is reported at the end.
void OpenSeveral()
{
    std::vector<FavouriteItem*> items{new FavouriteCommandItem("New list window", eDemoNewListWindow),
                                      new FavouriteCommandItem("New tree window", eDemoNewTreeWindow),
                                      new FavouriteFileItem("Old results", "/nowhere/Old results.tsx")};
    FavouritesManager manager;
    manager.Open(&items);
}

// The user's favourites while the workbench runs, and the dialog that adds
// commands of the edit menu and of the workspace's tab menu to them.
class CommandFavourites : public FavouritesManager
{
public:
    explicit CommandFavourites(TessmaMDIFrame& frame) : frame(frame)
    {
        tree.SetToolBarIDs({kFavouritesDemoToolBar});
        tree.SetFavouritesManager(this);
    }

    void ShowDialog()
    {
        static const unsigned int menus[] = {30620, kWorkspaceTabMenu};
        if (!dialog) {
            dialog = new AddCommandToFavouritesDlg(&tree, menus, 2, &frame);
            dialog->setAttribute(Qt::WA_DeleteOnClose);
            // Open on the tab menu's commands, which have tool bar pictures.
            dialog->GetCategories()->setCurrentRow(1);
            dialog->GetCommands()->setCurrentRow(0);
        }
        dialog->show();
        dialog->raise();
    }

    void OnFavouritesChanged(int) override
    {
        std::string names;
        for (FavouriteRow* row = tree.GetRootItem(); row; row = tree.GetNextItem(row))
            names += (names.empty() ? "" : ", ") + tree.GetItemText(row);
        frame.SetMessageText("Favourite commands: " + names);
    }

private:
    TessmaMDIFrame& frame;
    FavouritesDocument tree;
    QPointer<AddCommandToFavouritesDlg> dialog;
};

} // namespace

void AddFavouritesDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, ControlsMenu(), QObject::tr("Fa&vourites"));
    frame.AddCommand(menu, eDemoFavouritesFile, QObject::tr("&Save and read back a favourites file"));
    frame.AddCommand(menu, eDemoOpenFavourites, QObject::tr("&Open several favourites"));
    frame.AddCommand(menu, eDemoAddCommands, QObject::tr("&Add commands to favourites..."));

    TessmaMDIFrame* target = &frame;
    // Documents that favourites open come up as text windows here.
    FavouriteApplication::Get().openDocumentFile = [target](const std::string& path) {
        QFile file(QString::fromStdString(path));
        file.open(QIODevice::ReadOnly);
        ShowText(*target, QString::fromStdString(path), QString::fromUtf8(file.readAll()));
    };
    frame.OnCommand(eDemoFavouritesFile, [target] { SaveAndReadBack(*target); });
    frame.OnCommand(eDemoOpenFavourites, [] { OpenSeveral(); });
    // Lives as long as the frame, which owns the dialog.
    auto* favourites = new CommandFavourites(frame);
    QObject::connect(&frame, &QObject::destroyed, [favourites] { delete favourites; });
    frame.OnCommand(eDemoAddCommands, [favourites] { favourites->ShowDialog(); });
}

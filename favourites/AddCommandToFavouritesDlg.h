#pragma once
/// \class AddCommandToFavouritesDlg
/// The modeless dialog in which the user picks commands of the application to
/// add to favourites. The categories are the top-level entries of the menus it
/// is given, then the application's tool bars; choosing one lists its commands
/// with their tool bar pictures, and a sub-menu is entered by a double click.
/// A double click on a command, or Add, puts it into the tree as a
/// FavouriteCommandItem.

#include <KORVAutlwin/favourites/FavouritesManager.h>
#include <KORVAutlwin/frame/TsDialog.h>

#include <vector>

class CommandsListBox;
class FavouritesTreeRows;
class QLabel;
class QListWidget;
class QMenu;
class QPushButton;
class QToolBar;

class AddCommandToFavouritesDlg : public TsDialog
{
public:
    static constexpr unsigned int kTemplateId = 16077;
    static constexpr int kCategoriesCtrlId = 16050;
    static constexpr int kCommandsCtrlId = 16051;
    static constexpr int kDescriptionCtrlId = 16044;
    static constexpr int kNoteCtrlId = 16063;
    static constexpr int kAddCtrlId = 16010;

    /// `menuIds` are menu resources whose entries are offered; the ids are
    /// copied. The tree takes the commands added and must outlive the dialog.
    AddCommandToFavouritesDlg(FavouritesTreeRows* tree, const unsigned int* menuIds, unsigned int menuCount,
                              QWidget* parent);
    ~AddCommandToFavouritesDlg() override;

    /// The category list (menu entries, then tool bars).
    QListWidget* GetCategories() const { return categories; }
    /// The commands of the chosen category.
    CommandsListBox* GetCommands() const { return commands; }

private:
    void OnInitDialog();
    void OnSelectCategory();
    void FillFromPopup(QMenu* popup);
    void FillFromToolBar(QToolBar* toolBar);
    void OnSelectCommand();
    void OnAdd();

    FavouritesTreeRows* tree;
    std::vector<unsigned int> menuIds;
    std::vector<QMenu*> menus;
    FavouritesManager::ImageList images;
    FavouritesManager::CommandImageMap imageMap;
    QMenu* listedPopup = nullptr;

    QListWidget* categories;
    CommandsListBox* commands;
    QLabel* description;
    QLabel* note;
    QPushButton* add;
};

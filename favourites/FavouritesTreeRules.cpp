#include <KORVAutlwin/favourites/FavouritesTreeRules.h>

#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/SeparatorItem.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>

#include <QString>

namespace {

// Every row of the subtree of `row` may leave its collection.
bool AllGlobal(const FavouritesTreeRows& rows, FavouriteRow* row)
{
    const FavouriteItem* item = rows.GetFavouriteItem(row);
    if (item && !dynamic_cast<const FavouriteFolderItem*>(item) && !item->IsGlobal())
        return false;
    for (FavouriteRow* child = rows.GetChildItem(row); child; child = rows.GetNextSiblingItem(child))
        if (!AllGlobal(rows, child))
            return false;
    return true;
}

bool HasRowNamed(const FavouritesTreeRows& rows, const std::string& name)
{
    for (FavouriteRow* row = rows.GetRootItem(); row; row = rows.GetNextItem(row))
        if (rows.GetItemText(row) == name)
            return true;
    return false;
}

} // namespace

bool FavouritesTreeRules::IsDropSource(const FavouritesTreeRows& rows, FavouriteRow* row)
{
    return row && rows.GetItemData(row);
}

FavouriteRow* FavouritesTreeRules::GetDropTarget(const FavouritesTreeRows& rows, FavouriteRow* dragged,
                                                 FavouriteRow* target, bool& asChild)
{
    asChild = false;
    FavouriteItem* item = rows.GetFavouriteItem(dragged);
    if (!target || !item || !item->IsDraggable())
        return nullptr;
    const FavouriteTreeNode* targetNode = rows.GetItemData(target);
    if (!targetNode && rows.GetParentItem(target))
        targetNode = rows.GetItemData(rows.GetParentItem(target));
    if (!targetNode)
        return nullptr;

    // A folder may travel only when all it holds may.
    const bool global = dynamic_cast<const FavouriteFolderItem*>(item) ? AllGlobal(rows, dragged) : item->IsGlobal();
    if (dynamic_cast<const FavouriteFolderItem*>(item) && !global)
        return nullptr;
    if (!global && targetNode->collection != rows.GetItemData(dragged)->collection)
        return nullptr;

    if (target == dragged || target == rows.GetParentItem(dragged))
        return nullptr;
    for (FavouriteRow* up = rows.GetParentItem(target); up; up = rows.GetParentItem(up))
        if (up == dragged)
            return nullptr; // a branch can't go into itself

    if (rows.IsFolderNode(target))
        asChild = (rows.GetItemStyle(target) & FavouritesTreeRows::kStyleExpanded) || !rows.GetChildItem(target);
    return target;
}

std::string FavouritesTreeRules::NewFolderName(const FavouritesTreeRows& rows)
{
    std::string name = LanguageString::Get(16136);
    for (int counter = 2; HasRowNamed(rows, name); ++counter)
        name = TsString::Format(16137, counter);
    return name;
}

std::string FavouritesTreeRules::CutToolTipText(const std::string& text)
{
    const QString tip = QString::fromStdString(text);
    if (static_cast<std::size_t>(tip.size()) <= kToolTipLength)
        return text;
    return tip.left(static_cast<qsizetype>(kToolTipLength)).toStdString();
}

std::vector<FavouriteItem*> FavouritesTreeRules::GetSelectedFavouritesItems(const FavouritesTreeRows& rows,
                                                                           const std::vector<FavouriteRow*>& selected)
{
    std::vector<FavouriteItem*> items;
    for (FavouriteRow* row : selected)
        GetSelectedFavouritesChildItems(rows, row, items);
    return items;
}

void FavouritesTreeRules::GetSelectedFavouritesChildItems(const FavouritesTreeRows& rows, FavouriteRow* row,
                                                          std::vector<FavouriteItem*>& items)
{
    const FavouriteItem* item = rows.GetFavouriteItem(row);
    if (!item || dynamic_cast<const SeparatorItem*>(item))
        return;
    // Opening a folder opens what it holds, whether it acts as an item or not.
    if (dynamic_cast<const FavouriteFolderItem*>(item)) {
        for (FavouriteRow* child = rows.GetChildItem(row); child; child = rows.GetNextSiblingItem(child))
            GetSelectedFavouritesChildItems(rows, child, items);
        return;
    }
    if (FavouriteItem* copy = item->Copy())
        items.push_back(copy);
}

std::string FavouritesTreeRules::LabelAfterEdit(const std::string& text)
{
    return QString::fromStdString(text).trimmed().toStdString();
}

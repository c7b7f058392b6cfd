#include <KORVAutlwin/favourites/FavouritesTreeRows.h>

#include <KORVAutlwin/favourites/FavouriteApplication.h>
#include <KORVAutlwin/favourites/FavouriteBuilder.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>
#include <KORVAutlwin/favourites/SeparatorItem.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/Exception.h>

#include <QString>

#include <memory>

FavouritesTreeRows::~FavouritesTreeRows()
{
    if (manager && manager->GetFavouritesTree() == this)
        manager->SetFavouritesTree(nullptr);
}

std::vector<unsigned int> FavouritesTreeRows::GetToolbarIDs() const { return {}; }
FavouriteRow* FavouritesTreeRows::GetSelectedItem() const { return nullptr; }
void FavouritesTreeRows::SelectItem(FavouriteRow*) {}
void FavouritesTreeRows::OnItemAdded(FavouriteRow*) {}

void FavouritesTreeRows::AddToFavourites(FavouriteItem* item)
{
    if (!item)
        return;
    FavouriteRow* selected = GetSelectedItem();
    const int defaultCollection = GetDefaultCollectionID(selected);
    int collection = defaultCollection;
    if (manager && !manager->OnAddToFavourites(item, collection))
        return;

    const std::string type = item->GetType();
    FavouriteRow* anchor = selected ? selected : GetDefaultParent(type, defaultCollection);
    const bool anchorIsFolder = anchor && IsTrueFolderNode(anchor);
    FavouriteRow* parent = anchorIsFolder ? anchor : anchor ? GetParentItem(anchor) : nullptr;
    FavouriteRow* after = anchorIsFolder ? nullptr : anchor;
    if (collection != defaultCollection) {
        parent = GetDefaultParent(type, collection);
        after = nullptr;
    } else if (anchorIsFolder && GetChildItem(anchor) && !(GetItemStyle(anchor) & kStyleExpanded)) {
        // A closed folder keeps its content: the row goes behind it.
        parent = GetParentItem(anchor);
        after = anchor;
    }

    if (const auto* file = dynamic_cast<const FavouriteFileItem*>(item)) {
        const QString path = QString::fromStdString(file->GetFileName());
        FavouriteRow* end = parent ? GetNextSiblingItem(parent) : nullptr;
        for (FavouriteRow* parentEnd = parent; !end && parentEnd; parentEnd = GetParentItem(parentEnd))
            end = GetNextSiblingItem(parentEnd);
        for (FavouriteRow* row = parent ? GetChildItem(parent) : GetRootItem(); row && row != end;
             row = GetNextItem(row)) {
            const auto* there = dynamic_cast<const FavouriteFileItem*>(GetFavouriteItem(row));
            if (there && path.compare(QString::fromStdString(there->GetFileName()), Qt::CaseInsensitive) == 0) {
                SelectItem(row);
                delete item;
                return;
            }
        }
    }

    FavouriteRow* row = InsertItem(item->GetName(), parent, after);
    SetItemData(row, new FavouriteTreeNode{item, collection});
    SetIcons(row, item);
    OnItemAdded(row);
    if (manager)
        manager->OnFavouritesChanged(collection);
}

void FavouritesTreeRows::SetFavouritesManager(FavouritesManager* newManager)
{
    // The manager left behind must not keep a tree that may go before it.
    if (manager && manager != newManager && manager->GetFavouritesTree() == this)
        manager->SetFavouritesTree(nullptr);
    manager = newManager;
    if (manager)
        manager->SetFavouritesTree(this);
}

void FavouritesTreeRows::Serialize(ConfigurationSection* section, bool store, int collection)
{
    if (!section)
        return;
    try {
        if (store)
            Store(section, collection);
        else
            Load(section, collection);
    } catch (const Exception& e) {
        const FavouriteApplication& application = FavouriteApplication::Get();
        if (application.messageBox)
            application.messageBox(e.RecursiveWhy(), FavouriteApplication::eIconExclamation);
    }
}

void FavouritesTreeRows::Store(ConfigurationSection* section, int collection)
{
    // The old items go first; a file of the oldest form kept its global ones apart.
    {
        std::unique_ptr<ConfigurationSection> old(section->Copy());
        if (old->ChangeSubSection(FavouritesManager::GetRootSectionKey()) || old->ChangeSubSection("GlobalFavourites"))
            old->DeleteSection();
    }
    std::unique_ptr<ConfigurationSection> favourites(section->CreateSubSection(FavouritesManager::GetRootSectionKey()));
    if (!favourites)
        return;
    const FavouriteApplication& application = FavouriteApplication::Get();
    if (application.writeAppInfo)
        application.writeAppInfo(favourites.get());

    int index = 1;
    for (FavouriteRow* row = GetRootItem(); row; row = GetNextItem(row)) {
        const FavouriteTreeNode* node = GetItemData(row);
        if (!node || !node->item || node->collection != collection || dynamic_cast<const SeparatorItem*>(node->item))
            continue;
        std::unique_ptr<ConfigurationSection> entry(
            favourites->CreateSubSection(FavouritesManager::GetFavouriteItemSectionKey(), index++));
        if (!entry)
            continue;
        node->item->SetName(GetItemText(row).c_str());
        node->item->Save(entry.get());
        entry->WriteInt("_IndentLevel", GetIndentLevel(row));
        entry->WriteInt("_Style", GetItemStyle(row));
    }
}

namespace {

// The style of one saved row: "_Style", or what files before it wrote.
int ReadStyle(const ConfigurationSection& entry)
{
    int style = 0;
    if (entry.ReadInt("_Style", style))
        return style;
    int bold = 0;
    int expanded = 0;
    entry.ReadInt("Bold", bold);
    entry.ReadInt("Expanded", expanded);
    return (bold ? FavouritesTreeRows::kStyleBold : 0) | (expanded ? FavouritesTreeRows::kStyleExpanded : 0);
}

// Entries of the oldest form carry their item in "ItemData". They are read,
// and the item is dropped, so that they leave the file when it is next saved.
void RetireOldestForm(ConfigurationSection& entry)
{
    std::string type;
    std::string label;
    int indentLevel = 0;
    entry.ReadKey("Type", type);
    entry.ReadKey("Label", label);
    entry.ReadInt("IndentLevel", indentLevel);
    std::unique_ptr<ConfigurationSection> itemData(entry.CopyAndChangeSubSection("ItemData"));
    if (!itemData)
        return;
    itemData->WriteKey("Type", type);
    std::unique_ptr<FavouriteItem> retired(FavouriteBuilder::Instance().Load(itemData.get()));
}

} // namespace

void FavouritesTreeRows::Load(ConfigurationSection* section, int collection)
{
    // A separator keeps this collection apart from the rows already there.
    if (GetRootItem()) {
        FavouriteRow* separator = InsertItem(std::string(), nullptr, nullptr);
        SetItemData(separator, new FavouriteTreeNode{new SeparatorItem, collection});
        SetIcons(separator, nullptr);
    }
    section->ChangeSubSection(FavouritesManager::GetRootSectionKey());
    const std::unique_ptr<std::vector<std::shared_ptr<ConfigurationSection>>> entries(
        section->GetAllSubSections(FavouritesManager::GetFavouriteItemSectionKey()));

    FavouriteRow* first = nullptr;
    FavouriteRow* previous = nullptr;
    int previousLevel = 0;
    for (const std::shared_ptr<ConfigurationSection>& entry : *entries) {
        if (entry->HasSection("ItemData", -1)) {
            RetireOldestForm(*entry);
            continue;
        }
        int indentLevel = 0;
        entry->ReadInt("_IndentLevel", indentLevel);
        std::unique_ptr<FavouriteItem> item(FavouriteBuilder::Instance().Load(entry.get()));
        if (!item)
            continue;

        FavouriteRow* parent = nullptr;
        if (previous) {
            if (indentLevel == previousLevel)
                parent = GetParentItem(previous);
            else if (indentLevel > previousLevel)
                parent = previous;
            else {
                parent = previous;
                for (int up = previousLevel - indentLevel + 1; up > 0 && parent; --up)
                    parent = GetParentItem(parent);
            }
        }
        FavouriteRow* row = InsertItem(item->GetName(), parent, nullptr);
        FavouriteItem* held = item.release();
        SetItemData(row, new FavouriteTreeNode{held, collection});
        SetIcons(row, held);
        if (!first)
            first = row;
        previous = row;
        previousLevel = indentLevel;
    }

    // Styles only now: a row can be expanded only once it has children. The
    // k-th row takes the k-th entry's style, retired and skipped ones counted.
    FavouriteRow* row = first;
    for (std::size_t i = 0; i < entries->size() && row; ++i, row = GetNextItem(row))
        SetItemStyle(row, ReadStyle(*(*entries)[i]));
}

void FavouritesTreeRows::SetIcons(FavouriteRow* row, const FavouriteItem* item)
{
    if (!manager)
        return;
    QImage normal;
    QImage selected;
    manager->GetIcon(item, normal, selected);
    SetItemImages(row, normal, selected);
}

void FavouritesTreeRows::DeleteFavouriteNode(int collection)
{
    // Start again from the top after each removal: the walk's row is gone.
    bool removed = true;
    while (removed) {
        removed = false;
        for (FavouriteRow* row = GetRootItem(); row; row = GetNextSiblingItem(row)) {
            const FavouriteTreeNode* node = GetItemData(row);
            if (node && node->collection == collection) {
                DeleteItemData(row);
                DeleteItem(row);
                removed = true;
                break;
            }
        }
    }
}

void FavouritesTreeRows::DeleteItemData(FavouriteRow* row)
{
    if (!row)
        return;
    DeleteChildItemData(row);
    if (FavouriteTreeNode* node = GetItemData(row)) {
        SetItemData(row, nullptr);
        delete node->item;
        delete node;
    }
}

void FavouritesTreeRows::DeleteChildItemData(FavouriteRow* row)
{
    for (FavouriteRow* child = GetChildItem(row); child; child = GetNextSiblingItem(child))
        DeleteItemData(child);
}

void FavouritesTreeRows::DeleteTree()
{
    while (FavouriteRow* row = GetRootItem()) {
        DeleteItemData(row);
        DeleteItem(row);
    }
}

FavouriteItem* FavouritesTreeRows::GetFavouriteItem(FavouriteRow* row) const
{
    const FavouriteTreeNode* node = row ? GetItemData(row) : nullptr;
    return node ? node->item : nullptr;
}

bool FavouritesTreeRows::IsFolderNode(FavouriteRow* row) const
{
    return dynamic_cast<const FavouriteFolderItem*>(GetFavouriteItem(row)) != nullptr;
}

bool FavouritesTreeRows::IsTrueFolderNode(FavouriteRow* row) const
{
    const auto* folder = dynamic_cast<const FavouriteFolderItem*>(GetFavouriteItem(row));
    return folder && !folder->GetTreatAsItem();
}

FavouriteRow* FavouritesTreeRows::GetLastItem() const
{
    FavouriteRow* last = nullptr;
    for (FavouriteRow* row = GetRootItem(); row; row = GetNextItem(row))
        last = row;
    return last;
}

int FavouritesTreeRows::GetDefaultCollectionID(FavouriteRow* row) const
{
    if (!row)
        row = GetLastItem();
    if (!row)
        return -1;
    const FavouriteTreeNode* node = GetItemData(row);
    if (!node && GetParentItem(row))
        node = GetItemData(GetParentItem(row));
    return node ? node->collection : -1;
}

FavouriteRow* FavouritesTreeRows::GetDefaultParent(const std::string& type, int collection) const
{
    FavouriteRow* firstFolder = nullptr;
    FavouriteRow* firstRow = nullptr;
    for (FavouriteRow* row = GetRootItem(); row; row = GetNextItem(row)) {
        const FavouriteTreeNode* node = GetItemData(row);
        if (!node || node->collection != collection)
            continue;
        if (!firstRow)
            firstRow = row;
        if (const auto* folder = dynamic_cast<const FavouriteFolderItem*>(node->item)) {
            if (folder->GetDefaultItemType() == type)
                return row;
            if (!firstFolder)
                firstFolder = row;
        }
    }
    if (firstFolder)
        return firstFolder;
    if (!firstRow)
        return nullptr;
    return IsFolderNode(firstRow) ? firstRow : GetParentItem(firstRow);
}

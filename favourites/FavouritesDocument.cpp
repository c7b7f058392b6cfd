#include <KORVAutlwin/favourites/FavouritesDocument.h>

// Rows are linked both ways among their siblings, so that walking, inserting
// behind a row and removing one never search: a collection of ten thousand
// favourites loads in one pass.
struct FavouritesDocument::Row
{
    std::string text;
    FavouriteTreeNode* node = nullptr;
    bool bold = false;
    bool expanded = false;
    QImage normal;
    QImage selected;
    Row* parent = nullptr;
    Row* firstChild = nullptr;
    Row* lastChild = nullptr;
    Row* previous = nullptr;
    Row* next = nullptr;
};

FavouritesDocument::FavouritesDocument()
    : root(std::make_unique<Row>())
{
}

FavouritesDocument::~FavouritesDocument()
{
    DeleteTree();
}

FavouritesDocument::Row* FavouritesDocument::AsRow(FavouriteRow* row)
{
    return reinterpret_cast<Row*>(row);
}

namespace {
FavouriteRow* Handle(void* row) { return static_cast<FavouriteRow*>(row); }
} // namespace

FavouriteRow* FavouritesDocument::GetRootItem() const { return Handle(root->firstChild); }

FavouriteRow* FavouritesDocument::GetNextItem(FavouriteRow* handle) const
{
    Row* row = AsRow(handle);
    if (!row)
        return nullptr;
    if (row->firstChild)
        return Handle(row->firstChild);
    for (; row && row != root.get(); row = row->parent)
        if (row->next)
            return Handle(row->next);
    return nullptr;
}

FavouriteRow* FavouritesDocument::GetParentItem(FavouriteRow* handle) const
{
    Row* row = AsRow(handle);
    return row && row->parent != root.get() ? Handle(row->parent) : nullptr;
}

FavouriteRow* FavouritesDocument::GetChildItem(FavouriteRow* handle) const
{
    return handle ? Handle(AsRow(handle)->firstChild) : nullptr;
}

FavouriteRow* FavouritesDocument::GetNextSiblingItem(FavouriteRow* handle) const
{
    return handle ? Handle(AsRow(handle)->next) : nullptr;
}

std::string FavouritesDocument::GetItemText(FavouriteRow* handle) const
{
    return handle ? AsRow(handle)->text : std::string();
}

void FavouritesDocument::SetItemText(FavouriteRow* handle, const std::string& text)
{
    if (handle)
        AsRow(handle)->text = text;
}

FavouriteTreeNode* FavouritesDocument::GetItemData(FavouriteRow* handle) const
{
    return handle ? AsRow(handle)->node : nullptr;
}

void FavouritesDocument::SetItemData(FavouriteRow* handle, FavouriteTreeNode* node)
{
    if (handle)
        AsRow(handle)->node = node;
}

FavouriteRow* FavouritesDocument::InsertItem(const std::string& text, FavouriteRow* parentHandle,
                                             FavouriteRow* afterHandle)
{
    Row* parent = parentHandle ? AsRow(parentHandle) : root.get();
    Row* after = afterHandle && AsRow(afterHandle)->parent == parent ? AsRow(afterHandle) : parent->lastChild;
    Row* row = new Row;
    row->text = text;
    row->parent = parent;
    row->previous = after;
    row->next = after ? after->next : parent->firstChild;
    (row->previous ? row->previous->next : parent->firstChild) = row;
    (row->next ? row->next->previous : parent->lastChild) = row;
    ++count;
    return Handle(row);
}

void FavouritesDocument::DeleteItem(FavouriteRow* handle)
{
    Row* row = AsRow(handle);
    if (!row || row == root.get())
        return;
    while (row->firstChild)
        DeleteItem(Handle(row->firstChild));
    Row* parent = row->parent;
    (row->previous ? row->previous->next : parent->firstChild) = row->next;
    (row->next ? row->next->previous : parent->lastChild) = row->previous;
    // A tree control folds a row whose last child went.
    if (!parent->firstChild)
        parent->expanded = false;
    delete row;
    --count;
}

int FavouritesDocument::GetIndentLevel(FavouriteRow* handle) const
{
    int level = 0;
    for (Row* row = AsRow(handle); row && row->parent && row->parent != root.get(); row = row->parent)
        ++level;
    return level;
}

int FavouritesDocument::GetItemStyle(FavouriteRow* handle) const
{
    const Row* row = AsRow(handle);
    if (!row)
        return 0;
    return (row->bold ? kStyleBold : 0) | (row->expanded ? kStyleExpanded : 0);
}

void FavouritesDocument::SetItemStyle(FavouriteRow* handle, int style)
{
    Row* row = AsRow(handle);
    if (!row)
        return;
    row->bold = (style & kStyleBold) != 0;
    row->expanded = (style & kStyleExpanded) != 0 && row->firstChild;
}

void FavouritesDocument::SetItemImages(FavouriteRow* handle, const QImage& normal, const QImage& selected)
{
    if (!handle)
        return;
    AsRow(handle)->normal = normal;
    AsRow(handle)->selected = selected;
}

const QImage& FavouritesDocument::GetItemImage(FavouriteRow* handle, bool selected) const
{
    static const QImage none;
    if (!handle)
        return none;
    return selected ? AsRow(handle)->selected : AsRow(handle)->normal;
}

std::vector<unsigned int> FavouritesDocument::GetToolbarIDs() const { return toolbarIds; }

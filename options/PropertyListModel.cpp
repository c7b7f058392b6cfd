#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemManager.h>
#include <KORVAutlwin/options/PropertyListModel.h>

#include <QString>

#include <algorithm>

PropertyListModel::PropertyListModel(PropertyListCtrl* self) : mSelf(self) {}

PropertyListModel::~PropertyListModel() = default;

void PropertyListModel::SetPropertyItemManager(PropertyItemManager* manager)
{
    mManager = manager;
    if (mManager)
        mManager->InitControl(this);
}

int PropertyListModel::InsertPropertyItem(PropertyItem* item, int index)
{
    if (index == -1)
        index = GetCount();
    if (index < 0 || index > GetCount())
        return -1;
    mRows.insert(mRows.begin() + index, Row{item, kUnmeasured});
    if (mCurSel >= index)
        ++mCurSel;
    OnRowsChanged();
    return index;
}

bool PropertyListModel::DeleteString(int index)
{
    if (index < 0 || index >= GetCount())
        return false;
    mRows.erase(mRows.begin() + index);
    if (mCurSel == index)
        mCurSel = -1;
    else if (mCurSel > index)
        --mCurSel;
    OnRowsChanged();
    return true;
}

PropertyItem* PropertyListModel::GetPropertyItem(int index) const
{
    if (index < 0 || index >= GetCount())
        return nullptr;
    return mRows[static_cast<size_t>(index)].item;
}

void PropertyListModel::ResetContent()
{
    NoInPlaceControl();
    mRows.clear();
    mCurSel = -1;
    OnRowsChanged();
}

bool PropertyListModel::SetCurSel(int index)
{
    if (index < -1 || index >= GetCount()) {
        mCurSel = -1;
        return false;
    }
    mCurSel = index;
    return true;
}

void PropertyListModel::DoCollapse(PropertyItemCategory* category, int index)
{
    // The children's rows follow the category's in one run; remove them at once.
    const int first = index + 1;
    const int last = std::min(GetCount(), first + static_cast<int>(category->GetNumItems()));
    if (first < last) {
        mRows.erase(mRows.begin() + first, mRows.begin() + last);
        if (mCurSel >= last)
            mCurSel -= last - first;
        else if (mCurSel >= first)
            mCurSel = -1;
        OnRowsChanged();
    }
    category->SetChildrenVisible(false);
}

void PropertyListModel::DoExpand(PropertyItemCategory* category, int& index)
{
    // Each child goes in behind `index`, which moves along; in one step, as the
    // rows of a large category would otherwise be moved once per child.
    const int first = index + 1;
    if (first >= 0 && first <= GetCount() && category->GetNumItems() > 0) {
        std::vector<Row> children;
        children.reserve(category->GetNumItems());
        for (PropertyItem* child : *category)
            children.push_back(Row{child, kUnmeasured});
        mRows.insert(mRows.begin() + first, children.begin(), children.end());
        if (mCurSel >= first)
            mCurSel += static_cast<int>(children.size());
        index += static_cast<int>(children.size());
        OnRowsChanged();
    }
    category->SetChildrenVisible(true);
}

void PropertyListModel::DoCollapseExpand(int index, PropertyItem* item)
{
    if (!item)
        item = GetPropertyItem(index);
    auto* category = dynamic_cast<PropertyItemCategory*>(item);
    if (!category)
        return;
    if (SetCurrentData())
        NoInPlaceControl();
    if (category->GetChildrenVisible()) {
        DoCollapse(category, index);
    } else {
        int at = index;
        DoExpand(category, at);
    }
}

bool PropertyListModel::LookupPropertyItem(char letter)
{
    return LookupPropertyItem(static_cast<char32_t>(static_cast<unsigned char>(letter)));
}

bool PropertyListModel::LookupPropertyItem(char32_t letter)
{
    const int count = GetCount();
    if (count == 0)
        return false;
    int start = mCurSel + 1;
    if (start >= count)
        start = 0;
    int found = FindPropertyItem(letter, start, count);
    if (found < 0 && start > 0)
        found = FindPropertyItem(letter, 0, start);
    if (found < 0)
        return false;
    SetCurSel(found);
    return true;
}

int PropertyListModel::FindPropertyItem(char letter, int start, int count) const
{
    return FindPropertyItem(static_cast<char32_t>(static_cast<unsigned char>(letter)), start, count);
}

int PropertyListModel::FindPropertyItem(char32_t letter, int start, int count) const
{
    const char32_t wanted = QChar::toCaseFolded(letter);
    for (int row = std::max(start, 0); row < count && row < GetCount(); ++row) {
        // The first character of the name, which may take several bytes.
        const char* name = mRows[static_cast<size_t>(row)].item->GetName();
        const QString start = QString::fromUtf8(name, std::min<qsizetype>(4, qstrlen(name)));
        if (start.isEmpty())
            continue;
        const char32_t first = start.size() > 1 && start[0].isHighSurrogate()
                                   ? QChar::surrogateToUcs4(start[0], start[1])
                                   : start[0].unicode();
        if (QChar::toCaseFolded(first) == wanted)
            return row;
    }
    return -1;
}

bool PropertyListModel::SetCurSelByID(unsigned int id)
{
    const int count = GetCount();
    if (count == 0)
        return false;
    for (int row = 0; row < count; ++row) {
        PropertyItem* item = GetPropertyItem(row);
        auto* category = dynamic_cast<PropertyItemCategory*>(item);
        if (category && !category->GetChildrenVisible()) {
            int position = 1;
            for (PropertyItem* child : *category) {
                if (child->GetPropertyID() == id) {
                    DoCollapseExpand(row, category);
                    SetCurSel(row + position);
                    return true;
                }
                ++position;
            }
        } else if (item->GetPropertyID() == id) {
            SetCurSel(row);
            return true;
        }
    }
    return false;
}

bool PropertyListModel::SetCurrentData()
{
    PropertyItem* item = GetPropertyItem(mCurSel);
    if (!mInPlaceControl || !item)
        return false;
    item->SetData(mInPlaceControl);
    if (mManager)
        mManager->OnDataChanged(item, mSelf, mCurSel);
    return true;
}

void PropertyListModel::NoInPlaceControl() { mInPlaceControl = nullptr; }

int PropertyListModel::GetRowHeight(int index) const
{
    Row& row = mRows[static_cast<size_t>(index)];
    if (row.height == kUnmeasured)
        row.height = const_cast<PropertyListModel*>(this)->MeasureItem(row.item);
    return row.height;
}

int PropertyListModel::MeasureItem(PropertyItem*) { return 0; }

void PropertyListModel::OnRowsChanged() {}

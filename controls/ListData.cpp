#include <KORVAutlwin/controls/ListData.h>

#include <algorithm>

namespace {
const std::string kNoText;
}

ListData::ListData(QObject* parent) : QAbstractTableModel(parent) {}

void ListData::ModifyStyle(unsigned long remove, unsigned long add)
{
    const bool wasOwnerData = IsOwnerData();
    mStyle = (mStyle & ~remove) | add;
    if (wasOwnerData != IsOwnerData()) {
        beginResetModel();
        mRows.clear();
        mOwnerCount = 0;
        mOwnerStates.clear();
        endResetModel();
    }
}

void ListData::SetExtendedStyle(unsigned long exStyle)
{
    const bool hadBoxes = HasCheckBoxes();
    mExStyle = exStyle;
    if (!hadBoxes && HasCheckBoxes()) {
        // A list that gains check boxes shows every row unchecked.
        for (int row = 0; row < GetItemCount(); ++row)
            if ((StateOf(row) & LVIS_STATEIMAGEMASK) == 0)
                StateOf(row) |= INDEXTOSTATEIMAGEMASK(1);
    }
    if (mRedraw && GetItemCount() > 0)
        emit dataChanged(index(0, 0), index(GetItemCount() - 1, std::max(0, GetColumnCount() - 1)));
}

int ListData::InsertColumn(int col, const char* title, int format, int width)
{
    if (col < 0)
        return -1;
    col = std::min(col, GetColumnCount());
    beginInsertColumns(QModelIndex(), col, col);
    Column column;
    column.title = title ? title : "";
    column.format = format;
    column.width = std::max(0, width);
    mColumns.insert(mColumns.begin() + col, column);
    for (Row& row : mRows)
        if (static_cast<int>(row.cells.size()) > col)
            row.cells.insert(row.cells.begin() + col, std::string());
    endInsertColumns();
    return col;
}

bool ListData::DeleteColumn(int col)
{
    if (col < 0 || col >= GetColumnCount())
        return false;
    beginRemoveColumns(QModelIndex(), col, col);
    mColumns.erase(mColumns.begin() + col);
    for (Row& row : mRows)
        if (static_cast<int>(row.cells.size()) > col)
            row.cells.erase(row.cells.begin() + col);
    endRemoveColumns();
    return true;
}

int ListData::GetColumnWidth(int col) const
{
    return col >= 0 && col < GetColumnCount() ? mColumns[static_cast<size_t>(col)].width : 0;
}

bool ListData::SetColumnWidth(int col, int width)
{
    if (col < 0 || col >= GetColumnCount())
        return false;
    mColumns[static_cast<size_t>(col)].width = std::max(0, width);
    emit headerDataChanged(Qt::Horizontal, col, col);
    return true;
}

bool ListData::SetColumnTitle(int col, const char* title)
{
    if (col < 0 || col >= GetColumnCount())
        return false;
    mColumns[static_cast<size_t>(col)].title = title ? title : "";
    emit headerDataChanged(Qt::Horizontal, col, col);
    return true;
}

bool ListData::SetColumnFormat(int col, int format)
{
    if (col < 0 || col >= GetColumnCount())
        return false;
    mColumns[static_cast<size_t>(col)].format = format;
    emit headerDataChanged(Qt::Horizontal, col, col);
    return true;
}

bool ListData::SetColumnParam(int col, intptr_t param)
{
    if (col < 0 || col >= GetColumnCount())
        return false;
    mColumns[static_cast<size_t>(col)].headerParam = param;
    return true;
}

int ListData::GetItemCount() const
{
    return IsOwnerData() ? mOwnerCount : static_cast<int>(mRows.size());
}

int ListData::InsertItem(int row, const char* text, int image, uintptr_t data)
{
    if (row < 0 || IsOwnerData())
        return -1;
    row = std::min(row, GetItemCount());
    beginInsertRows(QModelIndex(), row, row);
    Row item;
    item.cells.assign(static_cast<size_t>(std::max(1, GetColumnCount())), std::string());
    item.cells[0] = text ? text : "";
    item.image = image;
    item.data = data;
    if (HasCheckBoxes())
        item.state = INDEXTOSTATEIMAGEMASK(1);
    mRows.insert(mRows.begin() + row, std::move(item));
    endInsertRows();
    return row;
}

bool ListData::DeleteItem(int row)
{
    if (!ValidRow(row) || IsOwnerData())
        return false;
    beginRemoveRows(QModelIndex(), row, row);
    mRows.erase(mRows.begin() + row);
    endRemoveRows();
    return true;
}

bool ListData::DeleteAllItems()
{
    beginResetModel();
    mRows.clear();
    mOwnerCount = 0;
    mOwnerStates.clear();
    endResetModel();
    return true;
}

void ListData::SetItemCount(int count)
{
    if (!IsOwnerData())
        return;
    beginResetModel();
    mOwnerCount = std::max(0, count);
    mOwnerStates.assign(static_cast<size_t>(mOwnerCount), HasCheckBoxes() ? INDEXTOSTATEIMAGEMASK(1) : 0u);
    endResetModel();
}

std::string ListData::GetItemText(int row, int col) const
{
    if (!ValidRow(row) || col < 0)
        return std::string();
    if (IsOwnerData())
        return mTextCallback ? mTextCallback(row, col) : std::string();
    return ItemTextRef(row, col);
}

const std::string& ListData::ItemTextRef(int row, int col) const
{
    const Row& item = mRows[static_cast<size_t>(row)];
    return col < static_cast<int>(item.cells.size()) ? item.cells[static_cast<size_t>(col)] : kNoText;
}

bool ListData::SetItemText(int row, int col, const char* text)
{
    if (!ValidRow(row) || col < 0 || col >= std::max(1, GetColumnCount()) || IsOwnerData())
        return false;
    Row& item = mRows[static_cast<size_t>(row)];
    if (static_cast<int>(item.cells.size()) <= col)
        item.cells.resize(static_cast<size_t>(col) + 1);
    item.cells[static_cast<size_t>(col)] = text ? text : "";
    if (mRedraw)
        emit dataChanged(index(row, col), index(row, col));
    return true;
}

int ListData::GetItemImage(int row) const
{
    return ValidRow(row) && !IsOwnerData() ? mRows[static_cast<size_t>(row)].image : 0;
}

bool ListData::SetItemImage(int row, int image)
{
    if (!ValidRow(row) || IsOwnerData())
        return false;
    mRows[static_cast<size_t>(row)].image = image;
    RowChanged(row);
    return true;
}

uintptr_t ListData::GetItemData(int row) const
{
    return ValidRow(row) && !IsOwnerData() ? mRows[static_cast<size_t>(row)].data : 0;
}

bool ListData::SetItemData(int row, uintptr_t data)
{
    if (!ValidRow(row) || IsOwnerData())
        return false;
    mRows[static_cast<size_t>(row)].data = data;
    return true;
}

unsigned int& ListData::StateOf(int row)
{
    return IsOwnerData() ? mOwnerStates[static_cast<size_t>(row)] : mRows[static_cast<size_t>(row)].state;
}

unsigned int ListData::StateOf(int row) const
{
    return IsOwnerData() ? mOwnerStates[static_cast<size_t>(row)] : mRows[static_cast<size_t>(row)].state;
}

unsigned int ListData::GetItemState(int row, unsigned int mask) const
{
    return ValidRow(row) ? StateOf(row) & mask : 0;
}

bool ListData::SetItemState(int row, unsigned int state, unsigned int mask)
{
    if (row == -1) {
        for (int r = 0; r < GetItemCount(); ++r)
            SetItemState(r, state, mask);
        return true;
    }
    if (!ValidRow(row))
        return false;
    unsigned int& bits = StateOf(row);
    const unsigned int old = bits;
    bits = (bits & ~mask) | (state & mask);
    // Only one row holds the focus, and a single-selection list only one selected row, as in the platform list.
    unsigned int exclusive = 0;
    if ((bits & LVIS_FOCUSED) && !(old & LVIS_FOCUSED))
        exclusive |= LVIS_FOCUSED;
    if (IsSingleSelection() && (bits & LVIS_SELECTED) && !(old & LVIS_SELECTED))
        exclusive |= LVIS_SELECTED;
    if (exclusive) {
        for (int r = 0; r < GetItemCount(); ++r)
            if (r != row && (StateOf(r) & exclusive)) {
                const unsigned int before = StateOf(r);
                StateOf(r) &= ~exclusive;
                RowChanged(r);
                emit ItemStateChanged(r, before, StateOf(r));
            }
    }
    if (bits != old) {
        RowChanged(row);
        emit ItemStateChanged(row, old, bits);
    }
    return true;
}

int ListData::GetNextItem(int after, unsigned int bits) const
{
    const int count = GetItemCount();
    for (int row = std::max(0, after + 1); row < count; ++row)
        if ((StateOf(row) & bits) == bits)
            return row;
    return -1;
}

int ListData::GetSelectedCount() const
{
    int count = 0;
    for (int row = 0; row < GetItemCount(); ++row)
        if (StateOf(row) & LVIS_SELECTED)
            ++count;
    return count;
}

bool ListData::GetCheck(int row) const
{
    return GetItemState(row, LVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(2);
}

bool ListData::SetCheck(int row, bool check)
{
    return SetItemState(row, INDEXTOSTATEIMAGEMASK(check ? 2 : 1), LVIS_STATEIMAGEMASK);
}

unsigned int ListData::GetSubItemState(int row, int col, unsigned int mask) const
{
    if (!ValidRow(row) || col < 0 || IsOwnerData())
        return 0;
    const std::vector<unsigned int>& states = mRows[static_cast<size_t>(row)].cellStates;
    return col < static_cast<int>(states.size()) ? states[static_cast<size_t>(col)] & mask : 0;
}

bool ListData::SetSubItemState(int row, int col, unsigned int state, unsigned int mask)
{
    if (!ValidRow(row) || col < 0 || col >= GetColumnCount() || IsOwnerData())
        return false;
    std::vector<unsigned int>& states = mRows[static_cast<size_t>(row)].cellStates;
    if (static_cast<int>(states.size()) <= col)
        states.resize(static_cast<size_t>(col) + 1, 0);
    states[static_cast<size_t>(col)] = (states[static_cast<size_t>(col)] & ~mask) | (state & mask);
    if (mRedraw)
        emit dataChanged(index(row, col), index(row, col));
    return true;
}

void ListData::SwapRows(int a, int b, unsigned int stateMask)
{
    if (!ValidRow(a) || !ValidRow(b) || a == b || IsOwnerData())
        return;
    Row& ra = mRows[static_cast<size_t>(a)];
    Row& rb = mRows[static_cast<size_t>(b)];
    std::swap(ra.cells, rb.cells);
    std::swap(ra.image, rb.image);
    std::swap(ra.data, rb.data);
    std::swap(ra.cellStates, rb.cellStates);
    const unsigned int sa = ra.state, sb = rb.state;
    ra.state = (sa & ~stateMask) | (sb & stateMask);
    rb.state = (sb & ~stateMask) | (sa & stateMask);
    RowChanged(a);
    RowChanged(b);
}

void ListData::SetRedraw(bool redraw)
{
    if (redraw == mRedraw)
        return;
    mRedraw = redraw;
    if (redraw && GetItemCount() > 0 && GetColumnCount() > 0)
        emit dataChanged(index(0, 0), index(GetItemCount() - 1, GetColumnCount() - 1));
}

void ListData::RowChanged(int row)
{
    if (mRedraw && GetColumnCount() > 0)
        emit dataChanged(index(row, 0), index(row, GetColumnCount() - 1));
}

int ListData::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : GetItemCount();
}

int ListData::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : GetColumnCount();
}

QVariant ListData::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !ValidRow(index.row()))
        return QVariant();
    const int row = index.row(), col = index.column();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return QString::fromStdString(IsOwnerData() ? GetItemText(row, col) : ItemTextRef(row, col));
    case Qt::TextAlignmentRole: {
        const int format = col < GetColumnCount() ? GetColumn(col).format & LVCFMT_JUSTIFYMASK : LVCFMT_LEFT;
        const Qt::Alignment horizontal =
            format == LVCFMT_RIGHT ? Qt::AlignRight : format == LVCFMT_CENTER ? Qt::AlignHCenter : Qt::AlignLeft;
        return QVariant::fromValue(horizontal | Qt::AlignVCenter);
    }
    case Qt::CheckStateRole:
        if (col == 0 && HasCheckBoxes())
            return GetCheck(row) ? Qt::Checked : Qt::Unchecked;
        return QVariant();
    case eStateRole: return StateOf(row);
    case eImageRole: return GetItemImage(row);
    case eItemDataRole: return QVariant::fromValue<qulonglong>(GetItemData(row));
    default: return QVariant();
    }
}

QVariant ListData::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= GetColumnCount())
        return QVariant();
    if (role == Qt::DisplayRole)
        return QString::fromStdString(GetColumn(section).title);
    if (role == Qt::TextAlignmentRole) {
        const int format = GetColumn(section).format & LVCFMT_JUSTIFYMASK;
        const Qt::Alignment horizontal =
            format == LVCFMT_RIGHT ? Qt::AlignRight : format == LVCFMT_CENTER ? Qt::AlignHCenter : Qt::AlignLeft;
        return QVariant::fromValue(horizontal | Qt::AlignVCenter);
    }
    return QVariant();
}

Qt::ItemFlags ListData::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    if (index.column() == 0 && HasCheckBoxes())
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

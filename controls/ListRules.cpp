#include <KORVAutlwin/controls/ListRules.h>

#include <KORVAutlwin/controls/ListData.h>
#include <KORVAutl/TsString.h>

#include <Qt>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <utility>

bool ListRules::SortItems(ListData& list, int column, bool ascending, int low, int high)
{
    if (column < 0 || column >= list.GetColumnCount() || list.IsOwnerData())
        return false;
    if (high == -1)
        high = list.GetItemCount() - 1;
    if (high <= low)
        return false;

    auto text = [&list, column](int row) { return list.ItemTextRef(row, column).c_str(); };
    const std::string pivot = list.ItemTextRef((low + high) / 2, column);
    int i = low, j = high;
    while (i <= j) {
        if (ascending) {
            while (i < high && tsstrnumbercmp(text(i), pivot.c_str()) < 0)
                ++i;
            while (j > low && tsstrnumbercmp(text(j), pivot.c_str()) > 0)
                --j;
        } else {
            while (i < high && tsstrnumbercmp(text(i), pivot.c_str()) > 0)
                ++i;
            while (j > low && tsstrnumbercmp(text(j), pivot.c_str()) < 0)
                --j;
        }
        if (i <= j) {
            // Equal rows stay where they are; the sort is not stable anyway.
            if (tsstrnumbercmp(text(i), text(j)) != 0)
                list.SwapRows(i, j, kSwapStateMask);
            ++i;
            --j;
        }
    }
    if (low < j)
        SortItems(list, column, ascending, low, j);
    if (i < high)
        SortItems(list, column, ascending, i, high);
    return true;
}

void ListRules::SetSelection(ListData& list, int from, int to, const int* extra, int extraCount)
{
    if (from > to)
        std::swap(from, to);
    std::set<int> selected;
    for (int row = list.GetNextItem(-1, LVIS_SELECTED); row != -1; row = list.GetNextItem(row, LVIS_SELECTED))
        selected.insert(row);

    auto isSelected = selected.begin();
    int k = 0;
    const int count = list.GetItemCount();
    for (int row = 0; row < count; ++row) {
        while (k < extraCount && extra[k] < row)
            ++k;
        while (isSelected != selected.end() && *isSelected < row)
            ++isSelected;
        const bool should = (row >= from && row <= to) || (k < extraCount && extra[k] == row);
        const bool is = isSelected != selected.end() && *isSelected == row;
        if (should && !is)
            list.SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
        else if (!should && is)
            list.SetItemState(row, 0, LVIS_SELECTED | LVIS_FOCUSED);
    }
}

int ListRules::GetSelIndexes(const ListData& list, int* out, int max)
{
    int count = 0;
    for (int row = list.GetNextItem(-1, LVIS_SELECTED); row != -1; row = list.GetNextItem(row, LVIS_SELECTED)) {
        out[count++] = row;
        if (count > max)
            break;
    }
    return count;
}

int ListRules::GetCheckedItemData(const ListData& list, unsigned long* out, int max)
{
    if (!list.HasCheckBoxes())
        return -1;
    int count = 0;
    const int rows = list.GetItemCount();
    for (int row = 0; row < rows; ++row) {
        if (!list.GetCheck(row))
            continue;
        out[count++] = static_cast<unsigned long>(list.GetItemData(row));
        if (count > max)
            break;
    }
    return count;
}

void ListRules::SetSelIndexes(ListData& list, const std::vector<int>& rows)
{
    if (list.IsSingleSelection()) {
        if (rows.empty())
            return;
        list.SetItemState(-1, 0, LVIS_SELECTED);
        list.SetItemState(rows.front(), LVIS_SELECTED, LVIS_SELECTED);
        return;
    }
    list.SetItemState(-1, 0, LVIS_SELECTED);
    for (int row : rows)
        list.SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
}

void ListRules::ComplementSelection(ListData& list)
{
    if (list.IsSingleSelection())
        return;
    list.SetRedraw(false);
    const int count = list.GetItemCount();
    for (int row = 0; row < count; ++row)
        list.SetItemState(row, list.GetItemState(row, LVIS_SELECTED) ^ LVIS_SELECTED, LVIS_SELECTED);
    list.SetRedraw(true);
}

std::vector<int> ListRules::PercentColumnWidths(int clientWidth, int vscrollWidth, const float* percents, int count)
{
    std::vector<int> widths;
    if (count <= 0)
        return widths;
    const int w = clientWidth + 4 - vscrollWidth;
    int used = 0;
    for (int col = 0; col < count - 1; ++col) {
        widths.push_back(static_cast<int>(w * percents[col] / 100.0));
        used += widths.back();
    }
    widths.push_back(clientWidth - vscrollWidth - used);
    return widths;
}

bool ListRules::ProportionalResize(std::vector<int>& widths, int& lastWidth, int threshold, int cx, int vscrollWidth)
{
    if (lastWidth < 0 || threshold == 0 || cx < 1)
        return false;
    const int delta = cx - lastWidth;
    if (delta == 0)
        return false;
    // Small changes accumulate: the remembered width stays until one is large enough.
    if (widths.size() > 1 && std::abs(delta) < threshold)
        return false;
    lastWidth = cx;
    const int usable = cx - vscrollWidth - 4;
    int total = 0;
    for (int width : widths)
        total += width;
    // While the columns still overflow, growth goes to the scroller.
    if (delta > 0 && usable < total)
        return false;
    if (total <= 0)
        return true;
    int remainingDelta = delta;
    int remainingTotal = total;
    for (size_t col = 0; col < widths.size(); ++col) {
        const int width = widths[col];
        if (col + 1 == widths.size()) {
            if (width + remainingDelta > 1)
                widths[col] = width + remainingDelta;
            break;
        }
        const double share = remainingTotal > 0 ? static_cast<double>(width) / remainingTotal * remainingDelta : 0.0;
        const int newWidth = static_cast<int>(static_cast<int>(share) + width);
        remainingTotal -= width;
        remainingDelta = static_cast<int>(remainingDelta - (newWidth - width));
        if (newWidth >= 2)
            widths[col] = newWidth;
    }
    return true;
}

std::string ListRules::FormatColumnWidths(const std::vector<int>& widths)
{
    std::string value = std::to_string(static_cast<long>(widths.size()));
    for (int width : widths)
        value += "," + std::to_string(static_cast<long>(width));
    return value;
}

bool ListRules::ParseColumnWidths(const std::string& value, int columnCount, std::vector<int>& widths)
{
    std::vector<long> numbers;
    const char* at = value.c_str();
    while (*at) {
        char* end = nullptr;
        const long number = std::strtol(at, &end, 10);
        if (end == at)
            return false;
        numbers.push_back(number);
        at = *end == ',' ? end + 1 : end;
        if (*end != ',' && *end != '\0')
            return false;
    }
    if (numbers.empty() || numbers.front() != columnCount)
        return false;
    widths.clear();
    for (size_t i = 1; i < numbers.size() && static_cast<int>(widths.size()) < columnCount; ++i)
        widths.push_back(static_cast<int>(numbers[i]));
    return true;
}

ListRules::EKeyAction ListRules::DecideKey(int key, bool ctrl, bool shift, bool shortcuts, bool deleteShortcut,
                                           bool checkBoxes, int selectedCount, bool singleSelection)
{
    // Either flag turns the whole table on, Delete excepted.
    if (!shortcuts && !deleteShortcut)
        return eDefaultKey;
    const bool copyKey = key == Qt::Key_C || key == Qt::Key_Insert;
    if (key == Qt::Key_Delete)
        return deleteShortcut ? eDeleteSelected : eDefaultKey;
    if (key == Qt::Key_Space)
        return checkBoxes && selectedCount > 1 ? eToggleChecks : eDefaultKey;
    if (ctrl && !shift && copyKey)
        return eCopySelection;
    if (ctrl && shift && copyKey)
        return eCopyAll;
    if (ctrl && !shift && key == Qt::Key_A)
        return singleSelection ? eIgnore : eSelectAll;
    if ((ctrl && shift && key == Qt::Key_A) || (ctrl && key == Qt::Key_I))
        return eComplement;
    return eDefaultKey;
}

bool ListRules::NextEditCell(int key, bool ctrl, bool shift, int rowCount, int columnCount, int rowsPerPage, int& row,
                             int& col)
{
    const bool backTab = key == Qt::Key_Backtab || (key == Qt::Key_Tab && shift);
    if (backTab) {
        if (col > 0)
            --col;
        else if (row > 0) {
            --row;
            col = columnCount - 1;
        }
        return true;
    }
    switch (key) {
    case Qt::Key_Tab:
        if (col + 1 < columnCount)
            ++col;
        else if (row + 1 < rowCount) {
            ++row;
            col = 0;
        }
        return true;
    case Qt::Key_PageUp: row = std::max(0, row - rowsPerPage + 1); return true;
    case Qt::Key_PageDown: row = std::min(rowCount - 1, row + rowsPerPage - 1); return true;
    case Qt::Key_End:
        if (!ctrl)
            return false;
        row = rowCount - 1;
        return true;
    case Qt::Key_Home:
        if (!ctrl)
            return false;
        row = 0;
        return true;
    case Qt::Key_Up:
        if (row == 0)
            return false;
        --row;
        return true;
    case Qt::Key_Down:
        if (row >= rowCount - 1)
            return false;
        ++row;
        return true;
    default: return false;
    }
}

ListRules::DragStep ListRules::ComputeDragStep(int x, int y, int clientWidth, int clientHeight, int topRow,
                                               int rowsPerPage, int rowCount)
{
    DragStep step;
    const int right = clientWidth + 1, bottom = clientHeight + 1;
    if (y >= bottom) {
        step.direction = 1;
        step.distance = y - bottom;
        step.target = std::min(topRow + rowsPerPage, rowCount);
    } else if (y < 0) {
        step.direction = -1;
        step.distance = -y;
        step.target = std::max(topRow - 1, 0);
    }
    const int horizontal = x < 0 ? -x : x >= right ? x - right : 0;
    if (horizontal > step.distance)
        step.distance = horizontal;
    return step;
}

#include <KORVAutlwin/controls/TreeListRules.h>

#include <KORVAutlwin/controls/TreeRules.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <strings.h>

// --- record --------------------------------------------------------------------------

std::string TreeItemRecord::GetCell(int col) const
{
    size_t start = 0;
    for (int field = 0; field < col; ++field) {
        const size_t sep = text.find(separator, start);
        if (sep == std::string::npos)
            return {};
        start = sep + separator.size();
    }
    const size_t end = text.find(separator, start);
    return text.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

void TreeItemRecord::SetCell(int col, const std::string& cell)
{
    int separators = 0;
    for (size_t at = text.find(separator); at != std::string::npos; at = text.find(separator, at + separator.size()))
        ++separators;
    if (separators < col) {
        for (int i = separators; i < col; ++i)
            text += separator;
        text += cell;
        return;
    }
    // sepBefore: the separator in front of the field; npos for cell 0.
    size_t sepBefore = std::string::npos;
    size_t start = 0;
    for (int field = 0; field < col; ++field) {
        sepBefore = text.find(separator, start);
        start = sepBefore + separator.size();
    }
    const size_t end = text.find(separator, start);
    std::string result;
    // A separator at index 0 drops out together with the (empty) leading part.
    if (sepBefore != std::string::npos && sepBefore > 0) {
        result.assign(text, 0, sepBefore);
        result += separator;
    }
    result += cell;
    if (end != std::string::npos)
        result.append(text, end, std::string::npos);
    text = std::move(result);
}

// --- sort ------------------------------------------------------------------------------

namespace {
int Sign(int value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

/// The stem before the first digit and the number of the digit run there (0 without one).
void SplitStem(const std::string& text, std::string& stem, int& number, bool& hasDigit)
{
    const size_t digit = text.find_first_of("0123456789");
    hasDigit = digit != std::string::npos;
    stem = text.substr(0, digit);
    long long value = 0;
    for (size_t i = hasDigit ? digit : text.size(); i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
        value = std::min<long long>(value * 10 + (text[i] - '0'), INT_MAX); // long runs saturate
    number = static_cast<int>(value);
}
} // namespace

int TreeListRules::CompareFunc(const TreeItemRecord* record1, const TreeItemRecord* record2, const SortDescription& sort)
{
    if (!record1 || !record2)
        return 0;
    // Groups and priorities hold in either direction.
    if (sort.groupsFirst && (record1->hasChildren != 0) != (record2->hasChildren != 0))
        return record1->hasChildren ? -1 : 1;
    if (record1->priority != record2->priority)
        return record1->priority > record2->priority ? -1 : 1;

    const std::string text1 = record1->GetCell(sort.column);
    const std::string text2 = record2->GetCell(sort.column);
    std::string stem1, stem2;
    int number1 = 0, number2 = 0;
    bool digit1 = false, digit2 = false;
    SplitStem(text1, stem1, number1, digit1);
    SplitStem(text2, stem2, number2, digit2);
    int result = 0;
    if ((digit1 || digit2) && stem1 == stem2 && number1 != number2)
        result = number1 > number2 ? 1 : -1;
    else
        result = Sign(strcasecmp(text1.c_str(), text2.c_str()));
    return sort.ascending ? result : -result;
}

void TreeListRules::SortItems(TreeAccess& tree, const std::function<const TreeItemRecord*(HTREEITEM)>& records,
                              int col, bool ascending, HTREEITEM parent, bool groupsFirst)
{
    const SortDescription sort{col, ascending, groupsFirst};
    tree.SortChildren(parent, [&](HTREEITEM a, HTREEITEM b) { return CompareFunc(records(a), records(b), sort); });
}

void TreeListRules::SortTree(TreeAccess& tree, const std::function<const TreeItemRecord*(HTREEITEM)>& records, int col,
                             bool ascending, HTREEITEM first, bool groupsFirst)
{
    for (HTREEITEM item = first; item; item = tree.GetNextSiblingItem(item)) {
        if (tree.GetChildItem(item)) {
            SortItems(tree, records, col, ascending, item, groupsFirst);
            SortTree(tree, records, col, ascending, tree.GetChildItem(item), groupsFirst);
        }
    }
}

// --- clipboard forms ---------------------------------------------------------------------

namespace {
void TrimLineEnds(std::string& text, size_t keep)
{
    while (text.size() > keep && (text.back() == '\r' || text.back() == '\n' || text.back() == '\t'))
        text.pop_back();
}

void AppendRow(std::string& out, const TreeListTable& table, HTREEITEM item, int columns)
{
    for (int col = 0; col < columns; ++col) {
        if (col > 0)
            out += '\t';
        out += table.GetItemText(item, col);
    }
}
} // namespace

std::string TreeListRules::GetTextClipString(const TreeListTable& table)
{
    std::string out;
    out.reserve(10240);
    const int columns = table.GetColumnCount();
    for (int col = 0; col < columns; ++col) {
        std::string title;
        table.GetColumnTitle(col, title);
        if (col > 0)
            out += '\t';
        out += title;
    }
    out += "\r\n";
    const TreeAccess& tree = table.GetTree();
    for (HTREEITEM item = tree.GetRootItem(); item; item = TreeRules::GetNextItem(tree, item)) {
        AppendRow(out, table, item, columns);
        out += "\r\n";
    }
    TrimLineEnds(out, 0);
    return out;
}

std::string TreeListRules::MakeClipString(const TreeListTable& table, const std::vector<HTREEITEM>& items, int columns)
{
    std::string out = "\r\n";
    out.reserve(10240);
    for (size_t i = 0; i < items.size(); ++i) {
        if (i > 0)
            out += "\r\n";
        AppendRow(out, table, items[i], columns);
    }
    TrimLineEnds(out, 2);
    return out;
}

std::string TreeListRules::ToHTML(const TreeListTable& table, const char* caption)
{
    std::string out = "<table>";
    if (caption)
        out += std::string("<caption>") + caption + "</caption>";
    out += "<thead><tr>";
    const int columns = table.GetColumnCount();
    // Header item i - 1 for column i: the first read fails, the last title never shows.
    for (int col = 0; col < columns; ++col) {
        std::string title;
        if (table.GetColumnTitle(col - 1, title))
            out += "<th>" + title + "</th>";
    }
    out += "</tr></thead><tbody>";
    const TreeAccess& tree = table.GetTree();
    for (HTREEITEM item = tree.GetRootItem(); item; item = TreeRules::GetNextItem(tree, item)) {
        const char* open = tree.GetParentItem(item) ? "<td>&nbsp;" : "<td>";
        out += "<tr>";
        for (int col = 0; col < columns; ++col)
            out += open + table.GetItemText(item, col) + "</td>";
        out += "</tr>";
    }
    out += "</tbody></table>";
    return out;
}

std::string TreeListRules::ToHTML(const TreeListTable& table, const std::vector<HTREEITEM>& items, int columns)
{
    std::string out = "<table><tbody>";
    for (HTREEITEM item : items) {
        out += "<tr>";
        for (int col = 0; col < columns; ++col)
            out += "<td>" + table.GetItemText(item, col) + "</td>";
        out += "</tr>";
    }
    out += "</tbody></table>";
    return out;
}

// --- layout and scrolling -----------------------------------------------------------------

int TreeListRules::StretchWidth(int total, int client)
{
    return client == 0 ? 0 : (total / client + 1) * client;
}

int TreeListRules::NewScrollPosition(int code, int position, int thumb, int limit, int clientWidth)
{
    switch (code) {
    case SB_LINELEFT: return std::max(position - kScrollStep, 0);
    case SB_LINERIGHT: return std::min(position + kScrollStep, limit - 1);
    case SB_PAGELEFT: return std::max(position - clientWidth, 0);
    case SB_PAGERIGHT: return std::min(position + clientWidth, limit - 1);
    case SB_THUMBPOSITION:
    case SB_THUMBTRACK: return thumb == 0 ? 0 : std::min((thumb / kScrollStep + 1) * kScrollStep, limit - 1);
    case SB_LEFT: return 0;
    case SB_RIGHT: return limit - 1;
    default: return position;
    }
}

bool TreeListRules::AutoSizeColumns(std::vector<int>& widths, int& storedWidth, int newWidth, int vscrollWidth)
{
    if (storedWidth < 1 || std::abs(newWidth - storedWidth) < 10)
        return false;
    const int delta = newWidth - storedWidth;
    storedWidth = newWidth;
    const int usable = newWidth - (vscrollWidth + 4);
    int total = 0;
    for (int width : widths)
        total += width;
    if ((delta > 0 && usable < total) || (delta < 0 && usable > total))
        return false;
    if (total != 0) {
        double remainingTotal = total;
        double remainingDelta = delta;
        for (size_t col = 0; col < widths.size(); ++col) {
            const int width = widths[col];
            if (col + 1 == widths.size()) {
                const int last = static_cast<int>(width + remainingDelta);
                if (last > 15 || remainingDelta > 0)
                    widths[col] = last;
                break;
            }
            const int grown = static_cast<int>(std::trunc(std::trunc(width / remainingTotal * remainingDelta) + width));
            remainingTotal -= width;
            remainingDelta = std::trunc(remainingDelta - (grown - width));
            // No column is narrowed below 16 pixels.
            if (grown > 15 || grown > width)
                widths[col] = grown;
        }
    }
    return true;
}

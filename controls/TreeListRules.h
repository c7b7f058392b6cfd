#pragma once
// The rules of the tree list that need no window: the row comparison and the
// sort, the clipboard forms, the horizontal scroll steps and the column
// auto-size.

#include <KORVAutlwin/controls/TreeAccess.h>
#include <KORVAutlwin/controls/TreeItemRecord.h>

#include <string>
#include <vector>

/// What the clipboard forms read from a tree list.
class TreeListTable
{
public:
    virtual ~TreeListTable() = default;
    virtual const TreeAccess& GetTree() const = 0;
    virtual int GetColumnCount() const = 0;
    /// The title of column `col`; false when the header has no such item.
    virtual bool GetColumnTitle(int col, std::string& title) const = 0;
    /// Cell `col` of `item`; empty for an item without record.
    virtual std::string GetItemText(HTREEITEM item, int col) const = 0;
};

/// The window-free rules of the tree list: comparison and sort, clipboard
/// forms, scroll steps, column auto-size.
class TreeListRules
{
public:
    /// What a sort compares by.
    struct SortDescription
    {
        int column = 0;
        bool ascending = true;
        bool groupsFirst = true;
    };
    /// -1, 0 or 1: groups first and higher priority first in either direction,
    /// then the cells by stem and number.
    static int CompareFunc(const TreeItemRecord* record1, const TreeItemRecord* record2, const SortDescription& sort);
    /// Sorts the children of `parent` (top level for null); `records` gives each item's record.
    static void SortItems(TreeAccess& tree, const std::function<const TreeItemRecord*(HTREEITEM)>& records, int col,
                          bool ascending, HTREEITEM parent, bool groupsFirst = true);
    /// Sorts the children of every item with children among the siblings from
    /// `first` on, and recurses into each first child.
    static void SortTree(TreeAccess& tree, const std::function<const TreeItemRecord*(HTREEITEM)>& records, int col,
                         bool ascending, HTREEITEM first, bool groupsFirst = true);

    // --- clipboard forms -----------------------------------------------------------
    /// Titles, then every item in pre-order, tab-separated; trailing line ends
    /// and tabs trimmed.
    static std::string GetTextClipString(const TreeListTable& table);
    /// "\r\n" and the rows of `items` with `columns` cells; the trim stops at that head.
    static std::string MakeClipString(const TreeListTable& table, const std::vector<HTREEITEM>& items, int columns);
    /// The whole tree as an HTML table. The head reads header item i - 1 for
    /// column i, so it has one cell fewer than the body; child rows' cells
    /// start with "&nbsp;".
    static std::string ToHTML(const TreeListTable& table, const char* caption);
    /// The rows of `items`: no head, no indent.
    static std::string ToHTML(const TreeListTable& table, const std::vector<HTREEITEM>& items, int columns);

    // --- layout and scrolling ----------------------------------------------------------
    /// The width that makes the header reach past the client area whatever its offset.
    static int StretchWidth(int total, int client);
    /// Scroll codes, with their Win32 numbers.
    enum EScrollCode
    {
        SB_LINELEFT = 0,
        SB_LINERIGHT = 1,
        SB_PAGELEFT = 2,
        SB_PAGERIGHT = 3,
        SB_THUMBPOSITION = 4,
        SB_THUMBTRACK = 5,
        SB_LEFT = 6,
        SB_RIGHT = 7
    };
    /// Horizontal step of a line, and of the thumb.
    static constexpr int kScrollStep = 6;
    /// The new scroll position for `code`; thumb positions snap to steps of 6.
    static int NewScrollPosition(int code, int position, int thumb, int limit, int clientWidth);
    /// One step of the column auto-size to `newWidth`, with `storedWidth` the
    /// width remembered (-1: off). Changes under 10 pixels are ignored and keep
    /// the stored width. True when `widths` changed.
    static bool AutoSizeColumns(std::vector<int>& widths, int& storedWidth, int newWidth, int vscrollWidth);
};

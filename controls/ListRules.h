#pragma once
// The rules of the report list that need no window: the sort, the selection
// bookkeeping, the column arithmetic, the remembered widths, and the
// decisions of the keyboard, the in-cell editor and the drag timer.

#include <string>
#include <vector>

class ListData;

/// The report list's window-free rules: sort, selection bookkeeping, columns, keys, editor moves, drag steps.
class ListRules
{
public:
    // --- sort ----------------------------------------------------------------
    /// State bits that travel with a row when two rows change places:
    /// selection, focus and the like, overlay and check state.
    static constexpr unsigned int kSwapStateMask = 0xFF0F;
    /// Quicksort of rows low..high (high -1: the last row) by the text of
    /// `column` with tsstrnumbercmp; rows with equal text are never exchanged.
    /// False if the column doesn't exist or there is nothing to sort.
    static bool SortItems(ListData& list, int column, bool ascending, int low = 0, int high = -1);

    // --- selection -----------------------------------------------------------
    /// Makes the selection the range from..to plus the ascending rows of
    /// `extra`, touching only rows whose state changes; a row that loses the
    /// selection loses the focus too.
    static void SetSelection(ListData& list, int from, int to, const int* extra, int extraCount);
    /// The selected rows in ascending order. The count is tested after storing,
    /// so up to max + 1 rows are stored and max + 1 is returned: size arrays for that.
    static int GetSelIndexes(const ListData& list, int* out, int max);
    /// The item data of the checked rows, with the same max + 1 bound; -1 when
    /// the list has no check boxes.
    static int GetCheckedItemData(const ListData& list, unsigned long* out, int max);
    /// Clears first, unless single selection: that takes the first row only,
    /// and an empty vector leaves it unchanged.
    static void SetSelIndexes(ListData& list, const std::vector<int>& rows);
    /// Selected rows become unselected and the others selected.
    static void ComplementSelection(ListData& list);

    // --- columns -------------------------------------------------------------
    /// Widths of `count` columns laid out by percentage over a client width:
    /// each but the last truncate(W * percent / 100) with W = client + 4 - vscroll;
    /// the last the rest of client - vscroll.
    static std::vector<int> PercentColumnWidths(int clientWidth, int vscrollWidth, const float* percents, int count);
    /// One step of the proportional resize to the new width `cx`; `lastWidth`
    /// is the remembered width. True when the widths changed.
    static bool ProportionalResize(std::vector<int>& widths, int& lastWidth, int threshold, int cx, int vscrollWidth);
    /// The "ListColumnWidths" value: the count, then each width, comma-separated.
    static std::string FormatColumnWidths(const std::vector<int>& widths);
    /// The widths of a stored value, if its count equals `columnCount`.
    static bool ParseColumnWidths(const std::string& value, int columnCount, std::vector<int>& widths);

    // --- keyboard ------------------------------------------------------------
    enum EKeyAction
    {
        eDefaultKey,     ///< the default handler takes the key
        eDeleteSelected, ///< DeleteSelectedItems
        eToggleChecks,   ///< selected rows take the opposite of the first one's check
        eCopySelection,  ///< CopySelection
        eCopyAll,        ///< AddToClipboard of all rows, no caption
        eSelectAll,      ///< select all rows
        eComplement,     ///< ComplementSelection
        eIgnore          ///< eaten, nothing happens
    };
    /// The list's keyboard table for a Qt key with its modifiers.
    static EKeyAction DecideKey(int key, bool ctrl, bool shift, bool shortcuts, bool deleteShortcut, bool checkBoxes,
                                int selectedCount, bool singleSelection);
    /// The cell the in-cell editor moves to on a key; false when the key goes
    /// to the editor's default handler.
    static bool NextEditCell(int key, bool ctrl, bool shift, int rowCount, int columnCount, int rowsPerPage, int& row,
                             int& col);

    // --- drag timer ----------------------------------------------------------
    /// One tick of a drag selection: the scroll direction, the overshoot and the target row.
    struct DragStep
    {
        int direction = 0; ///< -1 up, +1 down
        int distance = 0;  ///< overshoot in pixels, vertical or horizontal, whichever is larger
        int target = -1;   ///< row to extend the selection to
    };
    /// Where a drag goes for a cursor at (x, y) and a client area of the given
    /// size (extended by 1 to the right and bottom).
    static DragStep ComputeDragStep(int x, int y, int clientWidth, int clientHeight, int topRow, int rowsPerPage,
                                    int rowCount);
    /// The re-arm delay of the drag timer: 25 ms far outside, else 50 ms.
    static int DragTimerDelay(int distance, int vscrollHeight) { return distance > 3 * vscrollHeight ? 25 : 50; }
};

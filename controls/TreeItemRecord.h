#pragma once
// What a tree list keeps for each row: all cells in one string, and the flags
// that the sort and the painting read.


#include <string>

using COLORREF = unsigned long;

/// One row of a tree list: its cells in one string, its colour, group, bold and priority.
struct TreeItemRecord
{
    /// The colour that stands for the system's window text colour, looked up
    /// when painted so that a theme change reaches it.
    static constexpr COLORREF kWindowTextColour = 0xFF000000;

    bool group = false;
    unsigned long data = 0;
    bool bold = false;
    COLORREF colour = kWindowTextColour;
    /// 1 once a child was inserted; recomputed on delete; read by the sort.
    int hasChildren = 0;
    int priority = 1000;
    /// The cells, cut at each separator.
    std::string text;
    /// The character "¶" (U+00B6) in UTF-8, so that no byte of another
    /// character ever splits a cell.
    std::string separator = "\xC2\xB6";

    /// Cell `col`; empty beyond the last cell.
    std::string GetCell(int col) const;
    /// Writes cell `col`. Rows are meant to be filled from cell 0: writing
    /// cell 1 of a row whose cell 0 is empty makes the new text cell 0.
    void SetCell(int col, const std::string& cell);
};

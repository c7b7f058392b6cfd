#pragma once
// The rules of the tree control that need no window: pre-order navigation,
// check box propagation, text search and the tab-indented text form.

#include <KORVAutlwin/controls/TreeAccess.h>

#include <string>

/// The window-free rules of the tree control: walks, check boxes, search, text form.
class TreeRules
{
public:
    /// State image indexes of the check box.
    enum ECheckState
    {
        eNoCheckBox = 0,
        eUnchecked = 1,
        eChecked = 2,
        ePartlyChecked = 3,
        eAllChecked = 4,
        eDisabled = 5
    };
    /// What SetCheck does.
    enum ECheckType
    {
        eRemoveBox = 0,
        eCheck = 1,
        eUncheck = 2,
        eToggle = 3,
        eDisable = 4
    };

    // --- navigation, pre-order regardless of expansion -------------------------
    /// First child, else next sibling, else the next sibling of the nearest
    /// ancestor that has one; null after the last item. Null gives the first item.
    static HTREEITEM GetNextItem(const TreeAccess& tree, HTREEITEM item);
    /// The previous sibling's last descendant, else the parent.
    static HTREEITEM GetPrevItem(const TreeAccess& tree, HTREEITEM item);
    /// The deepest last descendant of `item`; with null, of the last top-level item.
    static HTREEITEM GetLastItem(const TreeAccess& tree, HTREEITEM item);
    /// The number of ancestors.
    static int GetIndentLevel(const TreeAccess& tree, HTREEITEM item);
    /// Direct children; with null, the number of items in the tree.
    static int GetNumChildren(const TreeAccess& tree, HTREEITEM item);

    // --- check boxes -------------------------------------------------------------
    /// True for indexes 2, 3 and 4; false for null.
    static bool GetCheck(const TreeAccess& tree, HTREEITEM item);
    /// Applies an ECheckType and propagates up and down. 0 for null, else 1.
    static int SetCheck(TreeAccess& tree, HTREEITEM item, int type);
    /// Writes `state` to every descendant whose index is neither 0 nor 5.
    static void CheckAllChildItems(TreeAccess& tree, HTREEITEM item, int state);
    /// With checked: every direct child has 2 or 4; without: every one has 1.
    /// True for an item without children.
    static bool AllChildrenChecked(const TreeAccess& tree, HTREEITEM item, bool checked);
    static HTREEITEM GetFirstCheckedItem(const TreeAccess& tree);
    /// Indexes 2 and 4 in pre-order; the children of an item neither partly
    /// nor fully checked are skipped.
    static HTREEITEM GetNextCheckedItem(const TreeAccess& tree, HTREEITEM item);
    /// Backwards, stopping at index 3 as well.
    static HTREEITEM GetPrevCheckedItem(const TreeAccess& tree, HTREEITEM item);

    // --- search --------------------------------------------------------------------
    /// Whether `text` occurs in `itemText`, with the whole-word rule: letters
    /// and "_" join a word, digits and everything else bound it.
    static bool TextMatches(const std::string& itemText, const std::string& text, bool matchCase, bool wholeWord);
    /// The first item from `start` (taken first) on, down or up with wrap,
    /// that matches and that `isValid` accepts; null when the start comes round.
    static HTREEITEM FindItem(const TreeAccess& tree, const std::string& text, bool matchCase, bool down,
                              bool wholeWord, HTREEITEM start,
                              const std::function<bool(HTREEITEM)>& isValid = nullptr);

    // --- text form -----------------------------------------------------------------
    /// Every item in pre-order: one tab per ancestor, the text, "\r\n".
    static std::string StoreText(const TreeAccess& tree);
    /// Inserts the lines of `text` (line ends "\n" or "\r\n"); the first
    /// line's tabs are the base indent, empty lines are skipped. Returns the
    /// number of items inserted.
    static int LoadText(TreeAccess& tree, const std::string& text);
};

#pragma once
// What the tree rules need of a tree: its links, texts and check state images.
// The tree control answers it from its platform tree; tests answer it from a
// plain structure. Items are opaque handles, null standing for the root.

#include <functional>
#include <string>

/// An item of a tree; null is the root (or "no item").
using HTREEITEM = void*;

/// The links, texts and check indexes of a tree, as the tree rules read and write them.
class TreeAccess
{
public:
    virtual ~TreeAccess() = default;
    virtual HTREEITEM GetRootItem() const = 0;
    virtual HTREEITEM GetParentItem(HTREEITEM item) const = 0;
    /// First child of `item`; with null, the first top-level item.
    virtual HTREEITEM GetChildItem(HTREEITEM item) const = 0;
    virtual HTREEITEM GetNextSiblingItem(HTREEITEM item) const = 0;
    virtual HTREEITEM GetPrevSiblingItem(HTREEITEM item) const = 0;
    virtual std::string GetItemText(HTREEITEM item) const = 0;
    /// Inserts a last child of `parent` (null: top level) with the text and image 0.
    virtual HTREEITEM InsertItem(const std::string& text, HTREEITEM parent) = 0;
    /// The state image index: 0 no box, 1 unchecked, 2 checked, 3 partly, 4 all, 5 disabled.
    virtual int GetCheckIndex(HTREEITEM item) const = 0;
    virtual void SetCheckIndex(HTREEITEM item, int index) = 0;
    /// Reorders the direct children of `parent` (null: top level) by `compare`
    /// (negative: first goes before), keeping equal items in place.
    virtual void SortChildren(HTREEITEM parent, const std::function<int(HTREEITEM, HTREEITEM)>& compare) = 0;
};

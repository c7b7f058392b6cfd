#pragma once
// The "Trees" menu of the workbench: a tree document (check boxes that
// propagate, drag and drop, search, the text form) and a tree-list document
// (groups, priorities, header sorting, the scroller, copy as text and HTML).

class TessmaMDIFrame;

/// Command ids of the tree demos.
enum ETreeDemo : unsigned int
{
    eDemoTree = 34800,           // the tree document
    eDemoTreeList = 34801,       // the tree-list document
    eDemoTreeListSorted = 34802, // the tree list sorted by protein, highest first, two rows selected
    eDemoTreeListNarrow = 34803  // the tree list narrower than its columns, scrolled by the scroller
};

/// Adds the "&Trees" menu with the commands above to `frame`.
void AddTreeDemos(TessmaMDIFrame& frame);

#pragma once
// The "Lists" menu of the workbench: a document window with 100,000 samples to
// sort by header clicks, select by dragging, typing or keys, filter in the
// popup and copy as text and HTML; and the ready-made selection dialogs.

class QWidget;
class TessmaMDIFrame;

/// Command ids of the list demos.
enum EListDemo : unsigned int
{
    eDemoLargeList = 34100,        // the sample list document, 100,000 rows
    eDemoFilterPopup = 34101,      // the filter popup over the sample names of a fresh list
    eDemoSingleSelect = 34102,     // TsSingleSelectItemDialog
    eDemoMultiSelect = 34103,      // TsMultiSelectItemDialog with its context menu
    eDemoOptionSelect = 34104,     // TsOptionMultiSelectItemDialog with three options
    eDemoNewClass = 34105,         // SelectNewClassDialog
    eDemoSortedList = 34106,       // the document sorted by protein, rows of one material selected
    eDemoListRelatives = 34107  // check boxes in cells, disabled rows, grey entries, a timed edit
};

/// Adds the "&Lists" menu with the commands above to `frame`.
void AddListDemos(TessmaMDIFrame& frame);
/// Shows the dialog with the list's small relatives.
void ShowListRelativesDemo(QWidget* parent);

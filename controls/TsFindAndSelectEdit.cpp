#include <KORVAutlwin/controls/TsFindAndSelectEdit.h>

#include <KORVAutlwin/controls/TsListCtrl.h>

TsFindAndSelectEdit::TsFindAndSelectEdit(QWidget* parent) : TsTimedEdit(parent) {}

TsFindAndSelectEdit::TsFindAndSelectEdit(int delay, TsListCtrl* list, bool numeric, QWidget* parent)
    : TsFindAndSelectEdit(delay, list, numeric ? FindAndSelectRules::eNumeric : FindAndSelectRules::eWildcard, parent)
{
}

TsFindAndSelectEdit::TsFindAndSelectEdit(int delay, TsListCtrl* list, int mode, QWidget* parent)
    : TsTimedEdit(delay, parent), mHowToFind(mode), mList(list)
{
}

void TsFindAndSelectEdit::SetFindInColumn(int col, bool trigger)
{
    mColumn = col;
    if (trigger)
        EditTriggered(text().toStdString().c_str());
}

void TsFindAndSelectEdit::SetHowToFind(int mode, bool trigger)
{
    mHowToFind = mode;
    if (trigger)
        EditTriggered(text().toStdString().c_str());
}

void TsFindAndSelectEdit::EditTriggered(const char* text)
{
    if (!text || !*text || !mList || mList->GetItemCount() == 0)
        return;
    ListData& rows = mList->GetListData();
    if (!mSelectionMode)
        rows.SetItemState(-1, 0, LVIS_SELECTED);
    const int column = mColumn;
    const std::vector<int> matches = FindAndSelectRules::FindMatches(
        mHowToFind, text, rows.GetItemCount(), [&rows, column](int row) { return rows.GetItemText(row, column); },
        mValues);
    rows.SetRedraw(false);
    for (int row : matches)
        rows.SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
    rows.SetRedraw(true);
    if (!mSelectionMode && !matches.empty())
        mList->SetTopIndex(matches.front());
}

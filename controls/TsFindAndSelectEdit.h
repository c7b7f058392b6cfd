#pragma once
// An edit box that finds and selects list rows as the user types: by wildcard,
// by substring, automatically one of the two, by a limit expression over a
// vector of values, or by equal text.

#include <KORVAutlwin/controls/FindAndSelectRules.h>
#include <KORVAutlwin/controls/TsTimedEdit.h>

class TsListCtrl;

/// An edit box that selects the rows of a TsListCtrl matching what the user types.
class TsFindAndSelectEdit : public TsTimedEdit
{
    Q_OBJECT

public:
    explicit TsFindAndSelectEdit(QWidget* parent = nullptr);
    /// numeric true gives mode 3, false mode 0.
    TsFindAndSelectEdit(int delay, TsListCtrl* list, bool numeric, QWidget* parent = nullptr);
    TsFindAndSelectEdit(int delay, TsListCtrl* list, int mode, QWidget* parent = nullptr);

    /// With trigger, searches again with the present text.
    void SetFindInColumn(int col, bool trigger);
    int GetFindInColumn() const { return mColumn; }
    void SetHowToFind(int mode, bool trigger);
    int GetHowToFind() const { return mHowToFind; }
    /// True adds to the list's selection; false replaces it.
    void SetSelectionMode(bool add) { mSelectionMode = add; }
    void SetListCtrl(TsListCtrl* list) { mList = list; }
    TsListCtrl* GetListCtrl() const { return mList; }
    /// One value per row, for mode 3; stays the caller's.
    void SetVector(const float* values) { mValues = values; }

    void EditTriggered(const char* text) override;

private:
    bool mSelectionMode = false;
    int mColumn = 0;
    int mHowToFind = FindAndSelectRules::eWildcard;
    const float* mValues = nullptr;
    TsListCtrl* mList = nullptr;
};

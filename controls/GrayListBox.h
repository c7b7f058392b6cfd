#pragma once
// A list box with greyed entries. Each entry carries its grey flag beside the
// caller's item data; grey entries count as unselected, and take the selection
// colours only when grey items are selectable.

#include <QListWidget>

#include <cstdint>

/// A list box whose grey entries count as unselected.
class GrayListBox : public QListWidget
{
    Q_OBJECT

public:
    explicit GrayListBox(QWidget* parent = nullptr);

    /// The new entry's index.
    int AddString(const char* text, bool gray = false);
    int InsertString(int index, const char* text, bool gray = false);
    /// True for a negative index.
    bool IsGray(int index) const;
    void SetGray(int index, bool gray);
    /// 0 for a negative index or a grey entry, whatever the list says.
    int GetSel(int index) const;
    int GetSelCount() const;
    uintptr_t GetItemData(int index) const;
    bool SetItemData(int index, uintptr_t data);
    void SetGrayItemsSelectable(bool selectable);
    bool GetGrayItemsSelectable() const { return mGrayItemsSelectable; }

private:
    bool mGrayItemsSelectable = false;
};

#pragma once
// The editor of one list cell. It commits when it loses the focus; Escape
// ends it like Return but offers the text to the parent only; navigation keys
// move it to another cell. It deletes itself when it ends.

#include <QLineEdit>

#include <string>

class TsListCtrl;

/// The editor of one list cell; it commits on focus loss and moves between cells by key.
class CInPlaceEdit : public QLineEdit
{
    Q_OBJECT

public:
    CInPlaceEdit(TsListCtrl* list, int row, int col, const std::string& text);
    ~CInPlaceEdit() override;

    int GetRow() const { return mRow; }
    int GetColumn() const { return mColumn; }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void EndEdit();

    TsListCtrl* mList;
    int mRow;
    int mColumn;
    std::string mInitialText;
    bool mEscape = false;
    bool mEnded = false;
};

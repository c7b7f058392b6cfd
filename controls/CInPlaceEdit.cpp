#include <KORVAutlwin/controls/CInPlaceEdit.h>

#include <KORVAutlwin/controls/ListRules.h>
#include <KORVAutlwin/controls/TsListCtrl.h>

#include <QKeyEvent>

CInPlaceEdit::CInPlaceEdit(TsListCtrl* list, int row, int col, const std::string& text)
    : QLineEdit(list->viewport()), mList(list), mRow(row), mColumn(col), mInitialText(text)
{
    setObjectName(QStringLiteral("CInPlaceEdit"));
    setProperty("ctrlId", TsListCtrl::kEditorId);
    setFrame(false);
    // The list would show its selection through the editor otherwise.
    mList->ModifyStyle(LVS_SHOWSELALWAYS, 0);
    setFont(mList->font());
    setText(QString::fromStdString(text));
}

CInPlaceEdit::~CInPlaceEdit() = default;

bool CInPlaceEdit::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        // Keys the editor needs must not become the dialog's or the frame's accelerators.
        auto* key = static_cast<QKeyEvent*>(event);
        const int k = key->key();
        if (k == Qt::Key_Return || k == Qt::Key_Enter || k == Qt::Key_Delete || k == Qt::Key_Escape ||
            (key->modifiers() & Qt::ControlModifier)) {
            event->accept();
            return true;
        }
    }
    if (event->type() == QEvent::KeyPress) {
        // Tab moves the editor, not the focus chain.
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) {
            keyPressEvent(key);
            return true;
        }
    }
    return QLineEdit::event(event);
}

void CInPlaceEdit::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (key == Qt::Key_Escape)
            mEscape = true;
        mList->SetItemState(mRow, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        mList->setFocus(Qt::OtherFocusReason); // the focus loss ends the edit
        return;
    }
    int row = mRow, col = mColumn;
    const bool ctrl = event->modifiers() & Qt::ControlModifier, shift = event->modifiers() & Qt::ShiftModifier;
    if (ListRules::NextEditCell(key, ctrl, shift, mList->GetItemCount(), mList->GetColumnCount(),
                                mList->GetCountPerPage(), row, col)) {
        setFocus(Qt::OtherFocusReason);
        mList->EditSubLabel(row, col);
        return;
    }
    QLineEdit::keyPressEvent(event);
    if (!event->text().isEmpty()) {
        // Widen to the text, never past the list's client area.
        const int wanted = fontMetrics().horizontalAdvance(text()) + 5;
        if (wanted > width())
            resize(std::min(wanted, mList->viewport()->width() - x()), height());
    }
}

void CInPlaceEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    EndEdit();
}

void CInPlaceEdit::EndEdit()
{
    if (mEnded)
        return;
    mEnded = true;
    std::string value = text().toStdString();
    value.erase(value.find_last_not_of(" \t") + 1);
    bool accepted = !mEscape && mList->AcceptEdit(value.c_str(), mRow, mColumn);
    if (mEscape || !accepted)
        accepted = mList->NotifyEndLabelEdit(mRow, mColumn, mEscape ? nullptr : value.c_str()) == 1;
    if (accepted)
        mList->SetItemText(mRow, mColumn, value.c_str());
    mList->ModifyStyle(0, LVS_SHOWSELALWAYS);
    mList->SetItemState(mRow, LVIS_SELECTED, LVIS_SELECTED);
    hide();
    deleteLater();
}

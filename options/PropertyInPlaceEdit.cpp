#include <KORVAutlwin/options/PropertyInPlaceEdit.h>
#include <KORVAutlwin/options/PropertyListCtrl.h>

#include <QApplication>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QKeyEvent>

namespace korva {

QRect InPlaceEditRect(const QFont& font, QRect cell, int left, int right)
{
    const int height = QFontMetrics(font).size(0, QStringLiteral("DummyText")).height();
    const int top = cell.top() + (cell.height() - height) / 2;
    return QRect(QPoint(cell.left() + left, top), QPoint(cell.right() - right, top + height - 1));
}

void ForwardKey(QWidget* target, const QKeyEvent* event)
{
    QKeyEvent copy(QEvent::KeyPress, event->key(), event->modifiers(), event->text());
    QApplication::sendEvent(target, &copy);
}

bool InPlaceEditKey(QWidget* focusTarget, const QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
        if (focusTarget)
            focusTarget->setFocus(Qt::OtherFocusReason);
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (focusTarget) {
            focusTarget->setFocus(Qt::OtherFocusReason);
            ForwardKey(focusTarget, event);
        }
        return true;
    default:
        return false;
    }
}

void SendSetData(QWidget* target)
{
    if (auto* list = qobject_cast<PropertyListCtrl*>(target))
        list->OnSetData();
}

} // namespace korva

PropertyInPlaceEdit* PropertyInPlaceEdit::CreateInPlaceControl(const char* text, QWidget* parent, QRect cell,
                                                               unsigned long style, PropertyValidateFunc validate,
                                                               void* context)
{
    auto* edit = new PropertyInPlaceEdit(text, parent, style, validate, context);
    edit->MoveControl(cell);
    edit->show();
    return edit;
}

PropertyInPlaceEdit::PropertyInPlaceEdit(const char* text, QWidget* parent, unsigned long style,
                                         PropertyValidateFunc validate, void* context)
    : QLineEdit(parent), mInitText(text ? text : ""), mValidate(validate), mContext(context), mStyle(style)
{
    setObjectName(QStringLiteral("1"));
    setFrame(false);
    setTextMargins(0, 0, 0, 0);
    setFont(parent ? parent->font() : font());
    setText(QString::fromStdString(mInitText));
}

void PropertyInPlaceEdit::SetText(const char* text)
{
    mInitText = text ? text : "";
    setText(QString::fromStdString(mInitText));
    end(false);
}

void PropertyInPlaceEdit::MoveControl(QRect cell) { setGeometry(korva::InPlaceEditRect(font(), cell, 3, 3)); }

void PropertyInPlaceEdit::ProcessData() { korva::SendSetData(mOwner ? mOwner : parentWidget()); }

bool PropertyInPlaceEdit::event(QEvent* event)
{
    // Tab would otherwise move the focus along the chain before the key reaches us.
    if (event->type() == QEvent::KeyPress && korva::InPlaceEditKey(parentWidget(), static_cast<QKeyEvent*>(event)))
        return true;
    return QLineEdit::event(event);
}

void PropertyInPlaceEdit::keyPressEvent(QKeyEvent* event)
{
    if ((mStyle & ES_NUMBER) && !event->text().isEmpty() && event->text()[0].isPrint() &&
        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
        for (const QChar c : event->text())
            if (!c.isDigit()) {
                QApplication::beep();
                return;
            }
    }
    QLineEdit::keyPressEvent(event);
}

void PropertyInPlaceEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    // A popup (the edit's own context menu) takes the focus only for a while:
    // the editing goes on.
    if (event->reason() == Qt::PopupFocusReason)
        return;
    if (mValidate)
        mValidate(this, mContext);
    ProcessData();
}

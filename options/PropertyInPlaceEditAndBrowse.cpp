#include <KORVAutlwin/options/PropertyInPlaceEditAndBrowse.h>
#include <KORVAutlwin/options/PropertyInPlaceEdit.h>

#include <QFileDialog>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

PropertyInPlaceEditAndBrowseEdit::PropertyInPlaceEditAndBrowseEdit(PropertyInPlaceEditAndBrowse* composite)
    : QLineEdit(composite), mComposite(composite)
{
    setObjectName(QStringLiteral("2"));
    setFrame(false);
    setTextMargins(0, 0, 0, 0);
}

bool PropertyInPlaceEditAndBrowseEdit::event(QEvent* event)
{
    if (event->type() == QEvent::KeyPress &&
        korva::InPlaceEditKey(mComposite->parentWidget(), static_cast<QKeyEvent*>(event)))
        return true;
    return QLineEdit::event(event);
}

void PropertyInPlaceEditAndBrowseEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    // The browser's own dialog takes the focus, and the browse commits by
    // itself; a popup (the context menu) takes it only for a while.
    if (mComposite->mBrowsing || event->reason() == Qt::PopupFocusReason)
        return;
    mComposite->mData = text().toStdString();
    mComposite->SendSetData();
}

PropertyInPlaceEditAndBrowse::PropertyInPlaceEditAndBrowse(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("1"));
    if (parent)
        setFont(parent->font());
    setAutoFillBackground(false);
    mButton = new QPushButton(QStringLiteral("..."), this);
    mButton->setObjectName(QStringLiteral("1"));
    mButton->setFlat(true);
    mButton->setFocusPolicy(Qt::NoFocus);
    mEdit = new PropertyInPlaceEditAndBrowseEdit(this);
    QObject::connect(mButton, &QPushButton::clicked, this, [this] { Browse(); });
}

void PropertyInPlaceEditAndBrowse::Place(PropertyInPlaceEditAndBrowse* control, QRect cell)
{
    control->setGeometry(cell);
    control->show();
}

void PropertyInPlaceEditAndBrowse::resizeEvent(QResizeEvent*)
{
    const int buttonWidth = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    mButton->setGeometry(width() - buttonWidth, 0, buttonWidth, height());
    mEdit->setGeometry(korva::InPlaceEditRect(font(), rect(), 3, 3 + buttonWidth));
}

void PropertyInPlaceEditAndBrowse::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), palette().color(QPalette::Base));
}

void PropertyInPlaceEditAndBrowse::mouseDoubleClickEvent(QMouseEvent*) { Browse(); }

void PropertyInPlaceEditAndBrowse::SetData(const std::string& data)
{
    mData = data;
    mEdit->setText(QString::fromStdString(data));
    mEdit->end(false);
}

void PropertyInPlaceEditAndBrowse::SendSetData() { korva::SendSetData(mOwner ? mOwner : parentWidget()); }

void PropertyInPlaceEditAndBrowse::Browse()
{
    // Reaching for the button ends the typing: what was typed is taken first,
    // so the browser starts from it.
    if (const std::string typed = mEdit->text().toStdString(); typed != mData) {
        mData = typed;
        SendSetData();
    }
    mBrowsing = true;
    const bool chosen = OnBrowse();
    mBrowsing = false;
    if (!chosen)
        return;
    mEdit->setText(QString::fromStdString(mData));
    SendSetData();
}

bool PropertyInPlaceEditAndBrowse::BrowseWith(QFileDialog& dialog)
{
    if (!mData.empty())
        dialog.selectFile(QString::fromStdString(mData));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    mData = dialog.selectedFiles().front().toStdString();
    return true;
}

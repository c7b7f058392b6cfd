#include <KORVAutlwin/options/PropertyInPlaceComboBox.h>
#include <KORVAutlwin/options/PropertyInPlaceEdit.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOption>

namespace {

constexpr int kMaxShownEntries = 8;
constexpr int kEmptyListHeight = 100;

int ScrollBarWidth(const QWidget* widget) { return widget->style()->pixelMetric(QStyle::PM_ScrollBarExtent); }

} // namespace

PropertyInPlaceComboBoxEdit::PropertyInPlaceComboBoxEdit(PropertyInPlaceComboBox* combo)
    : QWidget(combo), mCombo(combo)
{
    setObjectName(QStringLiteral("2"));
    setFocusPolicy(Qt::ClickFocus);
}

void PropertyInPlaceComboBoxEdit::SetText(const std::string& text)
{
    mText = text;
    update();
}

void PropertyInPlaceComboBoxEdit::paintEvent(QPaintEvent*)
{
    // Through a bitmap, so that the text never flickers over its background.
    QPixmap buffer(size() * devicePixelRatio());
    buffer.setDevicePixelRatio(devicePixelRatio());
    QPainter dc(&buffer);
    dc.fillRect(rect(), palette().color(QPalette::Base));
    dc.setPen(palette().color(QPalette::Text));
    dc.setFont(font());
    dc.drawText(rect().adjusted(3, 0, -3, 0), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                QString::fromStdString(mText));
    dc.end();
    QPainter(this).drawPixmap(0, 0, buffer);
}

void PropertyInPlaceComboBoxEdit::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        mCombo->OnBnClicked();
}

void PropertyInPlaceComboBoxEdit::mouseDoubleClickEvent(QMouseEvent*) {}

PropertyInPlaceComboBoxButton::PropertyInPlaceComboBoxButton(PropertyInPlaceComboBox* combo)
    : QWidget(combo), mCombo(combo)
{
    setObjectName(QStringLiteral("1"));
}

void PropertyInPlaceComboBoxButton::paintEvent(QPaintEvent*)
{
    QPixmap buffer(size() * devicePixelRatio());
    buffer.setDevicePixelRatio(devicePixelRatio());
    QPainter dc(&buffer);
    const bool pushed = mCombo->GetList() && mCombo->GetList()->isVisible();
    QStyleOptionButton button;
    button.initFrom(this);
    button.rect = rect();
    button.state |= pushed ? QStyle::State_Sunken : QStyle::State_Raised;
    button.features = QStyleOptionButton::Flat;
    dc.fillRect(rect(), palette().color(QPalette::Button));
    style()->drawPrimitive(QStyle::PE_PanelButtonBevel, &button, &dc, this);
    QStyleOption arrow;
    arrow.initFrom(this);
    arrow.rect = rect().adjusted(3, 3, -3, -3).translated(pushed ? 1 : 0, pushed ? 1 : 0);
    style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, &dc, this);
    dc.end();
    QPainter(this).drawPixmap(0, 0, buffer);
}

void PropertyInPlaceComboBoxButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        mCombo->OnBnClicked();
}

void PropertyInPlaceComboBoxButton::mouseDoubleClickEvent(QMouseEvent* event) { mousePressEvent(event); }

PropertyInPlaceComboBoxListBox::PropertyInPlaceComboBoxListBox(PropertyInPlaceComboBox* combo, QWidget* parent)
    : QListWidget(parent), mCombo(combo)
{
    setObjectName(QStringLiteral("3"));
    setFrameShape(QFrame::Box);
    setLineWidth(1);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
}

bool PropertyInPlaceComboBoxListBox::ForwardToScrollBar(QEvent::Type type, QPoint pos, Qt::MouseButtons buttons)
{
    // The capture brings the scroll bar's clicks here; hand them on, and the
    // drag that follows a press on it, so that long lists can be scrolled.
    QScrollBar* bar = verticalScrollBar();
    const QPoint at = bar->mapFrom(this, pos);
    if (!mScrolling && !(type == QEvent::MouseButtonPress && bar->isVisible() && bar->rect().contains(at)))
        return false;
    mScrolling = type != QEvent::MouseButtonRelease;
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent forwarded(type, at, bar->mapToGlobal(at), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(bar, &forwarded);
    return true;
}

bool PropertyInPlaceComboBoxListBox::OnMouse(QEvent::Type type, QPoint pos, Qt::MouseButtons buttons)
{
    if (ForwardToScrollBar(type, pos, buttons))
        return true;
    const bool inside = rect().contains(pos);
    const QPoint inViewport = viewport()->mapFrom(this, pos);
    switch (type) {
    case QEvent::MouseMove:
        if (inside && (buttons & Qt::LeftButton))
            if (QListWidgetItem* item = itemAt(inViewport))
                setCurrentItem(item);
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (!inside) {
            // A click outside takes the choice, as a release inside does.
            Choose();
        } else if (QListWidgetItem* item = itemAt(inViewport)) {
            setCurrentItem(item);
        } else {
            return false; // the scroll bar
        }
        return true;
    case QEvent::MouseButtonRelease:
        if (inside && viewport()->geometry().contains(pos))
            Choose();
        return true;
    default:
        return false;
    }
}

bool PropertyInPlaceComboBoxListBox::OnMouseEvent(QEvent* event, const QWidget* from)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove: {
        auto* mouse = static_cast<QMouseEvent*>(event);
        return OnMouse(event->type(), from->mapTo(this, mouse->position().toPoint()), mouse->buttons());
    }
    default:
        return false;
    }
}

bool PropertyInPlaceComboBoxListBox::event(QEvent* event)
{
    return OnMouseEvent(event, this) || QListWidget::event(event);
}

bool PropertyInPlaceComboBoxListBox::viewportEvent(QEvent* event)
{
    return OnMouseEvent(event, viewport()) || QListWidget::viewportEvent(event);
}

void PropertyInPlaceComboBoxListBox::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Choose();
        return;
    case Qt::Key_Escape:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        Cancel();
        return;
    default:
        QListWidget::keyPressEvent(event);
    }
}

void PropertyInPlaceComboBoxListBox::Choose()
{
    releaseMouse();
    const int index = currentRow();
    mCombo->OnSelectionOk(index, index >= 0 ? item(index)->data(Qt::UserRole).toULongLong() : 0);
}

void PropertyInPlaceComboBoxListBox::Cancel()
{
    releaseMouse();
    mCombo->OnSelectionCancel();
}

PropertyInPlaceComboBox* PropertyInPlaceComboBox::CreateInPlaceControl(QWidget* parent, QRect cell)
{
    auto* combo = new PropertyInPlaceComboBox(parent);
    combo->MoveControl(cell);
    combo->show();
    return combo;
}

PropertyInPlaceComboBox::PropertyInPlaceComboBox(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("1"));
    if (parent)
        setFont(parent->font());
    mEdit = new PropertyInPlaceComboBoxEdit(this);
    mButton = new PropertyInPlaceComboBoxButton(this);
    // The list hangs below the grid, so it belongs to the grid's parent.
    QWidget* listParent = parent && parent->parentWidget() ? parent->parentWidget() : parent;
    mList = new PropertyInPlaceComboBoxListBox(this, listParent);
    mList->setFont(font());
    mList->hide();
}

PropertyInPlaceComboBox::~PropertyInPlaceComboBox()
{
    if (mList->isVisible())
        mList->releaseMouse();
    delete mList;
}

int PropertyInPlaceComboBox::AddString(const char* text, unsigned long data)
{
    auto* item = new QListWidgetItem(QString::fromUtf8(text ? text : ""));
    item->setData(Qt::UserRole, QVariant::fromValue<qulonglong>(data));
    mList->addItem(item);
    return mList->count() - 1;
}

void PropertyInPlaceComboBox::ResetContent()
{
    mList->clear();
    mEdit->SetText(std::string());
}

int PropertyInPlaceComboBox::GetCount() const { return mList->count(); }

int PropertyInPlaceComboBox::GetCurSel() const { return mList->currentRow(); }

int PropertyInPlaceComboBox::SetCurSel(int index, bool notify)
{
    if (index >= mList->count())
        return -1;
    mList->setCurrentRow(index);
    mEdit->SetText(index >= 0 ? mList->item(index)->text().toStdString() : std::string());
    if (notify)
        Commit();
    return index;
}

int PropertyInPlaceComboBox::GetListBoxHeight() const
{
    const int count = mList->count();
    if (count == 0)
        return kEmptyListHeight;
    const int shown = count < kMaxShownEntries + 1 ? count : kMaxShownEntries;
    return shown * mList->sizeHintForRow(0) + 2;
}

void PropertyInPlaceComboBox::ResetListBoxHeight() { mList->resize(width() - 1, GetListBoxHeight()); }

QPoint PropertyInPlaceComboBox::ListPosition() const
{
    return mapTo(mList->parentWidget(), QPoint(0, height()));
}

void PropertyInPlaceComboBox::MoveControl(QRect cell)
{
    setGeometry(cell);
    if (mList->parentWidget() && mList->parentWidget()->isAncestorOf(this))
        mList->move(ListPosition());
}

void PropertyInPlaceComboBox::resizeEvent(QResizeEvent*)
{
    const int buttonWidth = ScrollBarWidth(this);
    mEdit->setGeometry(0, 0, std::max(0, width() - buttonWidth), height());
    mButton->setGeometry(std::max(0, width() - buttonWidth), 0, buttonWidth, height());
}

void PropertyInPlaceComboBox::hideEvent(QHideEvent*)
{
    if (mList->isVisible()) {
        mList->releaseMouse();
        HideList();
    }
}

void PropertyInPlaceComboBox::OnBnClicked()
{
    if (mList->isVisible()) {
        mList->releaseMouse();
        HideList();
        return;
    }
    mList->setGeometry(QRect(ListPosition(), QSize(width() - 1, GetListBoxHeight())));
    mList->show();
    mList->raise();
    if (mList->currentItem())
        mList->scrollToItem(mList->currentItem());
    mList->setFocus(Qt::PopupFocusReason);
    mList->grabMouse();
    mButton->update();
}

void PropertyInPlaceComboBox::OnSelectionOk(int index, unsigned long)
{
    HideList();
    SetCurSel(index, false);
    Commit();
}

void PropertyInPlaceComboBox::OnSelectionCancel() { HideList(); }

void PropertyInPlaceComboBox::OnNewSelection(int virtualKey)
{
    const int count = GetCount();
    if (count == 0)
        return;
    int index = GetCurSel();
    index = virtualKey == Qt::Key_Up ? std::max(0, index - 1) : std::min(count - 1, index + 1);
    SetCurSel(index, true);
}

void PropertyInPlaceComboBox::mouseDoubleClickEvent(QMouseEvent*)
{
    const int count = GetCount();
    if (count <= 1)
        return;
    const int next = GetCurSel() + 1 < count ? GetCurSel() + 1 : 0;
    SetCurSel(next, true);
}

void PropertyInPlaceComboBox::HideList()
{
    const bool hadFocus = mList->hasFocus();
    mList->hide();
    if (hadFocus && parentWidget())
        parentWidget()->setFocus(Qt::PopupFocusReason);
    mButton->update();
    if (mList->parentWidget())
        mList->parentWidget()->update(mList->geometry());
}

void PropertyInPlaceComboBox::Commit() { korva::SendSetData(mOwner ? mOwner : parentWidget()); }

#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemInPlaceControls.h>
#include <KORVAutlwin/options/PropertyListCtrl.h>

#include <KORVAutlwin/frame/LimitLineLength.h>

#include <KORVAutl/LanguageString.h>

#include <QApplication>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>
#include <climits>
#include <typeinfo>

namespace {

constexpr unsigned int kFallbackDescription = 16153;
constexpr unsigned int kFallbackName = 16154;
const QColor kGridLine(198, 198, 198);
const QString kDummyText = QStringLiteral("DummyText");

// Rows that are headings run their caption to the right edge: no split.
bool IsHeading(const PropertyItem* item)
{
    return dynamic_cast<const PropertyItemCategory*>(item) || typeid(*item) == typeid(PropertyItem);
}

// The split between caption and value of a row from `left` to `right` (exclusive).
int Split(const PropertyItem* item, int left, int right)
{
    if (IsHeading(item))
        return right - 1;
    const int expander = left + PropertyListCtrl::msExpanderWidth;
    return expander + (right - expander) / 2;
}

char32_t FirstCharacter(const QString& text)
{
    return text.size() > 1 && text[0].isHighSurrogate() ? QChar::surrogateToUcs4(text[0], text[1]) : text[0].unicode();
}

int TextHeight(const QFontMetrics& metrics) { return metrics.size(0, kDummyText).height(); }

} // namespace

PropertyListCtrl::PropertyListCtrl(QWidget* parent) : QWidget(parent), PropertyListModel(this)
{
    PropertyItemInPlaceControls::Install();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    mScrollBar = new QScrollBar(Qt::Vertical, this);
    mScrollBar->setFocusPolicy(Qt::NoFocus);
    mScrollBar->hide();
    connect(mScrollBar, &QScrollBar::valueChanged, this, [this](int value) { SetTopIndex(value); });
}

PropertyListCtrl::~PropertyListCtrl()
{
    // Destruction commits a pending edit, as focus loss would.
    QWidget* focus = QApplication::focusWidget();
    if (mInPlaceControl && focus && (focus == mInPlaceControl || mInPlaceControl->isAncestorOf(focus)))
        SetCurrentData();
    delete mInPlaceControl;
    mInPlaceControl = nullptr;
}

QFont PropertyListCtrl::CategoryFont() const
{
    QFont bold = font();
    bold.setWeight(QFont::Bold);
    return bold;
}

QRect PropertyListCtrl::GetClientRect() const
{
    if (mLayoutDirty)
        const_cast<PropertyListCtrl*>(this)->UpdateScrollBar();
    const int scroll = mScrollBar->isVisible() ? mScrollBar->width() : 0;
    const int details = mShowDetails ? msDetailsHeight : 0;
    return QRect(0, 0, std::max(0, width() - scroll), std::max(0, height() - details));
}

QRect PropertyListCtrl::GetDetailsRect() const
{
    return mShowDetails ? QRect(0, std::max(0, height() - msDetailsHeight), width(), msDetailsHeight) : QRect();
}

QRect PropertyListCtrl::GetItemRect(int index) const
{
    if (index < 0 || index >= GetCount())
        return QRect();
    // Rows scrolled away lie above or below the client area, where an in-place
    // control made for one of them is out of sight.
    int y = 0;
    for (int row = index; row < mTopIndex; ++row)
        y -= GetRowHeight(row);
    for (int row = mTopIndex; row < index; ++row)
        y += GetRowHeight(row);
    return QRect(0, y, GetClientRect().width(), GetRowHeight(index));
}

QRect PropertyListCtrl::GetItemValueRect(int index) const
{
    const QRect row = GetItemRect(index);
    if (row.isEmpty())
        return row;
    const int left = row.left() + msExpanderWidth;
    const int right = row.left() + row.width();
    return QRect(QPoint(left + (right - left) / 2 + 1, row.top()), QPoint(right - 1, row.bottom() - 1));
}

int PropertyListCtrl::ItemFromPoint(QPoint point) const
{
    const QRect client = GetClientRect();
    if (!client.contains(point))
        return -1;
    int y = 0;
    for (int row = mTopIndex; row < GetCount() && y < client.height(); ++row) {
        y += GetRowHeight(row);
        if (point.y() < y)
            return row;
    }
    return -1;
}

const QFontMetrics& PropertyListCtrl::Metrics(bool category) const
{
    std::unique_ptr<QFontMetrics>& metrics = category ? mCategoryMetrics : mMetrics;
    if (!metrics)
        metrics = std::make_unique<QFontMetrics>(category ? CategoryFont() : font());
    return *metrics;
}

int PropertyListCtrl::MeasureItem(PropertyItem* item)
{
    const bool category = dynamic_cast<PropertyItemCategory*>(item) != nullptr;
    const QFontMetrics& metrics = Metrics(category);
    const int textHeight = TextHeight(metrics);
    // A widget that was never sized (before its layout places it) has no width
    // to wrap to yet; the first real size measures every row again.
    if (!testAttribute(Qt::WA_Resized)) {
        mMeasuredWidth = -1;
        const std::string name = item->GetShowName();
        return textHeight * (1 + static_cast<int>(std::count(name.begin(), name.end(), '\n'))) + 4;
    }

    const QRect client = GetClientRect();
    const int right = client.left() + client.width();
    const int split = Split(item, client.left(), right);
    // A heading's negative width means no wrapping at all.
    const int width = (right - 3) - (split + 4);

    std::string name = item->GetShowName();
    std::replace(name.begin(), name.end(), '\n', ' ');
    if (width > 0 && metrics.horizontalAdvance(QString::fromStdString(name)) > width)
        LimitLineLength::ByPixels(name, metrics, width);
    item->SetShowName(name.c_str());
    const int lines = 1 + static_cast<int>(std::count(name.begin(), name.end(), '\n'));
    return textHeight * lines + 4;
}

void PropertyListCtrl::RemeasureAll()
{
    mMeasuredWidth = GetClientRect().width();
    for (Row& row : mRows)
        row.height = kUnmeasured;
}

void PropertyListCtrl::OnRowsChanged()
{
    // Laid out when next asked: a fill inserts rows a hundred times in a row.
    mLayoutDirty = true;
    update();
}

int PropertyListCtrl::LastTopIndex() const
{
    const int available = GetClientRect().height();
    int used = 0;
    int top = GetCount();
    while (top > 0 && used + GetRowHeight(top - 1) <= available) {
        used += GetRowHeight(top - 1);
        --top;
    }
    return std::min(top, std::max(0, GetCount() - 1));
}

void PropertyListCtrl::UpdateScrollBar()
{
    mLayoutDirty = false;
    const int last = LastTopIndex();
    const bool needed = last > 0;
    const int details = mShowDetails ? msDetailsHeight : 0;
    const int extent = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    mScrollBar->setGeometry(width() - extent, 0, extent, std::max(0, height() - details));
    mScrollBar->setVisible(needed);
    const QSignalBlocker block(mScrollBar);
    mScrollBar->setRange(0, std::max(0, last));
    mScrollBar->setPageStep(std::max(1, GetCount() - last));
    if (mTopIndex > last)
        mTopIndex = std::max(0, last);
    mScrollBar->setValue(mTopIndex);
}

void PropertyListCtrl::SetTopIndex(int index)
{
    index = std::clamp(index, 0, std::max(0, LastTopIndex()));
    if (index == mTopIndex)
        return;
    mTopIndex = index;
    {
        const QSignalBlocker block(mScrollBar);
        mScrollBar->setValue(index);
    }
    // The in-place control follows its row only when there is one.
    if (mInPlaceControl)
        Refresh();
    update();
}

void PropertyListCtrl::EnsureVisible(int index)
{
    if (index < 0 || index >= GetCount())
        return;
    int top = mTopIndex;
    if (index < top) {
        top = index;
    } else {
        const int available = GetClientRect().height();
        auto heightFrom = [this, index](int from) {
            int sum = 0;
            for (int row = from; row <= index; ++row)
                sum += GetRowHeight(row);
            return sum;
        };
        while (top < index && heightFrom(top) > available)
            ++top;
    }
    SetTopIndex(top);
}

bool PropertyListCtrl::SetCurSel(int index)
{
    if (index != mCurSel)
        NoInPlaceControl();
    const bool valid = PropertyListModel::SetCurSel(index);
    EnsureVisible(mCurSel);
    update();
    return valid;
}

void PropertyListCtrl::MoveSelection(int index)
{
    if (index < 0 || index >= GetCount() || index == mCurSel)
        return;
    PropertyListModel::SetCurSel(index);
    EnsureVisible(index);
    OnSelChange();
}

void PropertyListCtrl::NoInPlaceControl()
{
    if (!mInPlaceControl)
        return;
    // A focused control commits as it loses the focus, before it goes.
    QWidget* focus = QApplication::focusWidget();
    if (focus && (focus == mInPlaceControl || mInPlaceControl->isAncestorOf(focus)))
        setFocus(Qt::OtherFocusReason);
    // The commit may have rebuilt the control; whichever is there now goes.
    QWidget* control = mInPlaceControl;
    mInPlaceControl = nullptr;
    if (control) {
        control->hide();
        control->deleteLater(); // it may be inside one of its own handlers
    }
}

void PropertyListCtrl::ShowInPlaceControl(bool show)
{
    NoInPlaceControl();
    if (show && mCurSel >= 0 && mCurSel < GetCount()) {
        const QRect cell = GetItemValueRect(mCurSel);
        mInPlaceControl = GetPropertyItem(mCurSel)->CreateInPlaceControl(this, cell);
    }
    update();
}

void PropertyListCtrl::OnSelChange()
{
    if (PropertyItem* item = GetPropertyItem(mCurSel)) {
        const QRect cell = GetItemValueRect(mCurSel);
        NoInPlaceControl();
        mInPlaceControl = item->CreateInPlaceControl(this, cell);
    }
    update(); // the details, too
}

long PropertyListCtrl::OnSetData()
{
    SetCurrentData();
    update();
    return 1;
}

void PropertyListCtrl::Refresh()
{
    NoInPlaceControl();
    update(GetClientRect());
    ShowInPlaceControl(true);
}

void PropertyListCtrl::ShowDetails(bool show)
{
    mShowDetails = show;
    UpdateScrollBar();
    update();
}

void PropertyListCtrl::DrawItem(QPainter& dc, int index, const QRect& rect)
{
    PropertyItem* item = GetPropertyItem(index);
    auto* category = dynamic_cast<PropertyItemCategory*>(item);
    const bool selected = index == mCurSel;
    const int left = rect.left();
    const int top = rect.top();
    const int right = rect.left() + rect.width();
    const int bottom = rect.top() + rect.height();

    if (category) {
        const int boxTop = top + (rect.height() - 9) / 2;
        const QRect box(left + 3, boxTop, 9, 9);
        dc.fillRect(box, Qt::white);
        dc.setPen(Qt::black);
        dc.setBrush(Qt::NoBrush);
        dc.drawRect(box.adjusted(0, 0, -1, -1));
        const int x = box.left() + 4;
        const int y = box.top() + 4;
        dc.drawLine(x - 2, y, x + 2, y);
        if (!category->GetChildrenVisible())
            dc.drawLine(x, y - 2, x, y + 2);
    }

    const int split = Split(item, left, right);
    dc.setPen(QPen(kGridLine, 1));
    dc.drawLine(left + msExpanderWidth, bottom - 1, right - 1, bottom - 1);
    dc.drawLine(split, top, split, bottom - 2);

    const QRect caption(QPoint(left + 17, top), QPoint(split - 1, bottom - 2));
    const QPalette& colors = palette();
    dc.fillRect(caption, colors.color(selected ? QPalette::Highlight : QPalette::Base));
    dc.setPen(colors.color(selected ? QPalette::HighlightedText : QPalette::Text));
    const QFont captionFont = category ? CategoryFont() : font();
    dc.setFont(captionFont);
    const QFontMetrics metrics(captionFont);
    const std::string showName = item->GetShowName();
    const int lines = 1 + static_cast<int>(std::count(showName.begin(), showName.end(), '\n'));
    const int block = TextHeight(metrics) * lines;
    const QRect text(QPoint(caption.left() + 3, caption.top() + (caption.height() - block) / 2),
                     QPoint(caption.right() - 3, caption.bottom()));
    dc.drawText(text, Qt::AlignLeft | Qt::AlignTop, QString::fromStdString(showName));

    dc.setFont(font());
    dc.setPen(colors.color(QPalette::Text));
    const QRect value(QPoint(split + 1, top), QPoint(right - 1, bottom - 2));
    if (!selected) {
        if (!IsHeading(item))
            item->DrawValue(&dc, value);
    } else if (mInPlaceControl && mInPlaceControl->isVisible() && mInPlaceControl->x() > value.left() + 3) {
        // A control that leaves the start of the cell free (the colour's) keeps the value painted there.
        dc.save();
        dc.setClipRect(QRect(value.topLeft(), QPoint(mInPlaceControl->x() - 1, value.bottom())));
        item->DrawValue(&dc, value);
        dc.restore();
    }
}

void PropertyListCtrl::GetDetailsText(std::string& name, std::string& description) const
{
    name.clear();
    description.clear();
    if (const PropertyItem* item = GetPropertyItem(mCurSel)) {
        name = item->GetName();
        description = item->GetDescription();
    }
    if (name.empty())
        name = LanguageString::Get(kFallbackName);
    if (description.empty())
        description = LanguageString::Get(kFallbackDescription);
}

void PropertyListCtrl::DrawDetails(QPainter& dc)
{
    if (!mShowDetails)
        return;
    const QRect area = GetDetailsRect();
    const QRect outer(QPoint(area.left(), area.top()), QPoint(area.right(), area.bottom() - 1));
    const QRect second = outer.adjusted(1, 0, 0, 0);
    QRect first = outer.adjusted(4, 2, -4, -2);
    const QPalette& colors = palette();
    dc.fillRect(area, colors.color(QPalette::Base));
    dc.fillRect(second, colors.color(QPalette::Base));
    dc.fillRect(first, colors.color(QPalette::Button));
    dc.setPen(colors.color(QPalette::Mid));
    dc.setBrush(Qt::NoBrush);
    dc.drawRect(first.adjusted(0, 0, -1, -1));

    std::string name;
    std::string description;
    GetDetailsText(name, description);
    first.adjust(2, 1, -2, -1);
    dc.setPen(colors.color(QPalette::ButtonText));
    const QFont bold = CategoryFont();
    dc.setFont(bold);
    dc.drawText(first, Qt::AlignLeft | Qt::AlignTop, QString::fromStdString(name));
    first.setTop(first.top() + TextHeight(QFontMetrics(bold)) + 2);
    dc.setFont(font());
    dc.drawText(first, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, QString::fromStdString(description));
}

void PropertyListCtrl::paintEvent(QPaintEvent*)
{
    QPainter dc(this);
    const QRect client = GetClientRect();
    dc.fillRect(client, palette().color(QPalette::Base));
    int y = 0;
    for (int row = mTopIndex; row < GetCount() && y < client.height(); ++row) {
        const QRect rect(0, y, client.width(), GetRowHeight(row));
        dc.save();
        dc.setClipRect(client);
        DrawItem(dc, row, rect);
        dc.restore();
        y += rect.height();
    }
    dc.setPen(QPen(kGridLine, 1));
    dc.drawLine(client.left() + msExpanderWidth, 0, client.left() + msExpanderWidth, client.height() - 1);
    dc.drawLine(client.width() - 1, 0, client.width() - 1, client.height() - 1);
    DrawDetails(dc);
}

void PropertyListCtrl::resizeEvent(QResizeEvent*)
{
    UpdateScrollBar();
    if (GetClientRect().width() != mMeasuredWidth) {
        RemeasureAll();
        UpdateScrollBar();
    }
    Refresh();
}

void PropertyListCtrl::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange) {
        mMetrics.reset();
        mCategoryMetrics.reset();
        RemeasureAll();
        UpdateScrollBar();
        update();
    }
    QWidget::changeEvent(event);
}

bool PropertyListCtrl::SelectRowAt(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !GetClientRect().contains(event->position().toPoint()))
        return false;
    // The list takes the focus first, so that a pending edit commits before the selection moves.
    setFocus(Qt::MouseFocusReason);
    // Below the last row the list takes the last row, as list boxes do.
    int row = ItemFromPoint(event->position().toPoint());
    if (row < 0)
        row = GetCount() - 1;
    if (row >= 0)
        MoveSelection(row);
    return true;
}

void PropertyListCtrl::mousePressEvent(QMouseEvent* event)
{
    if (!SelectRowAt(event)) {
        QWidget::mousePressEvent(event);
        return;
    }
    if (event->position().x() < 17)
        DoCollapseExpand(mCurSel, nullptr);
}

void PropertyListCtrl::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (!SelectRowAt(event)) {
        QWidget::mouseDoubleClickEvent(event);
        return;
    }
    PropertyItem* item = GetPropertyItem(mCurSel);
    if (!item)
        return;
    if (dynamic_cast<PropertyItemCategory*>(item)) {
        DoCollapseExpand(mCurSel, item);
    } else if (mInPlaceControl) {
        QMouseEvent forwarded(QEvent::MouseButtonDblClick, mInPlaceControl->mapFrom(this, event->position()),
                              event->globalPosition(), event->button(), event->buttons(), event->modifiers());
        QApplication::sendEvent(mInPlaceControl, &forwarded);
    } else if (typeid(*item) == typeid(PropertyItem) && parentWidget()) {
        QMouseEvent forwarded(QEvent::MouseButtonDblClick, parentWidget()->mapFrom(this, event->position()),
                              event->globalPosition(), event->button(), event->buttons(), event->modifiers());
        QApplication::sendEvent(parentWidget(), &forwarded);
    }
}

void PropertyListCtrl::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    const bool keypad = event->modifiers() & Qt::KeypadModifier;
    if (auto* category = dynamic_cast<PropertyItemCategory*>(GetPropertyItem(mCurSel))) {
        const bool open = category->GetChildrenVisible();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            DoCollapseExpand(mCurSel, category);
            return;
        }
        if (key == Qt::Key_Left || (key == Qt::Key_Minus && keypad)) {
            if (open)
                DoCollapseExpand(mCurSel, category);
            return;
        }
        if (key == Qt::Key_Right || (key == Qt::Key_Plus && keypad)) {
            if (!open)
                DoCollapseExpand(mCurSel, category);
            return;
        }
    }
    const QString text = event->text();
    if (hasFocus() && !text.isEmpty() && text[0].isLetter() &&
        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
        if (LookupPropertyItem(FirstCharacter(text))) {
            EnsureVisible(mCurSel);
            OnSelChange();
        }
        return;
    }

    const int count = GetCount();
    if (count == 0) {
        QWidget::keyPressEvent(event);
        return;
    }
    const int page = std::max(1, mScrollBar->pageStep());
    // As in any single-column list, Left and Right step like Up and Down.
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Left:
        MoveSelection(std::max(0, mCurSel - 1));
        break;
    case Qt::Key_Down:
    case Qt::Key_Right:
        MoveSelection(std::min(count - 1, mCurSel + 1));
        break;
    case Qt::Key_PageUp:
        MoveSelection(std::max(0, mCurSel - page));
        break;
    case Qt::Key_PageDown:
        MoveSelection(std::min(count - 1, std::max(0, mCurSel) + page));
        break;
    case Qt::Key_Home:
        MoveSelection(0);
        break;
    case Qt::Key_End:
        MoveSelection(count - 1);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void PropertyListCtrl::wheelEvent(QWheelEvent* event)
{
    const int steps = event->angleDelta().y() / 40;
    if (steps != 0)
        SetTopIndex(mTopIndex - steps);
    event->accept();
}

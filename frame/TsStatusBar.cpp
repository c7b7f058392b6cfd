#include <KORVAutlwin/frame/TsStatusBar.h>

#include <KORVAutl/LanguageString.h>

#include <qdrawutil.h>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include <algorithm>

namespace {

// Room around and between the panes, and the padding of a pane's text.
constexpr int kMargin = 2;
constexpr int kGap = 2;
constexpr int kTextPadding = 3;

} // namespace

TsStatusBar::TsStatusBar(QWidget* parent) : QStatusBar(parent)
{
    // Panes are laid out by the bar itself; a size grip would sit over the last one.
    setSizeGripEnabled(false);
    setMinimumHeight(fontMetrics().height() + 8);
    mPanes.push_back({0, SBPS_STRETCH, 0, std::string()});
    connect(this, &QStatusBar::messageChanged, this, [this] { update(); });
}

TsStatusBar::~TsStatusBar() = default;

bool TsStatusBar::SetIndicators(const unsigned int* ids, int count)
{
    if (count < 0)
        return false;
    mPanes.clear();
    mWindows.clear();
    for (int i = 0; i < count; ++i) {
        const unsigned int id = ids ? ids[i] : 0;
        std::string text = id != 0 ? LanguageString::Get(id) : std::string();
        const int width = text.empty() ? 0 : fontMetrics().horizontalAdvance(QString::fromStdString(text)) + 2 * kTextPadding;
        mPanes.push_back({id, i == 0 ? SBPS_STRETCH : SBPS_NORMAL, width, std::move(text)});
    }
    update();
    return true;
}

void TsStatusBar::SetPaneInfo(int index, unsigned int id, unsigned int style, int width)
{
    if (!IsValidIndex(index))
        return;
    mPanes[index].id = id;
    mPanes[index].style = style;
    mPanes[index].width = std::max(0, width);
    LayoutWindows();
    update();
}

unsigned int TsStatusBar::GetPaneStyle(int index) const
{
    return IsValidIndex(index) ? mPanes[index].style : 0;
}

void TsStatusBar::SetPaneStyle(int index, unsigned int style)
{
    if (!IsValidIndex(index))
        return;
    mPanes[index].style = style;
    LayoutWindows();
    update();
}

std::vector<QRect> TsStatusBar::PaneRects() const
{
    std::vector<QRect> rects(mPanes.size());
    int used = 2 * kMargin;
    int shown = 0;
    int stretch = -1;
    for (int i = 0; i < GetCount(); ++i) {
        const bool stretches = stretch < 0 && (mPanes[i].style & SBPS_STRETCH);
        if (stretches)
            stretch = i;
        if (mPanes[i].width > 0 || stretches) {
            used += mPanes[i].width;
            ++shown;
        }
    }
    used += std::max(0, shown - 1) * kGap;
    const int extra = std::max(0, width() - used);
    const int top = kMargin;
    const int height = std::max(0, this->height() - kMargin - 1);
    int x = kMargin;
    for (int i = 0; i < GetCount(); ++i) {
        const int w = mPanes[i].width + (i == stretch ? extra : 0);
        if (w <= 0)
            continue;
        rects[i] = QRect(x, top, w, height);
        x += w + kGap;
    }
    return rects;
}

QRect TsStatusBar::GetItemRect(int index) const
{
    if (!IsValidIndex(index))
        return QRect();
    return PaneRects()[index];
}

int TsStatusBar::GetWindowIndex(const QWidget* window) const
{
    for (const HostedWindow& hosted : mWindows)
        if (hosted.window && hosted.window == window)
            return hosted.index;
    return -1;
}

void TsStatusBar::LayoutWindows()
{
    const std::vector<QRect> rects = PaneRects();
    for (const HostedWindow& hosted : mWindows) {
        if (!hosted.window || hosted.index < 0 || hosted.index >= static_cast<int>(rects.size()))
            continue;
        const QRect rect = rects[hosted.index];
        if (rect.isEmpty())
            continue;
        hosted.window->setGeometry(rect.adjusted(1, 1, -1, -1));
        hosted.window->update();
    }
}

int TsStatusBar::SetPaneText(int index, const std::string& text, int update)
{
    if (!IsValidIndex(index))
        return 0;
    mPanes[index].text = text;
    const QRect rect = GetItemRect(index);
    // Long work sets texts without returning to the event loop: paint now when asked.
    if (update)
        repaint(rect);
    else
        this->update(rect);
    return 1;
}

bool TsStatusBar::InsertWindow(QWidget* window, int width, int index, unsigned int id)
{
    if (!window)
        return false;
    if (GetWindowIndex(window) >= 0)
        RemoveWindow(window, false, id);
    index = std::clamp(index, 0, GetCount());
    mPanes.insert(mPanes.begin() + index, StatusPane{id, SBPS_NORMAL, std::max(0, width), std::string()});
    for (HostedWindow& hosted : mWindows)
        if (hosted.index >= index)
            ++hosted.index;
    mWindows.push_back({window, index});
    if (window->parentWidget() != this)
        window->setParent(this);
    LayoutWindows();
    update();
    return true;
}

void TsStatusBar::RemoveWindow(QWidget* window, bool hide, unsigned int id)
{
    const int hostedAt = window ? GetWindowIndex(window) : -1;
    const int index = hostedAt >= 0 ? hostedAt : CommandToIndex(id);
    if (!IsValidIndex(index))
        return;
    if (hide) {
        mPanes[index].width = 0;
        if (window)
            window->hide();
    } else {
        RemovePane(index);
    }
    LayoutWindows();
    update();
}

void TsStatusBar::RemovePane(int index)
{
    mPanes.erase(mPanes.begin() + index);
    std::erase_if(mWindows, [index](const HostedWindow& hosted) { return hosted.index == index || !hosted.window; });
    for (HostedWindow& hosted : mWindows)
        if (hosted.index > index)
            --hosted.index;
}

void TsStatusBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_PanelStatusBar, &option, &painter, this);

    const std::vector<QRect> rects = PaneRects();
    const int messagePane = CommandToIndex(0);
    const QString message = currentMessage();
    painter.setPen(palette().color(QPalette::WindowText));
    for (int i = 0; i < GetCount(); ++i) {
        const StatusPane& pane = mPanes[i];
        const QRect rect = rects[i];
        if (rect.isEmpty())
            continue;
        if (!(pane.style & SBPS_NOBORDERS))
            qDrawShadePanel(&painter, rect, palette(), !(pane.style & SBPS_POPOUT), 1);
        if (pane.style & SBPS_DISABLED)
            continue;
        const QString text = i == messagePane && !message.isEmpty()
                                 ? message
                                 : QString::fromStdString(pane.text);
        if (text.isEmpty())
            continue;
        const QRect textRect = rect.adjusted(kTextPadding, 0, -kTextPadding, 0);
        painter.drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(text, Qt::ElideRight, textRect.width()));
    }
}

void TsStatusBar::resizeEvent(QResizeEvent* event)
{
    QStatusBar::resizeEvent(event);
    LayoutWindows();
}

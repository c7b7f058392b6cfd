#include <KORVAutlwin/progress/IndeterminateProgressCtrl.h>

#include <QEvent>
#include <QPainter>
#include <QPixmap>
#include <QTimerEvent>

#include <algorithm>

namespace {

// Which pen draws line k (1 to 10) of a band; column 6 stays background.
constexpr struct
{
    int k;
    IndeterminateProgressCtrl::EPen pen;
} kBandColumns[] = {
    {1, IndeterminateProgressCtrl::eDarker2},  {2, IndeterminateProgressCtrl::eDarker1},
    {3, IndeterminateProgressCtrl::eBase},     {4, IndeterminateProgressCtrl::eLighter1},
    {5, IndeterminateProgressCtrl::eLighter2}, {7, IndeterminateProgressCtrl::eLighter2},
    {8, IndeterminateProgressCtrl::eLighter1}, {9, IndeterminateProgressCtrl::eBase},
    {10, IndeterminateProgressCtrl::eDarker1},
};

unsigned char Saturated(int channel)
{
    return static_cast<unsigned char>(std::clamp(channel, 0, 255));
}

} // namespace

IndeterminateProgressCtrl::IndeterminateProgressCtrl(QWidget* parent) : QProgressBar(parent)
{
    // Every pixel is painted from the off-screen copy: no background erase.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setTextVisible(false);
    TakeColors();
    timer.start(kTimerInterval, this);
}

IndeterminateProgressCtrl::~IndeterminateProgressCtrl() = default;

COLORREF IndeterminateProgressCtrl::AddToChannels(COLORREF color, int delta)
{
    return RGB(Saturated(GetRValue(color) + delta), Saturated(GetGValue(color) + delta),
               Saturated(GetBValue(color) + delta));
}

IndeterminateProgressCtrl::Colors IndeterminateProgressCtrl::DeriveColors(COLORREF base)
{
    // Step by step, each step saturated on its own, as the colours are built.
    Colors result{};
    result.pens[eBase] = base;
    result.pens[eLighter1] = AddToChannels(base, kColorStep);
    result.pens[eLighter2] = AddToChannels(result.pens[eLighter1], kColorStep);
    result.background = AddToChannels(result.pens[eLighter2], kColorStep);
    result.pens[eDarker1] = AddToChannels(base, -kColorStep);
    result.pens[eDarker2] = AddToChannels(result.pens[eDarker1], -kColorStep);
    return result;
}

int IndeterminateProgressCtrl::NextOffset(int current)
{
    return current + 1 >= kBandSpacing ? 0 : current + 1;
}

std::vector<IndeterminateProgressCtrl::Line> IndeterminateProgressCtrl::BandLines(const QRect& client, int offset)
{
    std::vector<Line> lines;
    const int width = client.width();
    const int top = client.top();
    const int bottom = client.top() + client.height();
    const int h = client.height() + 1;
    // Up to 16 rows the bands from one spacing left of the client reach its
    // lower left corner; a higher bar needs bands that start further left.
    const int earlier = std::max(0, (client.height() + kBandWidth - 1 + kBandSpacing - 1) / kBandSpacing - 1);
    const int bands = width / kBandSpacing + 2 + earlier;
    const int first = client.left() + offset - kBandSpacing * (1 + earlier);
    lines.reserve(static_cast<std::size_t>(bands) * std::size(kBandColumns));
    for (int band = 0; band < bands; ++band) {
        const int x = first + band * kBandSpacing + h;
        for (const auto& column : kBandColumns)
            lines.push_back({column.pen, QPoint(x + column.k - h, top), QPoint(x + column.k - 1, bottom)});
    }
    return lines;
}

void IndeterminateProgressCtrl::TakeColors()
{
    colors = DeriveColors(korva::FromQColor(palette().color(QPalette::Active, QPalette::Highlight)));
}

void IndeterminateProgressCtrl::OnTimer(unsigned int id)
{
    if (id != kTimerId)
        return;
    offset = NextOffset(offset);
    repaint();
}

void IndeterminateProgressCtrl::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == timer.timerId())
        OnTimer(kTimerId);
    else
        QProgressBar::timerEvent(event);
}

void IndeterminateProgressCtrl::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange)
        TakeColors();
    QProgressBar::changeEvent(event);
}

void IndeterminateProgressCtrl::paintEvent(QPaintEvent*)
{
    const QRect client = rect();
    if (client.isEmpty())
        return;
    const qreal ratio = devicePixelRatioF();
    QPixmap frame(client.size() * ratio);
    frame.setDevicePixelRatio(ratio);
    {
        QPainter painter(&frame);
        painter.fillRect(client, korva::ToQColor(colors.background));
        std::array<QPen, ePenCount> pens;
        for (int pen = 0; pen < ePenCount; ++pen) {
            pens[pen] = QPen(korva::ToQColor(colors.pens[pen]), 1);
            pens[pen].setCosmetic(true);
        }
        for (const Line& line : BandLines(client, offset)) {
            // The end point is not part of the line; the lines run at 45 degrees.
            if (line.to.y() <= line.from.y())
                continue;
            painter.setPen(pens[line.pen]);
            painter.drawLine(line.from, line.to - QPoint(1, 1));
        }
    }
    QPainter(this).drawPixmap(0, 0, frame);
}

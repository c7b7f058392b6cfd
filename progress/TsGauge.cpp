#include <KORVAutlwin/progress/TsGauge.h>

#include <KORVAutlwin/toolkit/DisplayColor.h>
#include <KORVAutlwin/toolkit/LogFont.h>

#include <QFontMetricsF>
#include <QList>
#include <QPainter>
#include <QTimerEvent>

#include <algorithm>

namespace {

// The part of the bar's height that carries the lighter band, and how much lighter it is.
constexpr int kBandFifths = 3;
constexpr float kBandLightness = 0.3f;
// The faint tint of the bar colour over the empty part.
constexpr int kTintAlpha = 0x10;
// The black copy of the caption sits this far below and right of the coloured one.
constexpr qreal kShadowOffset = 1.0;

} // namespace

TsGauge::TsGauge(QWidget* parent)
    : QFrame(parent), mLow(0.0f), mHigh(100.0f), mValue(0.0f), mPhase(0), mFramePhase(0)
{
    LOGFONT logFont{};
    logFont.lfHeight = -korva::MulDiv(8, logicalDpiY(), 72);
    logFont.lfWeight = FW_BOLD;
    mFont = korva::CreateFontIndirect(logFont);
}

TsGauge::~TsGauge() = default;

void TsGauge::SetRange(float low, float high)
{
    mLow.store(std::min(low, high), std::memory_order_relaxed);
    mHigh.store(std::max(low, high), std::memory_order_relaxed);
}

void TsGauge::SetValue(float value)
{
    mValue.store(value, std::memory_order_relaxed);
}

QWidget* TsGauge::GetWnd()
{
    return this;
}

QString TsGauge::CutCaption(const char* caption)
{
    if (!caption)
        return QString();
    QList<uint> characters = QString::fromUtf8(caption).toUcs4();
    if (characters.size() > kCaptionLength)
        characters.resize(kCaptionLength);
    return QString::fromUcs4(reinterpret_cast<const char32_t*>(characters.constData()), characters.size());
}

void TsGauge::SetCaption(const char* caption)
{
    mCaption = CutCaption(caption);
}

int TsGauge::FrameHeight() const
{
    // The frame and any margins: all that lies outside the contents.
    return height() - contentsRect().height();
}

int TsGauge::GetDesiredHeight() const
{
    qreal captionHeight = 0.0;
    if (!mCaption.isEmpty())
        captionHeight = QFontMetricsF(mFont).boundingRect(QRectF(0, 0, 1e6, 1e6), Qt::AlignLeft | Qt::AlignTop, mCaption).height();
    return static_cast<int>(captionHeight + FrameHeight() + 2);
}

QSize TsGauge::sizeHint() const
{
    return QSize(100, static_cast<int>(QFontMetricsF(mFont).height() + FrameHeight() + 2));
}

float TsGauge::BlendFactor(int phase)
{
    if (phase < 70 || phase > 110)
        return 0.0f;
    if (phase < 80)
        return static_cast<float>(phase - 70) / 10.0f;
    if (phase <= 100)
        return 1.0f;
    return static_cast<float>(110 - phase) / 10.0f;
}

COLORREF TsGauge::MixColor(COLORREF from, COLORREF to, float factor)
{
    factor = std::clamp(factor, 0.0f, 1.0f);
    auto mix = [factor](unsigned char a, unsigned char b) {
        return static_cast<unsigned char>(a * (1.0f - factor) + b * factor);
    };
    return RGB(mix(GetRValue(from), GetRValue(to)), mix(GetGValue(from), GetGValue(to)),
               mix(GetBValue(from), GetBValue(to)));
}

int TsGauge::BarWidth(int clientWidth, float value, float low, float high)
{
    if (clientWidth <= 0)
        return 0;
    const float width = static_cast<float>(clientWidth) * (value - low) / (high - low);
    if (!(width > 0.0f))  // also NaN, from an empty range
        return 0;
    if (width >= static_cast<float>(clientWidth))
        return clientWidth;
    return static_cast<int>(width);
}

void TsGauge::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != mTimer.timerId()) {
        QFrame::timerEvent(event);
        return;
    }
    if (!isVisible()) {
        mPhase = 0;
        return;
    }
    mFramePhase = mPhase;
    mPhase = NextPhase(mPhase);
    update();
}

void TsGauge::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    if (!mTimer.isActive())
        mTimer.start(kFrameInterval, Qt::PreciseTimer, this);
}

void TsGauge::hideEvent(QHideEvent* event)
{
    QFrame::hideEvent(event);
    mTimer.stop();
    mPhase = 0;
    mFramePhase = 0;
}

void TsGauge::paintEvent(QPaintEvent* event)
{
    // Qt composes the widget off-screen already, so the frame reaches the
    // screen in one piece without a bitmap of our own.
    QPainter painter(this);
    const QRect client = contentsRect();
    const QColor face = palette().color(korva::SysColorRole(COLOR_BTNFACE));
    const COLORREF barColor = BarColorAt(mFramePhase);
    const QColor bar = korva::ToQColor(barColor);

    const int filled = BarWidth(client.width(), GetValue(), GetLow(), GetHigh());
    const QRect barRect(client.left(), client.top(), filled, client.height());
    painter.fillRect(barRect, bar);
    const int band = client.height() * kBandFifths / 5;
    painter.fillRect(QRect(barRect.left(), barRect.top(), filled, band),
                     korva::ToQColor(MixColor(barColor, RGB(255, 255, 255), kBandLightness)));

    const QRect rest(client.left() + filled, client.top(), client.width() - filled, client.height());
    painter.fillRect(rest, face);
    QColor tint = bar;
    tint.setAlpha(kTintAlpha);
    painter.fillRect(rest, tint);

    if (!mCaption.isEmpty()) {
        painter.setFont(mFont);
        const QRectF textRect(client);
        painter.setPen(Qt::black);
        painter.drawText(textRect.translated(kShadowOffset, kShadowOffset), Qt::AlignCenter, mCaption);
        painter.setPen(korva::ToQColor(TextColorAt(mFramePhase)));
        painter.drawText(textRect, Qt::AlignCenter, mCaption);
    }

    painter.end();
    QFrame::paintEvent(event);  // the frame, when one is set
}

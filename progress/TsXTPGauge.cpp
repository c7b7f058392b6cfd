#include <KORVAutlwin/progress/TsXTPGauge.h>

TsXTPGauge::TsXTPGauge(QWidget* parent) : QProgressBar(parent), mLow(0.0f), mHigh(100.0f), mPosition(0)
{
    setRange(0, 100);
    setValue(0);
    setTextVisible(false);
    // The toolkit's look: flat, one thin border, a smooth bar in the highlight colour.
    setStyleSheet(QStringLiteral("QProgressBar { border: 1px solid palette(mid); background: palette(base); }"
                                 "QProgressBar::chunk { background: palette(highlight); }"));
}

TsXTPGauge::~TsXTPGauge() = default;

void TsXTPGauge::SetRange(float low, float high)
{
    mLow = low;
    mHigh = high;
    setRange(0, 100);
}

void TsXTPGauge::SetValue(float value)
{
    const int position = PositionOf(value, mLow, mHigh);
    if (position == mPosition)
        return;
    mPosition = position;
    setValue(position);
}

QWidget* TsXTPGauge::GetWnd()
{
    return this;
}

int TsXTPGauge::PositionOf(float value, float low, float high)
{
    const float position = (value - low) * 100 / (high - low);
    if (!(position > 0.0f))  // also NaN, from an empty range
        return 0;
    if (position >= 100.0f)
        return 100;
    return static_cast<int>(position);
}

#pragma once
/// \class TsXTPGauge
/// The gauge of the toolkit status bar: a progress bar in the toolkit's flat
/// look that shows the value as a whole percentage. The control is told of a
/// new position only when the percentage changes, so a computation that
/// reports thousands of values a second costs at most a hundred repaints.

#include <KORVAutlwin/progress/TsGaugeBase.h>

#include <QProgressBar>

class TsXTPGauge : public QProgressBar, public TsGaugeBase
{
    Q_OBJECT

public:
    /// A smooth bar without text, range 0 to 100, at position 0; the value
    /// range is 0 to 100 until SetRange.
    explicit TsXTPGauge(QWidget* parent = nullptr);
    ~TsXTPGauge() override;

    /// Stores the range as given (not ordered) and sets the control's range to 0 to 100.
    void SetRange(float low, float high) override;
    /// Moves the control to PositionOf(value), and only if that differs from
    /// the position it shows.
    void SetValue(float value) override;
    /// This bar.
    QWidget* GetWnd() override;

    float GetLow() const { return mLow; }
    float GetHigh() const { return mHigh; }
    /// The position on display, 0 to 100.
    int GetPosition() const { return mPosition; }

    /// (`value` - `low`) * 100 / (`high` - `low`), truncated and held within 0
    /// to 100; 0 when undefined (an empty range).
    static int PositionOf(float value, float low, float high);

private:
    float mLow;
    float mHigh;
    int mPosition;
};

#pragma once
/// \class TsGaugeBase
/// What a progress display needs of a gauge, whatever draws it: TsGauge paints
/// itself, TsXTPGauge is the toolkit status bar's progress control.

class QWidget;

class TsGaugeBase
{
public:
    virtual ~TsGaugeBase();

    /// The range that values are shown in.
    virtual void SetRange(float low, float high) = 0;
    /// The value to show, in the units of the range.
    virtual void SetValue(float value) = 0;
    /// The control itself, for placing it in a status bar pane or a dialog.
    virtual QWidget* GetWnd() = 0;
};

#pragma once
// A timed edit box that tells its parent when typing stops; text set by code
// with SetText triggers nothing.

#include <KORVAutlwin/controls/TsTimedEdit.h>

class TimedEditBox;

/// Hears of a pause in typing in a TimedEditBox.
class TimedEditParent
{
public:
    virtual ~TimedEditParent() = default;
    virtual void TimedEditTriggered(TimedEditBox& box) = 0;
};

/// A TsTimedEdit that tells a TimedEditParent of each pause in typing; text set by SetText triggers nothing.
class TimedEditBox : public TsTimedEdit
{
    Q_OBJECT

public:
    TimedEditBox(TimedEditParent* parent, QWidget* parentWidget = nullptr);

    void SetText(const char* text);
    void StartTimer() override;
    void EditTriggered(const char* text) override;

private:
    bool mSettingText = false;
    TimedEditParent* mParent;
};

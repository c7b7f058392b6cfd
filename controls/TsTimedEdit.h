#pragma once
// An edit box that acts only when typing stops: each change restarts a timer,
// and only a pause as long as the delay fires EditTriggered.

#include <QBasicTimer>
#include <QLineEdit>

/// An edit box that calls EditTriggered only when typing pauses for its delay (at least 100 ms).
class TsTimedEdit : public QLineEdit
{
    Q_OBJECT

public:
    static constexpr int kDefaultTimerId = 76354;
    static constexpr int kDefaultDelay = 500;
    static constexpr int kMinimumDelay = 100;

    explicit TsTimedEdit(QWidget* parent = nullptr);
    TsTimedEdit(int delay, QWidget* parent);

    /// A delay below 100 ms becomes 100.
    void SetDelayTime(int ms) { mDelay = ms < kMinimumDelay ? kMinimumDelay : ms; }
    int GetDelayTime() const { return mDelay; }
    int GetTimerId() const { return mTimerId; }
    bool IsTimerPending() const { return mTimer.isActive(); }

    /// Kills the timer and starts it anew.
    virtual void StartTimer();
    /// Called with the edit's text when typing has paused.
    virtual void EditTriggered(const char* text) = 0;

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    int mTimerId = kDefaultTimerId;
    int mDelay = kDefaultDelay;
    QBasicTimer mTimer;
};

#pragma once
/// \class RestrictedTimeCtrl
/// A date and time entry whose value snaps to a grid: `resolution` seconds apart,
/// anchored at a base time. Stepping a field up lands on the next grid time,
/// stepping down on the one before. Times are seconds since the epoch, shown in
/// local time.

#include <KORVAutlwin/toolkit/TimeResolution.h>

#include <QDateTimeEdit>

#include <chrono>
#include <cstdint>

class RestrictedTimeCtrl : public QDateTimeEdit
{
    Q_OBJECT
public:
    explicit RestrictedTimeCtrl(QWidget* parent = nullptr);
    ~RestrictedTimeCtrl() override;

    /// Shows `time` and accepts it as the last time, as it stands: no snapping.
    void SetTime(std::int64_t time);
    void SetTime(const QDateTime& time);
    /// The time the control shows.
    std::int64_t GetTime() const;
    void GetTime(QDateTime& time) const;

    /// The control's own range.
    void GetRange(std::int64_t& minimum, std::int64_t& maximum) const;
    void SetRange(std::int64_t minimum, std::int64_t maximum);
    void SetRange(const QDateTime& minimum, const QDateTime& maximum);
    void ResetRange();

    /// The grid: `resolution` seconds apart, through `base`.
    void SetTimeResolution(std::int64_t resolution, std::int64_t base);
    void SetTimeResolution(std::chrono::seconds resolution, const QDateTime& base);
    std::int64_t GetTimeResolution() const;

protected:
    /// The user changed the value: snap it against the last accepted time.
    virtual void OnDateTimeChange();

private:
    RestrictedTimeRules mRules;
    bool mSetting = false;
};

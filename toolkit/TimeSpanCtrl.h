#pragma once
/// \class TimeSpanCtrl
/// An entry of a span of less than one day, "HH:mm:ss", whose value snaps to a
/// resolution in seconds and stays within a minimum (1 second at first) and a
/// maximum (23:59:59 at first).

#include <KORVAutlwin/toolkit/TimeResolution.h>

#include <QDateTimeEdit>

#include <chrono>
#include <cstdint>

class TimeSpanCtrl : public QDateTimeEdit
{
    Q_OBJECT
public:
    explicit TimeSpanCtrl(QWidget* parent = nullptr);
    ~TimeSpanCtrl() override;

    /// Shows `span` seconds, held within the limits.
    void SetTimeSpan(std::int64_t span);
    void SetTimeSpan(std::chrono::seconds span);
    std::int64_t GetTimeSpan() const;

    void SetTimeResolution(std::int64_t resolution);
    void SetTimeResolution(std::chrono::seconds resolution);
    std::int64_t GetTimeResolution() const;
    /// 0 or less gives 1.
    void SetMinTimeSpan(std::int64_t span);
    void SetMinTimeSpan(std::chrono::seconds span);
    std::int64_t GetMinTimeSpan() const;
    /// 86400 and up gives 86399.
    void SetMaxTimeSpan(std::int64_t span);
    void SetMaxTimeSpan(std::chrono::seconds span);
    std::int64_t GetMaxTimeSpan() const;

protected:
    /// The user changed a field: snap by the resolution and hold the limits.
    virtual void OnDateTimeChange();

private:
    void Show(TimeSpanRules::Fields fields);

    TimeSpanRules mRules;
    bool mSetting = false;
};

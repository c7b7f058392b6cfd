#include <KORVAutlwin/toolkit/TimeSpanCtrl.h>

TimeSpanCtrl::TimeSpanCtrl(QWidget* parent) : QDateTimeEdit(parent)
{
    setDisplayFormat(QStringLiteral("HH:mm:ss"));
    setWrapping(true);
    // Snap what the user typed once the field is left, not at each keystroke.
    setKeyboardTracking(false);
    Show(mRules.SetTimeSpan(mRules.GetTimeSpan()));
    connect(this, &QDateTimeEdit::dateTimeChanged, this, [this] {
        if (!mSetting)
            OnDateTimeChange();
    });
}

TimeSpanCtrl::~TimeSpanCtrl() = default;

void TimeSpanCtrl::Show(TimeSpanRules::Fields fields)
{
    // The span is a time of day on a fixed date, so that only the fields count.
    mSetting = true;
    setDateTime(QDateTime(QDate(2000, 1, 1), QTime(fields.hours, fields.minutes, fields.seconds)));
    mSetting = false;
}

void TimeSpanCtrl::SetTimeSpan(std::int64_t span)
{
    Show(mRules.SetTimeSpan(span));
}

void TimeSpanCtrl::SetTimeSpan(std::chrono::seconds span)
{
    SetTimeSpan(static_cast<std::int64_t>(span.count()));
}

std::int64_t TimeSpanCtrl::GetTimeSpan() const
{
    return mRules.GetTimeSpan();
}

void TimeSpanCtrl::SetTimeResolution(std::int64_t resolution)
{
    mRules.SetTimeResolution(resolution);
}

void TimeSpanCtrl::SetTimeResolution(std::chrono::seconds resolution)
{
    SetTimeResolution(static_cast<std::int64_t>(resolution.count()));
}

std::int64_t TimeSpanCtrl::GetTimeResolution() const
{
    return mRules.GetTimeResolution();
}

void TimeSpanCtrl::SetMinTimeSpan(std::int64_t span)
{
    mRules.SetMinTimeSpan(span);
}

void TimeSpanCtrl::SetMinTimeSpan(std::chrono::seconds span)
{
    SetMinTimeSpan(static_cast<std::int64_t>(span.count()));
}

std::int64_t TimeSpanCtrl::GetMinTimeSpan() const
{
    return mRules.GetMinTimeSpan();
}

void TimeSpanCtrl::SetMaxTimeSpan(std::int64_t span)
{
    mRules.SetMaxTimeSpan(span);
}

void TimeSpanCtrl::SetMaxTimeSpan(std::chrono::seconds span)
{
    SetMaxTimeSpan(static_cast<std::int64_t>(span.count()));
}

std::int64_t TimeSpanCtrl::GetMaxTimeSpan() const
{
    return mRules.GetMaxTimeSpan();
}

void TimeSpanCtrl::OnDateTimeChange()
{
    const QTime shown = time();
    Show(mRules.OnDateTimeChange(TimeSpanRules::Fields{shown.hour(), shown.minute(), shown.second()}));
}

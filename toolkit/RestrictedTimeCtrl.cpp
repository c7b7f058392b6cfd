#include <KORVAutlwin/toolkit/RestrictedTimeCtrl.h>

RestrictedTimeCtrl::RestrictedTimeCtrl(QWidget* parent) : QDateTimeEdit(parent)
{
    setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    // Fields wrap on their own, as the platform's picker fields do.
    setWrapping(true);
    // Snap what the user typed once the field is left, not at each keystroke.
    setKeyboardTracking(false);
    SetTime(mRules.GetLastTime());
    connect(this, &QDateTimeEdit::dateTimeChanged, this, [this] {
        if (!mSetting)
            OnDateTimeChange();
    });
}

RestrictedTimeCtrl::~RestrictedTimeCtrl() = default;

void RestrictedTimeCtrl::SetTime(std::int64_t time)
{
    mRules.SetTime(time);
    mSetting = true;
    setDateTime(QDateTime::fromSecsSinceEpoch(time));
    mSetting = false;
}

void RestrictedTimeCtrl::SetTime(const QDateTime& time)
{
    SetTime(static_cast<std::int64_t>(time.toSecsSinceEpoch()));
}

std::int64_t RestrictedTimeCtrl::GetTime() const
{
    return dateTime().toSecsSinceEpoch();
}

void RestrictedTimeCtrl::GetTime(QDateTime& time) const
{
    time = dateTime();
}

void RestrictedTimeCtrl::GetRange(std::int64_t& minimum, std::int64_t& maximum) const
{
    minimum = minimumDateTime().toSecsSinceEpoch();
    maximum = maximumDateTime().toSecsSinceEpoch();
}

void RestrictedTimeCtrl::SetRange(std::int64_t minimum, std::int64_t maximum)
{
    setDateTimeRange(QDateTime::fromSecsSinceEpoch(minimum), QDateTime::fromSecsSinceEpoch(maximum));
}

void RestrictedTimeCtrl::SetRange(const QDateTime& minimum, const QDateTime& maximum)
{
    setDateTimeRange(minimum, maximum);
}

void RestrictedTimeCtrl::ResetRange()
{
    clearMinimumDateTime();
    clearMaximumDateTime();
}

void RestrictedTimeCtrl::SetTimeResolution(std::int64_t resolution, std::int64_t base)
{
    mRules.SetTimeResolution(resolution, base);
}

void RestrictedTimeCtrl::SetTimeResolution(std::chrono::seconds resolution, const QDateTime& base)
{
    mRules.SetTimeResolution(resolution.count(), base.toSecsSinceEpoch());
}

std::int64_t RestrictedTimeCtrl::GetTimeResolution() const
{
    return mRules.GetTimeResolution();
}

void RestrictedTimeCtrl::OnDateTimeChange()
{
    const std::int64_t accepted = mRules.OnDateTimeChange(GetTime());
    if (accepted == GetTime())
        return;
    mSetting = true;
    setDateTime(QDateTime::fromSecsSinceEpoch(accepted));
    mSetting = false;
}

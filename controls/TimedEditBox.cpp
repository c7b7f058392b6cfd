#include <KORVAutlwin/controls/TimedEditBox.h>

TimedEditBox::TimedEditBox(TimedEditParent* parent, QWidget* parentWidget) : TsTimedEdit(parentWidget), mParent(parent) {}

void TimedEditBox::SetText(const char* text)
{
    mSettingText = true;
    setText(QString::fromUtf8(text ? text : ""));
    mSettingText = false;
}

void TimedEditBox::StartTimer()
{
    if (!mSettingText)
        TsTimedEdit::StartTimer();
}

void TimedEditBox::EditTriggered(const char*)
{
    if (mParent)
        mParent->TimedEditTriggered(*this);
}

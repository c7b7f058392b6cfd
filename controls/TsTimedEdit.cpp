#include <KORVAutlwin/controls/TsTimedEdit.h>

#include <QApplication>
#include <QTimerEvent>

TsTimedEdit::TsTimedEdit(QWidget* parent) : TsTimedEdit(kDefaultDelay, parent) {}

TsTimedEdit::TsTimedEdit(int delay, QWidget* parent) : QLineEdit(parent)
{
    SetDelayTime(delay);
    // EN_CHANGE: text set by code changes the text as well.
    connect(this, &QLineEdit::textChanged, this, [this] { StartTimer(); });
}

void TsTimedEdit::StartTimer()
{
    mTimer.stop();
    mTimer.start(mDelay, this);
}

void TsTimedEdit::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != mTimer.timerId()) {
        QLineEdit::timerEvent(event);
        return;
    }
    mTimer.stop();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const std::string value = text().toStdString();
    EditTriggered(value.c_str());
    QApplication::restoreOverrideCursor();
}

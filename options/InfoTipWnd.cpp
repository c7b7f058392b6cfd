#include <KORVAutlwin/options/InfoTipWnd.h>

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QScreen>
#include <QTimer>

namespace {
InfoTipWnd* gInfoTip = nullptr;
}

InfoTipWnd::InfoTipWnd() : QLabel(nullptr, Qt::ToolTip | Qt::FramelessWindowHint)
{
    setForegroundRole(QPalette::ToolTipText);
    setBackgroundRole(QPalette::ToolTipBase);
    setAutoFillBackground(true);
    setFrameShape(QFrame::Box);
    setMargin(4);
    qApp->installEventFilter(this);
}

InfoTipWnd* InfoTipWnd::GetInfoTip() { return gInfoTip; }

void InfoTipWnd::InfoTipMessageBox(const char* text)
{
    if (!gInfoTip)
        gInfoTip = new InfoTipWnd; // lives to process end, as the tips it shows are frequent
    gInfoTip->setText(QString::fromUtf8(text ? text : ""));
    gInfoTip->adjustSize();
    QPoint at = QCursor::pos() + QPoint(12, 16);
    if (const QScreen* screen = QGuiApplication::screenAt(QCursor::pos())) {
        const QRect area = screen->availableGeometry();
        at.setX(std::min(at.x(), area.right() - gInfoTip->width()));
        at.setY(std::min(at.y(), area.bottom() - gInfoTip->height()));
    }
    gInfoTip->move(at);
    gInfoTip->show();
    gInfoTip->raise();
    QTimer::singleShot(msShowMilliseconds, gInfoTip, [text = gInfoTip->text()] {
        if (gInfoTip->text() == text) // a later tip has its own time
            gInfoTip->hide();
    });
}

bool InfoTipWnd::eventFilter(QObject*, QEvent* event)
{
    if (isVisible() && event->type() == QEvent::MouseButtonPress)
        hide();
    return false;
}

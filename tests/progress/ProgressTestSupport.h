#pragma once
// What the Progress tests share: a real main frame, input through the platform's queue, answers to boxes.

#include "../frame/MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsStatusBar.h>
#include <KORVAutlwin/frame/TsXTPStatusBar.h>
#include <KORVAutlwin/progress/BreakWindowChannel.h>
#include <KORVAutlwin/progress/Progress.h>

#include <QPushButton>
#include <QWindow>

#include <atomic>

// The platform's input queue, where real input waits for the event loop; QtGui exports it, its header is not installed.
class QWindowSystemInterface
{
public:
    struct SynchronousDelivery;
    struct AsynchronousDelivery;
    template <typename Delivery>
    static bool handleCloseEvent(QWindow* window);
    template <typename Delivery>
    static bool handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global, Qt::MouseButtons state,
                                 Qt::MouseButton button, QEvent::Type type, Qt::KeyboardModifiers modifiers,
                                 Qt::MouseEventSource source);
    template <typename Delivery>
    static bool handleKeyEvent(QWindow* window, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
                               const QString& text, bool autorepeat, ushort count);
    static bool sendWindowSystemEvents(QEventLoop::ProcessEventsFlags flags);
};

namespace korva::test {

using Queue = QWindowSystemInterface;

/// A click on the middle of `target`, queued by the platform as a user's would be.
inline void QueueClick(QWidget* target)
{
    const QPointF local = target->mapTo(target->window(), target->rect().center());
    const QPointF global = target->mapToGlobal(target->rect().center());
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
        Queue::handleMouseEvent<Queue::AsynchronousDelivery>(
            target->window()->windowHandle(), local, global,
            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::LeftButton, type, Qt::NoModifier,
            Qt::MouseEventNotSynthesized);
}

/// A key pressed and released on the window of `target`, queued by the platform.
inline void QueueKey(QWidget* target, int key)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease})
        Queue::handleKeyEvent<Queue::AsynchronousDelivery>(target->window()->windowHandle(), type, key,
                                                           Qt::NoModifier, QString(), false, 1);
}

/// Answers the next modal box with `answer`, keeping its text in `asked`.
inline void Answer(int answer, QString* asked = nullptr, std::chrono::milliseconds timeout = std::chrono::seconds(10))
{
    WhenModal([answer, asked](QWidget* box) {
        if (asked)
            *asked = BoxText(box);
        Click(box, answer);
    }, timeout);
}

/// One message of the break window protocol as the window received it.
struct BreakMessage
{
    unsigned int code;
    float first = 0.0f;   // value, range low, delay, show flag
    float second = 0.0f;  // range high
    std::string text{};   // title
    bool operator==(const BreakMessage&) const = default;
};

inline void PrintTo(const BreakMessage& message, std::ostream* out)
{
    *out << "{0x" << std::hex << message.code << std::dec << ", " << message.first << ", " << message.second << ", \""
         << message.text << "\"}";
}

/// A break window that keeps what it is sent, in order.
class RecordingBreakWindow : public BreakWindowChannel
{
public:
    bool Create() override { return true; }
    bool IsWindow() const override { return true; }
    void Finish() override { messages.push_back({eFinish}); }
    void SpinStep() override { messages.push_back({eSpinStep}); }
    void SpinRest() override { messages.push_back({eSpinRest}); }
    void SetTitle(const char* title) override { messages.push_back({eSetTitle, 0.0f, 0.0f, title}); }
    void SetGaugeValue(float value) override { messages.push_back({eGaugeValue, value}); }
    void SetGaugeRange(float low, float high) override { messages.push_back({eGaugeRange, low, high}); }
    void ShowWindow(bool show) override { messages.push_back({eShowWindow, show ? 1.0f : 0.0f}); }
    void Start(unsigned int delay, Progress*, const QRect&) override { messages.push_back({eStart, float(delay)}); }

    std::vector<BreakMessage> messages;
};

/// Counts the events of one type that pass through the objects it filters, or that are sent to it.
class EventCounter : public QObject
{
public:
    explicit EventCounter(QEvent::Type type) : mType(type) {}
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count += event->type() == mType;
        return QObject::eventFilter(watched, event);
    }
    bool event(QEvent* event) override
    {
        if (event->type() != mType)
            return QObject::event(event);
        ++count;
        return true;
    }
    int count = 0;

private:
    QEvent::Type mType;
};

class XTPFrame : public TessmaMDIFrame
{
public:
    QWidget* GetMessageBar() override
    {
        if (!mBar)
            setStatusBar(mBar = new TsXTPStatusBar(this));
        return mBar;
    }

private:
    QPointer<TsXTPStatusBar> mBar;
};

/// An application whose main window is a real frame, shown offscreen.
class ProgressFrameFixture : public MdiFrameFixture
{
protected:
    void SetUp() override
    {
        MdiFrameFixture::SetUp();
        Progress::SetShowProgressDialog(true);
        BreakWindowChannel::SetChannel(nullptr);
    }
    void TearDown() override
    {
        BreakWindowChannel::SetChannel(nullptr);
        Progress::SetShowProgressDialog(true);
        if (mFrame) {
            mApp->SetMainWnd(nullptr);
            mFrame.reset();
        }
        MdiFrameFixture::TearDown();
    }

    template <typename Frame = TessmaMDIFrame>
    void MakeFrame()
    {
        mFrame = std::make_unique<Frame>();
        mApp->SetMainWnd(mFrame.get());
        mFrame->resize(800, 600);
        mFrame->GetMessageBar();  // the message bar exists before any work starts, as in an application
        mFrame->show();
        QCoreApplication::processEvents();
    }

    std::unique_ptr<TessmaMDIFrame> mFrame;
};

} // namespace korva::test

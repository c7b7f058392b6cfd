#pragma once
// What the Progress tests share: a real main frame, real input through the platform's queue,
// answers to the stop question, and a break window that records its messages as the companion traces them.

#include "../frame/MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsStatusBar.h>
#include <KORVAutlwin/frame/TsXTPStatusBar.h>
#include <KORVAutlwin/progress/BreakWindowChannel.h>
#include <KORVAutlwin/progress/Progress.h>

#include <QPushButton>
#include <QWindow>

#include <atomic>
#include <chrono>
#include <thread>

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
    QWindow* window = target->window()->windowHandle();
    const QPointF local = target->mapTo(target->window(), target->rect().center());
    const QPointF global = target->mapToGlobal(target->rect().center());
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
        Queue::handleMouseEvent<Queue::AsynchronousDelivery>(
            window, local, global, type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::LeftButton,
            type, Qt::NoModifier, Qt::MouseEventNotSynthesized);
}

/// A key pressed and released on the window of `target`, queued by the platform.
inline void QueueKey(QWidget* target, int key, bool release = true)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease})
        if (type == QEvent::KeyPress || release)
            Queue::handleKeyEvent<Queue::AsynchronousDelivery>(target->window()->windowHandle(), type, key,
                                                               Qt::NoModifier, QString(), false, 1);
}

/// Clicks the button `answer` (IDYES, IDNO) of a box.
inline void Click(QWidget* box, int answer)
{
    for (auto* button : box->findChildren<QPushButton*>())
        if (button->property("ctrlId").toInt() == answer)
            return QTest::mouseClick(button, Qt::LeftButton);
    ADD_FAILURE() << "no button " << answer;
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

/// A main frame whose message bar is the toolkit status bar.
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

/// "x,y,width,height", as the companion traces a main window.
inline std::string Geometry(const QRect& r)
{
    return std::to_string(r.x()) + "," + std::to_string(r.y()) + "," + std::to_string(r.width()) + "," +
           std::to_string(r.height());
}

/// A break window that keeps what it is sent, in order, as the companion traces it, and can press stop.
class RecordingBreakWindow : public BreakWindowChannel
{
public:
    bool Create() override
    {
        ++creates;
        return exists;
    }
    bool IsWindow() const override { return exists; }
    void Finish() override { Log("finish"); }
    void SpinStep() override { Log("spinstep"); }
    void SpinRest() override { Log("spinrest"); }
    void SetTitle(const char* title) override { Log(std::string("title ") + title); }
    void SetGaugeValue(float value) override { Log("value " + Number(value)); }
    void SetGaugeRange(float low, float high) override { Log("range " + Number(low) + " " + Number(high)); }
    void ShowWindow(bool show) override { Log(show ? "show 1" : "show 0"); }
    void Start(unsigned int delay, Progress* progress, const QRect& mainWindow) override
    {
        client = progress;
        const BreakStartInfo info = StartInfo(*progress, delay, mainWindow);
        Log("start " + std::to_string(delay) + " " + (info.allowBreak ? "1" : "0") + (info.showSpin ? "1" : "0") +
            (info.showGauge ? "1" : "0") + " " + Geometry(info.mainWindow) + " " + info.infoText + "|" +
            info.stopQuestion + "|" + info.stopTitle + "|" + info.stopButton);
    }

    /// The user confirms the stop of the last client started.
    void PressStop() { SetBreakPressed(*client); }

    bool exists = true;
    int creates = 0;
    Progress* client = nullptr;
    std::vector<std::string> messages;

private:
    void Log(const std::string& line) { messages.push_back(line); }
    static std::string Number(float value)
    {
        char text[32];
        std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
        return text;
    }
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
    Frame& MakeFrame()
    {
        auto frame = std::make_unique<Frame>();
        Frame& made = *frame;
        mFrame = std::move(frame);
        mApp->SetMainWnd(mFrame.get());
        mFrame->resize(800, 600);
        // The message bar exists before any work starts, as in an application.
        mFrame->GetMessageBar();
        mFrame->show();
        QCoreApplication::processEvents();
        return made;
    }

    std::unique_ptr<TessmaMDIFrame> mFrame;
};

} // namespace korva::test

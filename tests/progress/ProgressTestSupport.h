#pragma once
// What the Progress tests share: an application with a real main frame (its
// profile in a registry store of its own), a frame on the toolkit status bar,
// and a break window that records every message it is sent.

#include "../frame/MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/TsStatusBar.h>
#include <KORVAutlwin/frame/TsXTPStatusBar.h>
#include <KORVAutlwin/progress/BreakWindowChannel.h>
#include <KORVAutlwin/progress/Progress.h>

#include <QEvent>
#include <QObject>
#include <QPointer>

#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace korva::test {

/// Counts the events of one type that pass through the objects it filters, or
/// that are sent to it (and takes those).
class EventCounter : public QObject
{
public:
    explicit EventCounter(QEvent::Type type) : mType(type) {}
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == mType)
            ++count;
        return QObject::eventFilter(watched, event);
    }
    bool event(QEvent* event) override
    {
        if (event->type() == mType) {
            ++count;
            return true;
        }
        return QObject::event(event);
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
        if (!mBar) {
            mBar = new TsXTPStatusBar(this);
            setStatusBar(mBar);
        }
        return mBar;
    }

private:
    QPointer<TsXTPStatusBar> mBar;
};

/// One message of the break window protocol as the window received it.
struct BreakMessage
{
    BreakMessage(unsigned int messageCode, float firstArgument = 0.0f, float secondArgument = 0.0f,
                 std::string title = {})
        : code(messageCode), first(firstArgument), second(secondArgument), text(std::move(title))
    {
    }

    unsigned int code;
    float first;       // value, range low, delay, show flag
    float second;      // range high
    std::string text;  // title

    bool operator==(const BreakMessage& other) const
    {
        return code == other.code && first == other.first && second == other.second && text == other.text;
    }
};

inline void PrintTo(const BreakMessage& message, std::ostream* out)
{
    *out << "{0x" << std::hex << message.code << std::dec << ", " << message.first << ", " << message.second << ", \""
         << message.text << "\"}";
}

/// A break window that keeps what it is sent, in order, and can press stop.
class RecordingBreakWindow : public BreakWindowChannel
{
public:
    bool Create() override
    {
        ++creates;
        return exists;
    }
    bool IsWindow() const override { return exists; }
    void Finish() override
    {
        messages.push_back({eFinish});
        client = nullptr;
    }
    void SpinStep() override { messages.push_back({eSpinStep}); }
    void SpinRest() override { messages.push_back({eSpinRest}); }
    void SetTitle(const char* title) override { messages.push_back({eSetTitle, 0.0f, 0.0f, title}); }
    void SetGaugeValue(float value) override { messages.push_back({eGaugeValue, value}); }
    void SetGaugeRange(float low, float high) override { messages.push_back({eGaugeRange, low, high}); }
    void ShowWindow(bool show) override { messages.push_back({eShowWindow, show ? 1.0f : 0.0f}); }
    void Start(unsigned int delay, Progress* progress, const QRect& mainWindow) override
    {
        messages.push_back({eStart, static_cast<float>(delay)});
        client = progress;
        startGeometry = mainWindow;
        startTexts = {progress->GetInfoText(), progress->GetStopQuestion(), progress->GetStopTitle(),
                      progress->GetStopButton()};
        startSwitches = {progress->GetAllowBreak(), progress->GetShowSpin(), progress->GetShowGauge()};
    }

    /// The user confirms the stop.
    void PressStop() { SetBreakPressed(*client); }

    bool exists = true;
    int creates = 0;
    Progress* client = nullptr;
    std::vector<BreakMessage> messages;
    QRect startGeometry;
    std::vector<std::string> startTexts;  // info text, question, title, button
    std::vector<bool> startSwitches;      // allowBreak, showSpin, showGauge
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

    /// The message bar's first pane with id 0.
    std::string MessageText() const
    {
        QWidget* bar = mFrame->GetMessageBar();
        if (auto* plain = qobject_cast<TsStatusBar*>(bar))
            return plain->GetPaneText(plain->CommandToIndex(0));
        if (auto* xtp = qobject_cast<TsXTPStatusBar*>(bar))
            return xtp->GetPaneText(xtp->CommandToIndex(0));
        return {};
    }

    std::unique_ptr<TessmaMDIFrame> mFrame;
};

} // namespace korva::test

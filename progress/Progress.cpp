#include <KORVAutlwin/progress/Progress.h>

#include <KORVAutlwin/frame/StandardUserComm.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/TsStatusAccess.h>
#include <KORVAutlwin/frame/TsXTPStatusBar.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/platform/MonotonicClock.h>
#include <KORVAutlwin/progress/BreakWindowChannel.h>
#include <KORVAutlwin/progress/SpinWindow.h>
#include <KORVAutlwin/progress/TsGauge.h>
#include <KORVAutlwin/progress/TsXTPGauge.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsSystemInfo.h>

#include <QApplication>
#include <QCursor>
#include <QThread>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <climits>
#include <optional>
#include <utility>

namespace korva {

// The wait cursor of one Progress, from its construction to its end.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

// While it lives, keyboard and mouse input reaches only `breakWindow` and the
// windows it owns (its stop question); the rest is dropped.
class BreakInputGate : public QObject
{
public:
    explicit BreakInputGate(QWidget* breakWindow) : mBreakWindow(breakWindow)
    {
        QCoreApplication::instance()->installEventFilter(this);
    }
    ~BreakInputGate() override { QCoreApplication::instance()->removeEventFilter(this); }
    BreakInputGate(const BreakInputGate&) = delete;
    BreakInputGate& operator=(const BreakInputGate&) = delete;

    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        return IsInput(event->type()) && !BelongsToBreakWindow(receiver);
    }

private:
    static bool IsInput(QEvent::Type type)
    {
        switch (type) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::NonClientAreaMouseButtonPress:
        case QEvent::NonClientAreaMouseButtonRelease:
        case QEvent::NonClientAreaMouseButtonDblClick:
        case QEvent::NonClientAreaMouseMove:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::Shortcut:
        case QEvent::InputMethod:
        case QEvent::ContextMenu:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TouchCancel:
        case QEvent::TabletPress:
        case QEvent::TabletMove:
        case QEvent::TabletRelease:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
            return true;
        default:
            return false;
        }
    }

    // Widgets by their parents (a box's parent is the window that owns it),
    // platform windows by their transient parents, other objects (actions,
    // shortcuts) by their owners.
    bool BelongsToBreakWindow(QObject* receiver) const
    {
        const QWindow* breakHandle = mBreakWindow ? mBreakWindow->windowHandle() : nullptr;
        for (QObject* object = receiver; object;) {
            if (object == mBreakWindow || (breakHandle && object == breakHandle))
                return true;
            if (auto* widget = qobject_cast<QWidget*>(object))
                object = widget->parentWidget();
            else if (auto* window = qobject_cast<QWindow*>(object))
                object = window->transientParent() ? window->transientParent() : window->parent();
            else
                object = object->parent();
        }
        return false;
    }

    QPointer<QWidget> mBreakWindow;
};

} // namespace korva

std::atomic<Progress*> Progress::msActive{nullptr};
TsGaugeBase* Progress::msGauge = nullptr;
QPointer<QWidget> Progress::msGaugeWindow;
bool Progress::msGaugeDirty = false;
bool Progress::msShowProgressDialog = true;
std::atomic<long long> Progress::msLastPump{LLONG_MIN / 2};
long long Progress::msLastGaugeRepaint = LLONG_MIN / 2;

namespace {

constexpr const char* kDefaultStopQuestion = "Do you really want to stop?";
constexpr const char* kDefaultStopButton = "Stop";

// Read on every report: the coarse clock serves when it ticks often enough.
const korva::MonotonicClock gPumpClock(Progress::kPumpInterval);

std::string DefaultStopTitle()
{
    if (const WinApp* app = WinApp::GetApp())
        return app->GetAppName();
    return TsSystemInfo::GetApplicationName();
}

bool HasGuiApplication()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

bool OnApplicationMainThread()
{
    const WinApp* app = WinApp::GetApp();
    return app && app->IsMainThread();
}

TessmaMDIFrame* MainFrame()
{
    const WinApp* app = WinApp::GetApp();
    return app ? qobject_cast<TessmaMDIFrame*>(app->GetMainWnd()) : nullptr;
}

} // namespace

// --- Construction ------------------------------------------------------------------------

Progress::Progress(QWidget* parentWindow, const char* text, float low, float high, bool spin, bool allowBreakWindow,
                   bool gauge, const char* question, const char* title, const char* button, unsigned int breakDelay)
    : allowBreak(allowBreakWindow), showSpin(spin), showGauge(gauge), stopQuestion(kDefaultStopQuestion),
      stopTitle(DefaultStopTitle()), stopButton(kDefaultStopButton), ranges(low, high), delay(breakDelay)
{
    Construct(parentWindow, text, question, title, button);
}

Progress::Progress(const char* text, QWidget* parentWindow)
    : allowBreak(false), showSpin(true), showGauge(false), stopQuestion(kDefaultStopQuestion),
      stopTitle(DefaultStopTitle()), stopButton(kDefaultStopButton), ranges(0.0f, 1.0f), freeRunning(true)
{
    Construct(parentWindow, text, nullptr, nullptr, nullptr);
    // A short task inside a long one: the long one's window should be seen now.
    Progress* other = msActive.load(std::memory_order_relaxed);
    if (BreakWindowChannel* window = other && other != this && OnApplicationMainThread() ? other->Window() : nullptr)
        window->ShowWindow(true);
}

Progress::Progress(const Progress& other) : ranges(other.ranges)
{
    *this = other;
    if (other.waitCursor && OnApplicationMainThread() && HasGuiApplication())
        waitCursor = std::make_unique<korva::WaitCursor>();
}

Progress& Progress::operator=(const Progress& other)
{
    if (this == &other)
        return *this;
    // The display (wait cursor, spin indicator) stays with the object that made it.
    allowBreak = other.allowBreak;
    showSpin = other.showSpin;
    showGauge = other.showGauge;
    stopQuestion = other.stopQuestion;
    stopTitle = other.stopTitle;
    stopButton = other.stopButton;
    infoText = other.infoText;
    breakWindow = other.breakWindow;
    breakPressed.store(other.IsBreakPressed(), std::memory_order_relaxed);
    ranges = other.ranges;
    value = other.value;
    counter = other.counter;
    freeRunning = other.freeRunning;
    previousForeground = other.previousForeground;
    parent = other.parent;
    delay = other.delay;
    return *this;
}

void Progress::Construct(QWidget* parentWindow, const char* text, const char* question, const char* title,
                         const char* button)
{
    value = ranges.Top().low;
    if (!msShowProgressDialog)
        allowBreak = false;

    if (!OnApplicationMainThread())
        return;
    if (HasGuiApplication())
        waitCursor = std::make_unique<korva::WaitCursor>();
    if (!GetGauge())
        InitProgress();
    if (text)
        infoText = text;
    if (question)
        stopQuestion = question;
    if (title)
        stopTitle = title;
    if (button)
        stopButton = button;
    parent = parentWindow ? parentWindow : WinApp::GetApp()->GetMainWnd();
    if (!msActive.load(std::memory_order_relaxed))
        Init();
}

void Progress::Init()
{
    if (!MainFrame() || msActive.load(std::memory_order_relaxed))
        return;
    TsStatusAccess* bar = GetStatusBar();
    if (!bar && !allowBreak)
        return;

    msActive.store(this, std::memory_order_relaxed);
    // Boxes of the user channel hide the display while they ask.
    korva::ProgressHidden::SetHooks(&Progress::Hide, &Progress::Show);
    QWidget* barWindow = bar ? GetMessageBar() : nullptr;
    if (barWindow)
        barWindow->setUpdatesEnabled(false);

    TsGaugeBase* gauge = GetGauge();
    const bool gaugeInBar = showGauge && !allowBreak && gauge && bar;
    if (!showGauge) {
        if (gauge) {
            gauge->GetWnd()->hide();
            if (bar)
                bar->RemoveWindow(gauge->GetWnd(), false, kGaugePaneId);
        }
    } else if (gaugeInBar) {
        ShowOnGauge();
        bar->InsertWindow(gauge->GetWnd(), kPaneWidth, 0, kGaugePaneId);
        gauge->GetWnd()->show();  // a child: showing it does not take the focus
    }

    if (showSpin && !allowBreak && bar) {
        const int index = gaugeInBar ? 1 : 0;
        if (auto* xtp = qobject_cast<TsXTPStatusBar*>(barWindow)) {
            // The toolkit bar's indicator is its own progress control, running as a marquee.
            auto* bounce = new TsXTPGauge(xtp);
            bounce->setRange(0, 0);
            marquee = bounce;
            xtp->InsertWindow(bounce, kPaneWidth, index, kSpinPaneId);
        } else {
            spinWindow = new SpinWindow(barWindow);
            bar->InsertWindow(spinWindow, kPaneWidth, index, kSpinPaneId);
            spinWindow->show();
            if (freeRunning)
                spinWindow->SetRunning(true);
        }
    }

    if (barWindow)
        barWindow->setUpdatesEnabled(true);
    const std::string text = infoText;
    SetString(text.c_str());
    MessageLoop();

    if (allowBreak) {
        previousForeground = QApplication::activeWindow();
        SendStart();
        if (showGauge)
            ShowOnGauge();
    }
}

void Progress::GetGaugeRange(const Range& range, float& minimum, float& maximum)
{
    ProgressRanges::GetGaugeRange(range, minimum, maximum);
}

// The whole operation's range and the value, to whichever display this object uses.
void Progress::ShowOnGauge()
{
    float minimum = 0.0f, maximum = 0.0f;
    GetGaugeRange(ranges.Top(), minimum, maximum);
    if (allowBreak) {
        if (BreakWindowChannel* window = Window()) {
            window->SetGaugeRange(minimum, maximum);
            // The gauge keeps the range in order, and so does the comparison of widths.
            sentLow = std::min(minimum, maximum);
            sentHigh = std::max(minimum, maximum);
            SendGaugeValue(*window);
        }
    } else if (TsGaugeBase* gauge = GetGauge()) {
        gauge->SetRange(minimum, maximum);
        gauge->SetValue(value);
        msGaugeDirty = true;
    }
}

// --- Reporting -----------------------------------------------------------------------------

// The active object's part of Set: hold the value within the top range, show it, pump.
bool Progress::ShowValue(bool always)
{
    if (showGauge) {
        value = ranges.HoldWithin(value);
        if (allowBreak) {
            // Each message to the break window is a round trip to another process:
            // in a tight loop only the values that move the bar go.
            if (BreakWindowChannel* window = Window(); window && (always || ChangesBreakGauge(*window)))
                SendGaugeValue(*window);
        } else if (TsGaugeBase* gauge = GetGauge()) {
            gauge->SetValue(value);
            msGaugeDirty = true;
        }
    }
    MessageLoop();
    return !IsBreakPressed();
}

bool Progress::SetAlways(float v)
{
    value = counter + v;
    return IsActive() ? ShowValue(true) : !IsBreakPressed();
}

void Progress::SendGaugeValue(BreakWindowChannel& window)
{
    window.SetGaugeValue(value);
    sentValue = value;
}

bool Progress::ChangesBreakGauge(const BreakWindowChannel& window) const
{
    const int width = window.GetGaugeResolution();
    return width <= 0 || TsGauge::BarWidth(width, value, sentLow, sentHigh) !=
                             TsGauge::BarWidth(width, sentValue, sentLow, sentHigh);
}

bool Progress::SetRange(float low, float high)
{
    ranges.SetTop(low, high);
    value = low;
    counter = 0.0f;
    if (showGauge && IsActive())
        ShowOnGauge();
    return Pump();
}

void Progress::GetRange(float& low, float& high) const
{
    low = ranges.Top().low;
    high = ranges.Top().high;
}

bool Progress::PushSubRange(float low, float high)
{
    ranges.Push(low, high);
    counter = 0.0f;
    SetRange(0.0f, 1.0f);
    SetAlways(0.0f);
    return Pump();
}

bool Progress::PopSubRange()
{
    if (float endValue = 0.0f; ranges.Pop(endValue)) {
        counter = 0.0f;
        SetRange(ranges.Top().low, ranges.Top().high);
        // Leave the display where the sub-range ended.
        SetAlways(endValue);
    }
    return Pump();
}

bool Progress::PopPushSubRange(float low, float high)
{
    PopSubRange();
    return PushSubRange(low, high);
}

bool Progress::NextSpin()
{
    if (showSpin && !allowBreak && spinWindow)
        spinWindow->Step();
    else if (BreakWindowChannel* window = Window())
        window->SpinStep();
    return Pump();
}

bool Progress::SpinDone()
{
    if (showSpin && !allowBreak && spinWindow)
        spinWindow->Rest();
    else if (BreakWindowChannel* window = Window())
        window->SpinRest();
    return Pump();
}

bool Progress::SetInfoStr(const char* text)
{
    SetString(text);
    return Pump();
}

bool Progress::Pump()
{
    if (IsActive())
        MessageLoop();
    return !IsBreakPressed();
}

void Progress::SetString(const char* text)
{
    if (!IsActive())
        return;
    if (allowBreak) {
        infoText = text ? text : "";
        if (BreakWindowChannel* window = Window())
            window->SetTitle(infoText.c_str());
        return;
    }
    TsStatusAccess* bar = GetStatusBar();
    if (!bar)
        return;
    for (int index = 0, count = bar->GetCount(); index < count; ++index) {
        if (bar->GetItemID(index) == 0) {
            bar->SetPaneText(index, text ? text : "", 1);
            return;
        }
    }
}

// --- Destruction ---------------------------------------------------------------------------

Progress::~Progress()
{
    if (IsActive()) {
        msActive.store(nullptr, std::memory_order_relaxed);
        QWidget* barWindow = GetMessageBar();
        TsStatusAccess* bar = dynamic_cast<TsStatusAccess*>(barWindow);
        auto* xtp = qobject_cast<TsXTPStatusBar*>(barWindow);
        TsGaugeBase* gauge = GetGauge();
        if (bar) {
            barWindow->setUpdatesEnabled(false);
            if (xtp) {
                xtp->RemoveIndicator(kSpinPaneId);
                if (gauge)
                    xtp->RemoveWindow(gauge->GetWnd(), false, kGaugePaneId);
            }
            if (spinWindow) {
                bar->RemoveWindow(spinWindow, false, kSpinPaneId);
                delete spinWindow.data();
            }
        }
        delete marquee.data();
        if (BreakWindowChannel* window = Window()) {
            // A last value that was left out because it looked the same goes now:
            // the window ends with the exact value.
            if (allowBreak && showGauge && sentValue != value)
                SendGaugeValue(*window);
            window->Finish();
        }
        if (previousForeground)
            previousForeground->activateWindow();
        // The plain bar keeps its gauge on show between tasks; the toolkit bar keeps it hidden.
        if (!showGauge && gauge && bar && !xtp) {
            bar->InsertWindow(gauge->GetWnd(), kPaneWidth, 0, kGaugePaneId);
            gauge->GetWnd()->show();
        }
        if (bar) {
            barWindow->setUpdatesEnabled(true);
            if (gauge) {
                gauge->SetRange(0.0f, 1.0f);
                gauge->SetValue(0.0f);
                gauge->GetWnd()->update();
            }
        }
        msGaugeDirty = false;
        if (TessmaMDIFrame* frame = MainFrame())
            frame->SetMessageText(LanguageString::Get(kIdleMessageId));
    }
    waitCursor.reset();
}

// --- Process-wide --------------------------------------------------------------------------

BreakWindowChannel* Progress::ActiveWindow()
{
    Progress* active = msActive.load(std::memory_order_relaxed);
    return active ? active->Window() : nullptr;
}

void Progress::Hide()
{
    if (BreakWindowChannel* window = ActiveWindow())
        window->ShowWindow(false);
}

void Progress::Show()
{
    if (BreakWindowChannel* window = ActiveWindow())
        window->ShowWindow(true);
}

void Progress::ForceCreate()
{
    Show();
}

BreakWindowChannel* Progress::GetBreakWindow()
{
    BreakWindowChannel* window = ActiveWindow();
    if (window)
        window->ShowWindow(true);
    return window;
}

void Progress::MessageLoop()
{
    const long long now = gPumpClock.Milliseconds();
    if (now - msLastPump.load(std::memory_order_relaxed) < kPumpInterval)
        return;
    QCoreApplication* application = QCoreApplication::instance();
    if (!application || QThread::currentThread() != application->thread())
        return;
    msLastPump.store(now, std::memory_order_relaxed);

    // The gauge's own animation repaints only 20 times a second; a new value
    // gets a frame of its own, though not more often than the eye can use.
    if (msGaugeDirty && now - msLastGaugeRepaint >= kGaugeRepaintInterval) {
        msGaugeDirty = false;
        msLastGaugeRepaint = now;
        if (QWidget* gauge = msGaugeWindow.data(); gauge && gauge->isVisible())
            gauge->update();
    }
    // Painting, sizing and window switching go on; keyboard and mouse wait, so
    // no command can start in the middle of the computation. A break window in
    // this process lives on this pumping alone: once it is on the screen, its
    // input passes and input for every other window is dropped.
    std::optional<korva::BreakInputGate> gate;
    if (Progress* active = msActive.load(std::memory_order_relaxed); active && active->breakWindow) {
        if (QWidget* breakWidget = active->breakWindow->GetWidget(); breakWidget && breakWidget->isVisible())
            gate.emplace(breakWidget);
    }
    QCoreApplication::processEvents(gate ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);

    if (qobject_cast<QGuiApplication*>(application)) {
        const QCursor* cursor = QGuiApplication::overrideCursor();
        if (cursor && cursor->shape() != Qt::WaitCursor)
            QGuiApplication::changeOverrideCursor(Qt::WaitCursor);
    }
}

void Progress::InitProgress()
{
    if (GetGauge() || !OnApplicationMainThread() || !HasGuiApplication() || !MainFrame())
        return;
    QWidget* barWindow = GetMessageBar();
    TsStatusAccess* bar = dynamic_cast<TsStatusAccess*>(barWindow);
    if (!barWindow || !bar)
        return;
    if (auto* xtp = qobject_cast<TsXTPStatusBar*>(barWindow)) {
        // Made once, kept hidden until a Progress puts it into its pane.
        auto* gauge = new TsXTPGauge(xtp);
        bar->InsertWindow(gauge, kPaneWidth, 0, kGaugePaneId);
        bar->RemoveWindow(gauge, false, kGaugePaneId);
        msGauge = gauge;
        msGaugeWindow = gauge;
    } else {
        auto* gauge = new TsGauge(barWindow);
        gauge->setProperty("ctrlId", kGaugeControlId);
        gauge->SetRange(0.0f, 1.0f);
        gauge->SetValue(0.0f);
        gauge->SetCaption("");
        bar->InsertWindow(gauge, kPaneWidth, 0, kGaugePaneId);
        gauge->show();
        msGauge = gauge;
        msGaugeWindow = gauge;
    }
}

TsGaugeBase* Progress::GetGauge()
{
    // The gauge goes with its status bar; the next InitProgress makes a new one.
    if (msGauge && msGaugeWindow.isNull())
        msGauge = nullptr;
    return msGauge;
}

QWidget* Progress::GetMessageBar()
{
    TessmaMDIFrame* frame = MainFrame();
    return frame ? frame->GetMessageBar() : nullptr;
}

TsStatusAccess* Progress::GetStatusBar()
{
    return dynamic_cast<TsStatusAccess*>(GetMessageBar());
}

// --- The break window protocol -------------------------------------------------------------

BreakWindowChannel* Progress::Window() const
{
    return breakWindow && breakWindow->IsWindow() ? breakWindow : nullptr;
}

void Progress::SendStart()
{
    // The one break window of the process comes into being at its first need.
    BreakWindowChannel* channel = BreakWindowChannel::GetChannel();
    breakWindow = channel && channel->Create() ? channel : nullptr;
    if (!Window())
        return;
    QRect mainWindow;
    if (const WinApp* app = WinApp::GetApp(); app && app->GetMainWnd())
        mainWindow = app->GetMainWnd()->frameGeometry();
    breakWindow->Start(delay, this, mainWindow);
}

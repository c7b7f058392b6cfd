#pragma once
/// \class Progress
/// The object through which long work reports how far it has come and learns
/// whether the user wants it to stop. Create one on the stack and call Set,
/// NextSpin or SetInfoStr as the work goes on: each returns true to go on and
/// false once the user has pressed stop. A stop is never an exception; the work
/// tests the result (or IsBreakPressed) and unwinds by itself.
///
/// Only one Progress in the process has a display: the first made on the main
/// thread while no other is active, with a main frame (TessmaMDIFrame) as the
/// application's main window. It stays the active one until it is destroyed;
/// every other object counts just the same but shows nothing, even after the
/// active one is gone. Without an application object, off the main thread, or
/// without a main frame, a Progress is inactive, keeps its ranges and value and
/// always answers true.
///
/// Two display routes, chosen by `allowBreak`:
///  - the status bar route: a gauge in pane 1037 and a spin indicator in pane
///    1036 of the frame's message bar, the info text in its message pane. No stop.
///  - the break route: the break window (BreakWindowChannel) with a stop button,
///    which appears after `delay` milliseconds.
///
/// Ranges nest. The first range covers the whole display; PushSubRange(a, b)
/// opens a new scale 0 to 1 for the part a..b of the current range, and
/// PopSubRange returns to the parent with the display where the part ended:
///
///   Progress progress(nullptr, "Fitting", 0, 1, true, false, true);
///   progress.PushSubRange(0, 0.25);          // the first quarter
///   for (int i = 0; i < n; ++i)
///       if (!progress.Set(float(i) / n)) return;
///   progress.PopPushSubRange(0.25, 1);       // the rest
///   ...
///
/// Every call may sit in the innermost loop of a computation: an inactive object
/// does no window work at all, and an active one lets the event loop run (paint,
/// size and window events; input waits) at most every kPumpInterval ms.

#include <KORVAutlwin/progress/ProgressRanges.h>

#include <QPointer>

#include <atomic>
#include <list>
#include <memory>
#include <string>

class BreakWindowChannel;
class QWidget;
class SpinWindow;
class TsGaugeBase;
class TsStatusAccess;

namespace korva { class WaitCursor; }

class Progress
{
public:
    /// One scale of the range stack (see ProgressRanges).
    using Range = ProgressRanges::Range;

    /// Status bar pane ids of the spin indicator and the gauge, and their width.
    static constexpr unsigned int kSpinPaneId = 1036;
    static constexpr unsigned int kGaugePaneId = 1037;
    static constexpr int kPaneWidth = 100;
    /// The language string that the message pane returns to at the end.
    static constexpr unsigned int kIdleMessageId = 0xE001;
    /// The control id of the status bar gauge.
    static constexpr int kGaugeControlId = 65535;
    /// MessageLoop lets the event loop run at most once in this many milliseconds.
    static constexpr int kPumpInterval = 4;
    /// A new value on the status bar gauge is painted at most once in this many milliseconds.
    static constexpr int kGaugeRepaintInterval = 20;
    /// The delay of the break window when none is given, in milliseconds.
    static constexpr unsigned int kDefaultDelay = 1000;

    /// The full form. `low` equal to `high` makes the range `low` to `low` + 1,
    /// `low` above `high` swaps them; the value starts at the range's low end.
    /// `spin` shows a spin indicator, `gauge` a gauge, `allowBreak` chooses the
    /// break route (forced off by SetShowProgressDialog(false)). A null text keeps
    /// its default: no info text, "Do you really want to stop?", the application
    /// name as the question's title, "Stop" on the button. `parent` null means
    /// the main window.
    Progress(QWidget* parent, const char* text, float low, float high, bool spin = false, bool allowBreak = true,
             bool gauge = true, const char* stopQuestion = nullptr, const char* stopTitle = nullptr,
             const char* stopButton = nullptr, unsigned int delay = kDefaultDelay);
    /// The short form: a spin indicator that moves by itself, no gauge, no stop,
    /// range 0 to 1. If another Progress is active, its break window comes up at once.
    explicit Progress(const char* text, QWidget* parent = nullptr);
    /// Copies every value; a copy is never active and owns no display.
    Progress(const Progress& other);
    Progress& operator=(const Progress& other);
    /// The active object takes its display down, ends the break window, gives
    /// the focus back and returns the message pane to the idle text.
    ~Progress();

    /// `value` = counter + `v`. With a gauge on display the value is held within
    /// the top range and shown; an inactive object with a gauge stops there.
    /// True to go on, false once stop was pressed (so for all reporting calls).
    bool Set(float v)
    {
        value = counter + v;
        // An inactive object does no window work at all; so the call stays here.
        if (!IsActive())
            return !IsBreakPressed();
        return ShowValue();
    }
    /// Sets the top range as given (no checks, no swap), the value to `low`, the
    /// counter to 0, and shows the whole operation's range on the gauge.
    bool SetRange(float low, float high);
    /// `low` and `high` of the top range.
    void GetRange(float& low, float& high) const;
    /// The current value, in the units of the top range.
    float GetValue() const { return value; }
    /// An offset added to every following Set.
    void SetCounter(float offset) { counter = offset; }
    /// Opens the scale 0 to 1 for the part `low` to `high` of the top range
    /// (bounds held within it), counter 0, value 0. Exact when the top range
    /// starts at 0, which is how it is meant to be used.
    bool PushSubRange(float low, float high);
    /// Closes the top scale, leaving the display where it ended; with only the
    /// first range left, nothing changes.
    bool PopSubRange();
    /// PopSubRange, then PushSubRange; the latter's result.
    bool PopPushSubRange(float low, float high);
    /// Moves the spin indicator one step (at most one every 100 ms).
    bool NextSpin();
    /// Puts the spin indicator to rest.
    bool SpinDone();
    /// The info text: the message pane's text, or the break window's title.
    bool SetInfoStr(const char* text);
    /// Whether the user has confirmed a stop.
    bool IsBreakPressed() const { return breakPressed.load(std::memory_order_relaxed); }

    // What the break window reads of its client at start.
    bool GetAllowBreak() const { return allowBreak; }
    bool GetShowSpin() const { return showSpin; }
    bool GetShowGauge() const { return showGauge; }
    const std::string& GetInfoText() const { return infoText; }
    const std::string& GetStopQuestion() const { return stopQuestion; }
    const std::string& GetStopTitle() const { return stopTitle; }
    const std::string& GetStopButton() const { return stopButton; }
    unsigned int GetDelay() const { return delay; }
    /// The ranges, first at the front, top at the back.
    const std::list<Range>& GetRanges() const { return ranges.GetList(); }
    /// Whether this is the active object.
    bool IsActive() const { return msActive.load(std::memory_order_relaxed) == this; }

    /// False makes every later Progress take the status bar route. True at start.
    static void SetShowProgressDialog(bool show) { msShowProgressDialog = show; }
    static bool GetShowProgressDialog() { return msShowProgressDialog; }
    /// Whether some Progress is active.
    static bool IsProgressActive() { return msActive.load(std::memory_order_relaxed) != nullptr; }
    /// The active object's break window hides (around a box of the main thread) ...
    static void Hide();
    /// ... and comes back, or comes up at once during its delay.
    static void Show();
    /// Brings the active object's break window up at once.
    static void ForceCreate();
    /// Brings the active object's break window up and returns it, or null when
    /// there is no active object or it has no break window.
    static BreakWindowChannel* GetBreakWindow();
    /// Lets the event loop handle waiting paint, size and window events while
    /// keyboard and mouse input wait, then shows the wait cursor again. Main
    /// thread only; at most once in kPumpInterval ms, a clock read otherwise.
    static void MessageLoop();
    /// Creates the status bar gauge (once, while its status bar lives): a
    /// TsGauge shown in pane 1037, or on a TsXTPStatusBar a TsXTPGauge kept hidden.
    static void InitProgress();
    /// The status bar gauge, or null before InitProgress and after its status bar went.
    static TsGaugeBase* GetGauge();

private:
    friend class BreakWindowChannel;

    void Construct(QWidget* parentWindow, const char* text, const char* question, const char* title,
                   const char* button);
    void Init();
    void SetString(const char* text);
    static TsStatusAccess* GetStatusBar();
    static QWidget* GetMessageBar();
    static void GetGaugeRange(const Range& range, float& minimum, float& maximum);
    void ShowOnGauge();
    /// The active object's part of Set; `always` sends the value to the break
    /// window even where it would fill the same width as the last one sent.
    bool ShowValue(bool always = false);
    /// Set for the range operations: their value always goes.
    bool SetAlways(float v);
    /// Sends `value` to the break window's gauge, and remembers it.
    void SendGaugeValue(BreakWindowChannel& window);
    /// Whether `value` would look different on the break window's gauge from the last value sent.
    bool ChangesBreakGauge(const BreakWindowChannel& window) const;
    /// What every reporting call ends with: the event loop's turn, then the answer.
    bool Pump();
    /// The break window, when this object has one that exists; every message goes through here.
    BreakWindowChannel* Window() const;
    /// The active object's break window, if it has one.
    static BreakWindowChannel* ActiveWindow();
    void SendStart();

    bool allowBreak;
    bool showSpin;
    bool showGauge;
    std::string stopQuestion;
    std::string stopTitle;
    std::string stopButton;
    std::string infoText;
    BreakWindowChannel* breakWindow = nullptr;
    std::atomic<bool> breakPressed{false};  // written by the break window's side
    ProgressRanges ranges;
    float value = 0.0f;
    float counter = 0.0f;
    bool freeRunning = false;
    QPointer<SpinWindow> spinWindow;         // owned; the status bar may take it first
    QPointer<QWidget> previousForeground;
    QPointer<QWidget> parent;
    std::unique_ptr<korva::WaitCursor> waitCursor;
    unsigned int delay = kDefaultDelay;
    QPointer<QWidget> marquee;               // owned: the spin indicator of a TsXTPStatusBar
    // What the break window's gauge was last sent: its range, ordered, and its value.
    float sentLow = 0.0f;
    float sentHigh = 0.0f;
    float sentValue = 0.0f;

    static std::atomic<Progress*> msActive;
    static TsGaugeBase* msGauge;
    static QPointer<QWidget> msGaugeWindow;  // tells whether msGauge still lives
    static bool msGaugeDirty;                // a value waits to be painted
    static bool msShowProgressDialog;
    static std::atomic<long long> msLastPump;
    static long long msLastGaugeRepaint;
};

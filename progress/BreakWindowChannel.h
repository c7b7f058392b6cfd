#pragma once
/// \class BreakWindowChannel
/// The break window: the window with a stop button that stays alive while the
/// main thread computes. Progress speaks to it only through this interface, one
/// call per message of the break window protocol. Every call is synchronous: it
/// returns when the window has handled the message, and the window never calls
/// back into the main thread while it does.
///
/// The process has at most one break window, kept to process end. Unless one
/// was installed with SetChannel, the first GetChannel on the GUI thread makes
/// it: a BreakWindowProcess (the window in its companion process), or, when the
/// companion cannot be started, an InProcessBreakWindow. The environment
/// variable KORVA_BREAK_WINDOW=inprocess chooses the in-process one at once.
/// SetChannel(nullptr) leaves the process without a break window: Progress then
/// counts and answers as usual and shows nothing.
///
/// A confirmed stop comes back the other way: the implementation calls
/// SetBreakPressed on the client that Start named (from any thread).

#include <KORVAutlwin/progress/BreakStartInfo.h>

#include <QRect>

class Progress;
class QWidget;

class BreakWindowChannel
{
public:
    /// The protocol's messages, with the numbers that they keep on the wire.
    enum EMessage : unsigned int
    {
        eFinish = 0x401,      // the client is done: hide, reset, close a pending stop question with No
        eSpinStep = 0x402,    // move the spinner one frame
        eSpinRest = 0x403,    // spinner to its picture at rest
        eSetTitle = 0x404,    // text: the window title
        eGaugeValue = 0x405,  // one float: the gauge's value
        eGaugeRange = 0x406,  // two floats: the gauge's range
        eShowWindow = 0x407,  // 1 show at once, 0 hide
        eStart = 0x408        // delay in milliseconds, the client: start serving it
    };

    virtual ~BreakWindowChannel();

    /// The installed break window; at the first call with none installed, the
    /// process's own (see above). Null when none was installed and the caller is
    /// not the GUI thread of a QApplication.
    static BreakWindowChannel* GetChannel();
    /// Installs `channel` (not owned; null removes it) and returns the one
    /// installed before; no default is made after this. Main thread, while no
    /// Progress uses a break window.
    static BreakWindowChannel* SetChannel(BreakWindowChannel* channel);

    /// Brings the window into being at the first need (hidden), once per
    /// process; true when there is a window afterwards.
    virtual bool Create() = 0;
    /// Whether the window exists; Progress tests this before every message.
    virtual bool IsWindow() const = 0;

    /// eFinish.
    virtual void Finish() = 0;
    /// eSpinStep.
    virtual void SpinStep() = 0;
    /// eSpinRest.
    virtual void SpinRest() = 0;
    /// eSetTitle; `title` is UTF-8, never null.
    virtual void SetTitle(const char* title) = 0;
    /// eGaugeValue.
    virtual void SetGaugeValue(float value) = 0;
    /// eGaugeRange.
    virtual void SetGaugeRange(float low, float high) = 0;
    /// eShowWindow: true shows the window at once (ending the delay), false hides it.
    virtual void ShowWindow(bool show) = 0;
    /// eStart: serve `client` from now on and appear after `delay` milliseconds,
    /// centred on `mainWindow` (the main window's frame geometry, empty without
    /// one). The window reads the client's texts and switches (Progress's
    /// getters) during this call only.
    virtual void Start(unsigned int delay, Progress* client, const QRect& mainWindow) = 0;

    /// The window as a widget of this process, for parenting boxes that must
    /// stand above it; null when it lives in another process.
    virtual QWidget* GetWidget() const;
    /// The width in pixels of the gauge's bar as the window draws it now
    /// (TsGauge::BarWidth): two values that fill the same width look the same.
    /// 0 when not known; Progress then sends every value. This one: 0.
    virtual int GetGaugeResolution() const;

protected:
    /// What the window learns of `client` at start: its texts and switches, `delay` and `mainWindow`.
    static BreakStartInfo StartInfo(const Progress& client, unsigned int delay, const QRect& mainWindow);
    BreakWindowChannel() = default;
    BreakWindowChannel(const BreakWindowChannel&) = delete;
    BreakWindowChannel& operator=(const BreakWindowChannel&) = delete;

    /// The user confirmed the stop: from now on the client's reporting calls
    /// return false. Any thread; the flag only ever goes from false to true.
    static void SetBreakPressed(Progress& client);
};

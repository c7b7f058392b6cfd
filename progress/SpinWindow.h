#pragma once
/// \class SpinWindow
/// The spin indicator of the status bar: slanted stripes, 5 pixels wide, that
/// alternate between the button face and a colour which walks the colour circle
/// in 73 steps of 5 degrees. The stripes move one pixel per step, 10 positions
/// to a full period, either by themselves (SetRunning) or through Step, which
/// Progress::NextSpin calls from the work's loop.
///
/// The animation runs on a timer of the GUI thread (every 50 ms for the window's
/// life): each round moves the hue on while the window is visible and, when
/// running, moves the stripes on every second round. Step only stores the new
/// position; the next round paints it. Nothing here waits or locks.
///
/// The arithmetic of a round and of the stripes is in plain static functions.

#include <KORVAutlwin/toolkit/ColorRef.h>

#include <QBasicTimer>
#include <QWidget>

#include <cstdint>
#include <vector>

class SpinWindow : public QWidget
{
    Q_OBJECT

public:
    /// Positions of the stripes, one pixel each: two stripes make a period.
    static constexpr int kPositions = 10;
    /// Steps of the hue around the colour circle, 5 degrees each.
    static constexpr int kHueSteps = 73;
    static constexpr int kHueDegrees = 5;
    static constexpr int kStripeWidth = 5;
    /// Milliseconds between animation rounds.
    static constexpr int kRoundInterval = 50;
    /// The stripes move when more than this many milliseconds have passed since their last move.
    static constexpr std::uint32_t kStepInterval = 100;
    /// Saturation and value of the coloured stripes.
    static constexpr double kSaturation = 0.3;
    static constexpr double kValue = 0.7;

    /// What the animation keeps between rounds.
    struct SpinState
    {
        int position = 0;          // 0 to kPositions - 1
        bool running = false;      // moves by itself
        std::uint32_t lastTick = 0; // milliseconds of the last move
        int hue = 0;               // 0 to kHueSteps - 1
        bool phase = false;        // flips every round while running
    };

    /// One stripe: its top edge runs from `left` to `left` + 5, its bottom edge
    /// from `left` + height to `left` + height + 5.
    struct Stripe
    {
        int left;
        bool colored;
    };

    explicit SpinWindow(QWidget* parent = nullptr);
    ~SpinWindow() override;

    /// Moves the stripes one position, unless the last move is 100 ms or less ago.
    void Step();
    /// Back to position 0, not running.
    void Rest();
    void SetRunning(bool running) { mState.running = running; }
    bool IsRunning() const { return mState.running; }
    int GetPosition() const { return mState.position; }
    int GetHueIndex() const { return mState.hue; }
    /// The id of the animation timer.
    int GetAnimationTimerId() const { return mTimer.timerId(); }

    QSize sizeHint() const override;

    // The arithmetic.

    /// Milliseconds of a monotonic clock, wrapping at 2^32.
    static std::uint32_t Now();
    /// The 100 ms rule: if more than kStepInterval ms lie between `lastTick` and
    /// `now`, the position moves on (9 wraps to 0) and `lastTick` becomes `now`.
    /// True when it moved.
    static bool StepState(SpinState& state, std::uint32_t now);
    /// One animation round: the hue moves on when `visible`; when running, the
    /// phase flips and on every second round StepState runs.
    static void AnimateState(SpinState& state, bool visible, std::uint32_t now);
    /// The colour of the coloured stripes at hue index `hue`: hue `hue` * 5
    /// degrees, saturation 0.3, value 0.7.
    static COLORREF StripeColor(int hue);
    /// The stripes that cover the client columns `left` to `right` (exclusive)
    /// of a window `height` pixels high at `position`, left to right: the first
    /// lies wholly left of `left` at its bottom, the last starts before `right`.
    /// The stripe that starts at `left` + `position` is coloured; colours alternate.
    static std::vector<Stripe> Stripes(int left, int right, int height, int position);

protected:
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    SpinState mState;
    QBasicTimer mTimer;
};

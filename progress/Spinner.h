#pragma once
/// \class Spinner
/// The turning picture of the break window: a ring of six dots whose bright dot
/// moves on by one position per step, and a seventh picture at rest. The client
/// drives it through Step (from the work's NextSpin) and Rest (SpinDone); it
/// never moves by itself, so a frozen picture tells that the work is stuck.
///
/// The seven frames are drawn once per process, by the first Spinner made, and
/// shared by every instance. The step arithmetic is a static function over a
/// given clock, so that it can be checked without a display.

#include <QWidget>

#include <cstdint>

class QImage;

class Spinner : public QWidget
{
    Q_OBJECT

public:
    /// Frames 0 to 5 turn; frame 6 is the picture at rest.
    static constexpr int kTurningFrames = 6;
    static constexpr int kRestFrame = 6;
    static constexpr int kFrameCount = 7;
    /// A step moves the picture only when more than this many milliseconds have
    /// passed since the last move.
    static constexpr std::uint32_t kStepInterval = 250;
    /// The side of a frame, in pixels.
    static constexpr int kFrameSize = 32;

    /// A spinner at rest.
    explicit Spinner(QWidget* parent = nullptr);
    ~Spinner() override;

    /// Moves one frame on, unless the last move is 250 ms or less ago.
    void Step();
    /// Shows the picture at rest; counts as a move for the 250 ms rule.
    void Rest();

    /// The frame on display, 0 to 6.
    int GetFrame() const { return frame; }

    /// The frame's size plus the widget's margins.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    // The arithmetic.

    /// Milliseconds of a monotonic clock, wrapping at 2^32.
    static std::uint32_t Now();
    /// The frame after `frame`: from rest to 0, otherwise round the six turning frames.
    static int NextFrame(int frame) { return frame == kRestFrame ? 0 : (frame + 1) % kTurningFrames; }
    /// The 250 ms rule: if more than kStepInterval ms lie between `lastTick` and
    /// `now`, `lastTick` becomes `now` and `frame` moves on. True when it moved.
    static bool StepFrame(int& frame, std::uint32_t& lastTick, std::uint32_t now);
    /// The picture of frame `index` (0 to 6), as every spinner shows it.
    static const QImage& FrameImage(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int frame;
    std::uint32_t lastTick;
};

#pragma once
/// \class TsGauge
/// The suite's own gauge: a bar that fills from the left with the value, an
/// optional caption in its middle, and a colour cycle that keeps it looking
/// alive while the work goes on. Every 9 seconds (180 frames at 20 frames a
/// second) the bar turns from blue to red and back for 2 seconds, fading for
/// half a second at either end.
///
/// The animation runs on a timer of the GUI thread, so it moves whenever the
/// thread handles events (Progress pumps them while it reports). The timer runs
/// only while the gauge is visible; a hidden gauge starts its cycle again when
/// it is next seen. SetValue is a plain store, cheap enough for the inner loop
/// of a computation; the next frame shows the value.
///
/// In a status bar:
///   auto* gauge = new TsGauge(statusBar);
///   gauge->setFixedWidth(100);
///   statusBar->addPermanentWidget(gauge);

#include <KORVAutlwin/progress/TsGaugeBase.h>
#include <KORVAutlwin/toolkit/ColorRef.h>

#include <QBasicTimer>
#include <QFont>
#include <QFrame>
#include <QString>

#include <atomic>
#include <string>

class TsGauge : public QFrame, public TsGaugeBase
{
    Q_OBJECT

public:
    /// Frames in one colour cycle.
    static constexpr int kPhaseCount = 180;
    /// Milliseconds from one frame to the next.
    static constexpr int kFrameInterval = 50;
    /// The longest caption, in characters.
    static constexpr int kCaptionLength = 199;
    /// The colours that the cycle blends between.
    static constexpr COLORREF kBarColor = RGB(0x00, 0x80, 0xE6);
    static constexpr COLORREF kBarAlertColor = RGB(0xE0, 0x00, 0x34);
    static constexpr COLORREF kTextColor = RGB(0xFF, 0xCC, 0x00);
    static constexpr COLORREF kTextAlertColor = RGB(0xFF, 0xFF, 0xFF);

    /// A gauge with range 0 to 100, value 0, no caption, and a bold font of 8
    /// points at the screen's vertical resolution in the application's family.
    explicit TsGauge(QWidget* parent = nullptr);
    ~TsGauge() override;

    /// Stores the lesser of the two as low and the greater as high. Any thread.
    void SetRange(float low, float high) override;
    /// Stores the value, and nothing more. Any thread.
    void SetValue(float value) override;
    /// This gauge.
    QWidget* GetWnd() override;

    /// The text drawn on the bar, UTF-8; cut to 199 characters (not bytes).
    /// Null clears it. GUI thread only.
    void SetCaption(const char* caption);
    /// The height of the caption in the gauge's font (0 without one), plus the
    /// frame's height, plus 2, truncated to int.
    int GetDesiredHeight() const;

    float GetLow() const { return mLow.load(std::memory_order_relaxed); }
    float GetHigh() const { return mHigh.load(std::memory_order_relaxed); }
    float GetValue() const { return mValue.load(std::memory_order_relaxed); }
    /// The caption as stored, UTF-8.
    std::string GetCaption() const { return mCaption.toStdString(); }
    /// The phase that the next frame will show, 0 to 179.
    int GetPhase() const { return mPhase; }
    /// The id of the animation timer; 0 while the gauge is hidden.
    int GetAnimationTimerId() const { return mTimer.timerId(); }
    /// The font of the caption.
    const QFont& GetCaptionFont() const { return mFont; }

    /// 100 pixels wide, and as high as a one-line caption needs.
    QSize sizeHint() const override;

    // The arithmetic of one frame.

    /// The weight of the alert colours at `phase`: 0 below 70 and from 111 on,
    /// rising by tenths from 70 to 79, 1 from 80 to 100, falling by tenths from
    /// 101 to 110.
    static float BlendFactor(int phase);
    /// The phase after `phase`, wrapping from 179 to 0.
    static int NextPhase(int phase) { return (phase + 1) % kPhaseCount; }
    /// Per channel `from` * (1 - `factor`) + `to` * `factor`, truncated.
    static COLORREF MixColor(COLORREF from, COLORREF to, float factor);
    /// The bar's and the caption's colour at `phase`.
    static COLORREF BarColorAt(int phase) { return MixColor(kBarColor, kBarAlertColor, BlendFactor(phase)); }
    static COLORREF TextColorAt(int phase) { return MixColor(kTextColor, kTextAlertColor, BlendFactor(phase)); }
    /// The filled width: `clientWidth` * (`value` - `low`) / (`high` - `low`),
    /// truncated and held within 0 to `clientWidth` (0 when undefined, as for
    /// an empty range).
    static int BarWidth(int clientWidth, float value, float low, float high);
    /// `caption` (UTF-8) cut to kCaptionLength characters.
    static QString CutCaption(const char* caption);

protected:
    /// The animation step: with the gauge visible, the current phase becomes
    /// the frame on display and the phase moves on; hidden, the phase returns to 0.
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    int FrameHeight() const;

    // Written by any thread, read by the painting: one word each, so a reader
    // sees a whole number, and a mixed pair is put right by the next frame.
    std::atomic<float> mLow;
    std::atomic<float> mHigh;
    std::atomic<float> mValue;
    int mPhase;       // the next frame's phase
    int mFramePhase;  // the phase of the frame on display
    QString mCaption;
    QFont mFont;
    QBasicTimer mTimer;
};

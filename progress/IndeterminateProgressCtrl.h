#pragma once
/// \class IndeterminateProgressCtrl
/// A progress bar for work of unknown length: diagonal bands, 25 pixels apart,
/// that move one pixel to the right every 50 ms (timer 13) and repeat after 25
/// steps. Each band is ten pixels wide and shades from dark at its edges to light
/// in its middle; the gaps show a light tint of the same colour.
///
/// The colours come from the palette's highlight colour at construction and again
/// whenever the palette changes: two steps lighter and two steps darker by 51 per
/// channel (each channel saturated at 0 and 255), and the background one step
/// lighter still. The value and range of the QProgressBar are not shown.
///
/// A frame is painted into an off-screen pixmap and copied at once, so the bands
/// never flicker. The arithmetic of colours, steps and bands is in plain static
/// functions that need no display.

#include <KORVAutlwin/toolkit/ColorRef.h>

#include <QBasicTimer>
#include <QPoint>
#include <QProgressBar>
#include <QRect>

#include <array>
#include <vector>

class IndeterminateProgressCtrl : public QProgressBar
{
    Q_OBJECT

public:
    /// The id of the animation timer and its interval in milliseconds.
    static constexpr unsigned int kTimerId = 13;
    static constexpr int kTimerInterval = 50;
    /// Bands start this many pixels apart; the offset runs 0 .. kBandSpacing - 1.
    static constexpr int kBandSpacing = 25;
    /// A band's lines are k = 1 .. kBandWidth from its start.
    static constexpr int kBandWidth = 10;
    /// What a colour step adds to each channel.
    static constexpr int kColorStep = 51;

    /// The five pens, from dark to light.
    enum EPen
    {
        eDarker2,
        eDarker1,
        eBase,
        eLighter1,
        eLighter2,
        ePenCount
    };

    /// The colours derived from one base colour.
    struct Colors
    {
        std::array<COLORREF, ePenCount> pens; // by EPen
        COLORREF background;
    };

    /// One line of a band, in the manner of the platform's line drawing: it
    /// covers the pixels from `from` up to, but not including, `to`.
    struct Line
    {
        EPen pen;
        QPoint from;
        QPoint to;
    };

    explicit IndeterminateProgressCtrl(QWidget* parent = nullptr);
    ~IndeterminateProgressCtrl() override;

    /// The position of the bands, 0 to 24.
    int GetOffset() const { return offset; }
    /// The colours in use.
    const Colors& GetColors() const { return colors; }

    /// Runs a step of timer `id`: timer 13 moves the bands on and repaints at once.
    void OnTimer(unsigned int id);

    // The arithmetic.

    /// `color` with `delta` added to each of its channels, saturated at 0 and 255.
    static COLORREF AddToChannels(COLORREF color, int delta);
    /// The pens and background of base colour `base`: darker by 102 and 51, the
    /// base, lighter by 51 and 102; the background lighter by 153.
    static Colors DeriveColors(COLORREF base);
    /// The offset after `current`: one more, 24 wraps to 0.
    static int NextOffset(int current);
    /// The lines that paint the bands in `client` at `offset`: width / 25 + 2
    /// bands, 25 pixels apart, the first starting at client left + offset - 25.
    /// A band's lines run at 45 degrees from the top edge to the bottom edge
    /// (`client` top + height); a band starting at s has, for k = 1..10 except 6,
    /// a line from (s + k, top) to (s + k + height, top + height).
    /// Those bands cover a bar up to 16 pixels high; for a higher one, as many
    /// bands as its lower left corner needs are added in front, 25 pixels apart.
    static std::vector<Line> BandLines(const QRect& client, int offset);

protected:
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void TakeColors();

    int offset = 0;
    Colors colors{};
    QBasicTimer timer;
};

#pragma once
/// \class BreakDialog
/// The break window: a dialog with a stop button that serves one Progress at a
/// time, from Start (protocol message 0x408) to Finish (0x401). One instance per
/// process is made at the first need and kept to the end; between clients it
/// stays alive and hidden. It lives where its protocol is served: in the break
/// window's companion process, or, when none can be started, in the client's own
/// process behind InProcessBreakWindow. Everything it shows comes from the
/// BreakStartInfo given at Start and from the protocol calls, never from the
/// Progress object itself, and it never calls back into the client except
/// through `onStopConfirmed`.
///
/// It stays invisible for the client's delay: work that ends sooner never shows
/// a window, and ShowWindow(true) ends the delay early. Its content is one of
/// three layouts: the spinner (the client shows a spin indicator), a placeholder
/// picture (no art collection, or a display of under 9 bits per pixel), or the
/// art layout with a painting of the preferred artist, the artist's portrait and
/// the two labels, moving to the next painting every 15 seconds. A gauge may lie
/// under the content across the full width.
///
/// The stop button, Return, Escape and the close box all ask the client's stop
/// question (a modal Yes/No box owned by the dialog); a client without a stop
/// button is not asked at all. Yes puts "Stopping..." on
/// the gauge, calls `onStopConfirmed` once and disables the button. A Finish
/// while the question is open answers it with No, and nothing is confirmed; this
/// holds also when Finish arrives from inside the question's own event loop.
///
/// GUI thread only. Typical use by a transport:
///   BreakDialog dialog([&] { ReportStop(); });
///   dialog.Start(info);            // per client
///   dialog.SetGaugeValue(0.4f);    // ... as the protocol messages come in
///   dialog.Finish();

#include <KORVAutlwin/progress/BreakStartInfo.h>

#include <QBasicTimer>
#include <QDialog>
#include <QImage>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QString>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class CustomMessageBoxDlg;
class QLabel;
class QPropertyAnimation;
class QPushButton;
class Spinner;
class TsGauge;

class BreakDialog : public QDialog
{
    Q_OBJECT

public:
    /// The dialog form and its controls' ids (each control carries its id as "ctrlId").
    static constexpr unsigned int kTemplateId = 13098;
    static constexpr int kStopButtonId = 1;
    static constexpr int kSpinnerId = 13065;
    static constexpr int kPlaceholderId = 13090;
    static constexpr int kArtistLabelId = 13039;
    static constexpr int kPaintingLabelId = 13059;
    static constexpr int kGaugeId = 13048;
    /// Timer ids: the end of the delay (fires once) and the next painting.
    static constexpr int kShowTimerId = 7636;
    static constexpr int kPaintingTimerId = 7635;
    /// Milliseconds from one painting to the next.
    static constexpr int kPaintingInterval = 15000;
    /// Milliseconds of a fade in or out.
    static constexpr int kFadeDuration = 100;
    /// The gauge caption once a stop is confirmed: "Stopping...".
    static constexpr unsigned int kStoppingStringId = 13196;
    /// Displays with fewer bits per pixel get the placeholder instead of art.
    static constexpr int kMinimumArtDepth = 9;
    /// Margins of the layout: where the placeholder stands in the client area.
    static constexpr int kMargin = 11;
    /// The side of the placeholder picture.
    static constexpr int kPlaceholderSize = 32;
    /// The narrowest client area, so that the title and the gauge stay readable.
    static constexpr int kMinimumClientWidth = 280;

    /// The content chosen at Start.
    enum ELayout
    {
        eSpinnerLayout,
        ePlaceholderLayout,
        eArtLayout
    };

    /// A hidden, idle dialog without parent. The order of the paintings is
    /// shuffled here once, from ProgressArt's preferred artist; without one the
    /// dialog has no art. `onStopConfirmed` is called on the GUI thread when
    /// the user answers the stop question with Yes.
    explicit BreakDialog(std::function<void()> onStopConfirmed);
    ~BreakDialog() override;

    /// Message 0x408: serve a new client. Chooses and places the content, sizes
    /// and centres the window on `info.mainWindow` (the primary screen when
    /// empty), sets the title and the stop button, and starts the delay.
    void Start(const BreakStartInfo& info);
    /// Message 0x401: the client is done. Stops both timers, answers an open
    /// stop question with No, fades out, and resets to idle.
    void Finish();
    /// Message 0x402: the spinner one frame on (at most one frame per 250 ms).
    void SpinStep();
    /// Message 0x403: the spinner to its picture at rest.
    void SpinRest();
    /// Message 0x404: the window title.
    void SetTitle(const QString& title);
    /// Message 0x405: the gauge's value.
    void SetGaugeValue(float value);
    /// Message 0x406: the gauge's range.
    void SetGaugeRange(float low, float high);
    /// Message 0x407: ends the delay; true comes up at once (when not yet
    /// visible), false fades out. Ignored while no client is served.
    void ShowWindow(bool show);

    /// Whether the window may be visible: the delay is over or was ended.
    bool IsShown() const { return shown; }
    /// Whether the stop question is on the screen.
    bool IsQuestionOpen() const { return questionOpen; }
    /// Whether a client is served (between Start and Finish).
    bool IsServing() const { return serving; }

    // What the dialog shows, for inspection.

    ELayout GetLayout() const { return layout; }
    QPushButton* GetStopButton() const { return stopButtonCtrl; }
    Spinner* GetSpinner() const { return spinner; }
    QLabel* GetPlaceholder() const { return placeholder; }
    QLabel* GetArtistLabel() const { return artistLabel; }
    QLabel* GetPaintingLabel() const { return paintingLabel; }
    TsGauge* GetGauge() const { return gauge; }
    /// The painting and the portrait on display (null outside the art layout).
    const QImage& GetPainting() const { return painting; }
    const QImage& GetPortrait() const { return portrait; }
    /// Where the portrait is painted, in client coordinates.
    QRect GetPortraitRect() const { return portraitRect; }
    /// Where the painting is painted (centred in it), in client coordinates.
    QRect GetPictureRect() const;
    /// The shuffled painting numbers (empty without art), and the position of
    /// the painting on display in it (-1 before the first).
    const std::vector<int>& GetOrder() const { return order; }
    int GetPaintingIndex() const { return paintingIndex; }
    /// No art collection is available.
    bool HasNoArt() const { return noArt; }
    /// The client's delay in milliseconds.
    unsigned int GetDelay() const { return delay; }

    /// The numbers 0 to `count` - 1 shuffled with rand(): for each position i
    /// from 1 up, swap it with position r modulo (i + 1), where r is made of
    /// 15 bits per rand() call, with more calls once i exceeds 32767. Seeding
    /// is the caller's business.
    static std::vector<int> ShuffledOrder(int count);

    /// Refuses to become visible during the delay, whoever asks.
    void setVisible(bool visible) override;

public slots:
    /// The stop button, Return and the close box: ask the stop question.
    void accept() override;
    /// Escape: the same as the stop button.
    void reject() override;

protected:
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void OnOK();
    void NextPainting();
    int ArtistLabelWidth() const;
    void Layout(const BreakStartInfo& info);
    void CentreOn(const QRect& mainWindow);
    void FadeIn();
    void FadeOut();

    bool serving = false;  // stands for the client: only the callback reaches it
    QPushButton* stopButtonCtrl;
    Spinner* spinner;
    QLabel* placeholder;
    QLabel* artistLabel;
    QLabel* paintingLabel;
    TsGauge* gauge;
    bool showPaintings = false;
    QImage painting;
    QImage portrait;
    int marginX = kMargin;
    int marginY = kMargin;
    int paintingIndex = -1;
    QRect portraitRect;
    std::vector<int> order;
    bool noArt = false;
    int paintingCount = 0;
    unsigned int delay = 0;
    bool shown = false;
    bool questionOpen = false;

    std::function<void()> onStopConfirmed;
    std::string stopQuestion;     // the client's question and its title
    std::string stopTitle;
    bool allowBreak = true;       // the client may be stopped at all
    ELayout layout = ePlaceholderLayout;
    QSize bitmapSize;             // the largest painting, from ProgressArt
    QBasicTimer showTimer;        // timer 7636
    QBasicTimer paintingTimer;    // timer 7635
    QPropertyAnimation* fade;
    bool fadingOut = false;
    QPointer<CustomMessageBoxDlg> question;
    std::uint64_t clientSerial = 0;  // moves on at every Start and Finish
};

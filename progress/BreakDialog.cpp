#include <KORVAutlwin/progress/BreakDialog.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/art/ProgressArt.h>
#include <KORVAutlwin/progress/Spinner.h>
#include <KORVAutlwin/progress/TsGauge.h>

#include <KORVAutl/LanguageString.h>

#include <QApplication>
#include <QCloseEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTimerEvent>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <utility>

namespace {

// Gap between a picture and its label.
constexpr int kLabelGap = 4;
// The artist's label is at least this wide, so that a name and a life span fit.
constexpr int kArtistLabelWidth = 120;
// Buttons of the suite's dialogs are at least this wide.
constexpr int kButtonMinimumWidth = 75;
// rand() is taken for 15 bits a call, as the shuffle was always made.
constexpr unsigned long long kRandomBits = 15;
constexpr unsigned long long kRandomMax = 0x7FFF;

// Only where the window system composes windows does the opacity show; elsewhere
// a fade would only delay the hiding.
bool FadesWindows()
{
    const QString platform = QGuiApplication::platformName();
    return platform == QLatin1String("xcb") || platform.startsWith(QLatin1String("wayland")) ||
           platform == QLatin1String("windows") || platform == QLatin1String("cocoa");
}

QPixmap PlaceholderPicture(const QWidget* widget)
{
    QIcon icon = QApplication::windowIcon();
    if (icon.isNull())
        icon = widget->style()->standardIcon(QStyle::SP_MessageBoxInformation, nullptr, widget);
    return icon.pixmap(BreakDialog::kPlaceholderSize, BreakDialog::kPlaceholderSize);
}

void SetCtrlId(QWidget* control, int id)
{
    control->setProperty("ctrlId", id);
}

} // namespace

BreakDialog::BreakDialog(std::function<void()> confirmed)
    : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      stopButtonCtrl(new QPushButton(this)), spinner(new Spinner(this)), placeholder(new QLabel(this)),
      artistLabel(new QLabel(this)), paintingLabel(new QLabel(this)), gauge(new TsGauge(this)),
      onStopConfirmed(std::move(confirmed)), fade(new QPropertyAnimation(this, "windowOpacity", this))
{
    // The window comes and goes with its clients; closing it must not end the application.
    setAttribute(Qt::WA_QuitOnClose, false);

    SetCtrlId(stopButtonCtrl, kStopButtonId);
    stopButtonCtrl->setDefault(true);
    connect(stopButtonCtrl, &QPushButton::clicked, this, &BreakDialog::OnOK);

    SetCtrlId(spinner, kSpinnerId);
    spinner->hide();

    SetCtrlId(placeholder, kPlaceholderId);
    placeholder->setPixmap(PlaceholderPicture(this));
    placeholder->setGeometry(marginX, marginY, kPlaceholderSize, kPlaceholderSize);

    for (QLabel* label : {artistLabel, paintingLabel}) {
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        label->hide();
    }
    SetCtrlId(artistLabel, kArtistLabelId);
    SetCtrlId(paintingLabel, kPaintingLabelId);

    SetCtrlId(gauge, kGaugeId);
    gauge->setFrameStyle(QFrame::Panel | QFrame::Sunken);

    fade->setDuration(kFadeDuration);
    connect(fade, &QPropertyAnimation::finished, this, [this] {
        if (!fadingOut)
            return;
        fadingOut = false;
        hide();
        setWindowOpacity(1.0);
    });

    // The paintings of the preferred artist in an order of their own, so that
    // none comes again before all have been seen.
    const int artists = ProgressArt::GetNumArtists();
    const int artist = ProgressArt::GetPreferedArtist();
    if (artists > 0 && artist >= 0) {
        paintingCount = ProgressArt::GetNumPaintings(artist);
        std::srand(static_cast<unsigned int>(std::time(nullptr)));
        order = ShuffledOrder(paintingCount);
    }
    // An artist without paintings has nothing to show either.
    noArt = order.empty();
    if (noArt)
        paintingCount = 0;
}

BreakDialog::~BreakDialog() = default;

std::vector<int> BreakDialog::ShuffledOrder(int count)
{
    std::vector<int> numbers;
    for (int number = 0; number < count; ++number)
        numbers.push_back(number);
    for (int i = 1; i < count; ++i) {
        const auto position = static_cast<unsigned long long>(i);
        unsigned long long range = kRandomMax;
        unsigned long long random = static_cast<unsigned long long>(std::rand()) & kRandomMax;
        // Beyond 15 bits, more calls make up the missing bits.
        while (range < position) {
            range = range << kRandomBits | kRandomMax;
            random = random << kRandomBits | (static_cast<unsigned long long>(std::rand()) & kRandomMax);
        }
        std::swap(numbers[static_cast<std::size_t>(i)], numbers[static_cast<std::size_t>(random % (position + 1))]);
    }
    return numbers;
}

QRect BreakDialog::GetPictureRect() const
{
    return {QPoint(marginX, marginY), bitmapSize};
}

// --- The protocol -----------------------------------------------------------------------------

void BreakDialog::Start(const BreakStartInfo& info)
{
    // A question still open belongs to the client before: it is answered No.
    ++clientSerial;
    if (questionOpen && question)
        question->done(IDNO);
    serving = true;
    delay = info.delay;
    stopQuestion = info.stopQuestion;
    stopTitle = info.stopTitle;
    allowBreak = info.allowBreak;
    shown = false;
    stopButtonCtrl->setEnabled(true);
    gauge->SetCaption("");
    showTimer.start(static_cast<int>(std::min<unsigned int>(delay, INT_MAX)), this);
    Layout(info);
    CentreOn(info.mainWindow);
    setWindowTitle(QString::fromStdString(info.infoText));
}

void BreakDialog::Finish()
{
    showTimer.stop();
    paintingTimer.stop();
    // A stop question still open is answered with No: the work ended first.
    ++clientSerial;
    if (questionOpen && question)
        question->done(IDNO);
    FadeOut();
    serving = false;
    stopButtonCtrl->setEnabled(true);
    spinner->Rest();
    spinner->Step();
    gauge->SetCaption("");
    showPaintings = false;
    painting = QImage();
    portrait = QImage();
    shown = false;
    questionOpen = false;
}

void BreakDialog::SpinStep()
{
    spinner->Step();
}

void BreakDialog::SpinRest()
{
    spinner->Rest();
}

void BreakDialog::SetTitle(const QString& title)
{
    setWindowTitle(title);
}

void BreakDialog::SetGaugeValue(float value)
{
    gauge->SetValue(value);
}

void BreakDialog::SetGaugeRange(float low, float high)
{
    gauge->SetRange(low, high);
}

void BreakDialog::ShowWindow(bool show)
{
    if (!serving)
        return;
    showTimer.stop();
    shown = true;
    if (!show) {
        FadeOut();
    } else if (!isVisible() || fadingOut) {
        FadeIn();
        update();
        raise();
        activateWindow();
    }
}

// --- Showing and hiding -----------------------------------------------------------------------

void BreakDialog::setVisible(bool visible)
{
    // During the delay nothing may bring the window up.
    if (visible && !shown)
        return;
    QDialog::setVisible(visible);
}

void BreakDialog::FadeIn()
{
    fade->stop();
    fadingOut = false;
    if (!FadesWindows()) {
        setWindowOpacity(1.0);
        show();
        return;
    }
    if (!isVisible())
        setWindowOpacity(0.0);
    show();
    fade->setStartValue(windowOpacity());
    fade->setEndValue(1.0);
    fade->start();
}

void BreakDialog::FadeOut()
{
    if (!isVisible() || fadingOut)
        return;
    if (!FadesWindows()) {
        hide();
        return;
    }
    fade->stop();
    fadingOut = true;
    fade->setStartValue(windowOpacity());
    fade->setEndValue(0.0);
    fade->start();
}

void BreakDialog::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == showTimer.timerId()) {
        // The delay is over: the work takes long enough to be seen.
        showTimer.stop();
        shown = true;
        if (!isVisible() || fadingOut)
            FadeIn();
        update();
        raise();
        activateWindow();
    } else if (event->timerId() == paintingTimer.timerId()) {
        NextPainting();
    } else {
        QDialog::timerEvent(event);
    }
}

// --- Content ----------------------------------------------------------------------------------

void BreakDialog::Layout(const BreakStartInfo& info)
{
    marginX = kMargin;
    marginY = kMargin;
    // Room for a line of caption, which "Stopping..." will need.
    const int gaugeHeight = std::max(gauge->GetDesiredHeight(), gauge->sizeHint().height());

    const QScreen* display = screen() ? screen() : QGuiApplication::primaryScreen();
    const int depth = display ? display->depth() : 32;
    if (info.showSpin)
        layout = eSpinnerLayout;
    else if (depth < kMinimumArtDepth || noArt)
        layout = ePlaceholderLayout;
    else
        layout = eArtLayout;
    spinner->setVisible(layout == eSpinnerLayout);
    placeholder->setVisible(layout == ePlaceholderLayout);
    artistLabel->setVisible(layout == eArtLayout);
    paintingLabel->setVisible(layout == eArtLayout);
    showPaintings = layout == eArtLayout;

    stopButtonCtrl->setText(QString::fromStdString(info.stopButton));
    stopButtonCtrl->setVisible(info.allowBreak);
    QSize button(0, 0);
    if (info.allowBreak)
        button = stopButtonCtrl->sizeHint().expandedTo(QSize(kButtonMinimumWidth, 0));

    int clientWidth = 0;
    int contentBottom = 0;
    if (layout == eArtLayout) {
        paintingTimer.start(kPaintingInterval, this);
        const QPoint maxBitmap = ProgressArt::GetMaxBitmapSize();
        const QPoint maxPortrait = ProgressArt::GetMaxPortraitSize();
        bitmapSize = QSize(maxBitmap.x(), maxBitmap.y());
        const int lineHeight = fontMetrics().height();
        // The painting at the left; beside it a column with the portrait, the
        // artist under it, and the stop button at the bottom right.
        const int columnLeft = marginX + bitmapSize.width() + marginX;
        const int columnWidth = std::max({maxPortrait.x(), button.width(), ArtistLabelWidth()});
        portraitRect = QRect(columnLeft, marginY, columnWidth, maxPortrait.y());
        const QRect artistRect(columnLeft, portraitRect.bottom() + 1 + kLabelGap, columnWidth, 2 * lineHeight);
        int columnHeight = artistRect.bottom() + 1 - marginY;
        if (info.allowBreak)
            columnHeight += marginY + button.height();
        const int areaHeight = std::max(bitmapSize.height(), columnHeight);
        artistLabel->setGeometry(artistRect);
        if (info.allowBreak)
            stopButtonCtrl->setGeometry(columnLeft + columnWidth - button.width(), marginY + areaHeight - button.height(),
                                        button.width(), button.height());
        paintingLabel->setGeometry(marginX, marginY + areaHeight + kLabelGap, bitmapSize.width(), lineHeight);
        clientWidth = columnLeft + columnWidth + marginX;
        contentBottom = paintingLabel->geometry().bottom() + 1;
        NextPainting();
    } else {
        paintingTimer.stop();
        bitmapSize = QSize();
        portraitRect = QRect();
        QWidget* content = layout == eSpinnerLayout ? static_cast<QWidget*>(spinner) : placeholder;
        const QSize size = layout == eSpinnerLayout ? spinner->sizeHint() : QSize(kPlaceholderSize, kPlaceholderSize);
        // Content and button share a row, each centred on it.
        const int rowHeight = std::max(size.height(), button.height());
        content->setGeometry(marginX, marginY + (rowHeight - size.height()) / 2, size.width(), size.height());
        clientWidth = marginX + size.width() + marginX;
        if (info.allowBreak)
            clientWidth += button.width() + marginX;
        clientWidth = std::max(clientWidth, kMinimumClientWidth);
        if (info.allowBreak)
            stopButtonCtrl->setGeometry(clientWidth - marginX - button.width(),
                                        marginY + (rowHeight - button.height()) / 2, button.width(), button.height());
        contentBottom = marginY + rowHeight;
    }

    int clientHeight = contentBottom + marginY;
    gauge->setVisible(info.showGauge);
    if (info.showGauge) {
        gauge->setGeometry(marginX, clientHeight, clientWidth - 2 * marginX, gaugeHeight);
        clientHeight += gaugeHeight + marginY;
    }
    setFixedSize(clientWidth, clientHeight);
}

void BreakDialog::CentreOn(const QRect& mainWindow)
{
    QRect area = mainWindow;
    if (area.isEmpty()) {
        if (const QScreen* primary = QGuiApplication::primaryScreen())
            area = primary->availableGeometry();
    }
    // Before its first showing the frame is not known yet; the client size serves.
    const QSize frame = frameGeometry().size().expandedTo(size());
    move(area.center() - QPoint(frame.width() / 2, frame.height() / 2));
}

int BreakDialog::ArtistLabelWidth() const
{
    // Wide enough for every artist that a painting may bring (the pseudo artist
    // brings them all), so that no name is cut when the painting changes.
    const QFontMetrics metrics = artistLabel->fontMetrics();
    int width = kArtistLabelWidth;
    const int artists = ProgressArt::GetNumArtists();
    const int collections = artists >= 2 ? artists - 1 : artists;
    for (int artist = 0; artist < collections; ++artist)
        for (const std::string& line : {ProgressArt::GetArtistName(artist, -1), ProgressArt::GetArtistLifeSpan(artist, -1)})
            width = std::max(width, metrics.horizontalAdvance(QString::fromStdString(line)) + 2);
    return width;
}

void BreakDialog::NextPainting()
{
    if (order.empty())
        return;
    paintingIndex = paintingIndex + 1 >= paintingCount ? 0 : paintingIndex + 1;
    const int artist = ProgressArt::GetPreferedArtist();
    const int picture = order[static_cast<std::size_t>(paintingIndex)];
    painting = ProgressArt::GetPainting(artist, picture);
    portrait = ProgressArt::GetArtistPortrait(artist, picture);
    paintingLabel->setText(QString::fromStdString(ProgressArt::GetPaintingName(artist, picture)));
    // The title right under the painting, which stands centred in the picture area.
    const QRect area = GetPictureRect();
    const int shown = std::min(painting.height(), area.height());
    const int paintingBottom = area.top() + (area.height() - shown) / 2 + shown;
    paintingLabel->move(paintingLabel->x(), paintingBottom + kLabelGap);
    artistLabel->setText(QString::fromStdString(ProgressArt::GetArtistName(artist, picture)) + QLatin1Char('\n') +
                         QString::fromStdString(ProgressArt::GetArtistLifeSpan(artist, picture)));
    update(GetPictureRect());
    update(portraitRect);
}

void BreakDialog::paintEvent(QPaintEvent*)
{
    if (!showPaintings)
        return;
    QPainter painter(this);
    const QRect area = GetPictureRect();
    if (!painting.isNull()) {
        painter.save();
        painter.setClipRect(area);
        painter.drawImage(area.left() + (area.width() - painting.width()) / 2,
                          area.top() + (area.height() - painting.height()) / 2, painting);
        painter.restore();
    }
    if (!portrait.isNull()) {
        painter.setClipRect(portraitRect);
        painter.drawImage(portraitRect.left() + (portraitRect.width() - portrait.width()) / 2, portraitRect.top(),
                          portrait);
    }
}

// --- Stopping ---------------------------------------------------------------------------------

void BreakDialog::accept()
{
    OnOK();
}

void BreakDialog::reject()
{
    OnOK();
}

void BreakDialog::closeEvent(QCloseEvent* event)
{
    if (!event->spontaneous()) {
        // The application closing its windows, not the user: let it go.
        event->accept();
        return;
    }
    // The close box: the window stays, and the user is asked as for the button.
    event->ignore();
    OnOK();
}

void BreakDialog::OnOK()
{
    // Asked once at a time, and only while there is work that may be stopped.
    if (!serving || !allowBreak || questionOpen || !stopButtonCtrl->isEnabled())
        return;
    const std::uint64_t serial = clientSerial;
    questionOpen = true;
    QPointer<BreakDialog> self(this);
    QPointer<CustomMessageBoxDlg> box = new CustomMessageBoxDlg(MB_YESNO | MB_ICONEXCLAMATION, 0, this);
    question = box;
    box->SetText(stopQuestion.c_str());
    box->SetTitle(stopTitle.c_str());
    int answer = IDNO;
    try {
        // The box runs its own event loop: the protocol is served on, and a
        // Finish may come in while it is open.
        answer = box->exec();
    } catch (...) {
        if (self) {
            delete box.data();
            questionOpen = false;
        }
        throw;
    }
    if (!self)
        return;
    delete box.data();
    // A Finish (or another client) came while the box was open: that answers No.
    const bool confirmed = answer == IDYES && serial == clientSerial && serving && questionOpen;
    questionOpen = false;
    if (!confirmed)
        return;
    gauge->SetCaption(LanguageString::Get(kStoppingStringId));
    gauge->repaint();
    if (onStopConfirmed)
        onStopConfirmed();
    stopButtonCtrl->setEnabled(false);
}

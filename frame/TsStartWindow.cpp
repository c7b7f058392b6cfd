#include <KORVAutlwin/frame/TsStartWindow.h>

#include <KORVAutlwin/frame/GUIUtilities.h>


#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

#include <algorithm>

namespace {

TsSplashWindow* gSplash = nullptr;

constexpr int kBackdropWidth = 320;
constexpr int kBackdropHeight = 200;
constexpr int kPanelWidth = 420;
constexpr int kMargin = 20;

} // namespace

TsSplashWindow::TsSplashWindow(const QImage& picture, std::vector<std::string> texts, unsigned long textColour,
                               QWidget* owner)
    : QWidget(owner, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint), mPicture(picture),
      mTexts(std::move(texts)), mTextColour(GUIUtilities::FromColorRef(textColour))
{
    resize(sizeHint());
}

TsSplashWindow::~TsSplashWindow()
{
    if (gSplash == this)
        gSplash = nullptr;
}

bool TsSplashWindow::IsBackdrop() const
{
    return mPicture.width() >= kBackdropWidth && mPicture.height() >= kBackdropHeight;
}

QSize TsSplashWindow::sizeHint() const
{
    if (IsBackdrop())
        return mPicture.size();
    return QSize(std::max(kPanelWidth, mPicture.width() + 3 * kMargin + 200),
                 std::max(kBackdropHeight, mPicture.height() + 2 * kMargin));
}

void TsSplashWindow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QFont titleFont = font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    const QFontMetrics titleMetrics(titleFont);
    const QFontMetrics lineMetrics(font());
    int blockHeight = 0;
    for (std::size_t i = 0; i < mTexts.size(); ++i)
        blockHeight += (i == 0 ? titleMetrics.height() : lineMetrics.height()) + 2;

    int x = kMargin;
    int y = 0;
    if (IsBackdrop()) {
        painter.drawImage(rect(), mPicture);
        y = height() - kMargin - blockHeight;
    } else {
        painter.fillRect(rect(), palette().color(QPalette::Base));
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
        if (!mPicture.isNull()) {
            painter.drawImage(QPoint(kMargin, (height() - mPicture.height()) / 2), mPicture);
            x = 2 * kMargin + mPicture.width();
        }
        y = (height() - blockHeight) / 2;
    }

    painter.setPen(mTextColour);
    for (std::size_t i = 0; i < mTexts.size(); ++i) {
        const bool title = i == 0 && !IsBackdrop();
        painter.setFont(title ? titleFont : font());
        const QFontMetrics& metrics = title ? titleMetrics : lineMetrics;
        const QRect line(x, y, width() - x - kMargin, metrics.height());
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         metrics.elidedText(QString::fromStdString(mTexts[i]), Qt::ElideRight, line.width()));
        y += metrics.height() + 2;
    }
}

TsStartWindow::TsStartWindow(unsigned int pictureId, const std::vector<std::string>& texts, const QPoint* position,
                             unsigned long textColour, QWidget* owner)
{
    Show(GUIUtilities::LoadPicture(pictureId), texts, position, textColour, owner);
}

TsStartWindow::TsStartWindow(const QImage& picture, const std::vector<std::string>& texts, const QPoint* position,
                             unsigned long textColour, QWidget* owner)
{
    Show(picture, texts, position, textColour, owner);
}

TsSplashWindow* TsStartWindow::Instance()
{
    return gSplash;
}

void TsStartWindow::Show(const QImage& picture, const std::vector<std::string>& texts, const QPoint* position,
                         unsigned long textColour, QWidget* owner)
{
    delete gSplash;
    auto* splash = new TsSplashWindow(picture, texts, textColour, owner);
    if (position) {
        splash->move(*position);
    } else if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        QRect placed(QPoint(), splash->size());
        placed.moveCenter(screen->availableGeometry().center());
        splash->move(placed.topLeft());
    }
    gSplash = splash;
    splash->show();
}

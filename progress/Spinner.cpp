#include <KORVAutlwin/progress/Spinner.h>

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointF>

#include <array>
#include <chrono>
#include <cmath>
#include <numbers>

namespace {

// The ring: six dots round the middle of the frame.
constexpr double kRingRadius = 10.0;
constexpr double kDotRadius = 3.2;

const QColor kDotColor(0xC4, 0xCE, 0xD8);      // a dot the bright one has left
const QColor kTrailColor(0x7A, 0xB4, 0xE4);    // the dot it left last
const QColor kBrightColor(0x00, 0x80, 0xE6);   // the moving dot
const QColor kRestColor(0x8F, 0xA3, 0xB5);     // every dot at rest

QPointF DotCentre(int position)
{
    // Clockwise from twelve o'clock.
    const double angle = (position * 60.0 - 90.0) * std::numbers::pi / 180.0;
    const double middle = Spinner::kFrameSize / 2.0;
    return {middle + kRingRadius * std::cos(angle), middle + kRingRadius * std::sin(angle)};
}

QImage DrawFrame(int index)
{
    QImage image(Spinner::kFrameSize, Spinner::kFrameSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (int position = 0; position < Spinner::kTurningFrames; ++position) {
        QColor color = kDotColor;
        double radius = kDotRadius;
        if (index == Spinner::kRestFrame) {
            color = kRestColor;
        } else if (position == index) {
            color = kBrightColor;
            radius += 0.6;
        } else if (position == (index + Spinner::kTurningFrames - 1) % Spinner::kTurningFrames) {
            color = kTrailColor;
        }
        painter.setBrush(color);
        painter.drawEllipse(DotCentre(position), radius, radius);
    }
    return image;
}

const std::array<QImage, Spinner::kFrameCount>& Frames()
{
    // Drawn once, kept to the end of the process like the bitmaps they replace.
    static const std::array<QImage, Spinner::kFrameCount> frames = [] {
        std::array<QImage, Spinner::kFrameCount> drawn;
        for (int index = 0; index < Spinner::kFrameCount; ++index)
            drawn[static_cast<std::size_t>(index)] = DrawFrame(index);
        return drawn;
    }();
    return frames;
}

} // namespace

Spinner::Spinner(QWidget* parent) : QWidget(parent), frame(kRestFrame), lastTick(Now())
{
    Frames();
}

Spinner::~Spinner() = default;

std::uint32_t Spinner::Now()
{
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
}

bool Spinner::StepFrame(int& frameIndex, std::uint32_t& tick, std::uint32_t now)
{
    // Unsigned difference: right across the wrap of the clock.
    if (now - tick <= kStepInterval)
        return false;
    tick = now;
    frameIndex = NextFrame(frameIndex);
    return true;
}

const QImage& Spinner::FrameImage(int index)
{
    return Frames()[static_cast<std::size_t>(index < 0 || index >= kFrameCount ? kRestFrame : index)];
}

void Spinner::Step()
{
    if (StepFrame(frame, lastTick, Now()))
        update();
}

void Spinner::Rest()
{
    lastTick = Now();
    frame = kRestFrame;
    update();
}

QSize Spinner::sizeHint() const
{
    const QMargins margins = contentsMargins();
    return {kFrameSize + margins.left() + margins.right(), kFrameSize + margins.top() + margins.bottom()};
}

void Spinner::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawImage(contentsRect().topLeft(), FrameImage(frame));
}

// artpaint: paints the pictures of the art collection that ships with the
// suite, into the folder named on the command line. Everything is drawn from
// fixed numbers and one fixed random sequence, so every build paints the same
// pictures. Runs without a display: it draws only shapes, no text.

#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>

namespace {

// A small generator of our own: the standard distributions may differ between
// libraries, and the pictures must not.
class Random
{
public:
    explicit Random(std::uint32_t seed) : mState(seed) {}
    std::uint32_t Next()
    {
        mState ^= mState << 13;
        mState ^= mState >> 17;
        mState ^= mState << 5;
        return mState;
    }
    int Between(int low, int high) { return low + static_cast<int>(Next() % static_cast<std::uint32_t>(high - low + 1)); }

private:
    std::uint32_t mState;
};

QImage Canvas(int width, int height, QColor background)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(background);
    return image;
}

// Rectangles of primary colours between heavy black bars.
QImage RedGrid()
{
    QImage image = Canvas(600, 600, QColor(245, 242, 232));
    QPainter painter(&image);
    const int columns[] = {0, 140, 390, 470, 600};
    const int rows[] = {0, 210, 330, 520, 600};
    const QColor colours[] = {QColor(200, 30, 30), QColor(245, 242, 232), QColor(30, 60, 160), QColor(240, 200, 40)};
    Random random(7);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) {
            const QColor colour = (r == 0 && c == 0) ? colours[0] : colours[random.Between(0, 5) % 4];
            painter.fillRect(QRect(QPoint(columns[c], rows[r]), QPoint(columns[c + 1], rows[r + 1])), colour);
        }
    painter.setPen(QPen(Qt::black, 14));
    for (int x : columns)
        painter.drawLine(x, 0, x, 600);
    for (int y : rows)
        painter.drawLine(0, y, 600, y);
    return image;
}

// Rings that run from a warm centre to a cold rim.
QImage ConcentricRipples()
{
    QImage image = Canvas(800, 500, QColor(12, 18, 40));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int ring = 24; ring >= 0; --ring) {
        const double t = ring / 24.0;
        const QColor colour = QColor::fromHsvF(0.08 + 0.55 * t, 0.75, 1.0 - 0.5 * t);
        painter.setBrush(colour);
        painter.setPen(Qt::NoPen);
        const double radius = 18.0 + ring * 19.0;
        painter.drawEllipse(QPointF(330 + ring * 3.0, 260 - ring * 1.5), radius, radius * 0.82);
    }
    return image;
}

// Bands of an evening sky, painted lying on its side (the sky's top at the
// left); the collection stores it a quarter turn clockwise, upright.
QImage DuskStripes()
{
    QImage image = Canvas(700, 480, Qt::black);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int band = 0; band < 12; ++band) {
        const double t = band / 11.0;
        const QColor colour = QColor::fromHsvF(0.05 + 0.62 * t, 0.85, 0.98 - 0.6 * t);
        const double left = band == 0 ? -20.0 : band * 58.0;
        QPainterPath path;
        path.moveTo(left, 0);
        for (int y = 0; y <= 480; y += 10)
            path.lineTo(left + 9.0 * std::sin(y / 55.0 + band), y);
        path.lineTo(700, 480);
        path.lineTo(700, 0);
        path.closeSubpath();
        painter.fillPath(path, colour);
    }
    return image;
}

// Translucent triangles thrown across the canvas.
QImage ScatteredTriangles()
{
    QImage image = Canvas(640, 480, QColor(236, 232, 220));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    Random random(2024);
    for (int i = 0; i < 60; ++i) {
        const QPointF a(random.Between(-40, 680), random.Between(-40, 520));
        const QPointF b = a + QPointF(random.Between(-120, 120), random.Between(-120, 120));
        const QPointF c = a + QPointF(random.Between(-120, 120), random.Between(-120, 120));
        QColor colour = QColor::fromHsv(random.Between(0, 359), random.Between(90, 230), random.Between(120, 250));
        colour.setAlpha(random.Between(80, 180));
        painter.setBrush(colour);
        painter.setPen(QPen(QColor(40, 40, 40, 120), 1.5));
        const QPointF corners[] = {a, b, c};
        painter.drawPolygon(corners, 3);
    }
    return image;
}

// Dots on a golden-angle spiral, growing outwards.
QImage Spiral()
{
    QImage image = Canvas(600, 600, QColor(20, 24, 28));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double golden = M_PI * (3.0 - std::sqrt(5.0));
    for (int i = 0; i < 700; ++i) {
        const double radius = 10.5 * std::sqrt(static_cast<double>(i));
        const double angle = i * golden;
        painter.setBrush(QColor::fromHsvF(std::fmod(i / 700.0 + 0.5, 1.0), 0.7, 0.95));
        painter.drawEllipse(QPointF(300 + radius * std::cos(angle), 300 + radius * std::sin(angle)), 2.0 + i / 130.0,
                            2.0 + i / 130.0);
    }
    return image;
}

// Two fans of fine lines whose overlap makes the picture.
QImage Moire()
{
    QImage image = Canvas(700, 400, Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(20, 40, 90), 1.2));
    for (int i = 0; i <= 140; ++i)
        painter.drawLine(QPointF(120, 420), QPointF(i * 5.0, -10));
    painter.setPen(QPen(QColor(150, 20, 40), 1.2));
    for (int i = 0; i <= 140; ++i)
        painter.drawLine(QPointF(590, 420), QPointF(i * 5.0, -10));
    return image;
}

// The painter's portrait: a face of simple shapes.
QImage Portrait()
{
    QImage image = Canvas(160, 200, QColor(70, 110, 140));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QRadialGradient light(QPointF(70, 80), 90);
    light.setColorAt(0, QColor(250, 215, 180));
    light.setColorAt(1, QColor(200, 150, 115));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(60, 40, 30));
    painter.drawEllipse(QPointF(80, 82), 62, 66);          // hair
    painter.setBrush(QColor(40, 45, 60));
    painter.drawEllipse(QPointF(80, 215), 75, 60);         // shoulders
    painter.setBrush(light);
    painter.drawEllipse(QPointF(80, 98), 48, 58);          // face
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(62, 90), 9, 6);
    painter.drawEllipse(QPointF(98, 90), 9, 6);
    painter.setBrush(QColor(50, 90, 60));
    painter.drawEllipse(QPointF(62, 90), 4, 4);
    painter.drawEllipse(QPointF(98, 90), 4, 4);
    painter.setPen(QPen(QColor(150, 60, 60), 3, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(QRectF(64, 108, 32, 20), 200 * 16, 140 * 16);  // smile
    return image;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: artpaint FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder(argv[1]);
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const struct
    {
        const char* name;
        std::function<QImage()> paint;
    } pictures[] = {
        {"red-grid.png", RedGrid},           {"concentric-ripples.png", ConcentricRipples},
        {"dusk-stripes.png", DuskStripes},   {"scattered-triangles.png", ScatteredTriangles},
        {"spiral.png", Spiral},              {"moire.png", Moire},
        {"portrait.png", Portrait},
    };
    for (const auto& picture : pictures) {
        const std::string path = (folder / picture.name).string();
        if (!picture.paint().save(QString::fromStdString(path), "PNG")) {
            std::fprintf(stderr, "artpaint: %s could not be written\n", path.c_str());
            return 1;
        }
    }
    return 0;
}

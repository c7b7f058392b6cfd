#include <KORVAutlwin/art/ArtImage.h>

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QTransform>

#include <algorithm>
#include <climits>
#include <cstdint>

namespace korva {

int ArtImage::QuarterTurns(int rotation)
{
    const int turns = rotation % 4;
    return turns < 0 ? 0 : turns;
}

QSize ArtImage::FittedSize(QSize size, unsigned int maxWidth, unsigned int maxHeight)
{
    if (size.width() <= 0 || size.height() <= 0)
        return size;
    const std::uint64_t width = static_cast<std::uint64_t>(size.width());
    const std::uint64_t height = static_cast<std::uint64_t>(size.height());
    const bool tooHigh = height > maxHeight;
    const bool tooWide = width > maxWidth;
    if (!tooHigh && !tooWide)
        return size;
    // The scale is the lesser of maxHeight/height and maxWidth/width (of those
    // that are below 1). Compared and applied in integers, so that the
    // truncation gives the exact quotient: 700 by 100 becomes 400 by 57, not 399.
    const bool byHeight = tooHigh && (!tooWide || maxHeight * width <= maxWidth * height);
    std::uint64_t newWidth = byHeight ? width * maxHeight / height : maxWidth;
    std::uint64_t newHeight = byHeight ? maxHeight : height * maxWidth / width;
    // An extreme strip would shrink to nothing on its short side.
    newWidth = std::clamp<std::uint64_t>(newWidth, 1, std::max(1u, maxWidth));
    newHeight = std::clamp<std::uint64_t>(newHeight, 1, std::max(1u, maxHeight));
    return QSize(static_cast<int>(newWidth), static_cast<int>(newHeight));
}

QSize ArtImage::StoredSize(const char* path, int rotation, unsigned int maxWidth, unsigned int maxHeight)
{
    QImageReader reader(QString::fromUtf8(path ? path : ""));
    QSize size = reader.size();
    if (!size.isValid()) {
        // Some formats tell their size only by decoding.
        const QImage image = reader.read();
        if (image.isNull())
            return QSize();
        size = image.size();
    }
    if (QuarterTurns(rotation) % 2 == 1)
        size.transpose();
    return FittedSize(size, maxWidth, maxHeight);
}

QImage ArtImage::Prepare(const char* path, int rotation, unsigned int maxWidth, unsigned int maxHeight)
{
    QImageReader reader(QString::fromUtf8(path ? path : ""));
    QImage image = reader.read();
    if (image.isNull())
        return image;
    if (const int turns = QuarterTurns(rotation))
        image = image.transformed(QTransform().rotate(90.0 * turns));
    const QSize fitted = FittedSize(image.size(), maxWidth, maxHeight);
    if (fitted != image.size())
        image = image.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return image;
}

QByteArray ArtImage::EncodeJpeg(const QImage& image)
{
    QByteArray bytes;
    if (image.isNull())
        return bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(kJpegQuality);
    // JPEG has no transparency: what was transparent becomes black, as on a black background.
    QImage opaque = image;
    if (opaque.hasAlphaChannel()) {
        opaque = QImage(image.size(), QImage::Format_RGB32);
        opaque.fill(Qt::black);
        const QImage premultiplied = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < opaque.height(); ++y) {
            const QRgb* from = reinterpret_cast<const QRgb*>(premultiplied.constScanLine(y));
            QRgb* to = reinterpret_cast<QRgb*>(opaque.scanLine(y));
            // Premultiplied colours are the colours over black.
            for (int x = 0; x < opaque.width(); ++x)
                to[x] = 0xFF000000u | (from[x] & 0x00FFFFFFu);
        }
    }
    if (!writer.write(opaque))
        bytes.clear();
    return bytes;
}

QImage ArtImage::DecodeJpeg(const char* data, std::size_t size)
{
    if (!data || size == 0 || size > static_cast<std::size_t>(INT_MAX))
        return QImage();
    QImage image;
    if (!image.loadFromData(reinterpret_cast<const uchar*>(data), static_cast<int>(size), "jpeg"))
        return QImage();
    if (image.format() != QImage::Format_RGB32)
        image = image.convertToFormat(QImage::Format_RGB32);
    return image;
}

} // namespace korva

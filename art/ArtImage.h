#pragma once
/// \class korva::ArtImage
/// The picture work of art collection files: turning by quarter turns, shrinking
/// to fit, JPEG at quality 75. The tool that builds collections uses the same
/// rules to know the stored sizes before it writes a file.

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <cstddef>

namespace korva {

class ArtImage
{
public:
    /// The JPEG quality of every stored picture.
    static constexpr int kJpegQuality = 75;

    /// The quarter turns clockwise that `rotation` stands for: its remainder by
    /// 4, and none for a negative remainder.
    static int QuarterTurns(int rotation);
    /// The size at which a picture of `size` is stored within maxWidth by
    /// maxHeight: shrunk by one scale for both sides (each side truncated),
    /// never enlarged.
    static QSize FittedSize(QSize size, unsigned int maxWidth, unsigned int maxHeight);
    /// The size at which the picture file `path`, turned by `rotation`, would be
    /// stored; an invalid size when the file cannot be read as a picture.
    /// Reads only the file's header.
    static QSize StoredSize(const char* path, int rotation, unsigned int maxWidth, unsigned int maxHeight);
    /// Loads `path`, turns it by `rotation` and shrinks it with high-quality
    /// filtering; a null image when the file cannot be read as a picture.
    static QImage Prepare(const char* path, int rotation, unsigned int maxWidth, unsigned int maxHeight);
    /// The JPEG bytes of `image` at quality 75; empty when encoding fails.
    static QByteArray EncodeJpeg(const QImage& image);
    /// Decodes JPEG bytes into an opaque 32-bit image (black where the picture
    /// had no colour); a null image when they are no picture.
    static QImage DecodeJpeg(const char* data, std::size_t size);
};

} // namespace korva

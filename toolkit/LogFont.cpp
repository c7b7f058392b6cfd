#include <KORVAutlwin/toolkit/LogFont.h>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

namespace korva {

int MulDiv(int number, int numerator, int denominator)
{
    if (denominator == 0)
        return -1;
    const long long product = static_cast<long long>(number) * numerator;
    long long quotient = product / denominator;
    const long long remainder = product % denominator;
    if (std::llabs(remainder) * 2 >= std::llabs(static_cast<long long>(denominator)))
        quotient += ((product < 0) != (denominator < 0)) ? -1 : 1;
    if (quotient > INT_MAX || quotient < INT_MIN)
        return -1;
    return static_cast<int>(quotient);
}

int ScreenLogPixelsY()
{
    if (!qGuiApp)
        return 96;
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? static_cast<int>(std::lround(screen->logicalDotsPerInchY())) : 96;
}

LOGFONT LogFontFromQFont(const QFont& font, int logPixelsY)
{
    LOGFONT logFont{};
    if (font.pixelSize() > 0)
        logFont.lfHeight = -font.pixelSize();
    else
        logFont.lfHeight = -std::lround(font.pointSizeF() * logPixelsY / 72.0);
    logFont.lfWeight = font.weight();
    logFont.lfItalic = font.italic() ? 1 : 0;
    logFont.lfUnderline = font.underline() ? 1 : 0;
    logFont.lfStrikeOut = font.strikeOut() ? 1 : 0;
    logFont.lfCharSet = DEFAULT_CHARSET;

    unsigned char family = FF_DONTCARE;
    switch (font.styleHint()) {
    case QFont::Serif: family = FF_ROMAN; break;
    case QFont::SansSerif: family = FF_SWISS; break;
    case QFont::TypeWriter: family = FF_MODERN; break;
    case QFont::Cursive: family = FF_SCRIPT; break;
    case QFont::Decorative: family = FF_DECORATIVE; break;
    default: break;
    }
    logFont.lfPitchAndFamily = static_cast<unsigned char>(family | (font.fixedPitch() ? FIXED_PITCH : DEFAULT_PITCH));

    // Cut on a character boundary, never inside a UTF-8 sequence.
    const std::string face = font.family().toStdString();
    std::size_t length = std::min<std::size_t>(face.size(), LF_FACESIZE - 1);
    while (length > 0 && length < face.size() && (static_cast<unsigned char>(face[length]) & 0xC0) == 0x80)
        --length;
    std::memcpy(logFont.lfFaceName, face.data(), length);
    logFont.lfFaceName[length] = '\0';
    return logFont;
}

QFont CreateFontIndirect(const LOGFONT& logFont)
{
    QFont font = qGuiApp ? QGuiApplication::font() : QFont();
    const std::string face(logFont.lfFaceName, strnlen(logFont.lfFaceName, LF_FACESIZE));
    if (!face.empty())
        font.setFamily(QString::fromStdString(face));

    switch (logFont.lfPitchAndFamily & 0xF0) {
    case FF_ROMAN: font.setStyleHint(QFont::Serif); break;
    case FF_SWISS: font.setStyleHint(QFont::SansSerif); break;
    case FF_MODERN: font.setStyleHint(QFont::TypeWriter); break;
    case FF_SCRIPT: font.setStyleHint(QFont::Cursive); break;
    case FF_DECORATIVE: font.setStyleHint(QFont::Decorative); break;
    default: break;
    }
    if ((logFont.lfPitchAndFamily & 0x03) == FIXED_PITCH)
        font.setFixedPitch(true);

    if (logFont.lfHeight < 0) {
        font.setPixelSize(static_cast<int>(-logFont.lfHeight));
    } else if (logFont.lfHeight > 0) {
        const int cell = static_cast<int>(logFont.lfHeight);
        font.setPixelSize(cell);
        if (qGuiApp) {
            // The cell is ascent plus descent: scale the character height to fit it.
            const qreal measured = QFontMetricsF(font).height();
            if (measured > 0)
                font.setPixelSize(std::max(1, static_cast<int>(std::lround(cell * cell / measured))));
        }
    }

    if (logFont.lfWeight != FW_DONTCARE)
        font.setWeight(static_cast<QFont::Weight>(std::clamp<long>(logFont.lfWeight, 1, 1000)));
    else
        font.setWeight(QFont::Normal);
    font.setItalic(logFont.lfItalic != 0);
    font.setUnderline(logFont.lfUnderline != 0);
    font.setStrikeOut(logFont.lfStrikeOut != 0);
    if (logFont.lfQuality == NONANTIALIASED_QUALITY)
        font.setStyleStrategy(QFont::NoAntialias);
    else if (logFont.lfQuality == ANTIALIASED_QUALITY)
        font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

} // namespace korva

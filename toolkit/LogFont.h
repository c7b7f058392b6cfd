#pragma once
// A font description in the shape that the suite's font code has always
// adapted (height in pixels, weight, pitch and family bits, face name), and its
// passage to and from QFont. Heights follow the old rule: negative for the
// character height (what QFont calls the pixel size), positive for the cell
// height (ascent plus descent), 0 for the default size.

#include <QFont>

constexpr int LF_FACESIZE = 32;

/// A font description: height, weight, pitch and family bits, face name.
struct LOGFONT
{
    long lfHeight;
    long lfWidth;
    long lfEscapement;
    long lfOrientation;
    long lfWeight;
    unsigned char lfItalic;
    unsigned char lfUnderline;
    unsigned char lfStrikeOut;
    unsigned char lfCharSet;
    unsigned char lfOutPrecision;
    unsigned char lfClipPrecision;
    unsigned char lfQuality;
    unsigned char lfPitchAndFamily;
    char lfFaceName[LF_FACESIZE];  // UTF-8, zero-terminated
};

// Weights.
constexpr long FW_DONTCARE = 0;
constexpr long FW_LIGHT = 300;
constexpr long FW_NORMAL = 400;
constexpr long FW_BOLD = 700;
// Pitch (low bits) and family (high bits) of lfPitchAndFamily.
constexpr unsigned char DEFAULT_PITCH = 0x00;
constexpr unsigned char FIXED_PITCH = 0x01;
constexpr unsigned char VARIABLE_PITCH = 0x02;
constexpr unsigned char FF_DONTCARE = 0x00;
constexpr unsigned char FF_ROMAN = 0x10;
constexpr unsigned char FF_SWISS = 0x20;
constexpr unsigned char FF_MODERN = 0x30;
constexpr unsigned char FF_SCRIPT = 0x40;
constexpr unsigned char FF_DECORATIVE = 0x50;
// Character set and quality.
constexpr unsigned char ANSI_CHARSET = 0;
constexpr unsigned char DEFAULT_CHARSET = 1;
constexpr unsigned char DEFAULT_QUALITY = 0;
constexpr unsigned char NONANTIALIASED_QUALITY = 3;
constexpr unsigned char ANTIALIASED_QUALITY = 4;

namespace korva {

/// `number` * `numerator` / `denominator` with a 64-bit intermediate, rounded
/// half away from zero; -1 when `denominator` is 0 or the result leaves int.
int MulDiv(int number, int numerator, int denominator);

/// Logical pixels per inch, vertically, of the primary screen; 96 when there
/// is no GUI application or no screen.
int ScreenLogPixelsY();

/// `font` as a description: the height in pixels at `logPixelsY` (negative, the
/// character height), weight, italic, underline, strike-out, pitch and family
/// from its fixed pitch and style hint, and its family as the face name (cut
/// at a character boundary to fit).
LOGFONT LogFontFromQFont(const QFont& font, int logPixelsY);

/// The font that `logFont` describes. Starts from the application font, so an
/// empty face name keeps the application's family; the family bits become the
/// style hint that picks a substitute for a face that is not installed. A
/// positive height is matched to the cell height through the font's metrics
/// (needs a GUI application, else it counts as character height). Width,
/// escapement, orientation, character set and precisions have no QFont
/// counterpart and are not used.
QFont CreateFontIndirect(const LOGFONT& logFont);

} // namespace korva

#pragma once
/// \class StandardFont
/// The suite's twelve fonts, the same for every window. Most derive from the
/// message font, which on this platform is the application font
/// (QGuiApplication::font()); sizes in points become pixel heights at the
/// primary screen's vertical resolution. Only the user interface thread uses
/// this class; nothing is locked. Fonts need a GUI application.

#include <KORVAutlwin/toolkit/LogFont.h>

#include <QFont>

class StandardFont
{
public:
    /// `GetFont`'s selector; the numbers are fixed.
    enum FontType {
        eFontMessage = 0,           // the message font
        eFontMessage12 = 1,         // message font, 12 points
        eFontMessageBold = 2,       // message font, weight 700
        eFontMessage12Bold = 3,     // message font, 12 points, weight 700
        eFontTimes16BoldItalic = 4, // "Times New Roman", 16 points, 700, italic, FF_ROMAN
        eFontMessage22Bold = 5,     // message font, 22 points, weight 700
        eFontMessageItalic = 6,     // message font, italic
        eFontMessage8 = 7,          // message font, 8 points
        eFontMessage7 = 8,          // message font, 7 points
        eFontCourier8Bold = 9,      // "Courier New", 8 points, 700, FIXED_PITCH | FF_MODERN
        eFontCourier9Light = 10,    // "Courier New", 9 points, 300, FIXED_PITCH | FF_MODERN
        eFontMessageUnderline = 11, // message font, underlined
    };
    static constexpr int kFontCount = 12;

    StandardFont() = delete;

    /// The twelve fonts, indexed by FontType; null until the first GetFont and
    /// after UnloadFonts.
    static QFont* spFonts;

    /// The font of `type`, made with all others at the first call. `type` must
    /// be one of FontType's values: it indexes the array unchecked.
    static QFont* GetFont(FontType type);
    /// Allocates `spFonts` (when not there yet) and makes every font from its
    /// description (GetLogFont).
    static void InitFonts();
    /// Fills `logFont` with the description of `type`'s font, for callers that
    /// adapt it and make their own with korva::CreateFontIndirect. Rows with a
    /// face of their own start from an all-zero description, the others from
    /// the message font. A type outside FontType gives the message font.
    static void GetLogFont(FontType type, LOGFONT& logFont);
    /// Deletes the twelve fonts and frees the array; pointers taken before are
    /// invalid after it, and the next GetFont makes them again.
    static void UnloadFonts();

    /// The message font as a description, its height in pixels at the screen's
    /// vertical resolution.
    static LOGFONT GetMessageLogFont();
};

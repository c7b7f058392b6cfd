#include <KORVAutlwin/toolkit/StandardFont.h>

#include <QGuiApplication>

#include <cstring>

QFont* StandardFont::spFonts = nullptr;

namespace {

// lfHeight of a size in points at the screen's vertical resolution.
long HeightOfPoints(int points)
{
    return -korva::MulDiv(points, korva::ScreenLogPixelsY(), 72);
}

LOGFONT FaceLogFont(const char* face, int points, long weight, unsigned char pitchAndFamily)
{
    LOGFONT logFont{};
    std::strncpy(logFont.lfFaceName, face, LF_FACESIZE - 1);
    logFont.lfHeight = HeightOfPoints(points);
    logFont.lfWeight = weight;
    logFont.lfPitchAndFamily = pitchAndFamily;
    return logFont;
}

} // namespace

LOGFONT StandardFont::GetMessageLogFont()
{
    return korva::LogFontFromQFont(qGuiApp ? QGuiApplication::font() : QFont(), korva::ScreenLogPixelsY());
}

void StandardFont::GetLogFont(FontType type, LOGFONT& logFont)
{
    switch (type) {
    case eFontTimes16BoldItalic:
        logFont = FaceLogFont("Times New Roman", 16, FW_BOLD, FF_ROMAN);
        logFont.lfItalic = 1;
        return;
    case eFontCourier8Bold:
        logFont = FaceLogFont("Courier New", 8, FW_BOLD, FIXED_PITCH | FF_MODERN);
        return;
    case eFontCourier9Light:
        logFont = FaceLogFont("Courier New", 9, FW_LIGHT, FIXED_PITCH | FF_MODERN);
        return;
    default:
        break;
    }

    logFont = GetMessageLogFont();
    switch (type) {
    case eFontMessage12:
        logFont.lfHeight = HeightOfPoints(12);
        break;
    case eFontMessageBold:
        logFont.lfWeight = FW_BOLD;
        break;
    case eFontMessage12Bold:
        logFont.lfHeight = HeightOfPoints(12);
        logFont.lfWeight = FW_BOLD;
        break;
    case eFontMessage22Bold:
        logFont.lfHeight = HeightOfPoints(22);
        logFont.lfWeight = FW_BOLD;
        break;
    case eFontMessageItalic:
        logFont.lfItalic = 1;
        break;
    case eFontMessage8:
        logFont.lfHeight = HeightOfPoints(8);
        break;
    case eFontMessage7:
        logFont.lfHeight = HeightOfPoints(7);
        break;
    case eFontMessageUnderline:
        logFont.lfUnderline = 1;
        break;
    default:
        break;
    }
}

void StandardFont::InitFonts()
{
    if (!spFonts)
        spFonts = new QFont[kFontCount];
    for (int i = 0; i < kFontCount; ++i) {
        LOGFONT logFont{};
        GetLogFont(static_cast<FontType>(i), logFont);
        spFonts[i] = korva::CreateFontIndirect(logFont);
    }
}

QFont* StandardFont::GetFont(FontType type)
{
    if (!spFonts)
        InitFonts();
    return &spFonts[type];
}

void StandardFont::UnloadFonts()
{
    delete[] spFonts;
    spFonts = nullptr;
}

// The suite's fonts and the font descriptions they are made from; the system
// colours that follow the application palette.

#include "GuiApplication.h"

#include <KORVAutlwin/toolkit/DisplayColor.h>
#include <KORVAutlwin/toolkit/LogFont.h>
#include <KORVAutlwin/toolkit/StandardFont.h>

#include <QFontMetricsF>

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

namespace {

using SF = StandardFont;

// Height, weight, italic, underline, strike-out, character set, pitch and family, face: one comparable piece.
auto Fields(const LOGFONT& lf)
{
    return std::tuple(lf.lfHeight, lf.lfWeight, +lf.lfItalic, +lf.lfUnderline, +lf.lfStrikeOut, +lf.lfCharSet,
                      +lf.lfPitchAndFamily, std::string(lf.lfFaceName));
}

// A message font of `pixels` and no fonts made yet. (The application font may stay so: no other test relies on it.)
void UseMessageFont(int pixels)
{
    korva::test::Application();
    QFont message = QGuiApplication::font();
    message.setPixelSize(pixels);
    QGuiApplication::setFont(message);
    SF::UnloadFonts();
}

TEST(StandardFontTest, DescriptionsOfTheTwelveFontsAndTheFontsMadeFromThem)
{
    UseMessageFont(13);   // a size that tells the rows that keep it from those that change it
    // Size in points (0: the message font's), weight, italic, underline, face (null: the message font's family),
    // pitch and family, character set. The faced rows start from nothing, the others from the message font.
    const std::tuple<SF::FontType, int, long, int, int, const char*, int, int> rows[] = {
        {SF::eFontMessage, 0, FW_NORMAL, 0, 0, nullptr, 0, DEFAULT_CHARSET},
        {SF::eFontMessage12, 12, FW_NORMAL, 0, 0, nullptr, 0, DEFAULT_CHARSET},
        {SF::eFontMessageBold, 0, FW_BOLD, 0, 0, nullptr, 0, DEFAULT_CHARSET},
        {SF::eFontMessage12Bold, 12, FW_BOLD, 0, 0, nullptr, 0, DEFAULT_CHARSET},
        {SF::eFontTimes16BoldItalic, 16, FW_BOLD, 1, 0, "Times New Roman", FF_ROMAN, ANSI_CHARSET},
        {SF::eFontMessage22Bold, 22, FW_BOLD, 0, 0, nullptr, 0, DEFAULT_CHARSET},
        {SF::eFontMessageItalic, 0, FW_NORMAL, 1, 0, nullptr, 0, DEFAULT_CHARSET},
        {SF::eFontMessage8, 8, FW_NORMAL, 0, 0, nullptr, 0, DEFAULT_CHARSET},
        {SF::eFontMessage7, 7, FW_NORMAL, 0, 0, nullptr, 0, DEFAULT_CHARSET},
        {SF::eFontCourier8Bold, 8, FW_BOLD, 0, 0, "Courier New", FIXED_PITCH | FF_MODERN, ANSI_CHARSET},
        {SF::eFontCourier9Light, 9, FW_LIGHT, 0, 0, "Courier New", FIXED_PITCH | FF_MODERN, ANSI_CHARSET},
        {SF::eFontMessageUnderline, 0, FW_NORMAL, 0, 1, nullptr, 0, DEFAULT_CHARSET},
    };
    const std::string family = QGuiApplication::font().family().toStdString();
    for (const auto& [type, points, weight, italic, underline, face, pitch, charSet] : rows) {
        SCOPED_TRACE(type);
        LOGFONT lf{};
        SF::GetLogFont(type, lf);
        const long height = points ? -korva::MulDiv(points, korva::ScreenLogPixelsY(), 72) : -13;
        EXPECT_EQ(Fields(lf), std::tuple(height, weight, italic, underline, 0, charSet, pitch, face ? face : family));
    }

    // The fonts are made from those descriptions in that order, and after an unload from the message font of then.
    EXPECT_TRUE(SF::GetFont(SF::eFontMessageUnderline)->underline());
    EXPECT_EQ(SF::GetFont(SF::eFontCourier9Light)->styleHint(), QFont::TypeWriter);
    UseMessageFont(21);
    EXPECT_EQ(SF::spFonts, nullptr);
    EXPECT_EQ(SF::GetFont(SF::eFontMessageBold)->pixelSize(), 21);
}

TEST(LogFontTest, MulDivRoundsAndDescriptionsSurviveTheWayThroughQFont)
{
    // 10.67, 9.33 and 4.5 rounded, away from 0; a division by 0 and a result beyond int (but not a product) give -1.
    EXPECT_EQ((std::vector<int>{korva::MulDiv(8, 96, 72), korva::MulDiv(7, 96, 72), korva::MulDiv(3, 3, 2),
                                korva::MulDiv(-3, 3, 2), korva::MulDiv(1, 2, 0), korva::MulDiv(0x40000000, 4, 1),
                                korva::MulDiv(0x40000000, 4, 4)}),
              (std::vector<int>{11, 9, 5, -5, -1, -1, 0x40000000}));

    korva::test::Application();
    LOGFONT lf{};
    std::strcpy(lf.lfFaceName, "DejaVu Serif");
    std::tie(lf.lfHeight, lf.lfWeight, lf.lfItalic, lf.lfStrikeOut, lf.lfCharSet, lf.lfPitchAndFamily) =
        std::tuple(-17L, 600L, 1, 1, DEFAULT_CHARSET, FF_ROMAN);
    EXPECT_EQ(Fields(korva::LogFontFromQFont(korva::CreateFontIndirect(lf), 96)), Fields(lf));

    // A size in points becomes pixels at the resolution given.
    QFont points("DejaVu Sans");
    points.setPointSize(9);
    EXPECT_EQ(std::tuple(korva::LogFontFromQFont(points, 96).lfHeight, korva::LogFontFromQFont(points, 144).lfHeight),
              std::tuple(-12, -18));

    // A positive height is the cell: ascent plus descent match it, where a character height of 30 would overshoot.
    LOGFONT cellHeight{};
    cellHeight.lfHeight = 30;
    const QFont cell = korva::CreateFontIndirect(cellHeight);
    EXPECT_NEAR(QFontMetricsF(cell).height(), 30.0, 2.0);
    EXPECT_LT(cell.pixelSize(), 30);

    // A long face name is cut on a character boundary: here before the "\xC3\xA4" that would end at byte 32.
    const QFont longFace(QString::fromStdString(std::string(30, 'x') + "\xC3\xA4"));
    EXPECT_EQ(std::string(korva::LogFontFromQFont(longFace, 96).lfFaceName), std::string(30, 'x'));
}

TEST(SysColorTest, SystemColoursFollowTheApplicationPalette)
{
    korva::test::Application();
    const QPalette saved = QGuiApplication::palette();
    QPalette palette = saved;
    palette.setColor(QPalette::Button, QColor(1, 2, 3));
    QGuiApplication::setPalette(palette);
    EXPECT_EQ(korva::GetSysColor(COLOR_BTNFACE), RGB(1, 2, 3));
    QGuiApplication::setPalette(saved);
    EXPECT_EQ(korva::SysColorRole(25), QPalette::Window);   // no such index
    // COLORREF's high byte means nothing to QColor, and alpha nothing to COLORREF.
    EXPECT_EQ(korva::ToQColor(0xFF563412), QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(korva::FromQColor(QColor(0x12, 0x34, 0x56, 0x80)), RGB(0x12, 0x34, 0x56));
}

} // namespace

// The suite's fonts and the font descriptions they are made from; the system
// colours that follow the application palette.

#include "../frame/TestApplication.h"

#include <KORVAutlwin/toolkit/DisplayColor.h>
#include <KORVAutlwin/toolkit/LogFont.h>
#include <KORVAutlwin/toolkit/StandardFont.h>

#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

class StandardFontTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        korva::test::Application();
        // A message font of known size, so that the rows that keep it are told
        // apart from those that change it.
        mSaved = QGuiApplication::font();
        QFont message = mSaved;
        message.setPixelSize(13);
        message.setWeight(QFont::Normal);
        QGuiApplication::setFont(message);
        StandardFont::UnloadFonts();
    }
    void TearDown() override
    {
        StandardFont::UnloadFonts();
        QGuiApplication::setFont(mSaved);
    }

    static long Points(int points) { return -korva::MulDiv(points, korva::ScreenLogPixelsY(), 72); }

    QFont mSaved;
};

TEST_F(StandardFontTest, DescriptionsOfTheTwelveRows)
{
    const std::string family = QGuiApplication::font().family().toStdString();
    LOGFONT lf{};
    StandardFont::GetLogFont(StandardFont::eFontMessage, lf);
    EXPECT_EQ(lf.lfHeight, -13);
    EXPECT_EQ(lf.lfWeight, FW_NORMAL);
    EXPECT_EQ(std::string(lf.lfFaceName), family);

    StandardFont::GetLogFont(StandardFont::eFontMessage12, lf);
    EXPECT_EQ(lf.lfHeight, Points(12));
    EXPECT_EQ(lf.lfWeight, FW_NORMAL);

    StandardFont::GetLogFont(StandardFont::eFontMessageBold, lf);
    EXPECT_EQ(lf.lfHeight, -13);
    EXPECT_EQ(lf.lfWeight, FW_BOLD);

    StandardFont::GetLogFont(StandardFont::eFontMessage12Bold, lf);
    EXPECT_EQ(lf.lfHeight, Points(12));
    EXPECT_EQ(lf.lfWeight, FW_BOLD);

    StandardFont::GetLogFont(StandardFont::eFontTimes16BoldItalic, lf);
    EXPECT_STREQ(lf.lfFaceName, "Times New Roman");
    EXPECT_EQ(lf.lfHeight, Points(16));
    EXPECT_EQ(lf.lfWeight, FW_BOLD);
    EXPECT_EQ(lf.lfItalic, 1);
    EXPECT_EQ(lf.lfPitchAndFamily, 0x10);
    EXPECT_EQ(lf.lfCharSet, 0);  // from the all-zero start, unlike the message rows

    StandardFont::GetLogFont(StandardFont::eFontMessage22Bold, lf);
    EXPECT_EQ(lf.lfHeight, Points(22));
    EXPECT_EQ(lf.lfWeight, FW_BOLD);

    StandardFont::GetLogFont(StandardFont::eFontMessageItalic, lf);
    EXPECT_EQ(lf.lfHeight, -13);
    EXPECT_EQ(lf.lfItalic, 1);
    EXPECT_EQ(lf.lfUnderline, 0);

    StandardFont::GetLogFont(StandardFont::eFontMessage8, lf);
    EXPECT_EQ(lf.lfHeight, Points(8));
    StandardFont::GetLogFont(StandardFont::eFontMessage7, lf);
    EXPECT_EQ(lf.lfHeight, Points(7));

    StandardFont::GetLogFont(StandardFont::eFontCourier8Bold, lf);
    EXPECT_STREQ(lf.lfFaceName, "Courier New");
    EXPECT_EQ(lf.lfHeight, Points(8));
    EXPECT_EQ(lf.lfWeight, FW_BOLD);
    EXPECT_EQ(lf.lfPitchAndFamily, 0x31);

    StandardFont::GetLogFont(StandardFont::eFontCourier9Light, lf);
    EXPECT_EQ(lf.lfHeight, Points(9));
    EXPECT_EQ(lf.lfWeight, 300);
    EXPECT_EQ(lf.lfPitchAndFamily, 0x31);
    EXPECT_EQ(lf.lfItalic, 0);

    StandardFont::GetLogFont(StandardFont::eFontMessageUnderline, lf);
    EXPECT_EQ(lf.lfHeight, -13);
    EXPECT_EQ(lf.lfUnderline, 1);
    EXPECT_EQ(lf.lfItalic, 0);
}

TEST_F(StandardFontTest, FontsAreMadeFromTheirDescriptions)
{
    const QFont* message = StandardFont::GetFont(StandardFont::eFontMessage);
    ASSERT_NE(StandardFont::spFonts, nullptr);
    EXPECT_EQ(message, &StandardFont::spFonts[0]);
    EXPECT_EQ(message->family(), QGuiApplication::font().family());
    EXPECT_EQ(message->pixelSize(), 13);

    EXPECT_EQ(StandardFont::GetFont(StandardFont::eFontMessage12)->pixelSize(), -Points(12));
    EXPECT_EQ(StandardFont::GetFont(StandardFont::eFontMessage22Bold)->weight(), QFont::Bold);
    EXPECT_TRUE(StandardFont::GetFont(StandardFont::eFontMessageItalic)->italic());
    EXPECT_TRUE(StandardFont::GetFont(StandardFont::eFontMessageUnderline)->underline());
    EXPECT_FALSE(StandardFont::GetFont(StandardFont::eFontMessageBold)->italic());

    const QFont* times = StandardFont::GetFont(StandardFont::eFontTimes16BoldItalic);
    EXPECT_EQ(times->family(), "Times New Roman");
    EXPECT_EQ(times->styleHint(), QFont::Serif);
    EXPECT_TRUE(times->italic());

    const QFont* courier = StandardFont::GetFont(StandardFont::eFontCourier9Light);
    EXPECT_EQ(courier->family(), "Courier New");
    EXPECT_EQ(courier->weight(), QFont::Light);
    EXPECT_TRUE(courier->fixedPitch());
    EXPECT_EQ(courier->styleHint(), QFont::TypeWriter);
    // Whatever stands in for the face here, it is a fixed-pitch one.
    EXPECT_TRUE(QFontInfo(*courier).fixedPitch());
}

TEST_F(StandardFontTest, UnloadFreesTheArrayAndTheNextCallMakesItAgain)
{
    StandardFont::GetFont(StandardFont::eFontMessage);
    StandardFont::UnloadFonts();
    EXPECT_EQ(StandardFont::spFonts, nullptr);

    // The next fonts follow the message font of that moment.
    QFont bigger = QGuiApplication::font();
    bigger.setPixelSize(21);
    QGuiApplication::setFont(bigger);
    EXPECT_EQ(StandardFont::GetFont(StandardFont::eFontMessageBold)->pixelSize(), 21);
    EXPECT_EQ(StandardFont::GetFont(StandardFont::eFontMessage8)->pixelSize(), -Points(8));
}

// --- Descriptions and QFont ---------------------------------------------------------------

TEST(LogFontTest, MulDivRoundsHalfAwayFromZero)
{
    EXPECT_EQ(korva::MulDiv(8, 96, 72), 11);   // 10.67
    EXPECT_EQ(korva::MulDiv(7, 96, 72), 9);    // 9.33
    EXPECT_EQ(korva::MulDiv(3, 3, 2), 5);      // 4.5
    EXPECT_EQ(korva::MulDiv(-3, 3, 2), -5);
    EXPECT_EQ(korva::MulDiv(3, 3, -2), -5);
    EXPECT_EQ(korva::MulDiv(1, 2, 0), -1);
    EXPECT_EQ(korva::MulDiv(0x40000000, 4, 1), -1);  // beyond int
    EXPECT_EQ(korva::MulDiv(0x40000000, 4, 4), 0x40000000);  // but not in between
}

TEST(LogFontTest, DescriptionSurvivesTheWayThroughQFont)
{
    korva::test::Application();
    LOGFONT lf{};
    std::strcpy(lf.lfFaceName, "DejaVu Serif");
    lf.lfHeight = -17;
    lf.lfWeight = 600;
    lf.lfItalic = 1;
    lf.lfStrikeOut = 1;
    lf.lfPitchAndFamily = FF_ROMAN;
    const QFont font = korva::CreateFontIndirect(lf);
    EXPECT_EQ(font.pixelSize(), 17);
    EXPECT_EQ(font.weight(), 600);
    EXPECT_TRUE(font.strikeOut());
    EXPECT_FALSE(font.underline());

    const LOGFONT back = korva::LogFontFromQFont(font, 96);
    EXPECT_EQ(back.lfHeight, -17);
    EXPECT_EQ(back.lfWeight, 600);
    EXPECT_EQ(back.lfItalic, 1);
    EXPECT_EQ(back.lfStrikeOut, 1);
    EXPECT_EQ(back.lfPitchAndFamily, FF_ROMAN);
    EXPECT_STREQ(back.lfFaceName, "DejaVu Serif");

    // A size in points becomes pixels at the resolution given.
    QFont points("DejaVu Sans");
    points.setPointSize(9);
    EXPECT_EQ(korva::LogFontFromQFont(points, 96).lfHeight, -12);
    EXPECT_EQ(korva::LogFontFromQFont(points, 144).lfHeight, -18);
}

TEST(LogFontTest, PositiveHeightIsTheCell)
{
    korva::test::Application();
    LOGFONT lf{};
    lf.lfHeight = 30;
    const QFont font = korva::CreateFontIndirect(lf);
    // Ascent plus descent match the cell, where a character height of 30 would overshoot.
    EXPECT_NEAR(QFontMetricsF(font).height(), 30.0, 2.0);
    EXPECT_LT(font.pixelSize(), 30);
}

TEST(LogFontTest, LongFaceNamesAreCutOnACharacterBoundary)
{
    korva::test::Application();
    QFont font;
    font.setFamily(QString::fromUtf8("Schrift mit \xC3\xBC" "berlangem Namen \xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA4\xC3\xB6\xC3\xBC"));
    const LOGFONT lf = korva::LogFontFromQFont(font, 96);
    const std::string face = lf.lfFaceName;
    EXPECT_LE(face.size(), 31u);
    EXPECT_GE(face.size(), 30u);
    EXPECT_TRUE(QString::fromStdString(face).toStdString() == face);  // no broken sequence
    EXPECT_EQ(QString::fromStdString(face).indexOf(QChar(0xFFFD)), -1);
}

// --- System colours -----------------------------------------------------------------------

TEST(SysColorTest, SystemColoursFollowTheApplicationPalette)
{
    korva::test::Application();
    const QPalette saved = QGuiApplication::palette();
    QPalette palette = saved;
    palette.setColor(QPalette::Button, QColor(1, 2, 3));
    palette.setColor(QPalette::Highlight, QColor(4, 5, 6));
    palette.setColor(QPalette::Base, QColor(7, 8, 9));
    QGuiApplication::setPalette(palette);
    EXPECT_EQ(korva::GetSysColor(COLOR_BTNFACE), RGB(1, 2, 3));
    EXPECT_EQ(korva::GetSysColor(COLOR_HIGHLIGHT), RGB(4, 5, 6));
    EXPECT_EQ(korva::GetSysColor(COLOR_WINDOW), RGB(7, 8, 9));
    QGuiApplication::setPalette(saved);
    EXPECT_EQ(korva::GetSysColor(COLOR_BTNFACE), korva::FromQColor(saved.color(QPalette::Button)));
    EXPECT_EQ(korva::SysColorRole(25), QPalette::Window);  // no such index
}

TEST(SysColorTest, TheOffscreenDisplayIsTrueColour)
{
    korva::test::Application();
    EXPECT_GT(korva::DisplayColorDepth(), 8);
}

TEST(ColorRefTest, ChannelsAndQColor)
{
    constexpr COLORREF c = RGB(0x12, 0x34, 0x56);
    static_assert(c == 0x563412);
    EXPECT_EQ(GetRValue(c), 0x12);
    EXPECT_EQ(GetGValue(c), 0x34);
    EXPECT_EQ(GetBValue(c), 0x56);
    EXPECT_EQ(korva::ToQColor(c), QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(korva::ToQColor(0xFF563412), QColor(0x12, 0x34, 0x56));  // the high byte means nothing
    EXPECT_EQ(korva::FromQColor(QColor(0x12, 0x34, 0x56, 0x80)), c);
}

} // namespace

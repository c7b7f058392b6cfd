// The suite's fonts and the font descriptions they are made from; the system
// colours that follow the application palette.

#include "GuiApplication.h"

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
    const struct
    {
        StandardFont::FontType type;
        int points;  // 0: the message font's height
        long weight;
        int italic, underline;
        const char* face;  // null: the message font's family
        int pitchAndFamily;
    } rows[] = {
        {StandardFont::eFontMessage, 0, FW_NORMAL, 0, 0, nullptr, -1},
        {StandardFont::eFontMessage12, 12, FW_NORMAL, 0, 0, nullptr, -1},
        {StandardFont::eFontMessageBold, 0, FW_BOLD, 0, 0, nullptr, -1},
        {StandardFont::eFontMessage12Bold, 12, FW_BOLD, 0, 0, nullptr, -1},
        {StandardFont::eFontTimes16BoldItalic, 16, FW_BOLD, 1, 0, "Times New Roman", 0x10},
        {StandardFont::eFontMessage22Bold, 22, FW_BOLD, 0, 0, nullptr, -1},
        {StandardFont::eFontMessageItalic, 0, FW_NORMAL, 1, 0, nullptr, -1},
        {StandardFont::eFontMessage8, 8, FW_NORMAL, 0, 0, nullptr, -1},
        {StandardFont::eFontMessage7, 7, FW_NORMAL, 0, 0, nullptr, -1},
        {StandardFont::eFontCourier8Bold, 8, FW_BOLD, 0, 0, "Courier New", 0x31},
        {StandardFont::eFontCourier9Light, 9, 300, 0, 0, "Courier New", 0x31},
        {StandardFont::eFontMessageUnderline, 0, FW_NORMAL, 0, 1, nullptr, -1},
    };
    const std::string family = QGuiApplication::font().family().toStdString();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        LOGFONT lf{};
        StandardFont::GetLogFont(row.type, lf);
        EXPECT_EQ(lf.lfHeight, row.points ? Points(row.points) : -13);
        EXPECT_EQ(lf.lfWeight, row.weight);
        EXPECT_EQ(lf.lfItalic, row.italic);
        EXPECT_EQ(lf.lfUnderline, row.underline);
        EXPECT_EQ(std::string(lf.lfFaceName), row.face ? row.face : family);
        if (row.pitchAndFamily >= 0) {
            EXPECT_EQ(lf.lfPitchAndFamily, row.pitchAndFamily);
            EXPECT_EQ(lf.lfCharSet, 0);  // from the all-zero start, unlike the message rows
        }
    }
}

TEST_F(StandardFontTest, FontsAreMadeFromTheirDescriptionsAndMadeAgainAfterUnload)
{
    const QFont* message = StandardFont::GetFont(StandardFont::eFontMessage);
    ASSERT_NE(StandardFont::spFonts, nullptr);
    EXPECT_EQ(message, &StandardFont::spFonts[0]);
    EXPECT_EQ(message->pixelSize(), 13);
    EXPECT_EQ(StandardFont::GetFont(StandardFont::eFontMessage12)->pixelSize(), -Points(12));
    EXPECT_TRUE(StandardFont::GetFont(StandardFont::eFontMessageUnderline)->underline());

    const QFont* times = StandardFont::GetFont(StandardFont::eFontTimes16BoldItalic);
    EXPECT_EQ(times->styleHint(), QFont::Serif);
    EXPECT_TRUE(times->italic());
    const QFont* courier = StandardFont::GetFont(StandardFont::eFontCourier9Light);
    EXPECT_EQ(courier->weight(), QFont::Light);
    EXPECT_EQ(courier->styleHint(), QFont::TypeWriter);
    // Whatever stands in for the face here, it is a fixed-pitch one.
    EXPECT_TRUE(QFontInfo(*courier).fixedPitch());

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
    const LOGFONT back = korva::LogFontFromQFont(korva::CreateFontIndirect(lf), 96);
    EXPECT_EQ(back.lfHeight, -17);
    EXPECT_EQ(back.lfWeight, 600);
    EXPECT_EQ(back.lfItalic, 1);
    EXPECT_EQ(back.lfStrikeOut, 1);
    EXPECT_EQ(back.lfUnderline, 0);
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
    const std::string face = korva::LogFontFromQFont(font, 96).lfFaceName;
    EXPECT_LE(face.size(), 31u);
    EXPECT_GE(face.size(), 30u);
    EXPECT_EQ(QString::fromStdString(face).indexOf(QChar(0xFFFD)), -1);  // no broken sequence
}

// --- System colours -----------------------------------------------------------------------

TEST(SysColorTest, SystemColoursFollowTheApplicationPalette)
{
    korva::test::Application();
    const QPalette saved = QGuiApplication::palette();
    QPalette palette = saved;
    palette.setColor(QPalette::Button, QColor(1, 2, 3));
    palette.setColor(QPalette::Highlight, QColor(4, 5, 6));
    QGuiApplication::setPalette(palette);
    EXPECT_EQ(korva::GetSysColor(COLOR_BTNFACE), RGB(1, 2, 3));
    EXPECT_EQ(korva::GetSysColor(COLOR_HIGHLIGHT), RGB(4, 5, 6));
    QGuiApplication::setPalette(saved);
    EXPECT_EQ(korva::GetSysColor(COLOR_BTNFACE), korva::FromQColor(saved.color(QPalette::Button)));
    EXPECT_EQ(korva::SysColorRole(25), QPalette::Window);  // no such index

    // COLORREF is 0x00BBGGRR; its high byte means nothing to QColor, alpha nothing to it.
    static_assert(RGB(0x12, 0x34, 0x56) == 0x563412);
    EXPECT_EQ(korva::ToQColor(0xFF563412), QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(korva::FromQColor(QColor(0x12, 0x34, 0x56, 0x80)), RGB(0x12, 0x34, 0x56));
}

} // namespace

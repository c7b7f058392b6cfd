// The suite's colours: the tables, what the display decides, and the HSV
// conversions behind plot gradients. No display is needed here.

#include <KORVAutlwin/toolkit/DisplayColor.h>
#include <KORVAutlwin/toolkit/StandardColor.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

// Channel-wise distance: the conversions floor, so a round trip may lose a step.
int ChannelDistance(COLORREF a, COLORREF b)
{
    return std::max({std::abs(GetRValue(a) - GetRValue(b)), std::abs(GetGValue(a) - GetGValue(b)),
                     std::abs(GetBValue(a) - GetBValue(b))});
}

double Hue(COLORREF color)
{
    double h = 0, s = 0, v = 0;
    StandardColor::RGB2HSV(color, h, s, v);
    return h;
}

// --- Tables -------------------------------------------------------------------------

TEST(StandardColorTableTest, ColorDefSelectsTheBaseColoursInTheirOrder)
{
    StandardColor::Init(32);
    // Spots at the places where a shifted or swapped row shows.
    EXPECT_EQ(StandardColor::GetColor(StandardColor::eColorBlue), 0xFF8080u);
    EXPECT_EQ(StandardColor::GetColor(StandardColor::eColorRed), 0x8080FFu);
    EXPECT_EQ(StandardColor::GetColor(StandardColor::eColorLightGray), 0xC0C0C0u);
    EXPECT_EQ(StandardColor::GetColor(StandardColor::eColorWine), 0x000080u);
    EXPECT_EQ(StandardColor::GetColor(StandardColor::eColorLightMagenta), 0xFF80FFu);

    const unsigned long* fields[] = {
        &StandardColor::ColorBlue,       &StandardColor::ColorRed,        &StandardColor::ColorGreen,
        &StandardColor::ColorYellow,     &StandardColor::ColorGray,       &StandardColor::ColorLightGray,
        &StandardColor::ColorWhite,      &StandardColor::ColorBlack,      &StandardColor::ColorCyan,
        &StandardColor::ColorMagenta,    &StandardColor::ColorDarkYellow, &StandardColor::ColorNavy,
        &StandardColor::ColorPurple,     &StandardColor::ColorWine,       &StandardColor::ColorOlive,
        &StandardColor::ColorDarkCyan,   &StandardColor::ColorRoyal,      &StandardColor::ColorOrange,
        &StandardColor::ColorViolet,     &StandardColor::ColorPink,       &StandardColor::ColorLightYellow,
        &StandardColor::ColorLightCyan,  &StandardColor::ColorLightMagenta};
    for (int i = 0; i < 23; ++i)
        EXPECT_EQ(StandardColor::GetColor(static_cast<StandardColor::ColorDef>(i)), *fields[i]) << "ColorDef " << i;

    // Any other number gives white (made unmistakable here).
    StandardColor::ColorWhite = 0x123456;
    EXPECT_EQ(StandardColor::GetColor(static_cast<StandardColor::ColorDef>(23)), 0x123456u);
    EXPECT_EQ(StandardColor::GetColor(static_cast<StandardColor::ColorDef>(-1)), 0x123456u);
    StandardColor::Init(32);
}

TEST(StandardColorTableTest, SemanticColoursAliasesAndASetterBeforeTheFirstGetter)
{
    StandardColor::Init(32);
    EXPECT_EQ(StandardColor::GetComment(), StandardColor::ColorLightGray);
    EXPECT_EQ(StandardColor::GetYVarData(), 0xB3D9EBu);
    EXPECT_EQ(StandardColor::GetBatchID(), 0x43DEFFu);
    // The primary of an observation is its number, of a variable its name.
    EXPECT_EQ(StandardColor::GetObsPrimary(), 0x00C0C0u);
    EXPECT_EQ(StandardColor::GetObsSecondary(), 0x00EBEBu);
    EXPECT_EQ(StandardColor::GetVarPrimary(), 0x3CAA1Eu);
    EXPECT_EQ(StandardColor::GetVarSecondary(), 0x46E61Eu);

    // The setters do not run Init: before the first getter the set colour is lost.
    StandardColor::bIsInitiated = false;
    StandardColor::SetMisVal(0x010203);
    EXPECT_EQ(StandardColor::GetMisVal(), 0xBFBFFFu);
    StandardColor::SetMisVal(0x010203);
    EXPECT_EQ(StandardColor::GetMisVal(), 0x010203u);
    StandardColor::SetObsNumber(0x0A0B0C);
    EXPECT_EQ(StandardColor::GetObsPrimary(), 0x0A0B0Cu);
    // Init puts every colour back.
    StandardColor::Init(32);
    EXPECT_EQ(StandardColor::GetMisVal(), 0xBFBFFFu);
}

// --- What the display decides ----------------------------------------------------------

TEST(StandardColorDisplayTest, ATrueColourDisplayKeepsTheFirstCandidatesAndPrintingChangesNothing)
{
    for (int depth : {16, 32}) {
        StandardColor::Init(depth);
        EXPECT_EQ(StandardColor::GetColorBlue(), 0xFF8080u) << depth;
        EXPECT_EQ(StandardColor::GetColorGreen(), 0x80FF80u) << depth;
        EXPECT_EQ(StandardColor::GetColorYellow(), 0x80FFFFu) << depth;
        EXPECT_EQ(StandardColor::GetColorRed(), 0x8080FFu) << depth;
        for (unsigned long color : {StandardColor::ColorBlue, StandardColor::ColorGreen, StandardColor::ColorRed,
                                    StandardColor::ColorYellow})
            EXPECT_EQ(StandardColor::GetPrintColor(color), color);
    }
}

TEST(StandardColorDisplayTest, APaletteDisplayFallsBackToThePaletteAndPrintingUndoesIt)
{
    StandardColor::Init(8);
    EXPECT_EQ(StandardColor::GetColorBlue(), 0xF0CAA6u);   // the third candidate, sky blue
    EXPECT_EQ(StandardColor::GetColorGreen(), 0xC0DCC0u);  // the second, money green
    EXPECT_EQ(StandardColor::GetColorYellow(), 0x00FFFFu);
    EXPECT_EQ(StandardColor::GetColorRed(), 0x0000FFu);
    EXPECT_EQ(StandardColor::GetPrintColor(0xF0CAA6), 0xFF8080u);
    EXPECT_EQ(StandardColor::GetPrintColor(0xC0DCC0), 0x80FF80u);
    EXPECT_EQ(StandardColor::GetPrintColor(0x0000FF), 0x8080FFu);
    EXPECT_EQ(StandardColor::GetPrintColor(0x00FFFF), 0x80FFFFu);
    EXPECT_EQ(StandardColor::GetPrintColor(0x123456), 0x123456u);

    // Sixteen colours: blue and green fall further down their lists.
    StandardColor::Init(4);
    EXPECT_EQ(StandardColor::GetColorBlue(), 0xFF0000u);
    EXPECT_EQ(StandardColor::GetColorGreen(), 0x808000u);

    // Black and white: 0x808080 lies a little nearer to white than to black.
    StandardColor::Init(1);
    EXPECT_EQ(StandardColor::GetColorBlue(), 0xFFFFFFu);
    EXPECT_EQ(StandardColor::GetColorGray(), 0xFFFFFFu);
    EXPECT_EQ(StandardColor::GetColorBlack(), 0x000000u);
    StandardColor::Init(32);
}

TEST(StandardColorDisplayTest, PrintColourTestsBlueBeforeTheOthers)
{
    StandardColor::Init(32);
    // When two base colours are one value, the first test in the order wins.
    StandardColor::ColorRed = StandardColor::ColorBlue;
    EXPECT_EQ(StandardColor::GetPrintColor(StandardColor::ColorBlue), 0xFF8080u);
    StandardColor::ColorYellow = 0x555555;
    StandardColor::ColorRed = 0x555555;
    EXPECT_EQ(StandardColor::GetPrintColor(0x555555), 0x8080FFu);
    StandardColor::Init(32);
}

TEST(StandardColorDisplayTest, NearestColourOfPaletteDisplays)
{
    EXPECT_EQ(korva::GetNearestColor(0x123456, 24), 0x123456u);
    EXPECT_TRUE(korva::SystemPalette(9).empty());
    EXPECT_EQ(korva::SystemPalette(8).size(), 20u);
    EXPECT_EQ(korva::SystemPalette(4).size(), 16u);
    EXPECT_EQ(korva::SystemPalette(1).size(), 2u);
    for (int depth : {1, 4, 8})
        for (COLORREF entry : korva::SystemPalette(depth))
            EXPECT_EQ(korva::GetNearestColor(entry, depth), entry);
    EXPECT_EQ(korva::GetNearestColor(0xF0C8A4, 8), 0xF0CAA6u);
    EXPECT_EQ(korva::GetNearestColor(0x8080FF, 8), 0xA4A0A0u);  // medium gray, not red
    EXPECT_EQ(korva::GetNearestColor(0x8080FF, 4), 0xC0C0C0u);
}

// --- Conversions -------------------------------------------------------------------------

TEST(StandardColorConversionTest, FcmpScalesItsBoundWithTheLargerValue)
{
    const double eps = std::ldexp(1.0, -23);
    EXPECT_EQ(korva::fcmp(1.0, 1.0 + eps / 4), 0);
    EXPECT_EQ(korva::fcmp(1.0 + 4 * eps, 1.0), 1);
    EXPECT_EQ(korva::fcmp(1.0, 1.0 + 4 * eps), -1);
    // The bound follows the exponent: a difference that counts at 1 does not at 1024.
    EXPECT_EQ(korva::fcmp(1024.0 + 4 * eps, 1024.0), 0);
    EXPECT_EQ(korva::fcmp(0.0, 0.0), 0);
    EXPECT_EQ(korva::fcmp(-1e-9, 0.0), -1);
}

TEST(StandardColorConversionTest, RgbToHsvOfKnownColours)
{
    double h = 0, s = 0, v = 0;
    StandardColor::RGB2HSV(RGB(0, 0, 255), h, s, v);
    EXPECT_DOUBLE_EQ(h, 240.0);
    StandardColor::RGB2HSV(RGB(255, 0, 128), h, s, v);  // negative before the 360 is added
    EXPECT_NEAR(h, 360.0 - 60.0 * 128 / 255, 1e-9);
    StandardColor::RGB2HSV(RGB(200, 100, 50), h, s, v);
    EXPECT_NEAR(h, 20.0, 1e-9);
    EXPECT_NEAR(s, 0.75, 1e-9);
    EXPECT_NEAR(v, 200 / 255.0, 1e-12);
}

TEST(StandardColorConversionTest, GraysHaveNoHueAndComeBackWhole)
{
    for (int level = 0; level < 256; ++level) {
        const COLORREF gray = RGB(level, level, level);
        double h = 0, s = 1, v = 0;
        StandardColor::RGB2HSV(gray, h, s, v);
        ASSERT_EQ(h, -99.0) << level;
        ASSERT_EQ(s, 0.0) << level;
        ASSERT_EQ(StandardColor::HSV2RGB(h, s, v), gray) << level;
    }
    // Without saturation only the undefined hue gives a gray.
    EXPECT_EQ(StandardColor::HSV2RGB(10.0, 0.0, 1.0), 0u);
}

TEST(StandardColorConversionTest, HueAtAndBeyondTheCircle)
{
    EXPECT_EQ(StandardColor::HSV2RGB(360.0, 1.0, 1.0), RGB(255, 0, 0));
    EXPECT_EQ(StandardColor::HSV2RGB(361.0, 1.0, 1.0), 0u);  // sector 6
    EXPECT_EQ(StandardColor::HSV2RGB(-1.0, 1.0, 1.0), 0u);
    EXPECT_EQ(StandardColor::HSV2RGB(1e300, 1.0, 1.0), 0u);
    // Channels are floored, never rounded: 127.5 and 0.7 * 255 = 178.5. (The
    // sectors themselves are covered by the round trip below.)
    EXPECT_EQ(StandardColor::HSV2RGB(30.0, 1.0, 1.0), RGB(255, 127, 0));
    EXPECT_EQ(StandardColor::HSV2RGB(210.0, 1.0, 1.0), RGB(0, 127, 255));
    EXPECT_EQ(GetRValue(StandardColor::HSV2RGB(0.0, 0.3, 0.7)), 178);
}

TEST(StandardColorConversionTest, RoundTripLosesAtMostOneStep)
{
    int exact = 0, total = 0;
    for (int r = 0; r < 256; r += 15)
        for (int g = 0; g < 256; g += 17)
            for (int b = 0; b < 256; b += 13) {
                const COLORREF color = RGB(r, g, b);
                double h = 0, s = 0, v = 0;
                StandardColor::RGB2HSV(color, h, s, v);
                const COLORREF back = StandardColor::HSV2RGB(h, s, v);
                ASSERT_LE(ChannelDistance(back, color), 1) << std::hex << color << " came back as " << back;
                exact += back == color;
                ++total;
            }
    // Most colours come back whole; the floor costs a step only now and then.
    EXPECT_GT(exact, total / 2);
}

TEST(StandardColorConversionTest, InterpolationEndsAndCounts)
{
    unsigned long out[4] = {1, 1, 1, 1};
    StandardColor::InterpolateColors(0x0000FF, 0xFF0000, out, 2);
    EXPECT_EQ(out[0], 0x0000FFu);
    EXPECT_EQ(out[1], 0xFF0000u);
    EXPECT_EQ(out[2], 1u);
    out[0] = 1;
    StandardColor::InterpolateColors(0x0000FF, 0xFF0000, out, 1);
    EXPECT_EQ(out[0], 0xFF0000u);
    out[0] = 7;
    StandardColor::InterpolateColors(0x0000FF, 0xFF0000, out, 0);
    EXPECT_EQ(out[0], 7u);
}

TEST(StandardColorConversionTest, InterpolationStepsTheDirectWayRoundTheHue)
{
    // Red (0 degrees) to blue (240 degrees): the hue walks up through green,
    // not down through magenta, although that way would be shorter.
    std::vector<unsigned long> out(5);
    StandardColor::InterpolateColors(RGB(255, 0, 0), RGB(0, 0, 255), out.data(), 5);
    EXPECT_EQ(out[1], RGB(0xFF, 0xFF, 0x00));  // 60 degrees
    EXPECT_EQ(out[3], RGB(0x00, 0xFF, 0xFF));  // 180 degrees

    // From black (no hue, no saturation) to blue the steps are grayish blues, floored.
    StandardColor::InterpolateColors(RGB(0, 0, 0), RGB(0, 0, 255), out.data(), 5);
    EXPECT_EQ(out[1], RGB(47, 47, 63));    // s 0.25, v 0.25
    EXPECT_EQ(out[2], RGB(63, 63, 127));   // s 0.5, v 0.5
    EXPECT_EQ(out[4], RGB(0, 0, 255));
}

TEST(StandardColorConversionTest, InterpolationFromWhiteKeepsTheColoursHue)
{
    const COLORREF target = RGB(30, 170, 60);
    std::vector<unsigned long> out(12);
    StandardColor::InterpolateColors(RGB(255, 255, 255), target, out.data(), 12);
    EXPECT_EQ(out.front(), RGB(255, 255, 255));
    EXPECT_EQ(out.back(), target);
    for (std::size_t i = 1; i + 1 < out.size(); ++i) {
        EXPECT_NEAR(Hue(out[i]), Hue(target), 2.0) << i;
        EXPECT_GT(GetRValue(out[i]), GetRValue(out[i + 1]));  // the tint deepens at every step
    }

    // Between two grays every step is a gray.
    StandardColor::InterpolateColors(RGB(20, 20, 20), RGB(220, 220, 220), out.data(), 12);
    for (unsigned long color : out)
        EXPECT_TRUE(GetRValue(color) == GetGValue(color) && GetGValue(color) == GetBValue(color)) << std::hex << color;
}

} // namespace

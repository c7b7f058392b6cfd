// The suite's colours: the tables, what the display decides, and the HSV
// conversions behind plot gradients. No display is needed here.

#include <KORVAutlwin/toolkit/DisplayColor.h>
#include <KORVAutlwin/toolkit/StandardColor.h>

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

namespace {

using SC = StandardColor;
using Colors = std::vector<unsigned long>;

TEST(StandardColorTest, TablesAndWhatEachDisplayShows)
{
    // Each ColorDef in its place, on a display of 256 colours where all 23 differ; any other number gives white.
    SC::Init(8);
    Colors all;
    for (int def = -1; def <= 23; ++def)
        all.push_back(SC::GetColor(static_cast<SC::ColorDef>(def)));
    EXPECT_EQ(all, (Colors{0xFFFFFF, 0xF0CAA6, 0x0000FF, 0xC0DCC0, 0x00FFFF, 0x808080, 0xC0C0C0, 0xFFFFFF, 0x000000,
                           0xFFFF00, 0xFF00FF, 0x008080, 0x800000, 0x800080, 0x000080, 0x008000, 0x808000, 0xA00000,
                           0x0080FF, 0xFF0080, 0x8000FF, 0x80FFFF, 0xFFFF80, 0xFF80FF, 0xFFFFFF}));

    // The primary of an observation is its number, of a variable its name; comments take the display's light gray.
    SC::Init(1);
    EXPECT_EQ((Colors{SC::GetComment(), SC::GetObsPrimary(), SC::GetObsSecondary(), SC::GetVarPrimary(),
                      SC::GetVarSecondary()}),
              (Colors{0xFFFFFF, SC::ColorObsNumber, SC::ColorObsName, SC::ColorVarName, SC::ColorVarNumber}));

    // The setters do not run Init: before the first getter the set colour is lost.
    SC::bIsInitiated = false;
    SC::SetMisVal(0x010203);
    EXPECT_EQ(SC::GetMisVal(), 0xBFBFFFu);
    SC::SetMisVal(0x010203);
    EXPECT_EQ(SC::GetMisVal(), 0x010203u);
    SC::Init(32);   // puts every colour back
    EXPECT_EQ(SC::GetMisVal(), 0xBFBFFFu);

    // Blue, green, yellow, red and gray as each display shows them.
    const std::pair<int, Colors> rows[] = {
        {16, {0xFF8080, 0x80FF80, 0x80FFFF, 0x8080FF, 0x808080}},
        {8, {0xF0CAA6, 0xC0DCC0, 0x00FFFF, 0x0000FF, 0x808080}},   // sky blue is the third candidate
        {4, {0xFF0000, 0x808000, 0x00FFFF, 0x0000FF, 0x808080}},
        {1, {0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF}},   // 0x808080 lies nearer to white
    };
    for (const auto& [depth, expected] : rows) {
        SCOPED_TRACE(depth);
        SC::Init(depth);
        const Colors shown{SC::GetColorBlue(), SC::GetColorGreen(), SC::GetColorYellow(), SC::GetColorRed(),
                           SC::GetColorGray()};
        EXPECT_EQ(shown, expected);
        // Printing gives the first candidates back; where all four are one colour, blue is tested first.
        EXPECT_EQ((Colors{SC::GetPrintColor(shown[0]), SC::GetPrintColor(shown[1]), SC::GetPrintColor(shown[2]),
                          SC::GetPrintColor(shown[3]), SC::GetPrintColor(0x123456)}),
                  (depth > 1 ? Colors{0xFF8080, 0x80FF80, 0x80FFFF, 0x8080FF, 0x123456}
                             : Colors{0xFF8080, 0xFF8080, 0xFF8080, 0xFF8080, 0x123456}));
    }
    // The nearest colour of a palette display is the nearest by distance in RGB.
    EXPECT_EQ(korva::GetNearestColor(0x8080FF, 8), 0xA4A0A0u);   // medium gray, not red
}

TEST(StandardColorConversionTest, FcmpAndHsvBothWays)
{
    const double eps = std::ldexp(1.0, -23);
    EXPECT_EQ(korva::fcmp(1.0, 1.0 + eps / 4), 0);
    EXPECT_EQ(korva::fcmp(1.0, 1.0 + 4 * eps), -1);
    EXPECT_EQ(korva::fcmp(1024.0 + 4 * eps, 1024.0), 0);   // what counts at 1 does not at 1024

    // RGB to HSV with the largest channel in each place; a negative hue gets 360 added.
    double h = 0, s = 0, v = 0;
    const std::tuple<COLORREF, double, double, double> colours[] = {
        {RGB(0, 0, 255), 240.0, 1.0, 1.0}, {RGB(0, 255, 0), 120.0, 1.0, 1.0},
        {RGB(255, 0, 128), 360.0 - 60.0 * 128 / 255, 1.0, 1.0}, {RGB(200, 100, 50), 20.0, 0.75, 200 / 255.0}};
    for (const auto& [color, hue, saturation, value] : colours) {
        SC::RGB2HSV(color, h, s, v);
        EXPECT_LT(std::abs(h - hue) + std::abs(s - saturation) + std::abs(v - value), 1e-9) << std::hex << color;
    }

    // Grays have no hue and come back whole.
    for (int level = 0; level < 256; ++level) {
        s = 1;
        SC::RGB2HSV(RGB(level, level, level), h, s, v);
        ASSERT_TRUE(h == -99.0 && s == 0.0) << level;
        ASSERT_EQ(SC::HSV2RGB(h, s, v), RGB(level, level, level)) << level;
    }

    // HSV to RGB floors. Every sector at its start (60 to 240 degrees in the interpolation below) tells q from t;
    // 30, 90 and 210 degrees check the fraction within a sector.
    const std::tuple<double, double, double, COLORREF> rows[] = {
        {10.0, 0.0, 1.0, 0},   // without saturation only the undefined hue gives a gray
        {360.0, 1.0, 1.0, RGB(255, 0, 0)},
        {361.0, 1.0, 1.0, 0},   // sector 6
        {-1.0, 1.0, 1.0, 0},
        {1e300, 1.0, 1.0, 0},
        {30.0, 1.0, 1.0, RGB(255, 127, 0)},   // 127.5 floored
        {210.0, 1.0, 1.0, RGB(0, 127, 255)},
        {300.0, 1.0, 1.0, RGB(255, 0, 255)},
        {30.0, 0.3, 0.7, RGB(178, 151, 124)},   // 151.7 and 124.95 floored
        {90.0, 0.3, 0.7, RGB(151, 178, 124)},
    };
    for (const auto& [hue, saturation, value, rgb] : rows)
        EXPECT_EQ(SC::HSV2RGB(hue, saturation, value), rgb) << hue << " " << saturation << " " << value;
}

TEST(StandardColorConversionTest, InterpolationEndsCountsAndSteps)
{
    Colors out{1, 1, 1, 1, 1};
    SC::InterpolateColors(0x0000FF, 0xFF0000, out.data(), 2);
    EXPECT_EQ(out, (Colors{0x0000FF, 0xFF0000, 1, 1, 1}));
    SC::InterpolateColors(0x00FF00, 0xFF0000, out.data(), 1);   // the end colour
    SC::InterpolateColors(0x0000FF, 0x00FF00, out.data(), 0);   // nothing
    EXPECT_EQ(out[0], 0xFF0000u);

    // Red (0 degrees) to blue (240 degrees): the hue walks up through yellow, green and cyan,
    // not down through magenta, although that way would be shorter.
    SC::InterpolateColors(RGB(255, 0, 0), RGB(0, 0, 255), out.data(), 5);
    EXPECT_EQ(out, (Colors{RGB(255, 0, 0), RGB(255, 255, 0), RGB(0, 255, 0), RGB(0, 255, 255), RGB(0, 0, 255)}));
    // From black (no hue, no saturation) to blue the steps are grayish blues, floored.
    SC::InterpolateColors(RGB(0, 0, 0), RGB(0, 0, 255), out.data(), 5);
    EXPECT_EQ(out[1], RGB(47, 47, 63));    // s 0.25, v 0.25
    EXPECT_EQ(out[2], RGB(63, 63, 127));   // s 0.5, v 0.5

    // And towards white the steps keep blue's hue.
    SC::InterpolateColors(RGB(0, 0, 255), RGB(255, 255, 255), out.data(), 5);
    EXPECT_EQ(out[2], RGB(127, 127, 255));   // s 0.5, v 1
}

} // namespace

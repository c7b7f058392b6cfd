#include <KORVAutlwin/toolkit/ColourPopupLayout.h>
#include <KORVAutlwin/toolkit/ColourTable.h>

#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

namespace {

TEST(ColourTableTest, TextOfAColourFollowsTheTableTheRGBLabelsAndAutomatic)
{
    struct Row
    {
        COLORREF colour;
        const char* rgbText;
        bool alwaysRGB;
        const char* expected;
    } const rows[] = {
        {ColourTable::kAutomaticColour, "RGB", true, "Automatic"},
        {0x0000FF, "RGB", false, "Red"},
        {0x0000FF, "RGB", true, "Red (R:255 G:0 B:0)"},
        {0x98FB98, "RGB", false, "Pale green "},
        {0x563412, "RGB", true, "R:18 G:52 B:86"},
        {0x563412, "X", false, "X:18  :52  :86"},
        {0x563412, "", false, " :18  :52  :86"},
        {0x563412, "HSVA", false, "H:18 S:52 V:86"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(ColourTable::GetColourText(row.colour, "Automatic", row.rgbText, row.alwaysRGB), row.expected);
    }
    EXPECT_EQ(ColourTable::PadRGBText("X"), "X  ");
}

TEST(ColourTableTest, NamesComeFromLanguageStringsWhereTheyExist)
{
    // 34350 and 34351 exist ("Automatic", "More Colors..."), 34352 does not.
    ColourTable::SetColoursName(34350);
    EXPECT_EQ(ColourTable::GetName(0), "Automatic");
    EXPECT_EQ(ColourTable::GetName(1), "More Colors...");
    EXPECT_EQ(ColourTable::GetName(2), "Dark Olive Green");
    ColourTable::SetColoursName(0);
    EXPECT_EQ(ColourTable::GetName(0), "Black");
    EXPECT_EQ(ColourTable::GetName(39), "White");
    EXPECT_EQ(ColourTable::FindColour(0xFAE6E6), 38);
    EXPECT_EQ(ColourTable::FindColour(0x123456), -1);
}

TEST(ColourTableTest, CustomColoursAreWhiteWhereMissing)
{
    EXPECT_EQ(ColourTable::LoadCustomColours(nullptr)[15], 0xFFFFFFu);
    XMLSection section;
    section.WriteInt("CUSTOM_COLOR_3", 0x00FF8000);
    const auto colours = ColourTable::LoadCustomColours(&section);
    EXPECT_EQ(colours[3], 0x00FF8000u);
    EXPECT_EQ(colours[4], 0xFFFFFFu);
}

TEST(ColourPopupLayoutTest, RowsExistOnlyForTextsAndTheWindowFitsThem)
{
    const ColourPopupLayout bare(40, 2, QSize(60, 12), false, false);
    EXPECT_EQ(bare.GetRows(), 5);
    EXPECT_EQ(bare.GetWindowSize(), QSize(8 * 18 + 4, 5 * 18 + 4));
    EXPECT_FALSE(bare.IsValidIndex(ColourTable::eDefaultRow));
    EXPECT_FALSE(bare.IsValidIndex(ColourTable::eCustomRow));
    EXPECT_EQ(bare.HitTest(QPoint(2 + 18 + 5, 2 + 5)), 1);

    // Text rows: height + 4 margins + 2 each, plus a margin; a wide text widens the window.
    const ColourPopupLayout full(41, 2, QSize(200, 12), true, true);
    EXPECT_EQ(full.GetRows(), 6);
    EXPECT_EQ(full.GetWindowSize(), QSize(200 + 4 + 4, 6 * 18 + 4 + 2 * (12 + 8 + 2 + 2)));
    EXPECT_EQ(full.HitTest(QPoint(10, 5)), ColourTable::eDefaultRow);
    EXPECT_EQ(full.HitTest(full.GetItemRect(ColourTable::eCustomRow).center()), ColourTable::eCustomRow);
    EXPECT_EQ(full.GetItemRect(0).left(), (208 - 8 * 18) / 2); // boxes centred

    // An edge so wide that the swatch would vanish makes the boxes bigger.
    EXPECT_EQ(ColourPopupLayout(8, 6, QSize(), false, false).GetBoxSize(), 19);
}

TEST(ColourPopupLayoutTest, ArrowKeysWalkTheGridAndTheTextRowsRound)
{
    const ColourPopupLayout full(40, 2, QSize(60, 12), true, true);
    const ColourPopupLayout bare(40, 2, QSize(60, 12), false, false);
    struct Row
    {
        const ColourPopupLayout* layout;
        int from;
        ColourPopupLayout::EKey key;
        int to;
    } const rows[] = {
        {&full, -1, ColourPopupLayout::eDown, -3},  {&full, -1, ColourPopupLayout::eUp, -2},
        {&full, -3, ColourPopupLayout::eDown, 0},   {&full, 3, ColourPopupLayout::eUp, -3},
        {&full, 3, ColourPopupLayout::eDown, 11},   {&full, 35, ColourPopupLayout::eDown, -2},
        {&full, -2, ColourPopupLayout::eDown, -3},  {&full, -2, ColourPopupLayout::eUp, 39},
        {&full, 39, ColourPopupLayout::eRight, -2}, {&full, -3, ColourPopupLayout::eLeft, -2},
        {&full, 0, ColourPopupLayout::eLeft, -3},   {&bare, 39, ColourPopupLayout::eRight, 0},
        {&bare, 3, ColourPopupLayout::eUp, 35},     {&bare, 35, ColourPopupLayout::eDown, 3},
        {&bare, -3, ColourPopupLayout::eRight, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << (row.layout == &full ? "full " : "bare ") << row.from << " key " << row.key);
        EXPECT_EQ(row.layout->MoveIndex(row.from, row.key), row.to);
    }
}

TEST(ColourPopupLayoutTest, TheWindowStaysOnTheWorkArea)
{
    const ColourPopupLayout layout(40, 2, QSize(60, 12), false, false); // 148 x 94
    const QRect screen(0, 0, 800, 600);
    EXPECT_EQ(layout.PlaceBelow(QRect(10, 10, 60, 20), screen).topLeft(), QPoint(10, 30));
    EXPECT_EQ(layout.PlaceBelow(QRect(700, 10, 60, 20), screen).topLeft(), QPoint(800 - 148, 30));
    EXPECT_EQ(layout.PlaceBelow(QRect(-30, 10, 60, 20), screen).left(), 0);
    const QRect above = layout.PlaceBelow(QRect(10, 560, 60, 20), screen);
    EXPECT_EQ(above.bottom(), 559); // above the button
}

} // namespace

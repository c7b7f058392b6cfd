// The missing data map as it paints: cells cover the control without gaps,
// later cells cover earlier ones, and without flags every cell is missing.

#include "frame/TestApplication.h"

#include <KORVAutlwin/toolkit/ColorRef.h>
#include <KORVAutlwin/toolkit/MissingDataMap.h>
#include <KORVAutlwin/toolkit/StandardColor.h>

#include <gtest/gtest.h>

#include <list>
#include <map>
#include <vector>

namespace {

// How many pixels of each colour the control shows at `size`.
std::map<QRgb, int> Colours(MissingDataMap& map, QSize size)
{
    map.resize(size);
    const QImage picture = map.grab().toImage().convertToFormat(QImage::Format_RGB32);
    std::map<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            ++counts[picture.pixel(x, y) | 0xFF000000];
    return counts;
}

QRgb Rgb(COLORREF color)
{
    return korva::ToQColor(color).rgb() | 0xFF000000;
}

TEST(MissingDataMapTest, CellsCoverTheControl)
{
    korva::test::Application();
    const QRgb present = Rgb(StandardColor::GetColorGreen());
    const QRgb missing = Rgb(StandardColor::GetMisVal());
    const QRgb white = 0xFFFFFFFF;

    const std::list<QPoint> one{{1, 1}};
    const std::vector<bool> notMissing{false};
    std::list<QPoint> everyCell;
    std::vector<bool> checkerboard;
    for (int row = 1; row <= 4; ++row)
        for (int column = 1; column <= 3; ++column) {
            everyCell.emplace_back(column, row);
            checkerboard.push_back((row + column) % 2 == 0);
        }
    const std::list<QPoint> twice{{2, 2}, {2, 2}};
    const std::vector<bool> secondMissing{false, true};
    const std::list<QPoint> corner{{3, 4}};
    const std::list<QPoint> none;

    struct Row
    {
        const char* what;
        int rows, columns;
        const std::list<QPoint>* cells;
        const std::vector<bool>* missing;
        QSize size;
        std::map<QRgb, int> expected; // colour -> pixels; -1: some
    };
    const Row rows[] = {
        {"one cell paints all", 1, 1, &one, &notMissing, {37, 23}, {{present, 37 * 23}}},
        {"no flags: missing", 1, 1, &one, nullptr, {10, 10}, {{missing, 100}}},
        {"no gaps between cells", 4, 3, &everyCell, &checkerboard, {50, 41}, {{present, -1}, {missing, -1}}},
        {"more cells than pixels", 4, 3, &everyCell, &checkerboard, {2, 3}, {{present, -1}, {missing, -1}}},
        {"the later cell wins", 3, 3, &twice, &secondMissing, {30, 30}, {{white, 900 - 11 * 11}, {missing, 121}}},
        {"last cell reaches the corner", 4, 3, &corner, &notMissing, {30, 40}, {{white, 1200 - 10 * 10}, {present, 100}}},
        {"no cells", 4, 3, &none, nullptr, {8, 8}, {{white, 64}}},
        {"no list", 4, 3, nullptr, nullptr, {8, 8}, {{white, 64}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        MissingDataMap map;
        map.SetData(row.rows, row.columns, row.cells, row.missing);
        const std::map<QRgb, int> seen = Colours(map, row.size);
        std::map<QRgb, int> compared = seen;
        for (const auto& [colour, pixels] : row.expected)
            if (pixels < 0 && compared.count(colour))
                compared[colour] = -1;
        EXPECT_EQ(compared, row.expected);
    }
}

} // namespace

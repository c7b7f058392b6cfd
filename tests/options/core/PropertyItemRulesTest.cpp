// The items' values, text forms and refusal rules, without a window.
#include <KORVAutlwin/options/PropertyItemColorPopup.h>
#include <KORVAutlwin/options/PropertyItemCustomList.h>
#include <KORVAutlwin/options/PropertyItemFloat.h>
#include <KORVAutlwin/options/PropertyItemListEnabledDisabled.h>
#include <KORVAutlwin/options/PropertyItemListTrueFalse.h>
#include <KORVAutlwin/options/PropertyItemListYesNo.h>
#include <KORVAutlwin/options/PropertyItemNegNumber.h>
#include <KORVAutlwin/options/PropertyItemString.h>
#include <KORVAutlwin/options/PropertyPathCompact.h>

#include <gtest/gtest.h>

#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>

#include <memory>

TEST(PropertyItemNumber, RefusesWhatAtoiGivesOnOverflowAndTakesTheRest)
{
    struct Row
    {
        const char* text;
        bool accepted;
        int value; // after the call, from 7
    };
    const Row rows[] = {
        {"2147483647", false, 7},  {"2147483646", true, 2147483646}, {"-2147483648", false, 7},
        {"-2147483647", true, -2147483647}, {"99999999999", false, 7}, {"-99999999999", false, 7},
        {"12x", true, 12},          {"  -42", true, -42},            {"", true, 0},
        {"abc", true, 0},           {"+5", true, 5},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        PropertyItemNumber item("Count", 1, "");
        item.SetData(7);
        EXPECT_EQ(item.AcceptText(row.text), row.accepted);
        int value = 0;
        item.GetData(value);
        EXPECT_EQ(value, row.value);
    }
}

TEST(PropertyItemValidation, BadTextGoesBackToThePresentValueSilently)
{
    struct Row
    {
        const char* text;
        bool valid;
        const char* after;
    };
    const Row negRows[] = {{"12x", false, "-3"}, {"-17", true, "-17"}, {" 8 ", true, " 8 "}, {"", false, "-3"},
                           {"1.5", false, "-3"}};
    PropertyItemNegNumber neg("Offset", 2, "");
    neg.SetData(-3);
    for (const Row& row : negRows) {
        SCOPED_TRACE(row.text);
        std::string text = row.text;
        EXPECT_EQ(neg.ValidateText(text), row.valid);
        EXPECT_EQ(text, row.after);
    }

    const Row floatRows[] = {{"2.5e", false, "0.25"}, {"1e-3", true, "1e-3"}, {"x", false, "0.25"},
                             {"-7", true, "-7"}};
    PropertyItemFloat real("Scale", 3, "");
    real.SetData(0.25f);
    for (const Row& row : floatRows) {
        SCOPED_TRACE(row.text);
        std::string text = row.text;
        EXPECT_EQ(real.ValidateText(text), row.valid);
        EXPECT_EQ(text, row.after);
    }
}

TEST(PropertyItemFloat, TextFormIsPercentGWithAPointAndBadTextKeepsTheValue)
{
    const std::pair<float, const char*> rows[] = {{0.0f, "0"}, {0.1f, "0.1"}, {1e10f, "1e+10"}, {-2.5f, "-2.5"},
                                                  {123456.0f, "123456"}, {1234567.0f, "1.23457e+06"}};
    for (const auto& [value, text] : rows) {
        SCOPED_TRACE(text);
        PropertyItemFloat item("Scale", 1, "");
        item.SetData(value);
        EXPECT_EQ(item.GetValueText(), text);
    }
    PropertyItemFloat item("Scale", 1, "");
    item.SetData(4.0f);
    EXPECT_FALSE(item.AcceptText("4,5"));
    float value = 0;
    item.GetData(value);
    EXPECT_EQ(value, 4.0f);
}

TEST(PropertyItemTwoStateLists, EntriesComeFromTheirStringsAndMapToBool)
{
    struct Row
    {
        std::unique_ptr<PropertyItemList> item;
        const char* no;
        const char* yes;
    };
    Row rows[3] = {{std::make_unique<PropertyItemListYesNo>("a", 1, ""), "No", "Yes"},
                   {std::make_unique<PropertyItemListEnabledDisabled>("b", 2, ""), "Disabled", "Enabled"},
                   {std::make_unique<PropertyItemListTrueFalse>("c", 3, ""), "False", "True"}};
    for (Row& row : rows) {
        SCOPED_TRACE(row.no);
        EXPECT_EQ(row.item->GetNumItems(), 2u);
        EXPECT_EQ(row.item->GetItemData(0), row.no);
        EXPECT_EQ(row.item->GetItemData(1), row.yes);
        EXPECT_EQ(row.item->GetItemData(2), "");
    }
    PropertyItemListYesNo yesNo("Save", 4, "");
    bool state = true;
    yesNo.GetData(state);
    EXPECT_FALSE(state);
    yesNo.SetData(5); // any index but 0 is true
    yesNo.GetData(state);
    EXPECT_TRUE(state);
    yesNo.SetData(true);
    int index = 0;
    yesNo.GetData(index);
    EXPECT_EQ(index, 1);
    PropertyItemList plain("Plain", 5, "");
    EXPECT_EQ(plain.GetNumItems(), 0u);
    EXPECT_EQ(plain.GetItemData(0), "");
}

namespace {

// Fills its entries with names of its own, as the options' custom list does.
class NamedList : public PropertyItemCustomList
{
public:
    NamedList() : PropertyItemCustomList("Unit", 9, "") {}
    void InitPropertyItemList(std::vector<std::string>& list, unsigned int id) override
    {
        askedIds.push_back(id);
        list = {"metre", "inch", "foot"};
    }
    std::vector<unsigned int> askedIds;
};

} // namespace

TEST(PropertyItemCustomList, SetSelectedDataKeepsTheDeliberateIndex)
{
    PropertyItemCustomList list("Method", 1, "");
    std::vector<std::string> entries = {"PLS", "PCR", "MLR"};
    list.InitPropertyItemList(entries, 0);
    const std::pair<const char*, int> rows[] = {{"PCR", 1}, {"MLR", 2}, {"PLS", 0}, {"pls", 3}, {"LDA", 3}};
    for (const auto& [text, index] : rows) {
        SCOPED_TRACE(text);
        list.SetSelectedData(text);
        int value = -1;
        list.GetData(value);
        EXPECT_EQ(value, index);
        EXPECT_EQ(list.GetItemData(static_cast<unsigned int>(value)), index < 3 ? std::string(text) : "");
    }

    // A list that fills itself: asked with 0 by SetData and SetSelectedData, with its id when first painted.
    NamedList named;
    named.SetSelectedData("inch"); // not there yet: the entries are filled on the way
    int value = -1;
    named.GetData(value);
    EXPECT_EQ(value, 0);
    named.SetSelectedData("foot");
    named.GetData(value);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(named.askedIds, (std::vector<unsigned int>{0, 0, 0}));
}

TEST(PropertyItem, ResourceConstructorsReadTheStringsAndMissingOnesAreEmpty)
{
    PropertyItemString known(16158u, 4, 16160u);
    EXPECT_STREQ(known.GetName(), "No");
    EXPECT_STREQ(known.GetShowName(), "No");
    EXPECT_STREQ(known.GetDescription(), "Yes");
    PropertyItemString missing(1u, 5, 2u);
    EXPECT_STREQ(missing.GetName(), "");
    EXPECT_STREQ(missing.GetDescription(), "");
    PropertyItemString copy = known;
    copy.SetShowName("No\nlonger");
    EXPECT_STREQ(copy.GetShowName(), "No\nlonger");
    EXPECT_STREQ(known.GetShowName(), "No");
    EXPECT_EQ(PropertyItemColorPopup::FormatColor(RGB(1, 128, 255)), "R: 1 G: 128 B: 255");
}

TEST(PathCompactPath, KeepsTheFileNameAndFitsTheWidth)
{
    static int argc = 1;
    static char name[] = "options_core_tests";
    static char* argv[] = {name, nullptr};
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QGuiApplication application(argc, argv);
    const QFontMetrics metrics(QFont("Sans", 9));
    const std::string path = "/home/analyst/projects/wheat-2024/calibration/report.txt";
    EXPECT_EQ(PathCompactPath(metrics, path, 10000), path);
    for (int width : {250, 150, 100, 60}) {
        SCOPED_TRACE(width);
        const std::string compact = PathCompactPath(metrics, path, width);
        EXPECT_LE(metrics.horizontalAdvance(QString::fromStdString(compact)), width);
        EXPECT_NE(compact.find("..."), std::string::npos);
    }
    EXPECT_EQ(PathCompactPath(metrics, path, 250).substr(PathCompactPath(metrics, path, 250).size() - 11),
              "/report.txt");
    // The 260-character buffer: a longer path is cut, and never inside a character.
    const std::string longPath(258, 'a');
    const std::string cut = PathCompactPath(metrics, longPath + "\xC3\xA9\xC3\xA9", 1000000);
    EXPECT_EQ(cut, longPath);
}

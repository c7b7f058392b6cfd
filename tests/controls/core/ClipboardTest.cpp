#include <KORVAutlwin/controls/ListClipboard.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Table : ClipboardTable
{
    std::vector<std::string> titles;
    std::vector<std::vector<std::string>> rows;
    bool header = true;
    int GetColumnCount() const override { return static_cast<int>(titles.size()); }
    std::string GetColumnText(int col) const override { return titles[static_cast<size_t>(col)]; }
    bool HasColumnHeader() const override { return header; }
    std::string GetClipboardItemText(int row, int col) const override
    {
        return rows[static_cast<size_t>(row)][static_cast<size_t>(col)];
    }
};

unsigned Field(const std::string& block, const char* name)
{
    return static_cast<unsigned>(std::stoul(block.substr(block.find(name) + std::string(name).size(), 8)));
}

} // namespace

TEST(ListClipboard, TextAndHtmlForms)
{
    Table table;
    table.titles = {"Name", "Wert"};
    table.rows = {{"a<b", "1\t2"}, {"Müller", "3"}};
    const std::vector<int> secondOnly = {1};
    struct Case
    {
        const char* name;
        bool header;
        const char* caption; // null: the selected-rows formatter
        const char* text;
        const char* html;
    } cases[] = {
        {"caption and titles", true, "Ärger",
         "Ärger\r\n=====\r\nName\tWert\r\n----\t----\r\na<b\t1\t2\r\nMüller\t3\r\n",
         "<table><caption>Ärger</caption><thead><tr><th>Name</th><th>Wert</th></tr></thead><tbody>"
         "<tr><td>a<b</td><td>1\t2</td></tr><tr><td>Müller</td><td>3</td></tr></tbody></table>"},
        {"hidden header, no caption", false, "", "a<b\t1\t2\r\nMüller\t3\r\n",
         "<table><tbody><tr><td>a<b</td><td>1\t2</td></tr><tr><td>Müller</td><td>3</td></tr></tbody></table>"},
        {"selected rows have no head", true, nullptr, "Müller\t3\r\n",
         "<table><tbody><tr><td>Müller</td><td>3</td></tr></tbody></table>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        table.header = c.header;
        AllItemsFormatter all(c.caption, 2);
        SelectedItemsFormatter selected(secondOnly);
        const ListFormatter& formatter = c.caption ? static_cast<const ListFormatter&>(all) : selected;
        EXPECT_EQ(ListClipboard::ToString(table, formatter), c.text);
        EXPECT_EQ(ListClipboard::ToHTML(table, formatter), c.html);
    }
}

TEST(ListClipboard, DescriptorBytes)
{
    const std::string block = ListClipboard::MakeHTMLClipStringFromText("<b>x</b>");
    EXPECT_EQ(block, "Version:0.9\nStartHTML:00000155\nEndHTML:00000262\nStartFragment:00000219\n"
                     "EndFragment:00000228\n<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\">\n"
                     "<html><head><title></title></head>\n<body>\n<!--StartFragment -->\n<b>x</b>\n"
                     "<!--EndFragment-->\n</body>\n</html>");
}

TEST(ListClipboard, DescriptorOffsetsAreBytesAndFirstMatches)
{
    struct Case
    {
        const char* name;
        std::string fragment;
        size_t endFragment; // from the start of the fragment
    } cases[] = {
        {"ASCII", "<table></table>", 16},
        {"two-byte characters", "<td>Größe</td>", std::string("<td>Größe</td>").size() + 1},
        {"fragment holding the end marker", "a<!--EndFrag-->b", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string block = ListClipboard::MakeHTMLClipStringFromText(c.fragment);
        EXPECT_EQ(block.substr(ListClipboard::kHeadLength, c.fragment.size()), c.fragment);
        EXPECT_EQ(block.substr(Field(block, "StartHTML:"), 6), "<html>");
        EXPECT_EQ(Field(block, "EndHTML:"), block.size());
        EXPECT_EQ(Field(block, "StartFragment:"), ListClipboard::kHeadLength);
        EXPECT_EQ(Field(block, "EndFragment:"), ListClipboard::kHeadLength + c.endFragment);
        EXPECT_TRUE(block.ends_with("\n</body>\n</html>")); // no final line feed
    }
}

#include <KORVAutlwin/help/ChmContents.h>
#include <KORVAutlwin/help/ContextHelpTable.h>
#include <KORVAutlwin/help/HelpLinks.h>

#include <gtest/gtest.h>

TEST(HelpLinks, AppLinksAndCommands)
{
    const std::map<std::string, unsigned int> map = {{"Open", 35101}};
    struct Row
    {
        const char* url;
        bool isApp;
        bool mapped;
    } rows[] = {{"app:Open", true, true},   {"APP:Open", true, true},  {"aPp:Open", true, true},
                {"app:open", true, false},  {"app:Other", true, false}, {"its:/a.chm::/app:Open", false, false},
                {"ap:Open", false, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.url);
        std::string name;
        unsigned int id = 0;
        EXPECT_EQ(HelpLinks::IsAppLink(row.url, name), row.isApp);
        EXPECT_EQ(row.isApp && HelpLinks::FindCommand(map, name, id), row.mapped);
        EXPECT_EQ(id, row.mapped ? 35101u : 0u);
    }
}

TEST(HelpLinks, TopicUrlsAndHomes)
{
    std::string file, topic;
    ASSERT_TRUE(HelpLinks::SplitTopicUrl(HelpLinks::TopicUrl("/x/a.chm", "sub/b.htm#part"), file, topic));
    EXPECT_EQ(file, "/x/a.chm");
    EXPECT_EQ(topic, "/sub/b.htm");
    EXPECT_FALSE(HelpLinks::SplitTopicUrl("its:/x/a.chm", file, topic));
    EXPECT_FALSE(HelpLinks::SplitTopicUrl("http://a::b", file, topic));
    EXPECT_TRUE(HelpLinks::IsUrlHome("https://example.org/"));
    EXPECT_FALSE(HelpLinks::IsUrlHome("intro.htm"));
}

TEST(ContextHelpTable, NinetyNineChildrenWithoutTheButtons)
{
    std::vector<ContextHelpTable::Pair> children = {{1, 11}, {2, 12}, {9, 19}};
    for (unsigned long id = 100; id < 250; ++id)
        children.push_back({id, id + 5000});
    ContextHelpTable table;
    table.FillContextHelpLookUpTable(children);
    EXPECT_EQ(table.GetCount(), 99);
    EXPECT_EQ(table.GetTable()[0], ContextHelpTable::Pair(100, 5100));
    EXPECT_EQ(table.GetTable()[99], ContextHelpTable::Pair(0, 0));
    EXPECT_EQ(table.ContextIdOf(1), 0u);
    EXPECT_EQ(table.ContextIdOf(198), 5198u);
    EXPECT_EQ(table.ContextIdOf(199), 0u);
}

TEST(ChmContents, SiteMapsAndPopupTexts)
{
    const auto entries = ChmContents::ParseSiteMap(
        "<UL><LI><OBJECT type=\"text/sitemap\"><param name=\"Name\" value=\"Start\"><param name=\"Local\" "
        "value=\"a.htm\"></OBJECT><ul><li><object><PARAM NAME=\"Local\" value=\"b.htm\"><param name=\"Name\" "
        "value=\"Deeper\"></object></ul><LI><OBJECT><param name=\"Name\" value=\"Book\"></OBJECT></UL>");
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].local, "a.htm");
    EXPECT_EQ(entries[1].name + "|" + entries[1].local + "|" + std::to_string(entries[1].depth), "Deeper|b.htm|1");
    EXPECT_EQ(entries[2].name + "|" + entries[2].local + "|" + std::to_string(entries[2].depth), "Book||0");
    const std::string popups = ".topic 10\r\nFirst line\r\nsecond\r\n.topic 100\r\nOther\r\n";
    EXPECT_EQ(ChmContents::PopupText(popups, 10), "First line\nsecond");
    EXPECT_EQ(ChmContents::PopupText(popups, 100), "Other");
    EXPECT_EQ(ChmContents::PopupText(popups, 1), "");
}

#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

// Indexed sections are remembered between calls; deleting one must not leave
// the memory pointing past the sections that are left.
TEST(XMLSectionIndexed, WalkingOnAfterADeletionCountsAgain)
{
    XMLSection root;
    for (int i = 1; i <= 4; ++i)
        std::unique_ptr<ConfigurationSection>(root.CreateSubSection("Item", i))->WriteInt("n", i);
    std::unique_ptr<ConfigurationSection>(root.CopyAndChangeSubSection("Item", 2))->DeleteSection();
    std::unique_ptr<ConfigurationSection>(root.CreateSubSection("Item", 4))->WriteInt("n", 5);
    EXPECT_EQ(root.NumSubSections("Item"), 4);
    std::string order;
    for (int i = 1; i <= 4; ++i) {
        int n = 0;
        std::unique_ptr<ConfigurationSection>(root.CopyAndChangeSubSection("Item", i))->ReadInt("n", n);
        order += std::to_string(n);
    }
    EXPECT_EQ(order, "1345");
    EXPECT_EQ(root.CopyAndChangeSubSection("Item", 5), nullptr);
}

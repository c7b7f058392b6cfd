// Settings under hostile input: a file nested past the limit is refused and
// left as it is, and a string vector keeps the separator it was written with.

#include "TempDir.h"

#include <KORVAutl/Exception.h>
#include <KORVAutl/XMLSection.h>

#include <vector>

namespace {

std::string Nested(int depth)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<e>";
    for (int i = 0; i < depth; ++i)
        text += "</e>";
    return text;
}

TEST(SettingsLimitsTest, FileNestedPastTheLimitIsRefusedAndLeftUntouched)
{
    TempDir folder;
    const std::string path = folder.File("deep.xml");
    for (const int depth : {XMLSection::kMaxDepth + 1, 100000}) {
        SCOPED_TRACE(depth);
        WriteFile(path, Nested(depth));
        try {
            XMLSection section(path.c_str(), true);
            FAIL() << "a file nested " << depth << " deep was taken";
        } catch (const Exception& error) {
            EXPECT_EQ(std::string(error.Why()).rfind("The settings file " + path + " is not a well-formed XML document: "
                                                      "Elements nested too deeply", 0), 0u)
                << error.Why();
        }
        EXPECT_EQ(ReadFile(path), Nested(depth));
    }
    // At the limit the file is read and written back.
    WriteFile(path, Nested(XMLSection::kMaxDepth));
    XMLSection section(path.c_str(), true);
    EXPECT_TRUE(section.WriteKey("k", "v") && section.Flush());
    EXPECT_LT(ReadFile(path).size(), 80000u);
}

TEST(SettingsLimitsTest, StringVectorRoundTripsWithItsOwnSeparator)
{
    XMLSection section;
    for (const char separator : {';', '|', ','}) {
        SCOPED_TRACE(separator);
        const std::vector<std::string> values = {"a", "b c", ""};
        ASSERT_TRUE(section.WriteStringVector("v", values, separator));
        std::vector<std::string> read;
        EXPECT_EQ(section.ReadStringVector("v", read, separator), 3);
        EXPECT_EQ(read, values);
    }
    EXPECT_FALSE(section.WriteStringVector("v", {"a|b"}, '|'));
}

} // namespace

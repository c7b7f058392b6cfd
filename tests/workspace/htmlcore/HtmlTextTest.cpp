// The text rules of the HTML views: the style found in a body, the rules of a
// style text, "app:" links and the saved page.

#include <KORVAutlwin/workspace/HtmlText.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

TEST(HtmlTextTest, StyleFoundInTheBodyIsLowerCasedFromTheBracket)
{
    const struct { const char* body; const char* style; } rows[] = {
        {"<STYLE type=\"text/css\">P.Note { Color: Red }</STYLE><p>x</p>", ">p.note { color: red }"},
        {"<style>b { x }</style>", ">b { x }"},
        {"<style b { x }", ""},
        {"</style><style>", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ(HtmlText::FindStyleInBody(row.body), row.style);
    }
}

TEST(HtmlTextTest, RulesKeepTheirSelectorsOnlyWithABlankBeforeTheBrace)
{
    // The rest of a media block runs into the next selector.
    const auto rules = HtmlText::ParseRules("p { color: red }\nh1{ margin: 0 }\np { color: blue }\n"
                                           "@media print { td { x } }\n.note { font-weight: bold }");
    const std::map<std::string, std::string> expected = {
        {"p", "color: blue"}, {"h", "margin: 0"}, {"}\n.note", "font-weight: bold"}};
    EXPECT_EQ(rules, expected);
    EXPECT_TRUE(HtmlText::IsAppCommand("APP:Run") && HtmlText::IsAppCommand("aPp:") && !HtmlText::IsAppCommand("ap:x"));
    EXPECT_EQ(HtmlText::ComposeSavedPage("t", "c", "<HTML><body/></HTML>"), "<HTML><body/></HTML>");
}

} // namespace

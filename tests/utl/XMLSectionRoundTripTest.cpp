// Values written through one back-end object and read back through a fresh one
// on the same medium. The typed operations store text through WriteKey (see
// ConfigurationSectionTest), so what a medium must keep is the text itself.

#include "TempDir.h"

#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

// Values that tend to get lost on the way through a file.
const std::vector<std::string>& TrickyValues()
{
    static const std::vector<std::string> values = {
        "",
        " leading and trailing blanks ",
        "line one\nline two\n",
        "\n\nstarts with empty lines",
        "tab\there\t",
        "quotes \" and ' and <angle> & ampersand &amp;",
        "caf\xC3\xA9 \xE6\x9D\xB1\xE4\xBA\xAC \xF0\x9F\x98\x80",
        "key = value ; not a comment",
        "[not a section]",
        "   ",
        "# not a comment either",
        "-0;1e-300;nan",
    };
    return values;
}

std::string Key(std::size_t i)
{
    return "v" + std::to_string(i);
}

void ExpectValues(const ConfigurationSection& section, const std::vector<std::string>& values)
{
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::string read = "unread";
        EXPECT_TRUE(section.ReadKey(Key(i).c_str(), read));
        EXPECT_EQ(read, values[i]) << "value " << i;
    }
}

} // namespace

TEST(XMLSectionRoundTripTest, TrickyValuesSurviveTheXMLFileAndItsRenderedTextExactly)
{
    TempDir dir;
    const std::string path = dir.File("values.xml");
    std::vector<std::string> values = TrickyValues();
    values.push_back("carriage\r\nreturn\r");
    values.push_back(std::string("control \x01\x1F characters"));
    std::string indented, compact;
    {
        XMLSection file(path.c_str(), true);
        std::unique_ptr<ConfigurationSection> section(file.CreateSubSection("AppSettings"));
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_TRUE(section->WriteKey(Key(i).c_str(), values[i].c_str()));
        ASSERT_TRUE(section->Flush());
        ASSERT_TRUE(file.Flush(indented, true));
        ASSERT_TRUE(file.Flush(compact, false));
    }
    XMLSection reread(path.c_str(), false);
    ASSERT_TRUE(reread.ChangeSubSection("AppSettings"));
    ExpectValues(reread, values);
    for (const std::string& text : {indented, compact}) {
        XMLStringInputStream stream(text);
        XMLSection fromText(&stream, false);
        ASSERT_TRUE(fromText.ChangeSubSection("AppSettings"));
        ExpectValues(fromText, values);
    }
}

TEST(XMLSectionRoundTripTest, TrickyValuesSurviveTheIniFileExactly)
{
    TempDir dir;
    const std::string path = dir.File("values.ini");
    const std::vector<std::string>& values = TrickyValues();
    {
        IniFileSection file(path.c_str(), "Values");
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_TRUE(file.WriteKey(Key(i).c_str(), values[i].c_str())) << "value " << i;
    }
    IniFileSection reread(path.c_str(), "Values");
    EXPECT_TRUE(reread.IsWritable());
    ExpectValues(reread, values);
}

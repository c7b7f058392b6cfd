// Every typed operation of the settings contract, written through one
// back-end object and read back through a fresh one on the same medium.

#include "TempDir.h"

#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>

namespace {

void WriteEveryType(ConfigurationSection& s)
{
    ASSERT_TRUE(s.WriteBool("bool", true));
    ASSERT_TRUE(s.WriteBool("boolFalse", false));
    s.WriteBoolVector("bools", {true, false, false, true});
    ASSERT_TRUE(s.WriteFloat("float", 0.1f));
    ASSERT_TRUE(s.WriteFloat("double", 1.0 / 3.0));
    const double doubles[] = {-0.0, 1e-300, 2.5, std::nan("")};
    s.WriteDoubleVector("doubles", doubles, 4);
    s.WriteFloatVector("floats", std::vector<float>{1.5f, -3.25e7f, 0.2f});
    const float floatArray[] = {7.f, 8.125f};
    s.WriteFloatVector("floatArray", floatArray, 2);
    ASSERT_TRUE(s.WriteInt("int", INT_MIN));
    s.WriteIntVector("ints", {INT_MAX, 0, -5});
    ASSERT_TRUE(s.WriteStringVector("strings", {"alpha", "", "gamma delta"}, ';'));
    ASSERT_TRUE(s.WriteKey("wide", std::wstring(L"Gr\u00fc\u00dfe \u6771\u4eac \U0001F600")));
    ASSERT_TRUE(s.WriteKey("wideChars", L"\u00e9t\u00e9"));
    ASSERT_TRUE(s.WriteKey("narrow", std::string("plain text")));
    s.WriteIntVector("emptyInts", {});
}

void ExpectEveryType(const ConfigurationSection& s)
{
    bool b = false;
    EXPECT_TRUE(s.ReadBool("bool", b));
    EXPECT_TRUE(b);
    EXPECT_TRUE(s.ReadBool("boolFalse", b));
    EXPECT_FALSE(b);
    std::vector<bool> bools;
    EXPECT_TRUE(s.ReadBoolVector("bools", bools));
    EXPECT_EQ(bools, (std::vector<bool>{true, false, false, true}));

    float f = 0;
    EXPECT_TRUE(s.ReadFloat("float", f));
    EXPECT_EQ(f, 0.1f);
    double d = 0;
    EXPECT_TRUE(s.ReadDouble("double", d));
    EXPECT_EQ(d, 1.0 / 3.0);
    double doubles[5] = {};
    ASSERT_EQ(s.ReadDoubleVector("doubles", doubles, 5), 4);
    EXPECT_EQ(doubles[0], 0.0);
    EXPECT_TRUE(std::signbit(doubles[0]));
    EXPECT_EQ(doubles[1], 1e-300);
    EXPECT_EQ(doubles[2], 2.5);
    EXPECT_TRUE(std::isnan(doubles[3]));
    std::vector<float> floats;
    EXPECT_TRUE(s.ReadFloatVector("floats", floats));
    EXPECT_EQ(floats, (std::vector<float>{1.5f, -3.25e7f, 0.2f}));
    float floatArray[2] = {};
    EXPECT_EQ(s.ReadFloatVector("floatArray", floatArray, 2), 2);
    EXPECT_EQ(floatArray[1], 8.125f);

    int i = 0;
    EXPECT_TRUE(s.ReadInt("int", i));
    EXPECT_EQ(i, INT_MIN);
    std::vector<int> ints;
    EXPECT_TRUE(s.ReadIntVector("ints", ints));
    EXPECT_EQ(ints, (std::vector<int>{INT_MAX, 0, -5}));
    std::vector<int> emptyInts{1};
    EXPECT_TRUE(s.ReadIntVector("emptyInts", emptyInts));
    EXPECT_TRUE(emptyInts.empty());

    std::vector<std::string> strings;
    EXPECT_EQ(s.ReadStringVector("strings", strings, ';'), 3);
    EXPECT_EQ(strings, (std::vector<std::string>{"alpha", "", "gamma delta"}));
    std::wstring wide;
    EXPECT_TRUE(s.ReadKey("wide", wide));
    EXPECT_EQ(wide, L"Gr\u00fc\u00dfe \u6771\u4eac \U0001F600");
    wchar_t wideChars[4];
    EXPECT_TRUE(s.ReadKey("wideChars", wideChars, 4));
    EXPECT_EQ(std::wstring(wideChars), L"\u00e9t\u00e9");
    EXPECT_FALSE(s.ReadKey("wideChars", wideChars, 3)) << "no room for the terminator";
    char narrow[11];
    EXPECT_TRUE(s.ReadKey("narrow", narrow, sizeof narrow));
    EXPECT_STREQ(narrow, "plain text");

    int untouched = 99;
    EXPECT_FALSE(s.ReadInt("missing", untouched));
    EXPECT_FALSE(s.ReadInt("narrow", untouched));
    EXPECT_EQ(untouched, 99);
}

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
    };
    return values;
}

} // namespace

TEST(XMLSectionRoundTripTest, EveryTypeThroughTheFile)
{
    TempDir dir;
    const std::string path = dir.File("settings.xml");
    {
        XMLSection file(path.c_str(), true);
        std::unique_ptr<ConfigurationSection> section(file.CreateSubSection("AppSettings"));
        WriteEveryType(*section);
        ASSERT_TRUE(section->Flush());
    }
    XMLSection reread(path.c_str(), false);
    ASSERT_TRUE(reread.ChangeSubSection("AppSettings"));
    ExpectEveryType(reread);
}

TEST(XMLSectionRoundTripTest, EveryTypeThroughRenderedText)
{
    XMLSection memory;
    WriteEveryType(memory);
    for (bool indent : {true, false}) {
        std::string text;
        ASSERT_TRUE(memory.Flush(text, indent));
        XMLStringInputStream stream(text);
        XMLSection reread(&stream, false);
        ExpectEveryType(reread);
    }
}

TEST(XMLSectionRoundTripTest, EveryTypeThroughAnIniFile)
{
    TempDir dir;
    const std::string path = dir.File("settings.ini");
    {
        IniFileSection section(path.c_str(), "Settings");
        WriteEveryType(section);
    }
    IniFileSection reread(path.c_str(), "Settings");
    ExpectEveryType(reread);
}

TEST(XMLSectionRoundTripTest, TrickyValuesSurviveTheXMLFileExactly)
{
    TempDir dir;
    const std::string path = dir.File("values.xml");
    std::vector<std::string> values = TrickyValues();
    values.push_back("carriage\r\nreturn\r");
    values.push_back(std::string("control \x01\x1F characters"));
    {
        XMLSection file(path.c_str(), true);
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_TRUE(file.WriteKey(("v" + std::to_string(i)).c_str(), values[i].c_str()));
        ASSERT_TRUE(file.Flush());
    }
    XMLSection reread(path.c_str(), false);
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::string read = "unread";
        EXPECT_TRUE(reread.ReadKey(("v" + std::to_string(i)).c_str(), read));
        EXPECT_EQ(read, values[i]) << "value " << i;
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
            ASSERT_TRUE(file.WriteKey(("v" + std::to_string(i)).c_str(), values[i].c_str())) << "value " << i;
    }
    IniFileSection reread(path.c_str(), "Values");
    EXPECT_TRUE(reread.IsWritable());
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::string read = "unread";
        EXPECT_TRUE(reread.ReadKey(("v" + std::to_string(i)).c_str(), read));
        EXPECT_EQ(read, values[i]) << "value " << i;
    }
}

// The typed operations of the base class, through the texts they store (MemorySection keeps them as given).

#include "MemorySection.h"

#include <gtest/gtest.h>

TEST(ConfigurationSectionTest, NumbersAndBooleansAreShortExactTexts)
{
    // Numbers in the shortest text that reads back exactly, with a dot (the conversions: TsStringTest);
    // a float as the double it is. Booleans as 1 and 0, read also as words.
    MemorySection section;
    section.WriteFloat("d", 0.1);
    section.WriteFloat("f", 0.1f);
    section.WriteBool("on", true);
    section.WriteBool("off", false);
    section.WriteInt("n", -42);
    EXPECT_EQ(section.keys, (decltype(section.keys){
                                {"d", "0.1"}, {"f", "0.10000000149011612"}, {"n", "-42"}, {"off", "0"}, {"on", "1"}}));
    section.WriteKey("word", "TRUE");
    double d = 42;
    float f = 42;
    int n = 0;
    bool on = false, off = true, word = false;
    ASSERT_TRUE(section.ReadDouble("d", d) && section.ReadFloat("f", f) && section.ReadInt("n", n) &&
                section.ReadBool("on", on) && section.ReadBool("off", off) && section.ReadBool("word", word));
    EXPECT_TRUE(d == 0.1 && f == 0.1f && n == -42 && on && !off && word);

    // Failed reads leave the value alone.
    section.keys = {{"text", "twelve"}, {"partly", "12abc"}, {"badvector", "1;x;3"}};
    std::vector<int> ints{1, 2};
    EXPECT_EQ((std::vector<bool>{section.ReadInt("missing", n), section.ReadInt("partly", n),
                                 section.ReadDouble("text", d), section.ReadFloat("partly", f),
                                 section.ReadBool("text", on), section.ReadIntVector("badvector", ints)}),
              std::vector<bool>(6, false));
    EXPECT_TRUE(n == -42 && d == 0.1 && f == 0.1f && on && ints == (std::vector<int>{1, 2}));
}

TEST(ConfigurationSectionTest, VectorsRoundTrip)
{
    MemorySection section;
    const std::vector<int> ints{3, -1, 2147483647, -2147483647 - 1};
    const std::vector<bool> bools{true, false, true};
    const std::vector<float> floats{0.1f, -2.0f, 1e-7f};
    section.WriteIntVector("ints", ints);
    section.WriteBoolVector("bools", bools);
    section.WriteFloatVector("floats", floats);
    auto [readInts, readBools, readFloats] = std::tuple<std::vector<int>, std::vector<bool>, std::vector<float>>();
    ASSERT_TRUE(section.ReadIntVector("ints", readInts) && section.ReadBoolVector("bools", readBools) &&
                section.ReadFloatVector("floats", readFloats));
    EXPECT_TRUE(readInts == ints && readBools == bools && readFloats == floats) << section.keys["floats"];

    // The counted forms stop at the caller's count.
    float two[2] = {};
    const double doubles[] = {1.5, 1.0 / 7.0, -3e-200};
    section.WriteDoubleVector("doubles", doubles, 3);
    double readDoubles[5] = {};
    EXPECT_EQ((std::vector<int>{section.ReadFloatVector("floats", two, 2),
                                section.ReadDoubleVector("doubles", readDoubles, 5),
                                section.ReadDoubleVector("missing", readDoubles, 5)}),
              (std::vector<int>{2, 3, 0}));
    EXPECT_TRUE(two[1] == -2.0f && readDoubles[1] == 1.0 / 7.0 && readDoubles[2] == -3e-200);

    // An empty vector is an empty text and reads back empty.
    section.WriteIntVector("empty", {});
    readInts = {9};
    EXPECT_TRUE(section.ReadIntVector("empty", readInts) && readInts.empty());

    // String vectors use the caller's separator; a text holding it would not read back, so nothing is written.
    ASSERT_TRUE(section.WriteStringVector("files", {"a.txt", "", "c d"}, ';'));
    EXPECT_FALSE(section.WriteStringVector("files", {"a;b"}, ';'));
    EXPECT_EQ(section.keys["files"], "a.txt;;c d");
    std::vector<std::string> files{"old"};
    EXPECT_EQ(section.ReadStringVector("files", files, ';'), 3);
    EXPECT_EQ(files, (std::vector<std::string>{"a.txt", "", "c d"}));
}

TEST(ConfigurationSectionTest, WideTextsAndCallersBuffers)
{
    MemorySection section;
    ASSERT_TRUE(section.WriteKey("wide", std::wstring(L"Gr\u00fc\u00dfe \U0001F600")));
    EXPECT_EQ(section.keys["wide"], "Gr\xC3\xBC\xC3\x9F" "e \xF0\x9F\x98\x80");
    std::wstring wide;
    EXPECT_TRUE(section.ReadKey("wide", wide) && wide == L"Gr\u00fc\u00dfe \U0001F600");

    // A buffer too small (even by the terminator alone) is left alone; one that fits takes the text.
    wchar_t small[4] = L"old", big[16];
    section.WriteKey("narrow", "abc");
    char exact[4], tooSmall[3] = "xy";
    EXPECT_FALSE(section.ReadKey("wide", small, 4) || section.ReadKey("narrow", tooSmall, 3));
    EXPECT_TRUE(std::wstring(small) == L"old" && std::string(tooSmall) == "xy");
    ASSERT_TRUE(section.ReadKey("wide", big, 16) && section.ReadKey("narrow", exact, 4));
    EXPECT_TRUE(std::wstring(big) == wide && std::string(exact) == "abc");

    // A back-end without sub-sections gives none.
    const std::unique_ptr<std::vector<std::shared_ptr<ConfigurationSection>>> all(section.GetAllSubSections("none"));
    EXPECT_TRUE(all->empty() && section.NumSubSections("none") == 0);
    EXPECT_TRUE(!section.CopyAndChangeSubSection("none") && !section.CopyAndChangeSubSection("none", 1));
}

#include "MemorySection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(ConfigurationSectionTest, FloatsAndDoublesRoundTripExactly)
{
    MemorySection section;
    const double doubles[] = {0.1, 1.0 / 3.0, -2.5e-308, 1e300, std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::denorm_min(), -0.0};
    for (double value : doubles) {
        ASSERT_TRUE(section.WriteFloat("d", value));
        double read = 42;
        ASSERT_TRUE(section.ReadDouble("d", read)) << section.keys["d"];
        EXPECT_EQ(read, value) << section.keys["d"];
        EXPECT_EQ(std::signbit(read), std::signbit(value));
    }
    for (float value : {0.1f, 3.4028235e38f, 1.17549435e-38f}) {
        section.WriteFloat("f", value);
        float read = 42;
        ASSERT_TRUE(section.ReadFloat("f", read));
        EXPECT_EQ(read, value);
    }
    // Texts are written with a dot and in the shortest exact form.
    section.WriteFloat("d", 0.1);
    EXPECT_EQ(section.keys["d"], "0.1");

    section.WriteFloat("nan", std::nan(""));
    double nan = 0;
    ASSERT_TRUE(section.ReadDouble("nan", nan));
    EXPECT_TRUE(std::isnan(nan));
}

TEST(ConfigurationSectionTest, FailedReadsLeaveTheValueAlone)
{
    MemorySection section;
    section.WriteKey("text", "twelve");
    section.WriteKey("partly", "12abc");
    int i = 7;
    double d = 7;
    float f = 7;
    bool b = true;
    EXPECT_FALSE(section.ReadInt("missing", i));
    EXPECT_FALSE(section.ReadInt("partly", i));
    EXPECT_FALSE(section.ReadDouble("text", d));
    EXPECT_FALSE(section.ReadFloat("partly", f));
    EXPECT_FALSE(section.ReadBool("text", b));
    EXPECT_EQ(i, 7);
    EXPECT_EQ(d, 7);
    EXPECT_EQ(f, 7);
    EXPECT_TRUE(b);

    std::vector<int> ints{1, 2};
    section.WriteKey("badvector", "1;x;3");
    EXPECT_FALSE(section.ReadIntVector("badvector", ints));
    EXPECT_EQ(ints, (std::vector<int>{1, 2}));
}

TEST(ConfigurationSectionTest, VectorsRoundTrip)
{
    MemorySection section;
    section.WriteIntVector("ints", {3, -1, 2147483647, -2147483647 - 1});
    std::vector<int> ints;
    ASSERT_TRUE(section.ReadIntVector("ints", ints));
    EXPECT_EQ(ints, (std::vector<int>{3, -1, 2147483647, -2147483647 - 1}));

    section.WriteBoolVector("bools", {true, false, true});
    std::vector<bool> bools;
    ASSERT_TRUE(section.ReadBoolVector("bools", bools));
    EXPECT_EQ(bools, (std::vector<bool>{true, false, true}));

    const std::vector<float> floats{0.1f, -2.0f, 1e-7f};
    section.WriteFloatVector("floats", floats);
    std::vector<float> readFloats;
    ASSERT_TRUE(section.ReadFloatVector("floats", readFloats));
    EXPECT_EQ(readFloats, floats);

    // The counted forms stop at the caller's count.
    float two[2] = {};
    EXPECT_EQ(section.ReadFloatVector("floats", two, 2), 2);
    EXPECT_EQ(two[1], -2.0f);
    const double doubles[] = {1.5, 1.0 / 7.0, -3e-200};
    section.WriteDoubleVector("doubles", doubles, 3);
    double readDoubles[5] = {};
    EXPECT_EQ(section.ReadDoubleVector("doubles", readDoubles, 5), 3);
    EXPECT_EQ(readDoubles[1], 1.0 / 7.0);
    EXPECT_EQ(section.ReadDoubleVector("missing", readDoubles, 5), 0);

    // An empty vector is an empty text and reads back empty.
    section.WriteIntVector("empty", {});
    ints = {9};
    ASSERT_TRUE(section.ReadIntVector("empty", ints));
    EXPECT_TRUE(ints.empty());
}

TEST(ConfigurationSectionTest, StringVectorsUseTheCallersSeparator)
{
    MemorySection section;
    ASSERT_TRUE(section.WriteStringVector("files", {"a.txt", "", "c d"}, ';'));
    EXPECT_EQ(section.keys["files"], "a.txt;;c d");
    std::vector<std::string> files{"old"};
    EXPECT_EQ(section.ReadStringVector("files", files, ';'), 3);
    EXPECT_EQ(files, (std::vector<std::string>{"a.txt", "", "c d"}));

    // A text holding the separator would not read back: refused, nothing written.
    EXPECT_FALSE(section.WriteStringVector("files", {"a;b"}, ';'));
    EXPECT_EQ(section.keys["files"], "a.txt;;c d");
}

TEST(ConfigurationSectionTest, BooleansAndIntegersAsText)
{
    MemorySection section;
    section.WriteBool("on", true);
    section.WriteBool("off", false);
    EXPECT_EQ(section.keys["on"], "1");
    EXPECT_EQ(section.keys["off"], "0");
    section.WriteKey("word", "TRUE");
    bool value = false;
    ASSERT_TRUE(section.ReadBool("word", value));
    EXPECT_TRUE(value);
    ASSERT_TRUE(section.ReadBool("off", value));
    EXPECT_FALSE(value);

    section.WriteInt("n", -42);
    int n = 0;
    ASSERT_TRUE(section.ReadInt("n", n));
    EXPECT_EQ(n, -42);
}

TEST(ConfigurationSectionTest, WideAndBufferForms)
{
    MemorySection section;
    ASSERT_TRUE(section.WriteKey("wide", std::wstring(L"Gr\u00fc\u00dfe \U0001F600")));
    EXPECT_EQ(section.keys["wide"], "Gr\xC3\xBC\xC3\x9F" "e \xF0\x9F\x98\x80");
    std::wstring wide;
    ASSERT_TRUE(section.ReadKey("wide", wide));
    EXPECT_EQ(wide, L"Gr\u00fc\u00dfe \U0001F600");

    wchar_t small[4] = L"old";
    EXPECT_FALSE(section.ReadKey("wide", small, 4));
    EXPECT_EQ(std::wstring(small), L"old");
    wchar_t big[16];
    ASSERT_TRUE(section.ReadKey("wide", big, 16));
    EXPECT_EQ(std::wstring(big), wide);

    section.WriteKey("narrow", std::string("abc"));
    char exact[4];
    ASSERT_TRUE(section.ReadKey("narrow", exact, 4));
    EXPECT_STREQ(exact, "abc");
    char tooSmall[3] = "xy";
    EXPECT_FALSE(section.ReadKey("narrow", tooSmall, 3));
    EXPECT_STREQ(tooSmall, "xy");
}

TEST(ConfigurationSectionTest, CopyAndChangeSubSectionGivesNullForAMissingChild)
{
    MemorySection section;
    EXPECT_EQ(section.CopyAndChangeSubSection("none"), nullptr);
    EXPECT_EQ(section.CopyAndChangeSubSection("none", 1), nullptr);
    EXPECT_EQ(section.NumSubSections("none"), 0);
    std::unique_ptr<std::vector<std::shared_ptr<ConfigurationSection>>> all(section.GetAllSubSections("none"));
    ASSERT_NE(all, nullptr);
    EXPECT_TRUE(all->empty());
}

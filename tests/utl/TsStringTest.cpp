#include "TempDir.h"

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/TsString.h>

#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstring>
#include <random>

namespace {

// Doubles equal to the bit, NaN included.
bool SameDouble(double a, double b)
{
    return std::isnan(a) ? std::isnan(b) && std::signbit(a) == std::signbit(b)
                         : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// Puts the process into the German locale, with "," as decimal point, for the
// scope; where it is not installed, localedef compiles it into a temporary folder.
class CommaLocale
{
public:
    CommaLocale()
    {
        if (Switch())
            return;
        const std::string command = "localedef -i de_DE -f UTF-8 '" + mFolder.File("de_DE.UTF-8") + "' >/dev/null 2>&1";
        const int status = std::system(command.c_str());
        setenv("LOCPATH", mFolder.Path().c_str(), 1);
        if (!Switch())
            mReason = "no de_DE.UTF-8 locale, and localedef could not make one (status " + std::to_string(status) + ")";
    }
    ~CommaLocale()
    {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
    }

    /// Empty when the locale is in force, else why not.
    const std::string& Reason() const { return mReason; }

private:
    static bool Switch()
    {
        char probe[16];
        return std::setlocale(LC_ALL, "de_DE.UTF-8") && std::snprintf(probe, sizeof probe, "%.1f", 1.5) > 0 &&
               std::strcmp(probe, "1,5") == 0;
    }

    TempDir mFolder;
    std::string mReason;
};

} // namespace

TEST(TsStringMemory, DupConcatAndSetOwnTheirText)
{
    EXPECT_EQ(tsstrdup(nullptr), nullptr);
    const char original[] = "abc";
    char* copy = tsstrdup(original);
    ASSERT_NE(copy, original);
    EXPECT_STREQ(copy, "abc");

    EXPECT_STREQ(TsString::ConcatStr(copy, "def"), "abcdef");
    EXPECT_STREQ(TsString::ConcatStr(copy, nullptr), "abcdef");
    // Appending a part of itself must survive realloc moving the block.
    EXPECT_STREQ(TsString::ConcatStr(copy, copy + 3), "abcdefdef");
    EXPECT_STREQ(TsString::ConcatStr(copy, copy), "abcdefdefabcdefdef");

    EXPECT_STREQ(TsString::SetStr(copy, copy + 9), "abcdefdef");
    EXPECT_EQ(TsString::SetStr(copy, nullptr), nullptr);
    EXPECT_EQ(copy, nullptr);

    char* fresh = nullptr;
    EXPECT_STREQ(TsString::ConcatStr(fresh, nullptr), "");
    EXPECT_STREQ(TsString::ConcatStr(fresh, "x"), "x");
    std::free(fresh);
}

TEST(TsStringSearch, StristrIgnoresAsciiCaseOnly)
{
    const char* haystack = "Hello World, hello wORLD";
    EXPECT_EQ(tsstristr(haystack, "D, H"), haystack + 10);
    EXPECT_EQ(tsstristr(haystack, ""), haystack);
    EXPECT_EQ(tsstristr(haystack, "worlds"), nullptr);
    EXPECT_EQ(tsstristr("aaab", "AAB"), static_cast<const char*>("aaab") + 1);
    EXPECT_EQ(tsstristr("ab", "abc"), nullptr);
    EXPECT_EQ(tsstristr(nullptr, "a"), nullptr);
    // Bytes above ASCII match only themselves: "Ä" is not "ä".
    EXPECT_EQ(tsstristr("gr\xC3\xA4n", "\xC3\x84"), nullptr);
    EXPECT_NE(tsstristr("GR\xC3\xA4N", "r\xC3\xA4n"), nullptr);
}

// strtod in the "C" locale that the test runs in is the reference.
TEST(TsStringStrtod, AgreesWithStrtodOnValueAndEnd)
{
    const std::string longDigits = "0." + std::string(700, '0') + "1234567890123456789012345";
    const std::string longMantissa = std::string(400, '9') + ".5e-100";
    const std::vector<std::string> inputs = {
        "-0", "  \t\n3.25xyz", ".5", "5.", ".", "-.", "e5", "1e", "1e+", "1.e3", "12,5", "0X1.8P+1", "0x",
        "0x.p1", "-0x10", "0x1p", "-Infinity", "infinit", "-NaN", "nan(123)", "nan(12", "1e400", "1e-400",
        "4.9e-324", "2.4703282292062327e-324", "2.4703282292062328e-324", "1.7976931348623159e308",
        "0.1000000000000000055511151231257827", "9007199254740993", "1e99999999999999999999",
        "1e-99999999999999999999", "0e99999999999", "0x1p-1075", "0x1p1024", "+-1", "", longDigits, longMantissa,
    };
    for (const std::string& input : inputs) {
        char* expectedEnd = nullptr;
        char* end = nullptr;
        const double expected = std::strtod(input.c_str(), &expectedEnd);
        const double value = tsstrtod(input.c_str(), &end);
        EXPECT_TRUE(SameDouble(value, expected)) << '"' << input << "\" gives " << value << ", not " << expected;
        EXPECT_EQ(end - input.c_str(), expectedEnd - input.c_str()) << '"' << input << '"';
    }
    EXPECT_EQ(tsstrtod(nullptr, nullptr), 0.0);
}

TEST(TsStringStrtod, ReportsRangeErrors)
{
    for (const auto& [text, value, error] : {std::tuple{"-1e999", -HUGE_VAL, ERANGE}, {"1e-999", 0.0, ERANGE},
                                              {"1e300", 1e300, 0}}) {
        errno = 0;
        EXPECT_EQ(tsstrtod(text, nullptr), value) << text;
        EXPECT_EQ(errno, error) << text;
    }
}

TEST(TsStringLocale, NumbersKeepThePointUnderACommaLocale)
{
    CommaLocale locale;
    if (!locale.Reason().empty())
        GTEST_SKIP() << locale.Reason();

    char* end = nullptr;
    const char* text = "1.25;";
    EXPECT_EQ(tsstrtod(text, &end), 1.25);
    EXPECT_EQ(end, text + 4);
    double value = 0;
    EXPECT_TRUE(TsString::ToFloat("2.5", value));
    EXPECT_EQ(value, 2.5);
    EXPECT_FALSE(TsString::ToFloat("2,5", value));
    std::string formatted;
    EXPECT_EQ(TsString::ToString(1234.5, "%.2f", formatted), "1234.50");
    EXPECT_EQ(TsString::ToString(0.1), "0.1");
    EXPECT_EQ(TsString::Format("%g|%s|%d", 0.5, "a,b", 7), "0.5|a,b|7");
    EXPECT_TRUE(TsString::EvaluateLimitExpression("0.5..1.5", 1.0));

    // The caller's locale is left as it was.
    char probe[16];
    std::snprintf(probe, sizeof probe, "%.1f", 1.5);
    EXPECT_STREQ(probe, "1,5");
}

TEST(TsStringCompare, NumberCompareOrdersDigitRunsByValue)
{
    const std::vector<std::string> expected = {
        "", "a", "a0", "a00", "a1", "a01", "a2", "a9", "a10", "a010", "a10b", "a011", "a99999999999999999999",
        "a100000000000000000000", "a100000000000000000001", "b", "b1c1", "b1c2", "b2c1", "item 9", "item9",
    };
    for (std::size_t i = 0; i < expected.size(); ++i)
        for (std::size_t j = 0; j < expected.size(); ++j)
            EXPECT_EQ(tsstrnumbercmp(expected[i].c_str(), expected[j].c_str()), i < j ? -1 : i > j ? 1 : 0)
                << expected[i] << " / " << expected[j];
    EXPECT_EQ(tsstrnumbercmp("x007y", "x007y"), 0);
    // Zeros only break a tie: a later difference wins over them.
    EXPECT_EQ(tsstrnumbercmp("a01b", "a1c"), -1);
    EXPECT_EQ(tsstrnumbercmp("a1b01", "a01b1"), -1);
    EXPECT_EQ(tsstrnumbercmp(nullptr, ""), 0);
    EXPECT_EQ(tsstrnumbercmp(nullptr, "a"), -1);
    EXPECT_EQ(tsstrnumbercmp("B", "a"), -1);
    EXPECT_EQ(tsstrnumbercmp("a\xC3\xA4", "az"), 1);
}

TEST(TsStringFormat, FormatsAnyLengthAndByLanguageId)
{
    EXPECT_EQ(TsString::Format("%s=%05.1f", "x", 3.14159), "x=003.1");
    const std::string longText(3000, 'q');
    EXPECT_EQ(TsString::Format("<%s>", longText.c_str()), "<" + longText + ">");

    static const korva::StringEntry strings[] = {{4000001, "Row %d of %s"}};
    const korva::ResourceModule module("test", strings, 1, nullptr, 0);
    const korva::ResourceModule* previous = LanguageString::SetModule(&module);
    EXPECT_EQ(TsString::Format(4000001u, 3, "nine"), "Row 3 of nine");
    LanguageString::SetModule(previous);
}

TEST(TsStringEdit, ReplaceAndSplit)
{
    std::string text = "aaaa";
    EXPECT_EQ(TsString::Replace(text, "aa", "b"), 2);
    EXPECT_EQ(text, "bb");
    text = "a.b.c";
    EXPECT_EQ(TsString::Replace(text, ".", ".."), 2);  // replaced text is not looked at again
    EXPECT_EQ(text, "a..b..c");
    EXPECT_EQ(TsString::Replace(text, "..", nullptr), 2);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(TsString::Replace(text, "", "x"), 0);
    EXPECT_EQ(TsString::Replace(text, nullptr, "x"), 0);
    EXPECT_EQ(text, "abc");

    std::vector<std::string> parts = {"old"};
    EXPECT_EQ(TsString::SplitString("a;;b", ';', parts), 3);
    EXPECT_EQ(parts, (std::vector<std::string>{"a", "", "b"}));
    EXPECT_EQ(TsString::SplitString(";", ';', parts), 2);
    EXPECT_EQ(parts, (std::vector<std::string>{"", ""}));
    EXPECT_EQ(TsString::SplitString("", ';', parts), 0);
    EXPECT_TRUE(parts.empty());
}

TEST(TsStringConvert, ToIntTakesWholeTextsInRange)
{
    struct Case { const char* text; bool ok; int value; };
    const Case cases[] = {
        {" +5\t", true, 5}, {"-5", true, -5}, {"007", true, 7}, {"2147483647", true, INT_MAX},
        {"-2147483648", true, INT_MIN}, {"2147483648", false, 0}, {"-2147483649", false, 0},
        {"99999999999999999999", false, 0}, {"5x", false, 0}, {"", false, 0}, {"  ", false, 0},
        {"0x10", false, 0}, {"-", false, 0}, {"+-5", false, 0}, {"- 5", false, 0}, {"5 5", false, 0},
        {"1.0", false, 0},
    };
    for (const Case& c : cases) {
        int value = 12345;
        EXPECT_EQ(TsString::ToInt(c.text, value), c.ok) << '"' << c.text << '"';
        EXPECT_EQ(value, c.ok ? c.value : 12345) << '"' << c.text << '"';
    }
    int value = 1;
    EXPECT_FALSE(TsString::ToInt(nullptr, value));
}

TEST(TsStringConvert, ToFloatTakesWholeTextsInRange)
{
    double d = 42;
    EXPECT_TRUE(TsString::ToFloat(" 2.5e1 \n", d));
    EXPECT_EQ(d, 25.0);
    EXPECT_TRUE(TsString::ToFloat("-inf", d));
    EXPECT_EQ(d, -HUGE_VAL);
    EXPECT_TRUE(TsString::ToFloat("1e-310", d));  // subnormal, but representable
    EXPECT_EQ(d, 1e-310);
    d = 42;
    for (const char* bad : {"", " ", "2.5x", "2.5 x", "x2", "1e400", "1e-400", ".", "1,5", "2..3"})
        EXPECT_FALSE(TsString::ToFloat(bad, d)) << '"' << bad << '"';
    EXPECT_EQ(d, 42);

    float f = 42;
    // Just above half-way between two floats: read through double it would round twice, down to 1.
    EXPECT_TRUE(TsString::ToFloat("1.00000005960464477539062500001", f));
    EXPECT_EQ(f, 1.00000012f);
    f = 42;
    EXPECT_FALSE(TsString::ToFloat("1e39", f));
    EXPECT_FALSE(TsString::ToFloat("1e-50", f));
    EXPECT_EQ(f, 42);
    EXPECT_TRUE(TsString::ToFloat("1e39", d));
}

TEST(TsStringConvert, ShortestTextReadsBackExactly)
{
    EXPECT_EQ(TsString::ToString(1e300), "1e+300");
    EXPECT_EQ(TsString::ToString(100.0), "100");
    EXPECT_EQ(TsString::ToString(-0.0), "-0");
    EXPECT_EQ(TsString::ToString(0.1f), "0.1");

    std::mt19937_64 random(11);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::bit_cast<double>(random());
        const std::string text = TsString::ToString(value);
        double back = 0;
        ASSERT_TRUE(TsString::ToFloat(text.c_str(), back)) << text;
        ASSERT_TRUE(SameDouble(back, value)) << text;

        const float single = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        const std::string singleText = TsString::ToString(single);
        float singleBack = 0;
        ASSERT_TRUE(TsString::ToFloat(singleText.c_str(), singleBack)) << singleText;
        ASSERT_TRUE(std::isnan(single) ? std::isnan(singleBack) : singleBack == single) << singleText;
    }
}

TEST(TsStringConvert, ToStringWithFormat)
{
    std::string text = "old";
    EXPECT_EQ(&TsString::ToString(2.0 / 3.0, "%.3f", text), &text);
    EXPECT_EQ(text, "0.667");
    EXPECT_EQ(TsString::ToString(0.25, nullptr, text), "0.25");
    EXPECT_EQ(TsString::ToString(1.5, "%300.1f", text), std::string(297, ' ') + "1.5");
}

namespace {
// The plain dynamic-programming matcher, ASCII only, as the reference.
bool ReferenceMatch(const std::string& pattern, const std::string& text)
{
    std::vector<std::vector<char>> match(pattern.size() + 1, std::vector<char>(text.size() + 1, 0));
    match[pattern.size()][text.size()] = 1;
    for (std::size_t p = pattern.size(); p-- > 0;)
        for (std::size_t t = text.size() + 1; t-- > 0;) {
            const char c = pattern[p];
            if (c == '*')
                match[p][t] = match[p + 1][t] || (t < text.size() && match[p][t + 1]);
            else if (t < text.size() && (c == '?' || std::tolower(c) == std::tolower(text[t])))
                match[p][t] = match[p + 1][t + 1];
        }
    return match[0][0];
}
} // namespace

TEST(TsStringWildCard, MatchesLikeTheReference)
{
    std::mt19937 random(3);
    const char patternAlphabet[] = "abA*?";
    const char textAlphabet[] = "abAB";
    for (int i = 0; i < 20000; ++i) {
        std::string pattern(random() % 7, ' ');
        for (char& c : pattern)
            c = patternAlphabet[random() % 5];
        std::string text(random() % 9, ' ');
        for (char& c : text)
            c = textAlphabet[random() % 4];
        ASSERT_EQ(TsString::WildCardCompare(pattern.c_str(), text.c_str()), ReferenceMatch(pattern, text))
            << '"' << pattern << "\" / \"" << text << '"';
    }
}

TEST(TsStringWildCard, CaseUtf8AndHardPatterns)
{
    EXPECT_TRUE(TsString::WildCardCompare("*.TXT", "notes.txt"));
    EXPECT_FALSE(TsString::WildCardCompare("*.TXT", "notes.txt", true));
    EXPECT_TRUE(TsString::WildCardCompare("*.txt", "notes.txt", true));
    EXPECT_TRUE(TsString::WildCardCompare(nullptr, ""));
    EXPECT_FALSE(TsString::WildCardCompare(nullptr, "a"));
    EXPECT_TRUE(TsString::WildCardCompare("*", nullptr));
    // "?" takes one character, however many bytes it has.
    EXPECT_TRUE(TsString::WildCardCompare("gr?n", "gr\xC3\xBCn"));
    EXPECT_TRUE(TsString::WildCardCompare("?", "\xE2\x82\xAC"));
    EXPECT_FALSE(TsString::WildCardCompare("??", "\xE2\x82\xAC"));
    EXPECT_TRUE(TsString::WildCardCompare("*?\xE2\x82\xAC", "a\xE2\x82\xAC"));
    EXPECT_FALSE(TsString::WildCardCompare("*??\xE2\x82\xAC", "a\xE2\x82\xAC"));

    // A naive recursive matcher needs ages for this; it must finish at once.
    const std::string text(5000, 'a');
    EXPECT_FALSE(TsString::WildCardCompare("*a*a*a*a*a*a*a*a*a*a*a*a*b", text.c_str()));
    EXPECT_TRUE(TsString::WildCardCompare("*a*a*a*a*a*a*a*a*a*a*a*a*", text.c_str()));
}

TEST(TsStringLimit, EvaluatesEveryForm)
{
    struct Case { const char* expression; double value; bool holds; };
    const Case cases[] = {
        {"5", 5, true}, {"5", 5.1, false}, {"<5", 5, false}, {"<=5", 5, true}, {"> 5", 5, false},
        {">=5", 5, true}, {"==5", 5, true}, {"!=5", 5, false}, {"<>5", 4, true}, {"2..7", 2, true},
        {"2..7", 7, true}, {"7..2", 5, true}, {"2..7", 7.01, false}, {"2 - 7", 1.9, false}, {"7-2", 7, true},
        {"-5--2", -3, true}, {"-5 - -2", -1, false}, {"1, 3..4, >10", 3.5, true}, {"1, 3..4, >10", 11, true},
        {"1, 3..4, >10", 2, false}, {"  <= -1e3  ", -1000, true}, {"-inf..0", -1e300, true},
        {"1e5-2e5", 150000, true}, {"0x10", 16, true}, {"<=-5", -5, true}, {"<-5", -5, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(TsString::EvaluateLimitExpression(c.expression, c.value), c.holds)
            << '"' << c.expression << "\" at " << c.value;
        EXPECT_TRUE(TsString::IsValidLimitExpression(c.expression)) << '"' << c.expression << '"';
    }
}

TEST(TsStringLimit, RefusesMalformedExpressions)
{
    const char* const malformed[] = {
        "", "   ", ",", "5,", ",5", "5,,6", "2..", "..3", ">", "<=", "5x", "5 6", "=<5", "< >5", "2..3..4",
        "2-3-4", "nan", "<nan", "1..nan", "- 5", "!5", "=!5", "5;6", "2 . . 3", "5..-", "<5,", "2.5.5",
    };
    for (const char* expression : malformed) {
        EXPECT_FALSE(TsString::IsValidLimitExpression(expression)) << '"' << expression << '"';
        for (double value : {-1.0, 0.0, 2.0, 5.0, 2.5})
            EXPECT_FALSE(TsString::EvaluateLimitExpression(expression, value)) << '"' << expression << '"';
    }
    EXPECT_FALSE(TsString::IsValidLimitExpression(nullptr));
    // A term that holds does not rescue a broken expression.
    EXPECT_FALSE(TsString::EvaluateLimitExpression("5, x", 5));

    const double nan = std::nan("");
    for (const char* expression : {"!=5", "<>5", "-inf..inf", "<inf", ">-inf"}) {
        EXPECT_TRUE(TsString::IsValidLimitExpression(expression));
        EXPECT_FALSE(TsString::EvaluateLimitExpression(expression, nan)) << expression;
    }
}

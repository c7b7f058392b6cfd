#include "TempDir.h"

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/TsString.h>

#include <bit>
#include <cerrno>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstring>

namespace {

using Texts = std::vector<std::string>;

// Doubles equal to the bit, NaN included.
bool SameDouble(double a, double b)
{
    return std::isnan(a) ? std::isnan(b) && std::signbit(a) == std::signbit(b)
                         : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

} // namespace

TEST(TsStringMemory, DupConcatAndSetOwnTheirText)
{
    const char original[] = "abc";
    char* copy = tsstrdup(original);
    ASSERT_TRUE(copy != original && !tsstrdup(nullptr));
    // Each result read before the next call; appending a part of itself must survive realloc moving the block.
    EXPECT_EQ((Texts{TsString::ConcatStr(copy, "def"), TsString::ConcatStr(copy, nullptr),
                     TsString::ConcatStr(copy, copy + 3), TsString::ConcatStr(copy, copy),
                     TsString::SetStr(copy, copy + 9)}),
              (Texts{"abcdef", "abcdef", "abcdefdef", "abcdefdefabcdefdef", "abcdefdef"}));
    EXPECT_TRUE(!TsString::SetStr(copy, nullptr) && !copy);
    EXPECT_EQ((Texts{TsString::ConcatStr(copy, nullptr), TsString::ConcatStr(copy, "x")}), (Texts{"", "x"}));
    std::free(copy);
}

// strtod in the "C" locale that the test runs in is the reference.
TEST(TsStringStrtod, AgreesWithStrtodOnValueAndEndAndReportsRangeErrors)
{
    const Texts inputs = {
        "-0", "  \t\n3.25xyz", ".5", "5.", ".", "-.", "e5", "1e", "1e+", "1.e3", "12,5", "0X1.8P+1", "0x",
        "0x.p1", "-0x10", "0x1p", "-Infinity", "infinit", "-NaN", "nan(123)", "nan(12", "1e400", "1e-400",
        "4.9e-324", "2.4703282292062327e-324", "2.4703282292062328e-324", "1.7976931348623159e308",
        "0.1000000000000000055511151231257827", "9007199254740993", "1e99999999999999999999",
        "1e-99999999999999999999", "0e99999999999", "0x1p-1075", "0x1p1024", "+-1", "",
        "0." + std::string(700, '0') + "1234567890123456789012345", std::string(400, '9') + ".5e-100",
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
    for (const auto& [text, value, error] : {std::tuple{"-1e999", -HUGE_VAL, ERANGE}, {"1e-999", 0.0, ERANGE},
                                              {"1e300", 1e300, 0}}) {
        errno = 0;
        EXPECT_TRUE(tsstrtod(text, nullptr) == value && errno == error) << text;
    }
}

TEST(TsStringLocale, NumbersKeepThePointUnderACommaLocale)
{
    // The German locale, with "," as decimal point, compiled for the test where the system has none.
    TempDir folder;
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) {
        std::system(("localedef -i de_DE -f UTF-8 '" + folder.File("de_DE.UTF-8") + "' >/dev/null 2>&1").c_str());
        setenv("LOCPATH", folder.Path().c_str(), 1);
    }
    char probe[16] = "";
    if (std::setlocale(LC_ALL, "de_DE.UTF-8"))
        std::snprintf(probe, sizeof probe, "%.1f", 1.5);
    if (std::strcmp(probe, "1,5") != 0)
        GTEST_SKIP() << "no de_DE.UTF-8 locale, and localedef could not make one";

    char* end = nullptr;
    const char* text = "1.25;";
    EXPECT_TRUE(tsstrtod(text, &end) == 1.25 && end == text + 4);
    double value = 0;
    EXPECT_TRUE(TsString::ToFloat("2.5", value) && value == 2.5 && !TsString::ToFloat("2,5", value));
    std::string formatted;
    EXPECT_EQ((Texts{TsString::ToString(1234.5, "%.2f", formatted), TsString::ToString(0.1),
                     TsString::Format("%g|%s|%d", 0.5, "a,b", 7)}),
              (Texts{"1234.50", "0.1", "0.5|a,b|7"}));
    std::snprintf(probe, sizeof probe, "%.1f", 1.5);
    EXPECT_STREQ(probe, "1,5") << "the caller's locale is left as it was";
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
}

TEST(TsStringCompare, NumberCompareOrdersDigitRunsByValueAndStristrIgnoresCase)
{
    const Texts ordered = {
        "", "B", "a", "a0", "a00", "a1", "a01", "a2", "a9", "a10", "a010", "a10b", "a011", "a99999999999999999999",
        "a100000000000000000000", "a100000000000000000001", "az", "a\xC3\xA4", "b", "b1c1", "b1c2", "b2c1", "item 9",
        "item9",
    };
    for (std::size_t i = 0; i < ordered.size(); ++i)
        for (std::size_t j = 0; j < ordered.size(); ++j)
            EXPECT_EQ(tsstrnumbercmp(ordered[i].c_str(), ordered[j].c_str()), i < j ? -1 : i > j ? 1 : 0)
                << ordered[i] << " / " << ordered[j];
    // Zeros only break a tie: a later difference wins over them. Null counts as "".
    EXPECT_EQ((std::vector<int>{tsstrnumbercmp("a01b", "a1c"), tsstrnumbercmp("a1b01", "a01b1"),
                                tsstrnumbercmp(nullptr, ""), tsstrnumbercmp(nullptr, "a")}),
              (std::vector<int>{-1, -1, 0, -1}));

    // tsstristr ignores ASCII case only: "Ä" is not "ä". Where the needle is found; -1: nowhere.
    const std::tuple<const char*, const char*, int> searches[] = {
        {"Hello World", "O w", 4}, {"aaab", "AAB", 1}, {"Hello", "", 0}, {"ab", "abc", -1}, {nullptr, "a", -1},
        {"gr\xC3\xA4n", "\xC3\x84", -1}};
    for (const auto& [haystack, needle, at] : searches)
        EXPECT_EQ(tsstristr(haystack, needle), at < 0 ? nullptr : haystack + at) << needle;
}

TEST(TsStringFormat, FormatsAnyLengthAndByLanguageId)
{
    const std::string longText(3000, 'q');
    EXPECT_EQ((Texts{TsString::Format("%s=%05.1f", "x", 3.14159), TsString::Format("<%s>", longText.c_str())}),
              (Texts{"x=003.1", "<" + longText + ">"}));
    std::string text = "old";
    EXPECT_TRUE(&TsString::ToString(2.0 / 3.0, "%.3f", text) == &text && text == "0.667");
    EXPECT_EQ((Texts{TsString::ToString(0.25, nullptr, text), TsString::ToString(1.5, "%300.1f", text)}),
              (Texts{"0.25", std::string(297, ' ') + "1.5"}));

    static const korva::StringEntry strings[] = {{4000001, "Row %d of %s"}};
    const korva::ResourceModule module("test", strings, 1, nullptr, 0);
    const korva::ResourceModule* previous = LanguageString::SetModule(&module);
    EXPECT_EQ(TsString::Format(4000001u, 3, "nine"), "Row 3 of nine");
    LanguageString::SetModule(previous);
}

TEST(TsStringEdit, ReplaceAndSplit)
{
    // Left to right, without looking at replaced text again; an empty or null pattern replaces nothing.
    const std::tuple<const char*, const char*, const char*, int, const char*> replacements[] = {
        {"aaaa", "aa", "b", 2, "bb"}, {"a.b.c", ".", "..", 2, "a..b..c"}, {"a..b..c", "..", nullptr, 2, "abc"},
        {"abc", "", "x", 0, "abc"},   {"abc", nullptr, "x", 0, "abc"}};
    for (const auto& [before, what, with, count, after] : replacements) {
        std::string text = before;
        EXPECT_EQ((std::tuple{TsString::Replace(text, what, with), text}), std::tuple(count, after)) << before;
    }
    for (const auto& [text, parts] :
         {std::pair<std::string, Texts>{"a;;b", {"a", "", "b"}}, {";", {"", ""}}, {"", {}}}) {
        Texts split = {"old"};
        EXPECT_EQ(TsString::SplitString(text, ';', split), static_cast<int>(parts.size())) << text;
        EXPECT_EQ(split, parts) << text;
    }
}

TEST(TsStringConvert, ToIntAndToFloatTakeWholeTextsInRange)
{
    // The value read, or 12345 (untouched) for a text that is refused.
    const std::pair<const char*, int> ints[] = {
        {" +5\t", 5}, {"-5", -5}, {"007", 7}, {"2147483647", INT_MAX}, {"-2147483648", INT_MIN},
        {"2147483648", 12345}, {"-2147483649", 12345}, {"99999999999999999999", 12345}, {"5x", 12345}, {"", 12345},
        {"  ", 12345}, {"0x10", 12345}, {"-", 12345}, {"+-5", 12345}, {"- 5", 12345}, {"5 5", 12345},
        {"1.0", 12345}, {nullptr, 12345}};
    for (const auto& [text, expected] : ints) {
        int value = 12345;
        EXPECT_EQ(TsString::ToInt(text, value), expected != 12345) << (text ? text : "null");
        EXPECT_EQ(value, expected) << (text ? text : "null");
    }
    for (const auto& [text, expected] : {std::pair{" 2.5e1 \n", 25.0}, {"-inf", -HUGE_VAL}, {"1e-310", 1e-310}}) {
        double d = 42;
        EXPECT_TRUE(TsString::ToFloat(text, d) && d == expected) << text;   // 1e-310: subnormal, but representable
    }
    double d = 42;
    for (const char* bad : {"", " ", "2.5x", "2.5 x", "x2", "1e400", "1e-400", ".", "1,5", "2..3"})
        EXPECT_FALSE(TsString::ToFloat(bad, d)) << '"' << bad << '"';
    EXPECT_EQ(d, 42);

    float f = 42;
    // Just above half-way between two floats: read through double it would round twice, down to 1.
    EXPECT_TRUE(TsString::ToFloat("1.00000005960464477539062500001", f) && f == 1.00000012f) << f;
    f = 42;
    EXPECT_FALSE(TsString::ToFloat("1e39", f) || TsString::ToFloat("1e-50", f));
    EXPECT_EQ(f, 42);
    EXPECT_TRUE(TsString::ToFloat("1e39", d));
}

TEST(TsStringConvert, ShortestTextReadsBack)
{
    EXPECT_EQ((Texts{TsString::ToString(1e300), TsString::ToString(100.0), TsString::ToString(-0.0),
                     TsString::ToString(0.1f)}),
              (Texts{"1e+300", "100", "-0", "0.1"}));
    // Every form to_chars writes reads back: exponents, subnormals, infinities, NaN with its sign.
    for (double value : {1e-5, 5e-324, 1.7976931348623157e308, -HUGE_VAL, -std::nan(""), 123456789012345680000.0}) {
        double back = 0;
        EXPECT_TRUE(TsString::ToFloat(TsString::ToString(value).c_str(), back) && SameDouble(back, value)) << value;
    }
    float tiny = 0, huge = 0;
    EXPECT_TRUE(TsString::ToFloat(TsString::ToString(1e-45f).c_str(), tiny) && tiny == 1e-45f &&
                TsString::ToFloat(TsString::ToString(3.4028235e38f).c_str(), huge) && huge == 3.4028235e38f);
}

TEST(TsStringWildCard, StarsBacktrackAndQuestionMarksTakeCharactersNotBytes)
{
    // A "*" retried after a partial match, case unless asked for, null as "", and "?" as one character however
    // many bytes it has. The last two would take a naive recursive matcher ages.
    const std::string many(5000, 'a');
    const std::tuple<const char*, const char*, bool, bool> cases[] = {
        {"a*b", "acb", false, true}, {"a*b", "acbd", false, false}, {"*ab", "aab", false, true},
        {"a*b*c", "abbbcbc", false, true}, {"a*b?d", "abcbxd", false, true}, {"a*?c", "ac", false, false},
        {"a*a", "a", false, false}, {"*?*", "", false, false}, {"**", "", false, true}, {"", "a", false, false},
        {"*aab", "aaab", false, true}, {"A?", "ab", false, true},
        {"*.TXT", "notes.txt", false, true}, {"*.TXT", "notes.txt", true, false}, {"*.txt", "notes.txt", true, true},
        {nullptr, "", false, true}, {nullptr, "a", false, false}, {"*", nullptr, false, true},
        {"gr?n", "gr\xC3\xBCn", false, true}, {"?", "\xE2\x82\xAC", false, true}, {"??", "\xE2\x82\xAC", false, false},
        {"*?\xE2\x82\xAC", "a\xE2\x82\xAC", false, true}, {"*??\xE2\x82\xAC", "a\xE2\x82\xAC", false, false},
        {"*a*a*a*a*a*a*a*a*a*a*a*a*b", many.c_str(), false, false},
        {"*a*a*a*a*a*a*a*a*a*a*a*a*", many.c_str(), false, true}};
    for (const auto& [pattern, text, caseSensitive, matches] : cases)
        EXPECT_EQ(TsString::WildCardCompare(pattern, text, caseSensitive), matches) << (pattern ? pattern : "null");
}

TEST(TsStringLimit, EvaluatesEveryFormAndRefusesMalformedExpressions)
{
    struct Case { const char* expression; double value; bool holds; };
    const Case cases[] = {
        {"5", 5, true}, {"5", 5.1, false}, {"<5", 5, false}, {"<=5", 5, true}, {"> 5", 5, false},
        {">=5", 5, true}, {"==5", 5, true}, {"!=5", 5, false}, {"<>5", 4, true}, {"2..7", 2, true},
        {"2..7", 7, true}, {"7..2", 5, true}, {"2..7", 7.01, false}, {"2 - 7", 1.9, false}, {"7-2", 7, true},
        {"-5--2", -3, true}, {"-5 - -2", -1, false}, {"1, 3..4, >10", 3.5, true}, {"1, 3..4, >10", 11, true},
        {"1, 3..4, >10", 2, false}, {"  <= -1e3  ", -1000, true}, {"-inf..0", -1e300, true},
        {"1e5-2e5", 150000, true}, {"0x10", 16, true}, {"<=-5", -5, true}, {"<-5", -5, false},
        // A NaN value satisfies no expression.
        {"!=5", NAN, false}, {"<>5", NAN, false}, {"-inf..inf", NAN, false}, {"<inf", NAN, false},
        {">-inf", NAN, false},
    };
    for (const Case& c : cases)
        EXPECT_TRUE(TsString::EvaluateLimitExpression(c.expression, c.value) == c.holds &&
                    TsString::IsValidLimitExpression(c.expression)) << '"' << c.expression << "\" at " << c.value;

    const char* const malformed[] = {
        "", "   ", ",", "5,", ",5", "5,,6", "2..", "..3", ">", "<=", "5x", "5 6", "=<5", "< >5", "2..3..4",
        "2-3-4", "nan", "<nan", "1..nan", "- 5", "!5", "=!5", "5;6", "2 . . 3", "5..-", "<5,", "2.5.5",
        "5, x",   // a term that holds does not rescue a broken expression
    };
    for (const char* expression : malformed) {
        EXPECT_FALSE(TsString::IsValidLimitExpression(expression)) << '"' << expression << '"';
        for (double value : {-1.0, 0.0, 2.0, 5.0, 2.5})
            EXPECT_FALSE(TsString::EvaluateLimitExpression(expression, value)) << '"' << expression << '"';
    }
    EXPECT_FALSE(TsString::IsValidLimitExpression(nullptr));
}

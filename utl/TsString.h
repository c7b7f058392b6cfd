#pragma once
/// \class TsString
/// String helpers of the suite. Narrow texts are UTF-8.
///
/// Numbers are read and written with "." as the decimal point whatever the
/// process locale (a Qt application switches to the user's locale at start),
/// so that texts in files, logs and settings look the same everywhere.
/// "Blanks" below are the C locale's white space: space, `\t`, `\n`, `\v`, `\f`, `\r`.

#include <cstdarg>
#include <string>
#include <vector>

/// A copy of `text` from malloc (free it with free()); null for null.
char* tsstrdup(const char* text);
/// The first occurrence of `needle` in `haystack`, ignoring ASCII case; null if
/// none or if either is null. An empty needle is found at the start.
const char* tsstristr(const char* haystack, const char* needle);
/// strtod that always reads "." as the decimal point, whatever the locale.
/// Leading blanks are skipped; `end` (if not null) receives the first unread
/// character, or `text` itself when no number was read (the result is then 0).
/// Reads decimal and hexadecimal ("0x1p4") numbers, "inf", "infinity" and
/// "nan", each with an optional sign. Out of range gives +-HUGE_VAL or 0 and
/// sets errno to ERANGE, as strtod does.
double tsstrtod(const char* text, char** end);
/// Three-way comparison (-1, 0, 1) in which runs of digits compare as numbers,
/// so "item9" < "item10"; digit runs of any length are fine. Other characters
/// compare as unsigned bytes, case-sensitively. Leading zeros do not count,
/// except to break a tie: when the texts are otherwise equal, the first pair of
/// equal numbers that differ in leading zeros decides, and the one with fewer
/// zeros comes first ("a7" < "a07" < "a007"). Null counts as "".
int tsstrnumbercmp(const char* a, const char* b);

class TsString
{
public:
    /// printf-style formatting into a new string. Floating-point numbers are
    /// written with "." whatever the locale. An invalid conversion gives "".
    static std::string Format(const char* format, ...) __attribute__((format(printf, 1, 2)));
    /// Formatting with the language string `id` as format text.
    static std::string Format(unsigned int id, ...);
    /// Format with a va_list; a null format gives "".
    static std::string FormatV(const char* format, va_list args) __attribute__((format(printf, 1, 0)));

    /// Appends `text` to the malloc'd string `target` and returns it. A null
    /// target or text counts as empty; afterwards `target` is never null.
    /// `text` may point into `target`.
    static char* ConcatStr(char*& target, const char* text);
    /// Frees `target` and makes it a malloc'd copy of `text` (null for null); returns it.
    /// `text` may point into `target`.
    static char* SetStr(char*& target, const char* text);

    /// One shared empty string.
    static const std::string& Empty();

    /// Replaces every occurrence of `what` in `text` by `with` (null: nothing),
    /// left to right, without looking at replaced text again; the number
    /// replaced. An empty or null `what` replaces nothing.
    static int Replace(std::string& text, const char* what, const char* with);
    /// Splits `text` at every `separator` into `parts` (replacing its content).
    /// Empty fields are kept ("a;;b" gives three parts); an empty text gives none.
    /// Returns the number of parts.
    static int SplitString(const std::string& text, char separator, std::vector<std::string>& parts);

    /// Converts a whole text (blanks around it allowed) to a number; false, and
    /// `value` untouched, when the text is no such number or out of range.
    /// The floating forms read what tsstrtod reads, "inf" and "nan" included;
    /// a value that overflows or underflows to zero is out of range.
    /// ToInt reads an optional sign and decimal digits only ("0x10" is false).
    static bool ToFloat(const char* text, double& value);
    static bool ToFloat(const char* text, float& value);
    static bool ToInt(const char* text, int& value);

    /// Formats `value` with the printf `format` (for example "%.3f"), always with
    /// "." as decimal point; stores the result in `text` and returns it. The
    /// format must consume exactly one double; a null format gives the shortest
    /// form below.
    static std::string& ToString(double value, const char* format, std::string& text);
    /// The shortest text that reads back to exactly `value` ("0.1", "1e+300", "nan").
    static std::string ToString(double value);
    static std::string ToString(float value);

    /// Compares `text` with `pattern`, where "*" matches any run of characters
    /// and "?" any one character (one UTF-8 sequence). ASCII case is ignored
    /// unless `caseSensitive`. Null counts as "". Time is at most proportional
    /// to the product of the lengths, whatever the pattern.
    static bool WildCardCompare(const char* pattern, const char* text, bool caseSensitive = false);

    /// True when `value` satisfies the limit expression `expression`. The grammar:
    ///   expression := term { "," term }          any term may hold
    ///   term       := op number                  op is <, <=, >, >=, =, ==, !=, <>
    ///               | number ".." number         inclusive range, either order
    ///               | number "-" number          inclusive range (blanks allowed: "2 - 7")
    ///               | number                     equality
    /// Numbers are read as by tsstrtod, except that "nan" is refused; blanks
    /// between tokens are ignored. An empty or malformed expression gives false,
    /// even when one of its terms holds. A NaN value satisfies no expression.
    static bool EvaluateLimitExpression(const char* expression, double value);
    /// True when `expression` follows the grammar above.
    static bool IsValidLimitExpression(const char* expression);
};

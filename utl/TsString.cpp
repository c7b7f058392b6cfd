#include <KORVAutl/TsString.h>

#include <KORVAutl/LanguageString.h>

#include <charconv>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <locale.h>
#include <new>
#include <system_error>
#include <type_traits>

namespace korva {
namespace {

// Numeric conventions of "C" with UTF-8 text, so that %ls and the like still
// work. Built once and kept to process end.
locale_t NumericCLocale()
{
    static const locale_t locale = [] {
        locale_t l = newlocale(LC_ALL_MASK, "C.UTF-8", static_cast<locale_t>(nullptr));
        if (!l)
            l = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
        return l;
    }();
    return locale;
}

// Switches the calling thread to NumericCLocale for a scope.
class CLocaleScope
{
public:
    CLocaleScope()
    {
        if (locale_t c = NumericCLocale())
            mPrevious = uselocale(c);
    }
    ~CLocaleScope()
    {
        if (mPrevious)
            uselocale(mPrevious);
    }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

private:
    locale_t mPrevious = nullptr;
};

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

const char* SkipBlanks(const char* p)
{
    while (IsBlank(*p))
        ++p;
    return p;
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsHexDigit(char c)
{
    return IsDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f');
}

char LowerAscii(char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + ('a' - 'A')) : c;
}

// `word` is lower case.
bool StartsWithNoCase(const char* p, const char* word)
{
    for (; *word; ++p, ++word)
        if (LowerAscii(*p) != *word)
            return false;
    return true;
}

// The number that strtod would read at `p` (no blanks skipped), delimited
// exactly so that from_chars reads no further than strtod would.
struct NumberToken
{
    enum EKind { eDecimal, eHex, eInfinity, eNaN };
    EKind kind = eDecimal;
    bool negative = false;
    const char* begin = nullptr;   // the sign, if any
    const char* digits = nullptr;  // after the sign (and the "0x")
    const char* end = nullptr;
};

// `stopBeforeRange`: "2..3" reads "2", not "2.", so that ".." stays a token.
bool ScanNumber(const char* p, bool stopBeforeRange, NumberToken& token)
{
    token.begin = p;
    if (*p == '+' || *p == '-') {
        token.negative = *p == '-';
        ++p;
    }
    if (StartsWithNoCase(p, "inf")) {
        token.kind = NumberToken::eInfinity;
        p += 3;
        if (StartsWithNoCase(p, "inity"))
            p += 5;
        token.end = p;
        return true;
    }
    if (StartsWithNoCase(p, "nan")) {
        token.kind = NumberToken::eNaN;
        p += 3;
        if (*p == '(') {
            const char* q = p + 1;
            while (IsDigit(*q) || ((*q | 0x20) >= 'a' && (*q | 0x20) <= 'z') || *q == '_')
                ++q;
            if (*q == ')')
                p = q + 1;
        }
        token.end = p;
        return true;
    }
    const bool hex = p[0] == '0' && (p[1] | 0x20) == 'x' &&
                     (IsHexDigit(p[2]) || (p[2] == '.' && IsHexDigit(p[3])));
    token.kind = hex ? NumberToken::eHex : NumberToken::eDecimal;
    if (hex)
        p += 2;
    token.digits = p;
    bool (*const isDigit)(char) = hex ? IsHexDigit : IsDigit;
    std::size_t count = 0;
    while (isDigit(*p)) {
        ++p;
        ++count;
    }
    if (*p == '.' && !(stopBeforeRange && p[1] == '.') && (count > 0 || isDigit(p[1]))) {
        ++p;
        while (isDigit(*p)) {
            ++p;
            ++count;
        }
    }
    if (count == 0)
        return false;
    if ((*p | 0x20) == (hex ? 'p' : 'e')) {
        const char* q = p + 1;
        if (*q == '+' || *q == '-')
            ++q;
        if (IsDigit(*q)) {
            while (IsDigit(*q))
                ++q;
            p = q;
        }
    }
    token.end = p;
    return true;
}

double StrtodC(const char* text)
{
    return strtod_l(text, nullptr, NumericCLocale());
}

float StrtofC(const char* text)
{
    return strtof_l(text, nullptr, NumericCLocale());
}

// Converts a token found by ScanNumber; `outOfRange` tells an overflow or an
// underflow to zero, where `value` is what strtod gives.
template <class T>
T ConvertNumber(const NumberToken& token, bool& outOfRange)
{
    outOfRange = false;
    T value = 0;
    switch (token.kind) {
    case NumberToken::eInfinity:
        value = std::numeric_limits<T>::infinity();
        break;
    case NumberToken::eNaN:
        value = std::numeric_limits<T>::quiet_NaN();
        break;
    case NumberToken::eDecimal:
    case NumberToken::eHex: {
        const std::chars_format format =
            token.kind == NumberToken::eHex ? std::chars_format::hex : std::chars_format::general;
        const std::from_chars_result result = std::from_chars(token.digits, token.end, value, format);
        if (result.ec == std::errc() && result.ptr == token.end)
            break;
        // Rare: let the C library find the saturated or flushed value.
        outOfRange = result.ec == std::errc::result_out_of_range;
        const std::string copy(token.begin, token.end);
        if constexpr (std::is_same_v<T, float>)
            return StrtofC(copy.c_str());
        else
            return StrtodC(copy.c_str());
    }
    }
    return token.negative ? -value : value;
}

// Reads a number at `p` (after blanks); the end of it, or null when there is none.
template <class T>
const char* ReadNumber(const char* p, bool stopBeforeRange, T& value, bool& outOfRange)
{
    NumberToken token;
    if (!ScanNumber(SkipBlanks(p), stopBeforeRange, token))
        return nullptr;
    value = ConvertNumber<T>(token, outOfRange);
    return token.end;
}

template <class T>
bool WholeTextToFloat(const char* text, T& value)
{
    if (!text)
        return false;
    T number = 0;
    bool outOfRange = false;
    const char* end = ReadNumber(text, false, number, outOfRange);
    if (!end || outOfRange || *SkipBlanks(end))
        return false;
    value = number;
    return true;
}

template <class T>
std::string ShortestText(T value)
{
    char buffer[64];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

// Bytes of the UTF-8 sequence at `p` (its lead and continuation bytes); a
// stray byte counts as one character so that broken text still matches.
std::size_t CharLength(const char* p)
{
    std::size_t length = 1;
    while (length < 4 && (static_cast<unsigned char>(p[length]) & 0xC0) == 0x80)
        ++length;
    return length;
}

enum class ELimitOp { eNone, eLess, eLessEqual, eGreater, eGreaterEqual, eEqual, eNotEqual };

ELimitOp ReadLimitOp(const char*& p)
{
    if (p[0] == '<') {
        if (p[1] == '=') {
            p += 2;
            return ELimitOp::eLessEqual;
        }
        if (p[1] == '>') {
            p += 2;
            return ELimitOp::eNotEqual;
        }
        ++p;
        return ELimitOp::eLess;
    }
    if (p[0] == '>') {
        if (p[1] == '=') {
            p += 2;
            return ELimitOp::eGreaterEqual;
        }
        ++p;
        return ELimitOp::eGreater;
    }
    if (p[0] == '=') {
        p += p[1] == '=' ? 2 : 1;
        return ELimitOp::eEqual;
    }
    if (p[0] == '!' && p[1] == '=') {
        p += 2;
        return ELimitOp::eNotEqual;
    }
    return ELimitOp::eNone;
}

// A NaN bound would make a term that can never hold, or always: refuse it.
bool ReadLimitNumber(const char*& p, double& number)
{
    bool outOfRange = false;
    const char* end = ReadNumber(p, true, number, outOfRange);
    if (!end || std::isnan(number))
        return false;
    p = end;
    return true;
}

// Parses the whole expression; true when it is well-formed. `holds` tells
// whether some term holds for `value`.
bool ParseLimitExpression(const char* expression, double value, bool& holds)
{
    holds = false;
    if (!expression)
        return false;
    const char* p = expression;
    for (;;) {
        p = SkipBlanks(p);
        const ELimitOp op = ReadLimitOp(p);
        double first = 0;
        if (!ReadLimitNumber(p, first))
            return false;
        bool termHolds = false;
        switch (op) {
        case ELimitOp::eLess: termHolds = value < first; break;
        case ELimitOp::eLessEqual: termHolds = value <= first; break;
        case ELimitOp::eGreater: termHolds = value > first; break;
        case ELimitOp::eGreaterEqual: termHolds = value >= first; break;
        case ELimitOp::eEqual: termHolds = value == first; break;
        case ELimitOp::eNotEqual: termHolds = value != first; break;
        case ELimitOp::eNone: {
            p = SkipBlanks(p);
            bool range = false;
            if (p[0] == '.' && p[1] == '.') {
                p += 2;
                range = true;
            } else if (p[0] == '-') {
                ++p;
                range = true;
            }
            if (range) {
                double second = 0;
                if (!ReadLimitNumber(p, second))
                    return false;
                termHolds = value >= std::fmin(first, second) && value <= std::fmax(first, second);
            } else {
                termHolds = value == first;
            }
            break;
        }
        }
        holds = holds || termHolds;
        p = SkipBlanks(p);
        if (*p == '\0')
            break;
        if (*p != ',')
            return false;
        ++p;
    }
    if (std::isnan(value))
        holds = false;
    return true;
}

bool PointsInto(const char* pointer, const char* begin, std::size_t size)
{
    const std::less_equal<const char*> lessEqual;
    return begin && lessEqual(begin, pointer) && std::less<const char*>()(pointer, begin + size);
}

} // namespace
} // namespace korva

using namespace korva;

char* tsstrdup(const char* text)
{
    if (!text)
        return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    char* copy = static_cast<char*>(std::malloc(size));
    if (!copy)
        throw std::bad_alloc();
    std::memcpy(copy, text, size);
    return copy;
}

const char* tsstristr(const char* haystack, const char* needle)
{
    if (!haystack || !needle)
        return nullptr;
    if (!*needle)
        return haystack;
    const char first = LowerAscii(*needle);
    for (const char* start = haystack; *start; ++start) {
        if (LowerAscii(*start) != first)
            continue;
        const char* h = start + 1;
        const char* n = needle + 1;
        while (*n && LowerAscii(*h) == LowerAscii(*n)) {
            ++h;
            ++n;
        }
        if (!*n)
            return start;
        if (!*h)
            return nullptr;  // the rest of the haystack is shorter than the needle
    }
    return nullptr;
}

double tsstrtod(const char* text, char** end)
{
    if (!text) {
        if (end)
            *end = nullptr;
        return 0;
    }
    double value = 0;
    bool outOfRange = false;
    const char* stop = ReadNumber(text, false, value, outOfRange);
    if (!stop) {
        value = 0;
        stop = text;
    } else if (outOfRange) {
        errno = ERANGE;
    }
    if (end)
        *end = const_cast<char*>(stop);
    return value;
}

int tsstrnumbercmp(const char* a, const char* b)
{
    const unsigned char* p = reinterpret_cast<const unsigned char*>(a ? a : "");
    const unsigned char* q = reinterpret_cast<const unsigned char*>(b ? b : "");
    const auto isDigit = [](unsigned char c) { return c >= '0' && c <= '9'; };
    int tie = 0;
    for (;;) {
        if (isDigit(*p) && isDigit(*q)) {
            // Compare by significant length, then digit by digit: no overflow.
            const unsigned char* pStart = p;
            const unsigned char* qStart = q;
            while (*p == '0')
                ++p;
            while (*q == '0')
                ++q;
            const unsigned char* pSignificant = p;
            const unsigned char* qSignificant = q;
            while (isDigit(*p))
                ++p;
            while (isDigit(*q))
                ++q;
            const std::size_t pLength = static_cast<std::size_t>(p - pSignificant);
            const std::size_t qLength = static_cast<std::size_t>(q - qSignificant);
            if (pLength != qLength)
                return pLength < qLength ? -1 : 1;
            if (const int c = std::memcmp(pSignificant, qSignificant, pLength))
                return c < 0 ? -1 : 1;
            const auto pZeros = pSignificant - pStart;
            const auto qZeros = qSignificant - qStart;
            if (tie == 0 && pZeros != qZeros)
                tie = pZeros < qZeros ? -1 : 1;
            continue;
        }
        if (*p != *q)
            return *p < *q ? -1 : 1;
        if (*p == '\0')
            return tie;
        ++p;
        ++q;
    }
}

std::string TsString::Format(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    return text;
}

std::string TsString::Format(unsigned int id, ...)
{
    va_list args;
    va_start(args, id);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::string text = FormatV(LanguageString::Get(id), args);
#pragma GCC diagnostic pop
    va_end(args);
    return text;
}

std::string TsString::FormatV(const char* format, va_list args)
{
    if (!format)
        return std::string();
    CLocaleScope cLocale;
    char buffer[512];
    va_list first;
    va_copy(first, args);
    const int length = std::vsnprintf(buffer, sizeof buffer, format, first);
    va_end(first);
    if (length < 0)
        return std::string();
    if (static_cast<std::size_t>(length) < sizeof buffer)
        return std::string(buffer, static_cast<std::size_t>(length));
    std::string text(static_cast<std::size_t>(length), '\0');
    va_list second;
    va_copy(second, args);
    std::vsnprintf(text.data(), text.size() + 1, format, second);
    va_end(second);
    return text;
}

char* TsString::ConcatStr(char*& target, const char* text)
{
    const std::size_t oldLength = target ? std::strlen(target) : 0;
    const std::size_t addLength = text ? std::strlen(text) : 0;
    // realloc may move the block that `text` points into.
    const bool inside = text && PointsInto(text, target, oldLength + 1);
    const std::size_t offset = inside ? static_cast<std::size_t>(text - target) : 0;
    char* grown = static_cast<char*>(std::realloc(target, oldLength + addLength + 1));
    if (!grown)
        throw std::bad_alloc();
    target = grown;
    if (addLength)
        std::memmove(target + oldLength, inside ? target + offset : text, addLength);
    target[oldLength + addLength] = '\0';
    return target;
}

char* TsString::SetStr(char*& target, const char* text)
{
    char* copy = tsstrdup(text);  // before the free: `text` may be part of `target`
    std::free(target);
    target = copy;
    return target;
}

const std::string& TsString::Empty()
{
    static const std::string empty;
    return empty;
}

int TsString::Replace(std::string& text, const char* what, const char* with)
{
    if (!what || !*what)
        return 0;
    const std::size_t whatLength = std::strlen(what);
    std::size_t found = text.find(what, 0, whatLength);
    if (found == std::string::npos)
        return 0;
    const char* replacement = with ? with : "";
    std::string result;
    result.reserve(text.size());
    std::size_t start = 0;
    int count = 0;
    while (found != std::string::npos) {
        result.append(text, start, found - start);
        result += replacement;
        ++count;
        start = found + whatLength;
        found = text.find(what, start, whatLength);
    }
    result.append(text, start, std::string::npos);
    text.swap(result);
    return count;
}

int TsString::SplitString(const std::string& text, char separator, std::vector<std::string>& parts)
{
    parts.clear();
    if (text.empty())
        return 0;
    std::size_t start = 0;
    for (;;) {
        const std::size_t found = text.find(separator, start);
        if (found == std::string::npos) {
            parts.emplace_back(text, start);
            break;
        }
        parts.emplace_back(text, start, found - start);
        start = found + 1;
    }
    return static_cast<int>(parts.size());
}

bool TsString::ToFloat(const char* text, double& value)
{
    return WholeTextToFloat(text, value);
}

bool TsString::ToFloat(const char* text, float& value)
{
    return WholeTextToFloat(text, value);
}

bool TsString::ToInt(const char* text, int& value)
{
    if (!text)
        return false;
    const char* p = SkipBlanks(text);
    if (*p == '+' && IsDigit(p[1]))
        ++p;  // from_chars takes "-" but not "+"
    const char* end = p;
    while (*end == '-' || IsDigit(*end))
        ++end;
    int number = 0;
    const std::from_chars_result result = std::from_chars(p, end, number, 10);
    if (result.ec != std::errc() || result.ptr != end || *SkipBlanks(end))
        return false;
    value = number;
    return true;
}

std::string& TsString::ToString(double value, const char* format, std::string& text)
{
    if (!format) {
        text = ToString(value);
        return text;
    }
    CLocaleScope cLocale;
    char buffer[128];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::snprintf(buffer, sizeof buffer, format, value);
    if (length < 0) {
        text.clear();
    } else if (static_cast<std::size_t>(length) < sizeof buffer) {
        text.assign(buffer, static_cast<std::size_t>(length));
    } else {
        text.assign(static_cast<std::size_t>(length), '\0');
        std::snprintf(text.data(), text.size() + 1, format, value);
    }
#pragma GCC diagnostic pop
    return text;
}

std::string TsString::ToString(double value)
{
    return ShortestText(value);
}

std::string TsString::ToString(float value)
{
    return ShortestText(value);
}

bool TsString::WildCardCompare(const char* pattern, const char* text, bool caseSensitive)
{
    const char* p = pattern ? pattern : "";
    const char* t = text ? text : "";
    // Only the last "*" needs to be retried: an earlier one can always absorb
    // whatever a later one would have matched, hence no exponential search.
    const char* starPattern = nullptr;
    const char* starText = nullptr;
    while (*t) {
        if (*p == '*') {
            while (*p == '*')
                ++p;
            if (!*p)
                return true;
            starPattern = p;
            starText = t;
            continue;
        }
        if (*p == '?') {
            ++p;
            t += CharLength(t);
            continue;
        }
        if (*p && (caseSensitive ? *p == *t : LowerAscii(*p) == LowerAscii(*t))) {
            ++p;
            ++t;
            continue;
        }
        if (!starPattern)
            return false;
        starText += CharLength(starText);
        t = starText;
        p = starPattern;
    }
    while (*p == '*')
        ++p;
    return !*p;
}

bool TsString::EvaluateLimitExpression(const char* expression, double value)
{
    bool holds = false;
    return ParseLimitExpression(expression, value, holds) && holds;
}

bool TsString::IsValidLimitExpression(const char* expression)
{
    bool holds = false;
    return ParseLimitExpression(expression, 0.0, holds);
}

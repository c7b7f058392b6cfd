// Limit expressions and numbers come from what users type into filters and
// option pages: nothing may crash, read past the text, or disagree with strtod.

#include <KORVAutl/TsString.h>

#include "FuzzCheck.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

bool Same(double a, double b)
{
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // An exact-size heap copy, so that AddressSanitizer sees any read past the end.
    char* text = static_cast<char*>(std::malloc(size + 1));
    if (!text)
        return 0;
    std::memcpy(text, data, size);
    text[size] = '\0';
    const std::size_t length = std::strlen(text);

    const bool valid = TsString::IsValidLimitExpression(text);
    for (double value : {0.0, 1.0, -2.5, 1e308, -HUGE_VAL, std::nan("")}) {
        const bool holds = TsString::EvaluateLimitExpression(text, value);
        Check(!holds || (valid && !std::isnan(value)));
    }

    // The process runs in the "C" locale, so strtod is the reference.
    char* end = nullptr;
    char* expectedEnd = nullptr;
    const double number = tsstrtod(text, &end);
    const double expected = std::strtod(text, &expectedEnd);
    Check(end == expectedEnd && Same(number, expected));
    Check(end >= text && end <= text + length);

    double whole = 0;
    if (TsString::ToFloat(text, whole))
        Check(Same(whole, number));
    float single = 0;
    TsString::ToFloat(text, single);
    int integer = 0;
    if (TsString::ToInt(text, integer))
        Check(TsString::ToFloat(text, whole) && whole == integer);

    // The part after the first line break is matched against the first line as a pattern.
    if (const char* newline = std::strchr(text, '\n')) {
        const std::string pattern(text, static_cast<std::size_t>(newline - text));
        TsString::WildCardCompare(pattern.c_str(), newline + 1);
        TsString::WildCardCompare(pattern.c_str(), newline + 1, true);
        const int order = tsstrnumbercmp(pattern.c_str(), newline + 1);
        Check(order == -tsstrnumbercmp(newline + 1, pattern.c_str()));
    }

    std::free(text);
    return 0;
}

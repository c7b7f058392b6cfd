#include <KORVAutl/TsUnicode.h>

namespace korva {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsScalar(char32_t code)
{
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

// Decodes one code point at text[i], advancing i; malformed bytes give U+FFFD.
char32_t DecodeUtf8(const std::string& text, std::size_t& i)
{
    const auto lead = static_cast<unsigned char>(text[i++]);
    if (lead < 0x80)
        return lead;
    const int extra = (lead >> 5) == 0x6 ? 1 : (lead >> 4) == 0xE ? 2 : (lead >> 3) == 0x1E ? 3 : -1;
    if (extra < 0 || i + extra > text.size())
        return kReplacement;
    char32_t code = lead & (0x3F >> extra);
    for (int k = 0; k < extra; ++k) {
        const auto next = static_cast<unsigned char>(text[i + k]);
        if ((next & 0xC0) != 0x80)
            return kReplacement;
        code = (code << 6) | (next & 0x3F);
    }
    static constexpr char32_t kMinimum[] = {0, 0x80, 0x800, 0x10000};
    i += extra;
    return code < kMinimum[extra] || !IsScalar(code) ? kReplacement : code;
}

void EncodeUtf8(char32_t code, std::string& out)
{
    if (!IsScalar(code))
        code = kReplacement;
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

void EncodeUtf16(char32_t code, std::u16string& out)
{
    if (!IsScalar(code))
        code = kReplacement;
    if (code < 0x10000) {
        out += static_cast<char16_t>(code);
    } else {
        code -= 0x10000;
        out += static_cast<char16_t>(0xD800 | (code >> 10));
        out += static_cast<char16_t>(0xDC00 | (code & 0x3FF));
    }
}

char32_t DecodeUtf16(const std::u16string& text, std::size_t& i)
{
    const char16_t unit = text[i++];
    if (unit >= 0xD800 && unit <= 0xDBFF && i < text.size() && text[i] >= 0xDC00 && text[i] <= 0xDFFF)
        return 0x10000 + ((char32_t(unit) - 0xD800) << 10) + (text[i++] - 0xDC00);
    return unit >= 0xD800 && unit <= 0xDFFF ? kReplacement : unit;
}

} // namespace

std::wstring Utf8ToWide(const std::string& text)
{
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();)
        result += static_cast<wchar_t>(DecodeUtf8(text, i));
    return result;
}

std::string WideToUtf8(const wchar_t* text)
{
    std::string result;
    for (; text && *text; ++text)
        EncodeUtf8(static_cast<char32_t>(*text), result);
    return result;
}

std::string WideToUtf8(const std::wstring& text)
{
    std::string result;
    for (wchar_t c : text)
        EncodeUtf8(static_cast<char32_t>(c), result);
    return result;
}

std::u16string WideToUtf16(const std::wstring& text)
{
    std::u16string result;
    result.reserve(text.size());
    for (wchar_t c : text)
        EncodeUtf16(static_cast<char32_t>(c), result);
    return result;
}

std::wstring Utf16ToWide(const std::u16string& text)
{
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();)
        result += static_cast<wchar_t>(DecodeUtf16(text, i));
    return result;
}

std::u16string Utf8ToUtf16(const std::string& text)
{
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();)
        EncodeUtf16(DecodeUtf8(text, i), result);
    return result;
}

std::string Utf16ToUtf8(const std::u16string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size();)
        EncodeUtf8(DecodeUtf16(text, i), result);
    return result;
}

} // namespace korva

#include <KORVAutlwin/platform/TsUnicode.h>

namespace korva {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsScalar(char32_t code)
{
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
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

// The code point at text[i], advancing i; a malformed byte gives U+FFFD and advances by one.
char32_t NextUtf8(const std::string& text, std::size_t& i)
{
    char32_t code = 0;
    const std::size_t length = DecodeUtf8(text, i, code);
    i += length ? length : 1;
    return length ? code : kReplacement;
}

} // namespace

std::size_t DecodeUtf8(std::string_view text, std::size_t i, char32_t& code)
{
    if (i >= text.size())
        return 0;
    const auto lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80) {
        code = lead;
        return 1;
    }
    const std::size_t length = (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 0;
    if (length == 0 || i + length > text.size())
        return 0;
    char32_t value = lead & (0x7F >> length);
    for (std::size_t k = 1; k < length; ++k) {
        const auto next = static_cast<unsigned char>(text[i + k]);
        if ((next & 0xC0) != 0x80)
            return 0;
        value = (value << 6) | (next & 0x3F);
    }
    static constexpr char32_t kMinimum[] = {0, 0, 0x80, 0x800, 0x10000};
    if (value < kMinimum[length] || !IsScalar(value))
        return 0;
    code = value;
    return length;
}

void AppendUtf8(std::string& out, char32_t code)
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

std::wstring Utf8ToWide(const std::string& text)
{
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();)
        result += static_cast<wchar_t>(NextUtf8(text, i));
    return result;
}

std::string WideToUtf8(const wchar_t* text)
{
    std::string result;
    for (; text && *text; ++text)
        AppendUtf8(result, static_cast<char32_t>(*text));
    return result;
}

std::string WideToUtf8(const std::wstring& text)
{
    std::string result;
    for (wchar_t c : text)
        AppendUtf8(result, static_cast<char32_t>(c));
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
        EncodeUtf16(NextUtf8(text, i), result);
    return result;
}

std::string Utf16ToUtf8(const std::u16string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size();)
        AppendUtf8(result, DecodeUtf16(text, i));
    return result;
}

} // namespace korva

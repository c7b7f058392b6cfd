#pragma once
// Conversions between the encodings that meet here: UTF-8 (narrow text),
// wchar_t (UTF-32 on this platform) and UTF-16 (wide data of the registry store).
// Invalid input becomes U+FFFD; nothing throws.

#include <cstddef>
#include <string>
#include <string_view>

namespace korva {

/// The length (1 to 4) of the well-formed UTF-8 sequence at text[i], its code
/// point in `code`; 0 for a malformed, overlong or truncated one, or a surrogate.
std::size_t DecodeUtf8(std::string_view text, std::size_t i, char32_t& code);
/// Appends the UTF-8 form of `code` (U+FFFD for no Unicode scalar value).
void AppendUtf8(std::string& text, char32_t code);

std::wstring Utf8ToWide(const std::string& text);
std::string WideToUtf8(const wchar_t* text);
std::string WideToUtf8(const std::wstring& text);
std::u16string WideToUtf16(const std::wstring& text);
std::wstring Utf16ToWide(const std::u16string& text);
std::u16string Utf8ToUtf16(const std::string& text);
std::string Utf16ToUtf8(const std::u16string& text);

} // namespace korva

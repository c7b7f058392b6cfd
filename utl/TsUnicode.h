#pragma once
// Conversions between the encodings that meet here: UTF-8 (narrow text),
// wchar_t (UTF-32 on this platform) and UTF-16 (wide data of the registry store).
// Invalid input becomes U+FFFD; nothing throws.

#include <string>

namespace korva {

std::wstring Utf8ToWide(const std::string& text);
std::string WideToUtf8(const wchar_t* text);
std::string WideToUtf8(const std::wstring& text);
std::u16string WideToUtf16(const std::wstring& text);
std::wstring Utf16ToWide(const std::u16string& text);
std::u16string Utf8ToUtf16(const std::string& text);
std::string Utf16ToUtf8(const std::u16string& text);

} // namespace korva

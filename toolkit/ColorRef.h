#pragma once
// Colours travel through every interface of the suite as COLORREF values,
// 0x00BBGGRR: red in the lowest byte, then green, then blue. They become a
// QColor only at the moment they are painted.

#include <QColor>

using COLORREF = unsigned long;

/// The COLORREF of the channels `r`, `g` and `b`.
constexpr COLORREF RGB(unsigned char r, unsigned char g, unsigned char b)
{
    return static_cast<COLORREF>(r) | (static_cast<COLORREF>(g) << 8) | (static_cast<COLORREF>(b) << 16);
}

/// The red, green and blue channels of `color`.
constexpr unsigned char GetRValue(COLORREF color) { return static_cast<unsigned char>(color & 0xFF); }
constexpr unsigned char GetGValue(COLORREF color) { return static_cast<unsigned char>((color >> 8) & 0xFF); }
constexpr unsigned char GetBValue(COLORREF color) { return static_cast<unsigned char>((color >> 16) & 0xFF); }

namespace korva {

/// The opaque QColor of `color`; the unused high byte is ignored.
inline QColor ToQColor(COLORREF color)
{
    return QColor(GetRValue(color), GetGValue(color), GetBValue(color));
}

/// The COLORREF of `color`, its alpha dropped.
inline COLORREF FromQColor(const QColor& color)
{
    const QColor rgb = color.toRgb();
    return RGB(static_cast<unsigned char>(rgb.red()), static_cast<unsigned char>(rgb.green()),
               static_cast<unsigned char>(rgb.blue()));
}

} // namespace korva

#pragma once
// What the display decides about colours.
//
// Colour depth: the depth of the primary screen (QScreen::depth) tells whether
// the display works with a palette. Up to 8 bits per pixel it does, and shows
// only the colours of its system palette; above 8 bits it shows every colour
// exactly. Without a GUI application or screen (services, plain tests) the
// display counts as true colour.
//
// System colours: the COLOR_* indices map onto roles of the application
// palette (QGuiApplication::palette()), so that a theme change reaches them.

#include <KORVAutlwin/toolkit/ColorRef.h>

#include <QPalette>

#include <vector>

// System colour indices, with their Win32 numbers.
constexpr int COLOR_SCROLLBAR = 0;
constexpr int COLOR_BACKGROUND = 1;
constexpr int COLOR_ACTIVECAPTION = 2;
constexpr int COLOR_INACTIVECAPTION = 3;
constexpr int COLOR_MENU = 4;
constexpr int COLOR_WINDOW = 5;
constexpr int COLOR_WINDOWFRAME = 6;
constexpr int COLOR_MENUTEXT = 7;
constexpr int COLOR_WINDOWTEXT = 8;
constexpr int COLOR_CAPTIONTEXT = 9;
constexpr int COLOR_ACTIVEBORDER = 10;
constexpr int COLOR_INACTIVEBORDER = 11;
constexpr int COLOR_APPWORKSPACE = 12;
constexpr int COLOR_HIGHLIGHT = 13;
constexpr int COLOR_HIGHLIGHTTEXT = 14;
constexpr int COLOR_BTNFACE = 15;
constexpr int COLOR_BTNSHADOW = 16;
constexpr int COLOR_GRAYTEXT = 17;
constexpr int COLOR_BTNTEXT = 18;
constexpr int COLOR_INACTIVECAPTIONTEXT = 19;
constexpr int COLOR_BTNHIGHLIGHT = 20;
constexpr int COLOR_3DDKSHADOW = 21;
constexpr int COLOR_3DLIGHT = 22;
constexpr int COLOR_INFOTEXT = 23;
constexpr int COLOR_INFOBK = 24;
constexpr int COLOR_HOTLIGHT = 26;
constexpr int COLOR_GRADIENTACTIVECAPTION = 27;
constexpr int COLOR_GRADIENTINACTIVECAPTION = 28;
constexpr int COLOR_MENUHILIGHT = 29;
constexpr int COLOR_MENUBAR = 30;

namespace korva {

/// Bits per pixel of the primary screen; 32 when there is no GUI application
/// or no screen.
int DisplayColorDepth();

/// The system palette of a display with `depth` bits per pixel, in palette order:
/// up to 1 bit black and white; 2 to 4 bits the 16 standard colours; 5 to 8 bits
/// the 20 static colours (the 16 standard ones, money green, sky blue, cream and
/// medium gray); empty above 8 bits, where the display has no palette.
const std::vector<COLORREF>& SystemPalette(int depth);

/// The colour that a display of `depth` bits per pixel shows for `color`: the
/// colour itself without a palette, else the palette entry at the least
/// distance in RGB space (the first of equally near ones).
COLORREF GetNearestColor(COLORREF color, int depth);

/// The palette role that stands for system colour `index` (Button for
/// COLOR_BTNFACE, Base for COLOR_WINDOW, Highlight for COLOR_HIGHLIGHT ...);
/// Window for an unknown index.
QPalette::ColorRole SysColorRole(int index);

/// The colour of system colour `index` in the application palette (in the
/// default palette when there is no GUI application).
COLORREF GetSysColor(int index);

} // namespace korva

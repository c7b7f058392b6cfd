#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QGuiApplication>
#include <QScreen>

namespace korva {

int DisplayColorDepth()
{
    if (!qGuiApp)
        return 32;
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->depth() : 32;
}

const std::vector<COLORREF>& SystemPalette(int depth)
{
    static const std::vector<COLORREF> monochrome = {0x000000, 0xFFFFFF};
    // The 16 standard colours in the order of the system palette.
    static const std::vector<COLORREF> standard = {
        0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080, 0x808000, 0xC0C0C0,
        0x808080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
    // The 20 static colours of a 256-colour display: ten at either end of the palette.
    static const std::vector<COLORREF> staticColors = {
        0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080, 0x808000, 0xC0C0C0, 0xC0DCC0, 0xF0CAA6,
        0xF0FBFF, 0xA4A0A0, 0x808080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
    static const std::vector<COLORREF> none;
    if (depth <= 1)
        return monochrome;
    if (depth <= 4)
        return standard;
    if (depth <= 8)
        return staticColors;
    return none;
}

COLORREF GetNearestColor(COLORREF color, int depth)
{
    color &= 0xFFFFFF;
    const std::vector<COLORREF>& palette = SystemPalette(depth);
    if (palette.empty())
        return color;
    COLORREF best = palette.front();
    long bestDistance = -1;
    for (COLORREF entry : palette) {
        const long dr = long(GetRValue(entry)) - GetRValue(color);
        const long dg = long(GetGValue(entry)) - GetGValue(color);
        const long db = long(GetBValue(entry)) - GetBValue(color);
        const long distance = dr * dr + dg * dg + db * db;
        if (bestDistance < 0 || distance < bestDistance) {
            best = entry;
            bestDistance = distance;
        }
    }
    return best;
}

QPalette::ColorRole SysColorRole(int index)
{
    switch (index) {
    case COLOR_SCROLLBAR:
    case COLOR_3DLIGHT:
        return QPalette::Midlight;
    case COLOR_BACKGROUND:
    case COLOR_APPWORKSPACE:
    case COLOR_BTNSHADOW:
        return QPalette::Dark;
    case COLOR_ACTIVECAPTION:
    case COLOR_GRADIENTACTIVECAPTION:
    case COLOR_HIGHLIGHT:
    case COLOR_MENUHILIGHT:
        return QPalette::Highlight;
    case COLOR_INACTIVECAPTION:
    case COLOR_GRADIENTINACTIVECAPTION:
        return QPalette::Mid;
    case COLOR_WINDOW:
        return QPalette::Base;
    case COLOR_WINDOWFRAME:
    case COLOR_3DDKSHADOW:
        return QPalette::Shadow;
    case COLOR_MENUTEXT:
    case COLOR_INACTIVECAPTIONTEXT:
        return QPalette::WindowText;
    case COLOR_WINDOWTEXT:
        return QPalette::Text;
    case COLOR_CAPTIONTEXT:
    case COLOR_HIGHLIGHTTEXT:
        return QPalette::HighlightedText;
    case COLOR_ACTIVEBORDER:
    case COLOR_INACTIVEBORDER:
    case COLOR_BTNFACE:
        return QPalette::Button;
    case COLOR_GRAYTEXT:
        return QPalette::PlaceholderText;
    case COLOR_BTNTEXT:
        return QPalette::ButtonText;
    case COLOR_BTNHIGHLIGHT:
        return QPalette::Light;
    case COLOR_INFOTEXT:
        return QPalette::ToolTipText;
    case COLOR_INFOBK:
        return QPalette::ToolTipBase;
    case COLOR_HOTLIGHT:
        return QPalette::Link;
    case COLOR_MENU:
    case COLOR_MENUBAR:
    default:
        return QPalette::Window;
    }
}

COLORREF GetSysColor(int index)
{
    // Without an application there is no theme: a palette made from the
    // classic face colour stands in.
    const QPalette palette = qGuiApp ? QGuiApplication::palette() : QPalette(QColor(240, 240, 240));
    QColor colour = palette.color(QPalette::Active, SysColorRole(index));
    if (colour.alpha() < 255) {
        // A translucent role (Qt's placeholder text is the text at half alpha)
        // becomes the colour it shows on the window's base.
        const QColor base = palette.color(QPalette::Active, QPalette::Base);
        const double a = colour.alphaF();
        colour = QColor::fromRgbF(static_cast<float>(colour.redF() * a + base.redF() * (1 - a)),
                                  static_cast<float>(colour.greenF() * a + base.greenF() * (1 - a)),
                                  static_cast<float>(colour.blueF() * a + base.blueF() * (1 - a)));
    }
    return FromQColor(colour);
}

} // namespace korva

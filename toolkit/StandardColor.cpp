#include <KORVAutlwin/toolkit/StandardColor.h>

#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>

bool StandardColor::bIsInitiated = false;

unsigned long StandardColor::ColorBlue = 0;
unsigned long StandardColor::ColorRed = 0;
unsigned long StandardColor::ColorGreen = 0;
unsigned long StandardColor::ColorYellow = 0;
unsigned long StandardColor::ColorGray = 0;
unsigned long StandardColor::ColorLightGray = 0;
unsigned long StandardColor::ColorWhite = 0;
unsigned long StandardColor::ColorBlack = 0;
unsigned long StandardColor::ColorCyan = 0;
unsigned long StandardColor::ColorMagenta = 0;
unsigned long StandardColor::ColorDarkYellow = 0;
unsigned long StandardColor::ColorNavy = 0;
unsigned long StandardColor::ColorPurple = 0;
unsigned long StandardColor::ColorWine = 0;
unsigned long StandardColor::ColorOlive = 0;
unsigned long StandardColor::ColorDarkCyan = 0;
unsigned long StandardColor::ColorRoyal = 0;
unsigned long StandardColor::ColorOrange = 0;
unsigned long StandardColor::ColorViolet = 0;
unsigned long StandardColor::ColorPink = 0;
unsigned long StandardColor::ColorLightYellow = 0;
unsigned long StandardColor::ColorLightCyan = 0;
unsigned long StandardColor::ColorLightMagenta = 0;

unsigned long StandardColor::ColorComment = 0;
unsigned long StandardColor::ColorData = 0;
unsigned long StandardColor::ColorMisVal = 0;
unsigned long StandardColor::ColorObsName = 0;
unsigned long StandardColor::ColorObsNumber = 0;
unsigned long StandardColor::ColorVarName = 0;
unsigned long StandardColor::ColorVarNumber = 0;
unsigned long StandardColor::ColorText = 0;
unsigned long StandardColor::ColorQualitative = 0;
unsigned long StandardColor::ColorYQualitative = 0;
unsigned long StandardColor::ColorPredCaption = 0;
unsigned long StandardColor::ColorPred = 0;
unsigned long StandardColor::ColorYVar = 0;
unsigned long StandardColor::YBackgroundColor = 0;
unsigned long StandardColor::TimeBackground = 0;
unsigned long StandardColor::DateTimeBackground = 0;
unsigned long StandardColor::MaturityBackground = 0;
unsigned long StandardColor::ICBackground = 0;
unsigned long StandardColor::BatchBackgound = 0;
unsigned long StandardColor::PhaseBackground = 0;

namespace {

constexpr double kUndefinedHue = -99.0;

// The first candidate that the display shows exactly, else the display's
// nearest to the last one. The lists are those of old palette displays.
unsigned long FirstShown(std::initializer_list<unsigned long> candidates, int depth)
{
    unsigned long shown = 0;
    for (unsigned long candidate : candidates) {
        shown = korva::GetNearestColor(candidate, depth);
        if (shown == candidate)
            break;
    }
    return shown;
}

unsigned char Channel(double value)
{
    return static_cast<unsigned char>(std::clamp(std::floor(value * 255.0), 0.0, 255.0));
}

} // namespace

namespace korva {

int fcmp(double a, double b, double epsilon)
{
    int exponent = 0;
    std::frexp(std::fabs(a) > std::fabs(b) ? a : b, &exponent);
    const double bound = std::ldexp(epsilon, exponent);
    const double difference = a - b;
    if (difference > bound)
        return 1;
    if (difference < -bound)
        return -1;
    return 0;
}

} // namespace korva

void StandardColor::Init()
{
    Init(korva::DisplayColorDepth());
}

void StandardColor::Init(int displayDepth)
{
    ColorBlue = FirstShown({0xFF8080, 0xF0C8A4, 0xF0CAA6, 0xFF0000, 0x808080}, displayDepth);
    ColorGreen = FirstShown({0x80FF80, 0xC0DCC0, 0x808000, 0x00FF00, 0x808080}, displayDepth);
    ColorYellow = FirstShown({0x80FFFF, 0x00FFFF, 0x808080}, displayDepth);
    ColorRed = FirstShown({0x8080FF, 0x0000FF, 0x808080}, displayDepth);

    ColorGray = korva::GetNearestColor(0x808080, displayDepth);
    ColorBlack = korva::GetNearestColor(0x000000, displayDepth);
    ColorWhite = korva::GetNearestColor(0xFFFFFF, displayDepth);
    ColorLightGray = korva::GetNearestColor(0xC0C0C0, displayDepth);

    ColorCyan = 0xFFFF00;
    ColorMagenta = 0xFF00FF;
    ColorDarkYellow = 0x008080;
    ColorNavy = 0x800000;
    ColorPurple = 0x800080;
    ColorWine = 0x000080;
    ColorOlive = 0x008000;
    ColorDarkCyan = 0x808000;
    ColorRoyal = 0xA00000;
    ColorOrange = 0x0080FF;
    ColorViolet = 0xFF0080;
    ColorPink = 0x8000FF;
    ColorLightYellow = 0x80FFFF;
    ColorLightCyan = 0xFFFF80;
    ColorLightMagenta = 0xFF80FF;

    ColorComment = ColorLightGray;
    ColorData = ColorWhite;
    ColorMisVal = 0xBFBFFF;
    ColorObsName = 0x00EBEB;
    ColorObsNumber = 0x00C0C0;
    ColorVarName = 0x3CAA1E;
    ColorVarNumber = 0x46E61E;
    ColorText = 0xFFFF00;
    ColorQualitative = 0xE9E9AC;
    ColorYQualitative = 0xCBC77E;
    ColorPredCaption = 0xFFA26F;
    ColorPred = 0xFFE1A0;
    ColorYVar = 0x3599C8;
    YBackgroundColor = 0xB3D9EB;
    TimeBackground = 0xB3D9EB;
    DateTimeBackground = 0x69B4D8;
    MaturityBackground = 0xB2C8EC;
    ICBackground = 0xDBDBE5;
    BatchBackgound = 0x43DEFF;
    PhaseBackground = 0xA3F8F8;

    bIsInitiated = true;
}

#define KORVA_COLOR_GETTER(getter, field)   \
    unsigned long StandardColor::getter()   \
    {                                       \
        if (!bIsInitiated)                  \
            Init();                         \
        return field;                       \
    }

#define KORVA_COLOR_SETTER(setter, field)               \
    void StandardColor::setter(unsigned long color)     \
    {                                                   \
        field = color;                                  \
    }

KORVA_COLOR_GETTER(GetColorBlue, ColorBlue)
KORVA_COLOR_GETTER(GetColorRed, ColorRed)
KORVA_COLOR_GETTER(GetColorGreen, ColorGreen)
KORVA_COLOR_GETTER(GetColorYellow, ColorYellow)
KORVA_COLOR_GETTER(GetColorGray, ColorGray)
KORVA_COLOR_GETTER(GetColorLightGray, ColorLightGray)
KORVA_COLOR_GETTER(GetColorWhite, ColorWhite)
KORVA_COLOR_GETTER(GetColorBlack, ColorBlack)
KORVA_COLOR_GETTER(GetColorCyan, ColorCyan)
KORVA_COLOR_GETTER(GetColorMagenta, ColorMagenta)
KORVA_COLOR_GETTER(GetColorDarkYellow, ColorDarkYellow)
KORVA_COLOR_GETTER(GetColorNavy, ColorNavy)
KORVA_COLOR_GETTER(GetColorPurple, ColorPurple)
KORVA_COLOR_GETTER(GetColorWine, ColorWine)
KORVA_COLOR_GETTER(GetColorOlive, ColorOlive)
KORVA_COLOR_GETTER(GetColorDarkCyan, ColorDarkCyan)
KORVA_COLOR_GETTER(GetColorRoyal, ColorRoyal)
KORVA_COLOR_GETTER(GetColorOrange, ColorOrange)
KORVA_COLOR_GETTER(GetColorViolet, ColorViolet)
KORVA_COLOR_GETTER(GetColorPink, ColorPink)
KORVA_COLOR_GETTER(GetColorLightYellow, ColorLightYellow)
KORVA_COLOR_GETTER(GetColorLightCyan, ColorLightCyan)
KORVA_COLOR_GETTER(GetColorLightMagenta, ColorLightMagenta)

KORVA_COLOR_GETTER(GetComment, ColorComment)
KORVA_COLOR_SETTER(SetComment, ColorComment)
KORVA_COLOR_GETTER(GetData, ColorData)
KORVA_COLOR_SETTER(SetData, ColorData)
KORVA_COLOR_GETTER(GetMisVal, ColorMisVal)
KORVA_COLOR_SETTER(SetMisVal, ColorMisVal)
KORVA_COLOR_GETTER(GetObsName, ColorObsName)
KORVA_COLOR_SETTER(SetObsName, ColorObsName)
KORVA_COLOR_GETTER(GetObsNumber, ColorObsNumber)
KORVA_COLOR_SETTER(SetObsNumber, ColorObsNumber)
KORVA_COLOR_GETTER(GetVarName, ColorVarName)
KORVA_COLOR_SETTER(SetVarName, ColorVarName)
KORVA_COLOR_GETTER(GetVarNumber, ColorVarNumber)
KORVA_COLOR_SETTER(SetVarNumber, ColorVarNumber)
KORVA_COLOR_GETTER(GetText, ColorText)
KORVA_COLOR_SETTER(SetText, ColorText)
KORVA_COLOR_GETTER(GetQualitative, ColorQualitative)
KORVA_COLOR_GETTER(GetYQualitative, ColorYQualitative)
KORVA_COLOR_GETTER(GetPredictionCaption, ColorPredCaption)
KORVA_COLOR_GETTER(GetPrediction, ColorPred)
KORVA_COLOR_GETTER(GetYVar, ColorYVar)
KORVA_COLOR_GETTER(GetYVarData, YBackgroundColor)
KORVA_COLOR_GETTER(GetTime, TimeBackground)
KORVA_COLOR_GETTER(GetDateTime, DateTimeBackground)
KORVA_COLOR_GETTER(GetMaturity, MaturityBackground)
KORVA_COLOR_GETTER(GetInitialCondition, ICBackground)
KORVA_COLOR_GETTER(GetBatchID, BatchBackgound)
KORVA_COLOR_GETTER(GetPhaseID, PhaseBackground)

KORVA_COLOR_GETTER(GetMarking, ColorOrange)
KORVA_COLOR_GETTER(GetObsPrimary, ColorObsNumber)
KORVA_COLOR_GETTER(GetObsSecondary, ColorObsName)
KORVA_COLOR_GETTER(GetVarPrimary, ColorVarName)
KORVA_COLOR_GETTER(GetVarSecondary, ColorVarNumber)

#undef KORVA_COLOR_GETTER
#undef KORVA_COLOR_SETTER

unsigned long StandardColor::GetKorvaText()
{
    return 0xE6E6E6;
}

unsigned long StandardColor::GetColor(ColorDef def)
{
    if (!bIsInitiated)
        Init();
    switch (def) {
    case eColorBlue: return ColorBlue;
    case eColorRed: return ColorRed;
    case eColorGreen: return ColorGreen;
    case eColorYellow: return ColorYellow;
    case eColorGray: return ColorGray;
    case eColorLightGray: return ColorLightGray;
    case eColorWhite: return ColorWhite;
    case eColorBlack: return ColorBlack;
    case eColorCyan: return ColorCyan;
    case eColorMagenta: return ColorMagenta;
    case eColorDarkYellow: return ColorDarkYellow;
    case eColorNavy: return ColorNavy;
    case eColorPurple: return ColorPurple;
    case eColorWine: return ColorWine;
    case eColorOlive: return ColorOlive;
    case eColorDarkCyan: return ColorDarkCyan;
    case eColorRoyal: return ColorRoyal;
    case eColorOrange: return ColorOrange;
    case eColorViolet: return ColorViolet;
    case eColorPink: return ColorPink;
    case eColorLightYellow: return ColorLightYellow;
    case eColorLightCyan: return ColorLightCyan;
    case eColorLightMagenta: return ColorLightMagenta;
    }
    return ColorWhite;
}

unsigned long StandardColor::GetPrintColor(unsigned long color)
{
    if (!bIsInitiated)
        Init();
    if (color == ColorBlue)
        return 0xFF8080;
    if (color == ColorGreen)
        return 0x80FF80;
    if (color == ColorRed)
        return 0x8080FF;
    if (color == ColorYellow)
        return 0x80FFFF;
    return color;
}

void StandardColor::RGB2HSV(unsigned long color, double& h, double& s, double& v)
{
    const double r = GetRValue(color) / 255.0;
    const double g = GetGValue(color) / 255.0;
    const double b = GetBValue(color) / 255.0;
    v = std::max({r, g, b});
    const double delta = v - std::min({r, g, b});
    s = korva::fcmp(v, 0.0) != 0 ? delta / v : 0.0;
    if (korva::fcmp(s, 0.0) == 0) {
        h = kUndefinedHue;
        return;
    }
    if (korva::fcmp(r, v) == 0)
        h = (g - b) / delta;
    else if (korva::fcmp(g, v) == 0)
        h = (b - r) / delta + 2.0;
    else
        h = (r - g) / delta + 4.0;
    h *= 60.0;
    if (korva::fcmp(h, 0.0) < 0)
        h += 360.0;
}

unsigned long StandardColor::HSV2RGB(double h, double s, double v)
{
    if (korva::fcmp(s, 0.0) == 0) {
        if (h != kUndefinedHue)
            return 0;
        return RGB(Channel(v), Channel(v), Channel(v));
    }
    const double sector = (korva::fcmp(h, 360.0) == 0 ? 0.0 : h) / 60.0;
    const double i = std::floor(sector);
    const double f = sector - i;
    const double p = (1.0 - s) * v;
    const double q = (1.0 - f * s) * v;
    const double t = (1.0 - s * (1.0 - f)) * v;
    double r = 0.0, g = 0.0, b = 0.0;
    // Compared as doubles, so that no hue however far out of range overflows an int.
    if (i == 0.0) {
        r = v; g = t; b = p;
    } else if (i == 1.0) {
        r = q; g = v; b = p;
    } else if (i == 2.0) {
        r = p; g = v; b = t;
    } else if (i == 3.0) {
        r = p; g = q; b = v;
    } else if (i == 4.0) {
        r = t; g = p; b = v;
    } else if (i == 5.0) {
        r = v; g = p; b = q;
    }
    return RGB(Channel(r), Channel(g), Channel(b));
}

void StandardColor::InterpolateColors(unsigned long from, unsigned long to, unsigned long* out, int count)
{
    if (count < 1 || !out)
        return;
    double h = 0.0, s = 0.0, v = 0.0;
    double endH = 0.0, endS = 0.0, endV = 0.0;
    RGB2HSV(from, h, s, v);
    RGB2HSV(to, endH, endS, endV);
    if (h == kUndefinedHue && endH == kUndefinedHue)
        h = endH = 0.0;
    else if (h == kUndefinedHue)
        h = endH;
    else if (endH == kUndefinedHue)
        endH = h;

    out[0] = from;
    if (count > 2) {
        const double stepH = (endH - h) / (count - 1);
        const double stepS = (endS - s) / (count - 1);
        const double stepV = (endV - v) / (count - 1);
        for (int i = 1; i < count - 1; ++i) {
            h += stepH;
            s += stepS;
            v += stepV;
            out[i] = HSV2RGB(korva::fcmp(s, 0.0) == 0 ? kUndefinedHue : h, s, v);
        }
    }
    out[count - 1] = to;
}

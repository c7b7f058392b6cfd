#pragma once
/// \class StandardColor
/// The suite's colours: the same base colours for every window and plot, the
/// semantic colours of spreadsheet cells, and the colour conversions that plots
/// use for gradients. All colours are COLORREF values (0x00BBGGRR).
///
/// Four base colours (blue, red, green, yellow) are chosen by the display at the
/// first getter call: each is the first of its candidates that the display shows
/// exactly (see DisplayColor.h for what decides), so a true-colour display gets
/// pastels and a palette display the nearest palette colours. Only the user
/// interface thread uses this class; nothing is locked.

#include <KORVAutlwin/toolkit/ColorRef.h>

class StandardColor
{
public:
    /// `GetColor`'s selector; the numbers are fixed.
    enum ColorDef {
        eColorBlue = 0,
        eColorRed = 1,
        eColorGreen = 2,
        eColorYellow = 3,
        eColorGray = 4,
        eColorLightGray = 5,
        eColorWhite = 6,
        eColorBlack = 7,
        eColorCyan = 8,
        eColorMagenta = 9,
        eColorDarkYellow = 10,
        eColorNavy = 11,
        eColorPurple = 12,
        eColorWine = 13,
        eColorOlive = 14,
        eColorDarkCyan = 15,
        eColorRoyal = 16,
        eColorOrange = 17,
        eColorViolet = 18,
        eColorPink = 19,
        eColorLightYellow = 20,
        eColorLightCyan = 21,
        eColorLightMagenta = 22,
    };

    StandardColor() = delete;

    /// Set by Init; every getter runs Init while it is clear.
    static bool bIsInitiated;

    // Base colours. The first four are chosen by the display, gray, light gray,
    // white and black are the display's nearest to 0x808080, 0xC0C0C0, 0xFFFFFF
    // and 0x000000, the others are fixed.
    static unsigned long ColorBlue;
    static unsigned long ColorRed;
    static unsigned long ColorGreen;
    static unsigned long ColorYellow;
    static unsigned long ColorGray;
    static unsigned long ColorLightGray;
    static unsigned long ColorWhite;
    static unsigned long ColorBlack;
    static unsigned long ColorCyan;          // 0xFFFF00
    static unsigned long ColorMagenta;       // 0xFF00FF
    static unsigned long ColorDarkYellow;    // 0x008080
    static unsigned long ColorNavy;          // 0x800000
    static unsigned long ColorPurple;        // 0x800080
    static unsigned long ColorWine;          // 0x000080
    static unsigned long ColorOlive;         // 0x008000
    static unsigned long ColorDarkCyan;      // 0x808000
    static unsigned long ColorRoyal;         // 0xA00000
    static unsigned long ColorOrange;        // 0x0080FF
    static unsigned long ColorViolet;        // 0xFF0080
    static unsigned long ColorPink;          // 0x8000FF
    static unsigned long ColorLightYellow;   // 0x80FFFF
    static unsigned long ColorLightCyan;     // 0xFFFF80
    static unsigned long ColorLightMagenta;  // 0xFF80FF

    // Semantic colours of cells.
    static unsigned long ColorComment;        // comment cells: light gray
    static unsigned long ColorData;           // data cells: white
    static unsigned long ColorMisVal;         // missing values: 0xBFBFFF
    static unsigned long ColorObsName;        // observation names: 0x00EBEB
    static unsigned long ColorObsNumber;      // observation numbers: 0x00C0C0
    static unsigned long ColorVarName;        // variable names: 0x3CAA1E
    static unsigned long ColorVarNumber;      // variable numbers: 0x46E61E
    static unsigned long ColorText;           // text cells: 0xFFFF00
    static unsigned long ColorQualitative;    // qualitative cells: 0xE9E9AC
    static unsigned long ColorYQualitative;   // qualitative Y cells: 0xCBC77E
    static unsigned long ColorPredCaption;    // prediction captions: 0xFFA26F
    static unsigned long ColorPred;           // prediction cells: 0xFFE1A0
    static unsigned long ColorYVar;           // Y variables: 0x3599C8
    static unsigned long YBackgroundColor;    // Y variable data: 0xB3D9EB
    static unsigned long TimeBackground;      // time: 0xB3D9EB
    static unsigned long DateTimeBackground;  // date and time: 0x69B4D8
    static unsigned long MaturityBackground;  // maturity: 0xB2C8EC
    static unsigned long ICBackground;        // initial conditions: 0xDBDBE5
    static unsigned long BatchBackgound;      // batch identifiers: 0x43DEFF (the name stands as it is)
    static unsigned long PhaseBackground;     // phase identifiers: 0xA3F8F8

    /// Chooses the colours for the primary display (DisplayColor.h) and sets
    /// `bIsInitiated`; overwrites every field, including colours set before.
    static void Init();
    /// The same for a display of `displayDepth` bits per pixel: each of blue,
    /// green, yellow and red walks its candidates in order and keeps the first
    /// that the display shows exactly, else the nearest to its last candidate.
    static void Init(int displayDepth);

    static unsigned long GetColorBlue();
    static unsigned long GetColorRed();
    static unsigned long GetColorGreen();
    static unsigned long GetColorYellow();
    static unsigned long GetColorGray();
    static unsigned long GetColorLightGray();
    static unsigned long GetColorWhite();
    static unsigned long GetColorBlack();
    static unsigned long GetColorCyan();
    static unsigned long GetColorMagenta();
    static unsigned long GetColorDarkYellow();
    static unsigned long GetColorNavy();
    static unsigned long GetColorPurple();
    static unsigned long GetColorWine();
    static unsigned long GetColorOlive();
    static unsigned long GetColorDarkCyan();
    static unsigned long GetColorRoyal();
    static unsigned long GetColorOrange();
    static unsigned long GetColorViolet();
    static unsigned long GetColorPink();
    static unsigned long GetColorLightYellow();
    static unsigned long GetColorLightCyan();
    static unsigned long GetColorLightMagenta();

    /// The base colour numbered `def` in ColorDef; ColorWhite for any other number.
    static unsigned long GetColor(ColorDef def);

    // Semantic colours. The setters write the field without running Init, so a
    // colour set before the first getter call is overwritten: call a getter first.
    static unsigned long GetComment();
    static void SetComment(unsigned long color);
    static unsigned long GetData();
    static void SetData(unsigned long color);
    static unsigned long GetMisVal();
    static void SetMisVal(unsigned long color);
    static unsigned long GetObsName();
    static void SetObsName(unsigned long color);
    static unsigned long GetObsNumber();
    static void SetObsNumber(unsigned long color);
    static unsigned long GetVarName();
    static void SetVarName(unsigned long color);
    static unsigned long GetVarNumber();
    static void SetVarNumber(unsigned long color);
    static unsigned long GetText();
    static void SetText(unsigned long color);
    static unsigned long GetQualitative();
    static unsigned long GetYQualitative();
    static unsigned long GetPredictionCaption();
    static unsigned long GetPrediction();
    static unsigned long GetYVar();
    static unsigned long GetYVarData();
    static unsigned long GetTime();
    static unsigned long GetDateTime();
    static unsigned long GetMaturity();
    static unsigned long GetInitialCondition();
    static unsigned long GetBatchID();
    static unsigned long GetPhaseID();

    /// ColorOrange.
    static unsigned long GetMarking();
    /// The primary colour of an observation is its number's, of a variable its name's.
    static unsigned long GetObsPrimary();    // ColorObsNumber
    static unsigned long GetObsSecondary();  // ColorObsName
    static unsigned long GetVarPrimary();    // ColorVarName
    static unsigned long GetVarSecondary();  // ColorVarNumber
    /// The constant 0xE6E6E6.
    static unsigned long GetKorvaText();

    /// For printing: a printer shows any colour, so a base colour that had to
    /// fall back on the display returns to its first candidate. `color` equal to
    /// ColorBlue gives 0xFF8080, to ColorGreen 0x80FF80, to ColorRed 0x8080FF, to
    /// ColorYellow 0x80FFFF (tested in that order); any other colour passes.
    static unsigned long GetPrintColor(unsigned long color);

    /// Hue `h` in degrees (0 to below 360, or -99.0 for an undefined hue, which
    /// every gray has), saturation `s` and value `v` (0 to 1) of `color`.
    static void RGB2HSV(unsigned long color, double& h, double& s, double& v);
    /// The colour of hue `h`, saturation `s` and value `v`. With `s` 0 (under
    /// fcmp) only the undefined hue -99.0 gives the gray of `v`, any other hue
    /// black. A hue of 360 counts as 0; a hue below 0 or from 361 on gives black.
    /// Each channel is floored, not rounded, so a round trip may lose one step;
    /// channels beyond 0 to 1 are held at 0 and 255.
    static unsigned long HSV2RGB(double h, double s, double v);
    /// Fills `out[0]` to `out[count - 1]` with a gradient from `from` to `to` in
    /// HSV space, the hue going the direct way between its two numbers (not the
    /// shorter way around the circle). The ends are `from` and `to` themselves;
    /// an end without hue takes the other end's. Count 1 gives `to` alone;
    /// a count below 1 writes nothing.
    static void InterpolateColors(unsigned long from, unsigned long to, unsigned long* out, int count);
};

namespace korva {

/// The comparison of doubles used by the colour conversions: 1 when `a` - `b`
/// exceeds `epsilon` scaled by the binary exponent of the larger of |a| and |b|,
/// -1 when it is below the negative of that bound, else 0.
int fcmp(double a, double b, double epsilon = 1.0 / 8388608.0);

} // namespace korva

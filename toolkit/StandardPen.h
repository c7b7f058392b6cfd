#pragma once
/// \class StandardPen
/// The suite's eight pens, the same for every window and plot. Three are stock
/// pens that live to process end; the five made ones can be unloaded and are
/// made again at the next getter call. Pens of width 0 are cosmetic: one device
/// pixel at any scale, the thinnest that the device draws. Styled pens keep the
/// platform's dash lengths in pixels: dash 18 on 6 off, dot 3 on 3 off,
/// dash-dot 9 on 6 off 3 on 6 off. Only the user interface thread uses this
/// class; nothing is locked.

#include <QPen>

class StandardPen
{
public:
    /// `GetPen`'s selector; the numbers are fixed.
    enum PenStyle {
        ePenSolid = 1,
        ePenDash = 2,
        ePenDashDot = 3,
        ePenDot = 4,
        ePenLightGray = 5,
        ePenWhite = 6,
        ePenThick = 7,
        ePenNone = 8,
    };

    StandardPen() = delete;

    /// Set by Initialize, cleared by UnloadPens.
    static bool bIsInitialized;

    static const QPen* SolidPen;      // stock: solid black, width 0
    static const QPen* DashPen;       // dashed, width 0, black
    static const QPen* DashDotPen;    // dash-dotted, width 0, black
    static const QPen* DotPen;        // dotted, width 0, black
    static const QPen* LightGrayPen;  // solid, width 0, light gray
    static const QPen* WhitePen;      // stock: solid white, width 0
    static const QPen* ThickPen;      // solid, width 2, black, round ends and joins
    static const QPen* NonePen;       // stock: draws nothing

    /// Makes the pens and sets `bIsInitialized`; the getters call it while the
    /// flag is clear. Colours come from StandardColor.
    static void Initialize();
    /// Deletes the five made pens (never the stock ones) and clears the flag;
    /// nothing when not initialised. Pointers taken before are invalid after it.
    static void UnloadPens();

    static const QPen* GetSolidPen();
    static const QPen* GetDashPen();
    static const QPen* GetDashDotPen();
    static const QPen* GetDotPen();
    static const QPen* GetLightGrayPen();
    static const QPen* GetWhitePen();
    static const QPen* GetThickPen();
    static const QPen* GetNonePen();

    /// The pen numbered `style` in PenStyle; null for a number outside 1 to 8.
    static const QPen* GetPen(PenStyle style);
};

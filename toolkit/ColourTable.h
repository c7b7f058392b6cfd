#pragma once
/// \class ColourTable
/// The named colours of the colour picker's popup, and the rules of the picker
/// that need no window: its messages, the automatic colour, the text it shows
/// for a colour, and the 16 custom colours kept in a settings section.

#include <KORVAutlwin/toolkit/ColorRef.h>

#include <array>
#include <string>

class ConfigurationSection;

class ColourTable
{
public:
    /// The colour value that means "automatic": the picker's default colour.
    static constexpr COLORREF kAutomaticColour = 0xFF000000;
    /// Rows of the table, and the most a popup takes.
    static constexpr int kTableSize = 40;
    static constexpr int kMaximumColours = 100;
    /// Custom colours of the colour dialog.
    static constexpr int kCustomColours = 16;

    /// Notices from the popup to the picker and from the picker to its parent.
    enum ENotice
    {
        eSelectionChanged = 2025,
        eDroppedDown = 2026,
        eClosedUp = 2027,
        eSelectionEndOk = 2028,
        eSelectionEndCancel = 2029
    };

    /// The popup's indices beside the boxes 0 to 39.
    enum EIndex
    {
        eDefaultRow = -3,
        eCustomRow = -2,
        eNoIndex = -1
    };

    /// The rows in the table; a popup caps it to kMaximumColours.
    static int GetCount();
    static COLORREF GetColour(int index);
    /// The row's name; empty outside the table.
    static const std::string& GetName(int index);
    /// The first row with `colour`, or -1.
    static int FindColour(COLORREF colour);

    /// With 0, restores the built-in names; otherwise row i takes the language
    /// string `firstStringId + i` and keeps its name where that string is missing.
    static void SetColoursName(unsigned int firstStringId);

    /// `text` padded with blanks to three characters (longer texts stand).
    static std::string PadRGBText(const std::string& text);
    /// "R:255 G:0 B:0": the first three characters of `rgbText` as labels of the channels.
    static std::string FormatRGBText(const std::string& rgbText, COLORREF colour);
    /// The text the combo look shows: the default text for the automatic colour;
    /// a table colour's name (first row wins), with " (<rgb>)" when `alwaysRGB`;
    /// otherwise the RGB text alone.
    static std::string GetColourText(COLORREF colour, const std::string& defaultText, const std::string& rgbText,
                                     bool alwaysRGB);

    /// The custom colours "CUSTOM_COLOR_0" to "CUSTOM_COLOR_15" of `section`;
    /// a missing value, or no section, gives white.
    static std::array<COLORREF, kCustomColours> LoadCustomColours(const ConfigurationSection* section);
    /// Writes all sixteen; false when a write failed or there is no section.
    static bool SaveCustomColours(ConfigurationSection* section, const std::array<COLORREF, kCustomColours>& colours);
};

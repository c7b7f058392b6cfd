#include <KORVAutlwin/toolkit/ColourTable.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/LanguageString.h>

#include <cstdio>

namespace {

struct Row
{
    COLORREF colour;
    const char* name;
};

// The blank after "Pale green" is part of that name.
constexpr Row kRows[ColourTable::kTableSize] = {
    {0x000000, "Black"},         {0x002AA5, "Brown"},          {0x404000, "Dark Olive Green"},
    {0x005500, "Dark Green"},    {0x5E0000, "Dark Teal"},      {0x8B0000, "Dark blue"},
    {0x82004B, "Indigo"},        {0x282828, "Dark grey"},      {0x00008B, "Dark red"},
    {0x2068FF, "Orange"},        {0x008B8B, "Dark yellow"},    {0x009300, "Green"},
    {0x8E8E38, "Teal"},          {0xFF0000, "Blue"},           {0xC07B7B, "Blue-grey"},
    {0x666666, "Grey - 40"},     {0x0000FF, "Red"},            {0x5BADFF, "Light orange"},
    {0x32CD32, "Lime"},          {0x71B33C, "Sea green"},      {0xD4FF7F, "Aqua"},
    {0xC09E7D, "Light blue"},    {0x800080, "Violet"},         {0x808080, "Grey - 50"},
    {0xCBC0FF, "Pink"},          {0x00D7FF, "Gold"},           {0x00FFFF, "Yellow"},
    {0x00FF00, "Bright green"},  {0xD0E040, "Turquoise"},      {0xFFFFC0, "Skyblue"},
    {0x480048, "Plum"},          {0xC0C0C0, "Light grey"},     {0xE1E4FF, "Rose"},
    {0x8CB4D2, "Tan"},           {0xE0FFFF, "Light yellow"},   {0x98FB98, "Pale green "},
    {0xEEEEAF, "Pale turquoise"}, {0x8B8368, "Pale blue"},     {0xFAE6E6, "Lavender"},
    {0xFFFFFF, "White"},
};

// Names are at most 255 characters, as the table's fixed rows hold them.
std::array<std::string, ColourTable::kTableSize>& Names()
{
    static std::array<std::string, ColourTable::kTableSize> names = [] {
        std::array<std::string, ColourTable::kTableSize> initial;
        for (int i = 0; i < ColourTable::kTableSize; ++i)
            initial[i] = kRows[i].name;
        return initial;
    }();
    return names;
}

} // namespace

int ColourTable::GetCount()
{
    return kTableSize;
}

COLORREF ColourTable::GetColour(int index)
{
    return index >= 0 && index < kTableSize ? kRows[index].colour : kAutomaticColour;
}

const std::string& ColourTable::GetName(int index)
{
    static const std::string none;
    return index >= 0 && index < kTableSize ? Names()[index] : none;
}

int ColourTable::FindColour(COLORREF colour)
{
    for (int i = 0; i < kTableSize; ++i)
        if (kRows[i].colour == colour)
            return i;
    return -1;
}

void ColourTable::SetColoursName(unsigned int firstStringId)
{
    for (int i = 0; i < kTableSize; ++i) {
        std::string name = kRows[i].name;
        if (firstStringId != 0 && LanguageString::Has(firstStringId + i))
            name = LanguageString::Get(firstStringId + i);
        Names()[i] = name.substr(0, 255);
    }
}

std::string ColourTable::PadRGBText(const std::string& text)
{
    std::string padded = text;
    if (padded.size() < 3)
        padded.append(3 - padded.size(), ' ');
    return padded;
}

std::string ColourTable::FormatRGBText(const std::string& rgbText, COLORREF colour)
{
    const std::string labels = PadRGBText(rgbText);
    char text[64];
    std::snprintf(text, sizeof text, "%c:%d %c:%d %c:%d", labels[0], GetRValue(colour), labels[1], GetGValue(colour),
                  labels[2], GetBValue(colour));
    return text;
}

std::string ColourTable::GetColourText(COLORREF colour, const std::string& defaultText, const std::string& rgbText,
                                       bool alwaysRGB)
{
    if (colour == kAutomaticColour)
        return defaultText;
    const std::string rgb = FormatRGBText(rgbText, colour);
    const int row = FindColour(colour);
    if (row < 0)
        return rgb;
    return alwaysRGB ? GetName(row) + " (" + rgb + ")" : GetName(row);
}

std::array<COLORREF, ColourTable::kCustomColours> ColourTable::LoadCustomColours(const ConfigurationSection* section)
{
    std::array<COLORREF, kCustomColours> colours;
    colours.fill(0xFFFFFF);
    if (!section)
        return colours;
    for (int i = 0; i < kCustomColours; ++i) {
        char key[32];
        std::snprintf(key, sizeof key, "CUSTOM_COLOR_%d", i);
        int value = 0;
        if (section->ReadInt(key, value))
            colours[i] = static_cast<COLORREF>(static_cast<unsigned int>(value));
    }
    return colours;
}

bool ColourTable::SaveCustomColours(ConfigurationSection* section, const std::array<COLORREF, kCustomColours>& colours)
{
    if (!section)
        return false;
    bool written = true;
    for (int i = 0; i < kCustomColours; ++i) {
        char key[32];
        std::snprintf(key, sizeof key, "CUSTOM_COLOR_%d", i);
        written = section->WriteInt(key, static_cast<int>(static_cast<unsigned int>(colours[i]))) && written;
    }
    return written;
}

#pragma once
// Which rows a find-and-select edit box picks for a typed text.

#include <functional>
#include <string>
#include <vector>

/// Which rows a TsFindAndSelectEdit selects for a typed text, in each of its five modes.
class FindAndSelectRules
{
public:
    /// How the typed text meets the rows.
    enum EHowToFind
    {
        eWildcard = 0,  ///< the cell against the pattern; without "*" or "?" a "*" is appended
        eContains = 1,  ///< the cell contains the text, ignoring case
        eAutomatic = 2, ///< eWildcard if the text holds "*" or "?", else eContains
        eNumeric = 3,   ///< the row's value against a limit expression
        eEquals = 4     ///< the cell equals the text, ignoring case
    };
    /// Cells are compared by their first 255 characters, as read into a 256-character buffer.
    static constexpr size_t kCellTextLimit = 255;

    /// eAutomatic resolved for `text`; other modes as they are.
    static int ResolveMode(int mode, const std::string& text);
    /// The matching rows in row order. eNumeric needs `values` (one per row)
    /// and a valid expression, else nothing matches.
    static std::vector<int> FindMatches(int mode, const std::string& text, int rowCount,
                                        const std::function<std::string(int row)>& cellText, const float* values);
};

#include <KORVAutlwin/controls/FindAndSelectRules.h>

#include <KORVAutl/TsString.h>

#include <strings.h>

namespace {

// Keeps the first `limit` characters of UTF-8 text, never half a character.
void CutToCharacters(std::string& text, size_t limit)
{
    size_t characters = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        if ((static_cast<unsigned char>(text[at]) & 0xC0) != 0x80 && characters++ == limit) {
            text.resize(at);
            return;
        }
    }
}

} // namespace

int FindAndSelectRules::ResolveMode(int mode, const std::string& text)
{
    if (mode != eAutomatic)
        return mode;
    return text.find_first_of("*?") != std::string::npos ? eWildcard : eContains;
}

std::vector<int> FindAndSelectRules::FindMatches(int mode, const std::string& text, int rowCount,
                                                 const std::function<std::string(int row)>& cellText,
                                                 const float* values)
{
    std::vector<int> matches;
    mode = ResolveMode(mode, text);
    if (mode == eNumeric) {
        if (!values || !TsString::IsValidLimitExpression(text.c_str()))
            return matches;
        const char* expression = text.c_str();
        auto test = [&](int row) {
            if (TsString::EvaluateLimitExpression(expression, values[row]))
                matches.push_back(row);
        };
        // Four rows a turn: the vector may be long and the test is cheap.
        int row = 0;
        for (; row + 3 < rowCount; row += 4) {
            test(row);
            test(row + 1);
            test(row + 2);
            test(row + 3);
        }
        for (; row < rowCount; ++row)
            test(row);
        return matches;
    }
    std::string pattern = text;
    if (mode == eWildcard && pattern.find_first_of("*?") == std::string::npos)
        pattern += "*"; // plain typing matches a prefix
    for (int row = 0; row < rowCount; ++row) {
        std::string cell = cellText(row);
        if (cell.size() > kCellTextLimit)
            CutToCharacters(cell, kCellTextLimit);
        bool hit = false;
        switch (mode) {
        case eWildcard: hit = TsString::WildCardCompare(pattern.c_str(), cell.c_str(), false); break;
        case eContains: hit = tsstristr(cell.c_str(), text.c_str()) != nullptr; break;
        case eEquals: hit = strcasecmp(cell.c_str(), text.c_str()) == 0; break;
        default: break;
        }
        if (hit)
            matches.push_back(row);
    }
    return matches;
}

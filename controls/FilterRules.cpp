#include <KORVAutlwin/controls/FilterRules.h>

#include <KORVAutl/TsString.h>

#include <algorithm>
#include <cstring>

namespace {

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The test of tsstristr (a substring, ignoring ASCII case), made for one needle
// and a million short haystacks: the needle is lowered once.
class CaseInsensitiveFinder
{
public:
    explicit CaseInsensitiveFinder(const char* needle) : mNeedle(needle)
    {
        for (char& c : mNeedle) {
            mCaseless = mCaseless && !(c >= 'a' && c <= 'z') && !(c >= 'A' && c <= 'Z');
            c = LowerAscii(c);
        }
        if (!mNeedle.empty()) {
            mLower = mNeedle[0];
            mUpper = mLower >= 'a' && mLower <= 'z' ? static_cast<char>(mLower - 'a' + 'A') : mLower;
        }
    }

    bool Contains(const char* text) const
    {
        const size_t length = mNeedle.size();
        if (length == 0)
            return true;
        const char* needle = mNeedle.c_str();
        // Without letters case doesn't matter, and the C library's search is the fastest there is.
        if (mCaseless)
            return std::strstr(text, needle) != nullptr;
        for (const char* at = Next(text); at; at = Next(at + 1)) {
            size_t i = 1;
            while (i < length && LowerAscii(at[i]) == needle[i])
                ++i;
            if (i == length)
                return true;
            if (!at[i])
                return false; // what is left is shorter than the needle
        }
        return false;
    }

private:
    // The C library's vectorised search finds the candidates, in both cases of a letter.
    const char* Next(const char* from) const
    {
        if (mLower == mUpper)
            return std::strchr(from, mLower);
        // Two vectorised searches beat one search for a set of characters.
        const char* lower = std::strchr(from, mLower);
        const char* upper = std::strchr(from, mUpper);
        if (!lower || !upper)
            return lower ? lower : upper;
        return lower < upper ? lower : upper;
    }

    std::string mNeedle;
    bool mCaseless = true;
    char mLower = '\0';
    char mUpper = '\0';
};

} // namespace

void FilterRules::Filter(const FilterListItems& items, const char* text, unsigned int& initialItem,
                         std::vector<unsigned int>& visible)
{
    if (!text)
        text = "";
    const bool wildcard = std::strpbrk(text, "*?") != nullptr;
    const bool all = *text == '\0';
    const unsigned int count = items.GetItemCount();
    const CaseInsensitiveFinder finder(text);
    visible.clear();
    for (unsigned int i = 0; i < count; ++i) {
        bool show = all || i == initialItem;
        if (!show) {
            const char* item = items.GetItemText(i);
            show = wildcard ? TsString::WildCardCompare(text, item, false) : (item && finder.Contains(item));
        }
        if (show)
            visible.push_back(i);
    }
    initialItem = kNoItem;
}

void FilterRules::RememberFilter(std::vector<std::string>& filters, const std::string& text)
{
    if (text.empty())
        return;
    const auto found = std::find(filters.begin(), filters.end(), text);
    if (found != filters.end())
        filters.erase(found);
    filters.insert(filters.begin(), text);
    if (filters.size() > static_cast<size_t>(kMaxFilters))
        filters.resize(kMaxFilters);
}

std::string FilterRules::VisibleTitle(unsigned int visible, unsigned int total)
{
    return TsString::Format("%u of %u items visible", visible, total);
}

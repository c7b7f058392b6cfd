#include <KORVAutlwin/controls/FilterRules.h>

#include <KORVAutl/TsString.h>

#include <algorithm>
#include <cstring>

void FilterRules::Filter(const FilterListItems& items, const char* text, unsigned int& initialItem,
                         std::vector<unsigned int>& visible)
{
    if (!text)
        text = "";
    const bool wildcard = std::strpbrk(text, "*?") != nullptr;
    const bool all = *text == '\0';
    const unsigned int count = items.GetItemCount();
    visible.clear();
    for (unsigned int i = 0; i < count; ++i) {
        bool show = all || i == initialItem;
        if (!show) {
            const char* item = items.GetItemText(i);
            show = wildcard ? TsString::WildCardCompare(text, item, false) : tsstristr(item, text) != nullptr;
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

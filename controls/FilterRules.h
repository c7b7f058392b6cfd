#pragma once
// What the filter popup decides without a window: which items stay visible
// for a typed text, the remembered filters, and the stored size.

#include <KORVAutlwin/controls/FilterListItems.h>

#include <string>
#include <vector>

/// The filter popup's window-free rules: the visible items, the remembered filters, the stored size.
class FilterRules
{
public:
    /// The settings section and its keys.
    static constexpr const char* kSection = "PopupFilterListCtrl";
    static constexpr int kMaxFilters = 20;
    static constexpr int kMinWidth = 250;
    static constexpr int kMinHeight = 350;
    /// No item is the initial item.
    static constexpr unsigned int kNoItem = static_cast<unsigned int>(-1);

    /// Rebuilds `visible` in item order: an item stays if `text` is empty, if it
    /// passes the test (a substring ignoring case, or a wildcard pattern when
    /// the text holds "*" or "?"), or if it is `initialItem`, which is then
    /// forgotten, so that only the first pass keeps it.
    static void Filter(const FilterListItems& items, const char* text, unsigned int& initialItem,
                       std::vector<unsigned int>& visible);
    /// `text` goes to the front of `filters` (out of its old place if it was
    /// there); at most kMaxFilters are kept. An empty text changes nothing.
    static void RememberFilter(std::vector<std::string>& filters, const std::string& text);
    /// Stored sizes below the minimum are raised to it.
    static int ClampWidth(int width) { return width < kMinWidth ? kMinWidth : width; }
    static int ClampHeight(int height) { return height < kMinHeight ? kMinHeight : height; }
    static int ClampFilterCount(int count) { return count > kMaxFilters ? kMaxFilters : count; }
    /// The list's column title: "%u of %u items visible".
    static std::string VisibleTitle(unsigned int visible, unsigned int total);
};

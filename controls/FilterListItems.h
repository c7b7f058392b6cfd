#pragma once
// The source of the filter popup's rows.

/// The items a filter popup chooses from; item numbers run from 0 to count - 1.
class FilterListItems
{
public:
    virtual ~FilterListItems() = default;
    virtual unsigned int GetItemCount() const = 0;
    /// The text of item `i`, valid at least until the next call.
    virtual const char* GetItemText(unsigned int i) const = 0;
};

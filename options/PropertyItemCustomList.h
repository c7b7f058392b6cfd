#pragma once
// A list row whose entries the caller gives: by calling InitPropertyItemList
// with its own vector, or, in a derived class, by filling the vector that
// InitPropertyItemList is handed, the id telling which row asks.

#include <KORVAutlwin/options/PropertyItemList.h>

#include <vector>

/// A list row whose entries the caller supplies.
class PropertyItemCustomList : public PropertyItemList
{
public:
    PropertyItemCustomList(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItemCustomList(const char* name, unsigned int propertyId, const char* description);

    /// Before the first painting fills the entries through InitPropertyItemList(entries, property id).
    void DrawValue(QPainter* dc, QRect cell) override;
    /// The number of entries.
    unsigned int GetNumItems() override;
    /// Entry `index`; empty at or past the end.
    std::string GetItemData(unsigned int index) override;
    /// Assigns `list` to the entries. Called with the entries themselves it changes nothing.
    virtual void InitPropertyItemList(std::vector<std::string>& list, unsigned int id);

    using PropertyItemList::GetData;
    using PropertyItemList::SetData;
    /// Calls InitPropertyItemList(entries, 0), then stores `index`.
    void SetData(int index);
    /// Selects the entry equal to `text`. Text that matches none leaves the index
    /// at the number of entries, one past the last, so the row paints empty:
    /// that is how an unknown stored value shows.
    void SetSelectedData(const std::string& text);

protected:
    std::vector<std::string> mEntries;
    bool mInitialised = false;
};

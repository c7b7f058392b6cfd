#pragma once
/// \class FavouriteFolderItem
/// A folder of favourites. Treated as an item it acts as a leaf of the tree;
/// its empty-folder text is shown while it has no children, and its default
/// item type says which kind of item it collects.

#include <KORVAutlwin/favourites/FavouriteItem.h>

class FavouriteFolderItem : public FavouriteItem
{
public:
    /// `emptyFolderText` may be null (no text).
    FavouriteFolderItem(const char* name, const char* emptyFolderText);

    /// Base, then "TreatAsItem", "EmptyFolderText", "DefaultItemType".
    void Save(ConfigurationSection* section) const override;
    void Load(const ConfigurationSection* section) override;
    FavouriteItem* Copy() const override;
    /// "FavouritesFolder".
    std::string GetType() const override;
    bool IsGlobal() const override;

    bool GetTreatAsItem() const { return treatAsItem; }
    void SetTreatAsItem(bool treat) { treatAsItem = treat; }
    const std::string& GetEmptyFolderText() const { return emptyFolderText; }
    void SetEmptyFolderText(const char* text) { emptyFolderText = text ? text : ""; }
    const std::string& GetDefaultItemType() const { return defaultItemType; }
    void SetDefaultItemType(const char* itemType) { defaultItemType = itemType ? itemType : ""; }

private:
    // Only msPrototype is made this way; it enters itself in the builder.
    FavouriteFolderItem();

    bool treatAsItem = false;
    std::string emptyFolderText;
    std::string defaultItemType;

    static const FavouriteFolderItem msPrototype;
};

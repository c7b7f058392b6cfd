#pragma once
/// \class FavouriteItemHandle
/// Carries one item by value: it owns a copy of the item it was given. Its
/// Copy() and GetType() are those of the carried item; every other operation
/// is the base's.

#include <KORVAutlwin/favourites/FavouriteItem.h>

class FavouriteItemHandle : public FavouriteItem
{
public:
    FavouriteItemHandle() = default;
    /// Holds item.Copy().
    FavouriteItemHandle(const FavouriteItem& item);
    FavouriteItemHandle(const FavouriteItemHandle& other);
    /// Holds item.Copy(), deleting what was held.
    FavouriteItemHandle& operator=(const FavouriteItem& item);
    FavouriteItemHandle& operator=(const FavouriteItemHandle& other);
    ~FavouriteItemHandle() override;

    /// A copy of the held item, or null.
    FavouriteItem* Copy() const override;
    /// The held item's type, or empty.
    std::string GetType() const override;

    /// The held item, or null; it stays the handle's.
    FavouriteItem* GetItem() const { return item; }

private:
    FavouriteItem* item = nullptr;
};

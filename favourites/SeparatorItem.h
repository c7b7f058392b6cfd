#pragma once
/// \class SeparatorItem
/// The row that keeps collections apart in one tree. It is never saved,
/// copied or dragged, and the builder does not know it.

#include <KORVAutlwin/favourites/FavouriteItem.h>

class SeparatorItem : public FavouriteItem
{
public:
    SeparatorItem() = default;

    /// Nothing is written.
    void Save(ConfigurationSection* section) const override;
    /// Nothing is read.
    void Load(const ConfigurationSection* section) override;
    /// Null.
    FavouriteItem* Copy() const override;
    /// "SeparatorItem".
    std::string GetType() const override;
    /// False.
    bool IsDraggable() const override;
};

#include <KORVAutlwin/favourites/FavouriteBuilder.h>

#include <KORVAutlwin/favourites/FavouriteItem.h>

#include <KORVAutl/ConfigurationSection.h>

FavouriteBuilder& FavouriteBuilder::Instance()
{
    // Lives to process end: prototypes of other files' statics may still use it.
    static FavouriteBuilder* builder = new FavouriteBuilder;
    return *builder;
}

void FavouriteBuilder::Add(const std::string& type, const FavouriteItem* prototype)
{
    std::unique_ptr<FavouriteItem> copy(prototype ? prototype->Copy() : nullptr);
    if (copy)
        prototypes[type] = std::move(copy);
}

FavouriteItem* FavouriteBuilder::Load(ConfigurationSection* section) const
{
    std::string type;
    if (!section || !section->ReadKey("Type", type))
        return nullptr;
    const FavouriteItem* prototype = GetPrototype(type);
    if (!prototype)
        return nullptr;
    FavouriteItem* item = prototype->Copy();
    item->Load(section);
    return item;
}

const FavouriteItem* FavouriteBuilder::GetPrototype(const std::string& type) const
{
    const auto found = prototypes.find(type);
    return found == prototypes.end() ? nullptr : found->second.get();
}

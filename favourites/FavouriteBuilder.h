#pragma once
/// \class FavouriteBuilder
/// Recreates an item of the right class from its saved form. It knows one
/// prototype per type (compared with case): at start those of
/// FavouriteFolderItem, FavouriteFileItem and FavouriteCommandItem, and
/// whatever an application teaches it with Add.

#include <map>
#include <memory>
#include <string>

class ConfigurationSection;
class FavouriteItem;

class FavouriteBuilder
{
public:
    /// The one builder, made on first use.
    static FavouriteBuilder& Instance();

    /// Enters prototype->Copy() under `type`, replacing a prototype of that type.
    void Add(const std::string& type, const FavouriteItem* prototype);

    /// Reads "Type" and returns a copy of that type's prototype loaded from
    /// `section`, owned by the caller. Null when the key is missing or the
    /// type is unknown.
    FavouriteItem* Load(ConfigurationSection* section) const;

    /// The prototype of `type`, or null.
    const FavouriteItem* GetPrototype(const std::string& type) const;

private:
    FavouriteBuilder() = default;
    std::map<std::string, std::unique_ptr<FavouriteItem>> prototypes;
};

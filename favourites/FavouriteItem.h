#pragma once
/// \class FavouriteItem
/// One favourite of the user's tree: a document, a command, a folder. The
/// abstract base holds the type string (filled by Load) and the name; the
/// kinds add their own fields and know how to save, load, copy and open
/// themselves. Items need no window, except that Open and Enable of the file
/// and command kinds ask the running application (see FavouriteApplication).

#include <string>

class ConfigurationSection;
class QWidget;

class FavouriteItem
{
public:
    virtual ~FavouriteItem();

    /// Writes "Name" and "Type" (GetType()) into `section`.
    virtual void Save(ConfigurationSection* section) const;
    /// Reads "Name" and "Type"; a missing key leaves the field as it is.
    virtual void Load(const ConfigurationSection* section);
    /// A new copy of the item, owned by the caller; null for items that are never copied.
    virtual FavouriteItem* Copy() const = 0;
    /// The type under which FavouriteBuilder knows the class.
    virtual std::string GetType() const = 0;
    /// A global item may be moved between collections.
    virtual bool IsGlobal() const;
    virtual bool IsDraggable() const;
    /// Whether the item can be opened now.
    virtual bool Enable();
    /// Opens the item; the new child frame, or null.
    virtual QWidget* Open();
    /// The tip shown over the item's row: the name.
    virtual std::string GetToolTipText() const;

    const std::string& GetName() const { return name; }
    /// Stores `name` without white space at either end.
    void SetName(const char* name);

protected:
    FavouriteItem() = default;
    FavouriteItem(const FavouriteItem&) = default;
    FavouriteItem& operator=(const FavouriteItem&) = default;

    /// The type as last read by Load.
    std::string type;
    std::string name;
};

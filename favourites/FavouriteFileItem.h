#pragma once
/// \class FavouriteFileItem
/// A document to open. It is enabled while its file exists; opening a file
/// that has gone tells the user so.

#include <KORVAutlwin/favourites/FavouriteItem.h>

class FavouriteFileItem : public FavouriteItem
{
public:
    FavouriteFileItem(const char* name, const char* file);

    /// Base, then "File".
    void Save(ConfigurationSection* section) const override;
    void Load(const ConfigurationSection* section) override;
    FavouriteItem* Copy() const override;
    /// "FileItem".
    std::string GetType() const override;
    bool IsGlobal() const override;
    /// True when something exists at the path.
    bool Enable() override;
    /// Shows "The file has been moved or removed." for a path that has gone,
    /// else lets the application open the document. Always null.
    QWidget* Open() override;
    /// The file path.
    std::string GetToolTipText() const override;

    const std::string& GetFileName() const { return file; }

private:
    // Only msPrototype is made this way; it enters itself in the builder.
    FavouriteFileItem();

    std::string file;

    static const FavouriteFileItem msPrototype;
};

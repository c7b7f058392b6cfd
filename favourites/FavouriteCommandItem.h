#pragma once
/// \class FavouriteCommandItem
/// A command of the application. Its string resource holds a description, a
/// line feed and a tip; the tip is the item's default name.

#include <KORVAutlwin/favourites/FavouriteItem.h>

class FavouriteCommandItem : public FavouriteItem
{
public:
    /// The string resource shown when a command has none of its own.
    static constexpr unsigned int kFallbackNameId = 16130;

    FavouriteCommandItem(const char* name, unsigned int commandId);
    /// Named after the command's string resource: the text behind its first
    /// line feed, the whole text without one, resource 16130 when it is empty.
    explicit FavouriteCommandItem(unsigned int commandId);

    /// Base, then "CommandID".
    void Save(ConfigurationSection* section) const override;
    void Load(const ConfigurationSection* section) override;
    FavouriteItem* Copy() const override;
    /// "CommandItem".
    std::string GetType() const override;
    bool IsGlobal() const override;
    /// Whether the application's command routing enables the command; false
    /// without a running application.
    bool Enable() override;
    /// Runs the command (ids above 0) in the main window; the child frame that
    /// became active through it, else null.
    QWidget* Open() override;
    /// "name\n\ndescription" when the command's description is not empty and
    /// differs from the name ignoring case; else the name.
    std::string GetToolTipText() const override;

    int GetCommandID() const { return commandId; }

private:
    // Only msPrototype is made this way; it enters itself in the builder.
    FavouriteCommandItem();

    int commandId = 0;

    static const FavouriteCommandItem msPrototype;
};

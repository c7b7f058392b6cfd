#pragma once
// Turns an option description (categories and options, their types, defaults
// and limits) into property items, binds each item to a key of a settings
// section, validates edits, and saves. Needs no window: the page that shows the
// items is reached through XMLOptionsPageLink, which may be absent.

#include <KORVAutlwin/options/PropertyItemManager.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

class ConfigurationSection;
class XMLOptionValidator;
class XMLOptionsPropertyItemCustomList;

/// What a manager reaches of the page that shows its items.
class XMLOptionsPageLink
{
public:
    virtual ~XMLOptionsPageLink();
    /// An option was edited: arm the page's Apply.
    virtual void OnOptionChanged() = 0;
    /// Makes the page the active one of its sheet, if it is in one and is not active.
    virtual void ActivateOptionsPage() = 0;
    /// Shows the page's rows afresh, repainted at once.
    virtual void RefreshOptions() = 0;
};

/// One option of a description, kept per created item under its property id.
struct XMLOptionItemInfo
{
    std::string section;
    std::string key;
    std::string type;
    /// Index of the target section in the manager's section vector.
    int sectionIndex = 0;
    /// "Default", or what the defaults section gave, or empty.
    std::string defaultText;
    /// The parsed default, by type; 0 before parsing.
    union
    {
        int intValue;
        float floatValue;
        bool boolValue;
    } defaultValue{0};
    /// From "Validator"; may be empty.
    std::shared_ptr<XMLOptionValidator> validator;
};

/// The property items of an option description, bound to a settings section.
class XMLOptionsPropertyItemManager : public PropertyItemManager
{
public:
    /// Takes a copy of `settings`, from which values are read, and a copy of
    /// `description` (null: a second copy of `settings`), then Load(copy,
    /// description copy, defaults). `defaults` (may be null) is asked for
    /// options without "Default" and need only live during the call.
    XMLOptionsPropertyItemManager(const ConfigurationSection* settings, const ConfigurationSection* description,
                                  const ConfigurationSection* defaults);
    ~XMLOptionsPropertyItemManager() override;

    /// Tells the page (Changed), then validates `item`. A refused value still counts as a change.
    void OnDataChanged(PropertyItem* item, PropertyListCtrl* list, int index) override;
    /// Nothing.
    void OnInitManager(unsigned long param) override;
    /// Nothing.
    void OnManagerCommand(unsigned long param) override;

    /// Adds the categories and items of `description`, bound to `target` (not
    /// owned; appended to the section vector). Bad entries are skipped silently.
    virtual void Load(ConfigurationSection* target, const ConfigurationSection* description,
                      const ConfigurationSection* defaults);
    /// Writes every loadable value to its key in the bound sections (not flushed).
    virtual void SaveValues();
    /// Reads the values back from the private settings copy, where the type loads at all.
    virtual void LoadValues();
    /// True when `item` has no validator or passes it. Otherwise shows the
    /// message, resets the item to its default, refreshes the page, false.
    virtual bool ValidateItem(PropertyItem* item);
    /// ValidateItem on every item in order; false at the first failure.
    virtual bool ValidateAll();
    /// The items of one "PropertyCategory" section; `id` is the next property id.
    virtual void LoadItems(int sectionIndex, const ConfigurationSection* categorySection,
                           const ConfigurationSection* defaults, PropertyItemCategory* category, unsigned int& id);
    /// The validator of an item section's "Validator", or null.
    virtual XMLOptionValidator* CreateValidator(const ConfigurationSection* itemSection);
    /// The list item of an item section's "CustomList", or null when there is none.
    virtual XMLOptionsPropertyItemCustomList* CreateCustomList(const ConfigurationSection* itemSection,
                                                               const char* name, unsigned int id,
                                                               const char* description);

    /// Applies the default of `item` by its type; nothing when its default text is empty.
    void ResetItemToDefault(PropertyItem* item);
    /// ResetItemToDefault on every item.
    void ResetToDefaults();

    /// The record of property `id`, or null.
    const XMLOptionItemInfo* GetItemInfo(unsigned int id) const;
    /// The page that shows the items (not owned; null: none).
    void SetPage(XMLOptionsPageLink* page) { mPage = page; }
    XMLOptionsPageLink* GetPage() const { return mPage; }
    /// The description copy the items were made from.
    const ConfigurationSection* GetDescription() const { return mDescription.get(); }

    /// Shows the text of a refused value. The window layer installs its message
    /// box; without one the text goes to the application log.
    static void SetMessageBoxHook(std::function<void(const std::string&)> hook);

private:
    template <class Visit> void ForEachItem(Visit visit);
    // visit(item, info, section) with the section that openSection(info) gives.
    template <class Open, class Visit> void ForEachItemInSection(Open openSection, Visit visit);

    std::map<unsigned int, XMLOptionItemInfo> mItemInfos;
    std::vector<ConfigurationSection*> mSections;
    std::unique_ptr<ConfigurationSection> mSettings;
    XMLOptionsPageLink* mPage = nullptr;
    std::unique_ptr<ConfigurationSection> mDescription;
    static std::function<void(const std::string&)> msMessageBox;
};

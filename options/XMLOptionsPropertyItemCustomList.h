#pragma once
// A list row of an option description: each entry has a value, the text kept
// in the settings, and a name, the text shown.

#include <KORVAutlwin/options/PropertyItemCustomList.h>

#include <string>
#include <vector>

/// A list row whose entries (stored value, shown name) come from a "CustomList" description.
class XMLOptionsPropertyItemCustomList : public PropertyItemCustomList
{
public:
    XMLOptionsPropertyItemCustomList(const char* name, unsigned int propertyId, const char* description);

    /// Replaces `list` by the names, whatever the id.
    void InitPropertyItemList(std::vector<std::string>& list, unsigned int id) override;
    /// Selects the entry whose value equals `value` exactly; with none, index -1 (the row paints empty).
    virtual void SetSelectedValue(const std::string& value);
    /// The selected entry's value; empty with no selection.
    virtual void GetSelectedValue(std::string& value);

    /// Appends one entry.
    void AddEntry(const std::string& value, const std::string& name);
    const std::vector<std::string>& GetValues() const { return mValues; }
    const std::vector<std::string>& GetNames() const { return mNames; }

private:
    std::vector<std::string> mValues;
    std::vector<std::string> mNames;
};

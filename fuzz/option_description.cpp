// Option descriptions come from files beside an application and from its
// settings. Whatever a description holds, the manager skips what it cannot use,
// numbers its items 1, 2, 3 ... with a record each, and its values survive a
// save and a load: saving again writes the same document.

#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/XMLOptionsPropertyItemManager.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include "FuzzCheck.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace {

void CheckItems(const XMLOptionsPropertyItemManager& manager)
{
    unsigned int expected = 1;
    for (int index = 0; index < manager.GetNumCategories(); ++index)
        for (PropertyItem* item : *manager.GetPropertyCategory(index)) {
            Check(item->GetPropertyID() == expected++);
            Check(manager.GetItemInfo(item->GetPropertyID()) != nullptr);
        }
    Check(manager.GetItemInfo(expected) == nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::unique_ptr<XMLSection> description;
    try {
        XMLStringInputStream stream(reinterpret_cast<const char*>(data), size, "fuzz");
        description = std::make_unique<XMLSection>(&stream, false);
    } catch (const Exception&) {
        return 0;
    }
    XMLOptionsPropertyItemManager::SetMessageBoxHook([](const std::string&) {});

    // Bound to an empty store, with the description as its own defaults.
    XMLSection settings;
    {
        XMLOptionsPropertyItemManager manager(&settings, description.get(), description.get());
        CheckItems(manager);
        manager.ValidateAll();
        manager.SaveValues();
    }
    std::string first, second;
    Check(settings.Flush(first, false));
    {
        XMLOptionsPropertyItemManager manager(&settings, description.get(), description.get());
        CheckItems(manager);
        manager.LoadValues();
        manager.SaveValues();
    }
    Check(settings.Flush(second, false));
    Check(first == second);

    // The description read as the settings themselves.
    XMLOptionsPropertyItemManager self(description.get(), nullptr, nullptr);
    CheckItems(self);
    self.ResetToDefaults();
    self.SaveValues();
    self.LoadValues();
    return 0;
}

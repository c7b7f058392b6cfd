#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemColorPopup.h>
#include <KORVAutlwin/options/PropertyItemFilePath.h>
#include <KORVAutlwin/options/PropertyItemFloat.h>
#include <KORVAutlwin/options/PropertyItemFolderPath.h>
#include <KORVAutlwin/options/PropertyItemListEnabledDisabled.h>
#include <KORVAutlwin/options/PropertyItemListTrueFalse.h>
#include <KORVAutlwin/options/PropertyItemListYesNo.h>
#include <KORVAutlwin/options/PropertyItemNumber.h>
#include <KORVAutlwin/options/PropertyItemString.h>
#include <KORVAutlwin/options/XMLOptionFloatValidator.h>
#include <KORVAutlwin/options/XMLOptionNumberValidator.h>
#include <KORVAutlwin/options/XMLOptionsPropertyItemCustomList.h>
#include <KORVAutlwin/options/XMLOptionsPropertyItemManager.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/TsString.h>

namespace {

using Section = std::unique_ptr<ConfigurationSection>;

// The reader knows the type by this spelling; load, save and reset compare with
// "EnabledDisabled", so such an option is shown and edited but never stored.
constexpr const char* kEnabledDisabledReaderType = "EnabledDisbled";

bool TrueByDefault(const std::string& text, const char* word)
{
    return PropertyItemNumber::Atoi(text.c_str()) != 0 || text == word;
}

// The default's text parsed by the option's type; text types keep the text itself.
void ParseDefault(XMLOptionItemInfo& info)
{
    const std::string& text = info.defaultText;
    if (info.type == "Number" || info.type == "ColorPopup")
        info.defaultValue.intValue = PropertyItemNumber::Atoi(text.c_str());
    else if (info.type == "Float")
        info.defaultValue.floatValue = static_cast<float>(tsstrtod(text.c_str(), nullptr));
    else if (info.type == "YesNo")
        info.defaultValue.boolValue = TrueByDefault(text, "Yes");
    else if (info.type == "TrueFalse")
        info.defaultValue.boolValue = TrueByDefault(text, "True");
    else if (info.type == kEnabledDisabledReaderType)
        info.defaultValue.boolValue = TrueByDefault(text, "Enabled");
}

} // namespace

std::function<void(const std::string&)> XMLOptionsPropertyItemManager::msMessageBox;

XMLOptionsPageLink::~XMLOptionsPageLink() = default;

XMLOptionsPropertyItemManager::XMLOptionsPropertyItemManager(const ConfigurationSection* settings,
                                                             const ConfigurationSection* description,
                                                             const ConfigurationSection* defaults)
    : mSettings(settings->Copy()), mDescription(description ? description->Copy() : settings->Copy())
{
    Load(mSettings.get(), mDescription.get(), defaults);
}

XMLOptionsPropertyItemManager::~XMLOptionsPropertyItemManager() = default;

void XMLOptionsPropertyItemManager::SetMessageBoxHook(std::function<void(const std::string&)> hook)
{
    msMessageBox = std::move(hook);
}

void XMLOptionsPropertyItemManager::OnInitManager(unsigned long) {}

void XMLOptionsPropertyItemManager::OnManagerCommand(unsigned long) {}

template <class Visit> void XMLOptionsPropertyItemManager::ForEachItem(Visit visit)
{
    for (PropertyItemCategory* category : mCategories)
        for (PropertyItem* item : *category) {
            auto found = mItemInfos.find(item->GetPropertyID());
            if (found != mItemInfos.end())
                visit(item, found->second);
        }
}

// Items of one section follow each other, so the section is opened again only
// where it changes; the items whose section cannot be opened are passed over.
template <class Open, class Visit> void XMLOptionsPropertyItemManager::ForEachItemInSection(Open openSection,
                                                                                          Visit visit)
{
    std::string lastSection;
    bool first = true;
    Section open;
    ForEachItem([&](PropertyItem* item, const XMLOptionItemInfo& info) {
        if (first || info.section != lastSection) {
            open = openSection(info);
            lastSection = info.section;
            first = false;
        }
        if (open)
            visit(item, info, open.get());
    });
}

void XMLOptionsPropertyItemManager::Load(ConfigurationSection* target, const ConfigurationSection* description,
                                         const ConfigurationSection* defaults)
{
    const int sectionIndex = static_cast<int>(mSections.size());
    unsigned int id = 1;
    const int count = description->NumSubSections("PropertyCategory");
    for (int index = 1; index <= count; ++index) {
        Section categorySection(description->CopyAndChangeSubSection("PropertyCategory", index));
        if (!categorySection)
            continue;
        std::string shortDescription, longDescription;
        if (!categorySection->ReadKey("ShortDescription", shortDescription))
            continue;
        categorySection->ReadKey("LongDescription", longDescription);
        PropertyItemCategory* category =
            AddPropertyCategory(shortDescription.c_str(), longDescription.c_str(), true);
        LoadItems(sectionIndex, categorySection.get(), defaults, category, id);
    }
    mSections.push_back(target);
}

void XMLOptionsPropertyItemManager::LoadItems(int sectionIndex, const ConfigurationSection* categorySection,
                                              const ConfigurationSection* defaults, PropertyItemCategory* category,
                                              unsigned int& id)
{
    const int count = categorySection->NumSubSections("PropertyItem");
    for (int index = 1; index <= count; ++index) {
        Section itemSection(categorySection->CopyAndChangeSubSection("PropertyItem", index));
        if (!itemSection)
            continue;
        XMLOptionItemInfo info;
        if (!itemSection->ReadKey("Section", info.section) || !itemSection->ReadKey("Key", info.key) ||
            !itemSection->ReadKey("Type", info.type))
            continue;
        std::string name, description;
        itemSection->ReadKey("ShortDescription", name);
        if (name.empty())
            name = info.key;
        itemSection->ReadKey("LongDescription", description);

        bool hasDefault = itemSection->ReadKey("Default", info.defaultText);
        if (!hasDefault && defaults) {
            Section fallback(defaults->Copy());
            if (fallback->ChangeSubSection(info.section.c_str()))
                hasDefault = fallback->ReadKey(info.key.c_str(), info.defaultText) && !info.defaultText.empty();
            if (!hasDefault)
                info.defaultText.clear();
        }
        info.sectionIndex = sectionIndex;

        PropertyItem* item = nullptr;
        const char* caption = name.c_str();
        const char* details = description.c_str();
        const std::string& type = info.type;
        if (type == "Number")
            item = new PropertyItemNumber(caption, id, details);
        else if (type == "Float")
            item = new PropertyItemFloat(caption, id, details);
        else if (type == "ColorPopup")
            item = new PropertyItemColorPopup(caption, id, details);
        else if (type == "YesNo")
            item = new PropertyItemListYesNo(caption, id, details);
        else if (type == "TrueFalse")
            item = new PropertyItemListTrueFalse(caption, id, details);
        else if (type == kEnabledDisabledReaderType)
            item = new PropertyItemListEnabledDisabled(caption, id, details);
        else if (type == "String")
            item = new PropertyItemString(caption, id, details);
        else if (type == "FolderPath")
            item = new PropertyItemFolderPath(caption, id, details);
        else if (type == "FilePath")
            item = new PropertyItemFilePath(caption, id, details);
        else if (type == "CustomList")
            item = CreateCustomList(itemSection.get(), caption, id, details);
        if (hasDefault)
            ParseDefault(info);

        info.validator.reset(CreateValidator(itemSection.get()));
        if (item) {
            category->AddPropertyItem(item);
            mItemInfos[id] = std::move(info);
            ++id;
        }
    }
    ResetToDefaults();
    LoadValues();
}

XMLOptionValidator* XMLOptionsPropertyItemManager::CreateValidator(const ConfigurationSection* itemSection)
{
    Section section(itemSection->CopyAndChangeSubSection("Validator"));
    if (!section)
        return nullptr;
    std::string type;
    if (!section->ReadKey("Type", type))
        return nullptr;
    std::unique_ptr<XMLOptionValidator> validator;
    if (type == "Float")
        validator = std::make_unique<XMLOptionFloatValidator>();
    else if (type == "Number")
        validator = std::make_unique<XMLOptionNumberValidator>();
    else
        return nullptr;
    if (!validator->Load(section.get()))
        return nullptr;
    return validator.release();
}

XMLOptionsPropertyItemCustomList* XMLOptionsPropertyItemManager::CreateCustomList(
    const ConfigurationSection* itemSection, const char* name, unsigned int id, const char* description)
{
    Section section(itemSection->CopyAndChangeSubSection("CustomList"));
    if (!section)
        return nullptr;
    auto* item = new XMLOptionsPropertyItemCustomList(name, id, description);
    const int count = section->NumSubSections("Item");
    for (int index = 1; index <= count; ++index) {
        Section entry(section->CopyAndChangeSubSection("Item", index));
        std::string value, shown;
        if (entry && entry->ReadKey("Value", value) && entry->ReadKey("Name", shown))
            item->AddEntry(value, shown);
    }
    return item;
}

void XMLOptionsPropertyItemManager::LoadValues()
{
    auto openSection = [this](const XMLOptionItemInfo& info) {
        return Section(mSettings->CopyAndChangeSubSection(info.section.c_str()));
    };
    ForEachItemInSection(openSection, [](PropertyItem* item, const XMLOptionItemInfo& info, ConfigurationSection* open) {
        const char* key = info.key.c_str();
        const std::string& type = info.type;
        if (type == "Number") {
            int value = 0;
            if (open->ReadInt(key, value))
                static_cast<PropertyItemNumber*>(item)->SetData(value);
        } else if (type == "Float") {
            float value = 0.0f;
            if (open->ReadFloat(key, value))
                static_cast<PropertyItemFloat*>(item)->SetData(value);
        } else if (type == "ColorPopup") {
            int value = 0;
            if (open->ReadInt(key, value))
                static_cast<PropertyItemColorPopup*>(item)->SetData(static_cast<COLORREF>(value));
        } else if (type == "YesNo" || type == "TrueFalse" || type == "EnabledDisabled") {
            int value = 0;
            if (open->ReadInt(key, value))
                static_cast<PropertyItemList*>(item)->SetData(value != 0 ? 1 : 0);
        } else if (type == "String") {
            // Written but not read back: the page shows the default text again.
            static_cast<PropertyItemString*>(item)->SetData(info.defaultText);
        } else if (type == "CustomList") {
            std::string value;
            if (open->ReadKey(key, value))
                static_cast<XMLOptionsPropertyItemCustomList*>(item)->SetSelectedValue(value);
        }
        // "FolderPath" and "FilePath" keep what the reset gave them.
    });
}

void XMLOptionsPropertyItemManager::SaveValues()
{
    // Into the bound section of the item's description, made when it is missing.
    auto openSection = [this](const XMLOptionItemInfo& info) {
        ConfigurationSection* bound = mSections.at(static_cast<size_t>(info.sectionIndex));
        Section open(bound->Copy());
        if (!open->ChangeSubSection(info.section.c_str()))
            open.reset(bound->CreateSubSection(info.section.c_str()));
        return open;
    };
    ForEachItemInSection(openSection, [](PropertyItem* item, const XMLOptionItemInfo& info, ConfigurationSection* open) {
        const char* key = info.key.c_str();
        const std::string& type = info.type;
        if (type == "Number") {
            int value = 0;
            static_cast<PropertyItemNumber*>(item)->GetData(value);
            open->WriteInt(key, value);
        } else if (type == "Float") {
            float value = 0.0f;
            static_cast<PropertyItemFloat*>(item)->GetData(value);
            open->WriteFloat(key, static_cast<double>(value));
        } else if (type == "ColorPopup") {
            COLORREF value = 0;
            static_cast<PropertyItemColorPopup*>(item)->GetData(value);
            open->WriteInt(key, static_cast<int>(value));
        } else if (type == "YesNo" || type == "TrueFalse" || type == "EnabledDisabled") {
            int value = 0;
            static_cast<PropertyItemList*>(item)->GetData(value);
            open->WriteInt(key, value);
        } else if (type == "String" || type == "FolderPath" || type == "FilePath") {
            // The path rows keep their text as the string row does.
            std::string value;
            static_cast<PropertyItemString*>(item)->GetData(value);
            open->WriteKey(key, value);
        } else if (type == "CustomList") {
            std::string value;
            static_cast<XMLOptionsPropertyItemCustomList*>(item)->GetSelectedValue(value);
            if (!value.empty())
                open->WriteKey(key, value);
        }
    });
}

void XMLOptionsPropertyItemManager::ResetItemToDefault(PropertyItem* item)
{
    if (!item)
        return;
    auto found = mItemInfos.find(item->GetPropertyID());
    if (found == mItemInfos.end())
        return;
    const XMLOptionItemInfo& info = found->second;
    if (info.defaultText.empty())
        return;
    const std::string& type = info.type;
    if (type == "Number")
        static_cast<PropertyItemNumber*>(item)->SetData(info.defaultValue.intValue);
    else if (type == "Float")
        static_cast<PropertyItemFloat*>(item)->SetData(info.defaultValue.floatValue);
    else if (type == "ColorPopup")
        static_cast<PropertyItemColorPopup*>(item)->SetData(static_cast<COLORREF>(info.defaultValue.intValue));
    else if (type == "YesNo" || type == "TrueFalse")
        static_cast<PropertyItemList*>(item)->SetData(info.defaultValue.boolValue ? 1 : 0);
    else if (type == "CustomList")
        static_cast<XMLOptionsPropertyItemCustomList*>(item)->SetSelectedValue(info.defaultText);
    else if (type == "String" || type == "FolderPath" || type == "FilePath")
        static_cast<PropertyItemString*>(item)->SetData(info.defaultText);
}

void XMLOptionsPropertyItemManager::ResetToDefaults()
{
    ForEachItem([this](PropertyItem* item, const XMLOptionItemInfo&) { ResetItemToDefault(item); });
}

bool XMLOptionsPropertyItemManager::ValidateItem(PropertyItem* item)
{
    if (!item)
        return true;
    auto found = mItemInfos.find(item->GetPropertyID());
    if (found == mItemInfos.end() || !found->second.validator)
        return true;
    XMLOptionValidator& validator = *found->second.validator;
    if (validator.IsValid(item))
        return true;
    std::string message = validator.GetErrorMessage(item);
    if (mPage)
        mPage->ActivateOptionsPage();
    if (!message.empty()) {
        message += " The value will be reset to default.";
        if (msMessageBox)
            msMessageBox(message);
        else
            Log::WriteMessage("XMLOptionsPropertyItemManager", "ValidateItem", message.c_str(), 4, false);
    }
    ResetItemToDefault(item);
    if (mPage)
        mPage->RefreshOptions();
    return false;
}

bool XMLOptionsPropertyItemManager::ValidateAll()
{
    bool valid = true;
    for (PropertyItemCategory* category : mCategories) {
        for (PropertyItem* item : *category)
            if (!ValidateItem(item)) {
                valid = false;
                break;
            }
        if (!valid)
            break;
    }
    return valid;
}

void XMLOptionsPropertyItemManager::OnDataChanged(PropertyItem* item, PropertyListCtrl*, int)
{
    if (mPage)
        mPage->OnOptionChanged();
    ValidateItem(item);
}

const XMLOptionItemInfo* XMLOptionsPropertyItemManager::GetItemInfo(unsigned int id) const
{
    auto found = mItemInfos.find(id);
    return found == mItemInfos.end() ? nullptr : &found->second;
}

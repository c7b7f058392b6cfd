// Option descriptions to items, items to the store and back, validators, and
// the helper that counts changed pages; all without a window.
#include <KORVAutlwin/options/BasePropertyPageHelper.h>
#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemColorPopup.h>
#include <KORVAutlwin/options/PropertyItemFilePath.h>
#include <KORVAutlwin/options/PropertyItemFloat.h>
#include <KORVAutlwin/options/PropertyItemFolderPath.h>
#include <KORVAutlwin/options/PropertyItemNumber.h>
#include <KORVAutlwin/options/PropertyItemString.h>
#include <KORVAutlwin/options/PropertyPageListener.h>
#include <KORVAutlwin/options/XMLOptionsPropertyItemCustomList.h>
#include <KORVAutlwin/options/XMLOptionsPropertyItemManager.h>

#include <KORVAutl/TsString.h>
#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

std::unique_ptr<XMLSection> Parse(const std::string& text)
{
    XMLStringInputStream stream(text);
    return std::make_unique<XMLSection>(&stream, false);
}

std::string Item(const std::string& type, const std::string& extra)
{
    return "<PropertyItem Section=\"S\" Key=\"K\" Type=\"" + type + "\" ShortDescription=\"Caption\"" + extra + "</PropertyItem>";
}

std::string Describe(const std::string& items)
{
    return "<Tessmark><PropertyCategory ShortDescription=\"C\">" + items + "</PropertyCategory></Tessmark>";
}

// The item's value as text, whatever its class.
std::string ValueText(PropertyItem* item)
{
    if (auto* list = dynamic_cast<XMLOptionsPropertyItemCustomList*>(item)) {
        std::string value;
        list->GetSelectedValue(value);
        return value;
    }
    if (auto* list = dynamic_cast<PropertyItemList*>(item)) {
        int value = 0;
        list->GetData(value);
        return std::to_string(value);
    }
    if (auto* number = dynamic_cast<PropertyItemNumber*>(item))
        return number->GetValueText();
    if (auto* real = dynamic_cast<PropertyItemFloat*>(item))
        return real->GetValueText();
    if (auto* colour = dynamic_cast<PropertyItemColorPopup*>(item)) {
        COLORREF value = 0;
        colour->GetData(value);
        return std::to_string(value);
    }
    std::string text;
    if (auto* string = dynamic_cast<PropertyItemString*>(item))
        string->GetData(text);
    if (auto* folder = dynamic_cast<PropertyItemFolderPath*>(item))
        folder->GetData(text);
    if (auto* file = dynamic_cast<PropertyItemFilePath*>(item))
        file->GetData(text);
    return text;
}

PropertyItem* FirstItem(const PropertyItemManager& manager)
{
    PropertyItemCategory* category = manager.GetPropertyCategory(0);
    return category && category->GetNumItems() > 0 ? *category->begin() : nullptr;
}

} // namespace

TEST(XMLOptionsPropertyItemManager, TypesLoadSaveAndResetByTheTable)
{
    struct Row
    {
        const char* type;
        const char* extra; // attributes closing the item's start tag, and children
        const char* stored; // "S"/"K" in the settings before, or null
        const char* shown;  // the value after construction; null: no item at all
        const char* saved;  // "S"/"K" after SaveValues; null: no key
    };
    const char* ab = " Default=\"b\"><CustomList><Item Value=\"a\" Name=\"A\"/><Item Value=\"b\" Name=\"B\"/></CustomList>";
    const Row rows[] = {
        {"Number", " Default=\"5\">", "12", "12", "12"},
        {"Number", " Default=\"5\">", nullptr, "5", "5"},
        {"Float", " Default=\"2.5\">", "0.25", "0.25", "0.25"},
        {"Float", " Default=\"2.5\">", nullptr, "2.5", "2.5"},
        {"ColorPopup", " Default=\"255\">", "65280", "65280", "65280"},
        {"YesNo", " Default=\"Yes\">", nullptr, "1", "1"},
        {"YesNo", " Default=\"1\">", nullptr, "1", "1"},
        {"YesNo", " Default=\"yes\">", nullptr, "0", "0"},
        {"YesNo", " Default=\"Yes\">", "0", "0", "0"},
        {"TrueFalse", " Default=\"True\">", "7", "1", "1"},
        {"TrueFalse", " Default=\"Yes\">", nullptr, "0", "0"},
        // Known by the reader only in this spelling, and then neither loaded nor saved.
        {"EnabledDisbled", " Default=\"Enabled\">", "1", "0", "1"},
        {"EnabledDisbled", " Default=\"Enabled\">", nullptr, "0", nullptr},
        {"EnabledDisabled", " Default=\"Enabled\">", nullptr, nullptr, nullptr},
        // Text types are written, but the next page shows the default again.
        {"String", " Default=\"abc\">", "xyz", "abc", "abc"},
        {"FolderPath", " Default=\"/data\">", "/other", "/data", "/data"},
        {"FilePath", ">", "/f.txt", "", ""},
        {"CustomList", ab, nullptr, "b", "b"},
        {"CustomList", ab, "a", "a", "a"},
        // An unknown stored value paints empty, and the key stays as it was.
        {"CustomList", ab, "zz", "", "zz"},
        {"CustomList", " Default=\"b\">", nullptr, nullptr, nullptr},
        {"Bogus", " Default=\"1\">", nullptr, nullptr, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.type) + (row.stored ? std::string(" stored ") + row.stored : ""));
        auto settings = Parse(row.stored ? std::string("<Tessmark><S K=\"") + row.stored + "\"/></Tessmark>"
                                         : std::string("<Tessmark/>"));
        auto description = Parse(Describe(Item(row.type, row.extra)));
        XMLOptionsPropertyItemManager manager(settings.get(), description.get(), nullptr);
        PropertyItem* item = FirstItem(manager);
        ASSERT_EQ(item != nullptr, row.shown != nullptr);
        if (!item)
            continue;
        EXPECT_EQ(ValueText(item), row.shown);
        manager.SaveValues();
        std::unique_ptr<ConfigurationSection> saved(settings->CopyAndChangeSubSection("S"));
        std::string text;
        const bool has = saved && saved->ReadKey("K", text);
        EXPECT_EQ(has, row.saved != nullptr);
        if (has && row.saved) {
            EXPECT_EQ(text, row.saved);
        }
    }
}

TEST(XMLOptionsPropertyItemManager, BadEntriesAreSkippedSilentlyAndIdsRunInDocumentOrder)
{
    struct Row
    {
        const char* name;
        const char* body; // inside <Tessmark>
        std::vector<std::string> captions; // "|" before each category's caption
    };
    const Row rows[] = {
        {"nothing", "", {}},
        {"no caption skips the category and its items",
         "<PropertyCategory><PropertyItem Section='S' Key='K' Type='Number'/></PropertyCategory>", {}},
        {"an empty caption is present", "<PropertyCategory ShortDescription=''/>", {"|"}},
        {"missing keys and unknown types",
         "<PropertyCategory ShortDescription='C'>"
         "<PropertyItem Key='K' Type='Number'/><PropertyItem Section='S' Type='Number'/>"
         "<PropertyItem Section='S' Key='K'/><PropertyItem Section='S' Key='K' Type='number'/>"
         "<PropertyItem Section='S' Key='Last' Type='String'/></PropertyCategory>",
         {"|C", "Last:1"}},
        {"ids across categories",
         "<PropertyCategory ShortDescription='A'><PropertyItem Section='S' Key='a' Type='Number' ShortDescription='One'/></PropertyCategory>"
         "<PropertyCategory ShortDescription='B'><PropertyItem Section='T' Key='b' Type='YesNo' ShortDescription=''/>"
         "<PropertyItem Section='T' Key='c' Type='CustomList'><CustomList/></PropertyItem></PropertyCategory>",
         {"|A", "One:1", "|B", "b:2", "c:3"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        auto settings = Parse("<Tessmark/>");
        auto description = Parse(std::string("<Tessmark>") + row.body + "</Tessmark>");
        XMLOptionsPropertyItemManager manager(settings.get(), description.get(), nullptr);
        std::vector<std::string> captions;
        for (int index = 0; index < manager.GetNumCategories(); ++index) {
            PropertyItemCategory* category = manager.GetPropertyCategory(index);
            EXPECT_TRUE(category->GetChildrenVisible());
            captions.push_back(std::string("|") + category->GetName());
            for (PropertyItem* item : *category)
                captions.push_back(std::string(item->GetName()) + ":" + std::to_string(item->GetPropertyID()));
        }
        EXPECT_EQ(captions, row.captions);
    }
}

TEST(XMLOptionsPropertyItemManager, ValidatorsRefuseWithTheirMessageAndResetToTheDefault)
{
    struct Row
    {
        const char* type;
        const char* validator; // the "Validator" element's attributes
        const char* value;     // typed into the item
        bool valid;
        const char* message;   // shown; "" none
        const char* after;     // the item's value afterwards
    };
    const Row rows[] = {
        {"Number", "Type='Number' Min='0'", "-1", false,
         "The value should be greater than 0. The value will be reset to default.", "3"},
        {"Number", "Type='Number' Min='0'", "0", true, "", "0"},
        {"Number", "Type='Number' Min='1' Max='10'", "11", false,
         "The value should be between 1 and 10. The value will be reset to default.", "3"},
        {"Number", "Type='Number' Min='1' Max='10'", "10", true, "", "10"},
        {"Number", "Type='Number' Max='5'", "6", false,
         "The value should be lower than 5. The value will be reset to default.", "3"},
        {"Number", "Type='Number' Min='x' Max='y'", "-99", true, "", "-99"},
        {"Number", "Min='0'", "-99", true, "", "-99"},
        {"Number", "Type='Integer' Min='0'", "-99", true, "", "-99"},
        {"Float", "Type='Float' Min='0.5'", "0.25", false,
         "The value should be greater than 0.5. The value will be reset to default.", "3"},
        {"Float", "Type='Float' Min='0.5' Max='4.5'", "5", false,
         "The value should be between 0.5 and 4.5. The value will be reset to default.", "3"},
        {"Float", "Type='Float' Min='0.5' Max='1.5'", "nan", true, "", "nan"},
        // A validator of the other class refuses every value.
        {"Float", "Type='Number' Min='0'", "1", false,
         "The value should be greater than 0. The value will be reset to default.", "3"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.validator) + " " + row.value);
        auto settings = Parse("<Tessmark/>");
        auto description = Parse(Describe(Item(row.type, std::string(" Default='3'><Validator ") + row.validator + "/>")));
        XMLOptionsPropertyItemManager manager(settings.get(), description.get(), nullptr);
        std::vector<std::string> shown;
        XMLOptionsPropertyItemManager::SetMessageBoxHook([&](const std::string& text) { shown.push_back(text); });
        PropertyItem* item = FirstItem(manager);
        ASSERT_NE(item, nullptr);
        if (auto* number = dynamic_cast<PropertyItemNumber*>(item))
            number->SetData(PropertyItemNumber::Atoi(row.value));
        else
            static_cast<PropertyItemFloat*>(item)->AcceptText(row.value);
        EXPECT_EQ(manager.ValidateItem(item), row.valid);
        EXPECT_EQ(shown, row.message[0] ? std::vector<std::string>{row.message} : std::vector<std::string>{});
        EXPECT_EQ(ValueText(item), row.after);
        const bool otherClass = std::string(row.type) == "Float" && std::string(row.validator).find("'Number'") != std::string::npos;
        EXPECT_EQ(manager.ValidateAll(), !otherClass); // after the reset
        XMLOptionsPropertyItemManager::SetMessageBoxHook(nullptr);
    }
}

TEST(XMLOptionsPropertyItemManager, DefaultsSectionServesOptionsWithoutDefaultAndRefusedValuesStayWithout)
{
    auto settings = Parse("<Tessmark/>");
    auto defaults = Parse("<Tessmark><S K='42' E=''/></Tessmark>");
    auto description = Parse(Describe(
        "<PropertyItem Section='S' Key='K' Type='Number'><Validator Type='Number' Max='50'/></PropertyItem>"
        "<PropertyItem Section='S' Key='E' Type='Number'><Validator Type='Number' Max='50'/></PropertyItem>"));
    XMLOptionsPropertyItemManager manager(settings.get(), description.get(), defaults.get());
    XMLOptionsPropertyItemManager::SetMessageBoxHook([](const std::string&) {});
    PropertyItemCategory* category = manager.GetPropertyCategory(0);
    ASSERT_EQ(category->GetNumItems(), 2u);
    auto* withDefault = static_cast<PropertyItemNumber*>(*category->begin());
    auto* without = static_cast<PropertyItemNumber*>(*(category->begin() + 1));
    EXPECT_EQ(manager.GetItemInfo(1)->defaultText, "42");
    EXPECT_EQ(manager.GetItemInfo(2)->defaultText, "");
    EXPECT_EQ(withDefault->GetValueText(), "42");
    withDefault->SetData(99);
    without->SetData(99);
    EXPECT_FALSE(manager.ValidateItem(withDefault));
    EXPECT_FALSE(manager.ValidateItem(without));
    EXPECT_EQ(withDefault->GetValueText(), "42");
    EXPECT_EQ(without->GetValueText(), "99");
    XMLOptionsPropertyItemManager::SetMessageBoxHook(nullptr);
}

namespace {

struct CountingListener : PropertyPageListener
{
    int updates = 0;
    int disconnects = 0;
    bool ignore = false;
    std::function<void()> during;
    void ListenerUpdate() override
    {
        ++updates;
        if (during)
            during();
    }
    void OnDisconnect() override { ++disconnects; }
    bool IsIgnoreListenerUpdates() const override { return ignore; }
};

} // namespace

TEST(BasePropertyPageHelper, ListenersHearUpdatesExceptTheirOwnAndLeaveCleanly)
{
    auto helper = std::make_unique<BasePropertyPageHelper>(7);
    helper->RemoveUpdate();
    EXPECT_EQ(helper->Connected(), 0);
    helper->AddUpdate();
    EXPECT_TRUE(helper->IsChanged());

    CountingListener a, b, ignoring, leaving;
    ignoring.ignore = true;
    a.Connect(helper.get());
    a.Connect(helper.get());
    b.Connect(helper.get());
    ignoring.Connect(helper.get());
    leaving.Connect(helper.get());
    leaving.during = [&] { leaving.Disconnect(false); };
    EXPECT_EQ(helper->GetListeners().size(), 4u);

    EXPECT_TRUE(a.UpdateHelper());
    EXPECT_EQ(a.updates, 0);
    EXPECT_EQ(b.updates, 1);
    EXPECT_EQ(ignoring.updates, 0);
    EXPECT_EQ(leaving.updates, 1);
    EXPECT_FALSE(leaving.IsConnected());
    EXPECT_EQ(helper->GetListeners().size(), 3u);

    {
        CountingListener brief;
        brief.Connect(helper.get());
    }
    EXPECT_EQ(helper->GetListeners().size(), 3u);
    helper.reset();
    EXPECT_FALSE(a.IsConnected());
    EXPECT_EQ(a.disconnects + b.disconnects + ignoring.disconnects + leaving.disconnects, 3);
}

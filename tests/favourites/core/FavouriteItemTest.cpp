#include <KORVAutlwin/favourites/FavouriteBuilder.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouriteItemHandle.h>
#include <KORVAutlwin/favourites/SeparatorItem.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

std::unique_ptr<FavouriteItem> RoundTrip(const FavouriteItem& item)
{
    XMLSection section;
    item.Save(&section);
    return std::unique_ptr<FavouriteItem>(FavouriteBuilder::Instance().Load(&section));
}

} // namespace

TEST(FavouriteItem, EachKindComesBackFromItsSavedForm)
{
    FavouriteFolderItem folder(" Spectra ", "Drop files here");
    folder.SetTreatAsItem(true);
    folder.SetDefaultItemType("FileItem");
    const FavouriteFileItem file("Wheat", "/data/wheat.tsx");
    const FavouriteCommandItem command("Fit", 32771);

    const auto folderBack = RoundTrip(folder);
    const auto* f = dynamic_cast<FavouriteFolderItem*>(folderBack.get());
    ASSERT_TRUE(f);
    EXPECT_EQ(f->GetName(), "Spectra");
    EXPECT_TRUE(f->GetTreatAsItem());
    EXPECT_EQ(f->GetEmptyFolderText(), "Drop files here");
    EXPECT_EQ(f->GetDefaultItemType(), "FileItem");

    const auto fileBack = RoundTrip(file);
    auto* d = dynamic_cast<FavouriteFileItem*>(fileBack.get());
    ASSERT_TRUE(d);
    EXPECT_EQ(d->GetFileName(), "/data/wheat.tsx");
    EXPECT_EQ(d->GetToolTipText(), "/data/wheat.tsx");
    EXPECT_FALSE(d->Enable()) << "the file does not exist";

    const auto commandBack = RoundTrip(command);
    const auto* c = dynamic_cast<FavouriteCommandItem*>(commandBack.get());
    ASSERT_TRUE(c);
    EXPECT_EQ(c->GetName(), "Fit");
    EXPECT_EQ(c->GetCommandID(), 32771);
}

TEST(FavouriteItem, BuilderRefusesWhatItDoesNotKnow)
{
    const struct
    {
        const char* type;
    } rows[] = {{nullptr}, {"SeparatorItem"}, {"fileitem"}, {"RootItem"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type ? row.type : "no Type");
        XMLSection section;
        section.WriteKey("Name", "x");
        if (row.type)
            section.WriteKey("Type", row.type);
        EXPECT_EQ(FavouriteBuilder::Instance().Load(&section), nullptr);
    }
    XMLSection missing;
    missing.WriteKey("Type", "CommandItem");
    const std::unique_ptr<FavouriteItem> command(FavouriteBuilder::Instance().Load(&missing));
    ASSERT_TRUE(command);
    EXPECT_EQ(static_cast<FavouriteCommandItem*>(command.get())->GetCommandID(), 0);
}

TEST(FavouriteItem, AddTwiceKeepsTheSecondPrototype)
{
    FavouriteBuilder& builder = FavouriteBuilder::Instance();
    const FavouriteFileItem first("first", "/a");
    const FavouriteFileItem second("second", "/b");
    builder.Add("MyItem", &first);
    builder.Add("MyItem", &second);
    XMLSection section;
    section.WriteKey("Type", "MyItem");
    const std::unique_ptr<FavouriteItem> item(builder.Load(&section));
    ASSERT_TRUE(item);
    EXPECT_EQ(static_cast<FavouriteFileItem*>(item.get())->GetFileName(), "/b");
}

TEST(FavouriteItem, HandleCarriesACopy)
{
    FavouriteItemHandle empty;
    EXPECT_EQ(empty.Copy(), nullptr);
    EXPECT_EQ(empty.GetType(), "");

    auto* file = new FavouriteFileItem("Wheat", "/data/wheat.tsx");
    FavouriteItemHandle handle(*file);
    delete file;
    FavouriteItemHandle copy(handle);
    handle = FavouriteCommandItem("Fit", 5);
    EXPECT_EQ(handle.GetType(), "CommandItem");
    const std::unique_ptr<FavouriteItem> held(copy.Copy());
    ASSERT_TRUE(held);
    EXPECT_EQ(held->GetType(), "FileItem");

    const SeparatorItem separator;
    EXPECT_EQ(separator.Copy(), nullptr);
    EXPECT_FALSE(separator.IsDraggable());
}

TEST(FavouriteItem, CommandNameAndTipComeFromItsString)
{
    const korva::StringEntry strings[] = {
        {34940, "Fit a model\nFit"},   {34941, "Fit\nfit"}, {34942, "Plain text"},
        {34943, "\nTip only"},         {16130, "Command"},
    };
    korva::ResourceModule module("test", strings, std::size(strings), nullptr, 0);
    const korva::ResourceModule* previous = LanguageString::SetModule(&module);
    const struct
    {
        unsigned int id;
        const char* name;
        const char* tip;
    } rows[] = {
        {34940, "Fit", "Fit\n\nFit a model"}, {34941, "fit", "fit"}, {34942, "Plain text", "Plain text"},
        {34943, "Tip only", "Tip only"},      {34949, "Command", "Command"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.id);
        const FavouriteCommandItem item(row.id);
        EXPECT_EQ(item.GetName(), row.name);
        EXPECT_EQ(item.GetToolTipText(), row.tip);
    }
    LanguageString::SetModule(previous);
}

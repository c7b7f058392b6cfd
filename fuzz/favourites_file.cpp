// Favourites files come from users and from other machines. Whatever
// XMLSection accepts, the favourites reader must turn into a well-formed tree
// (each row one level below its parent, every row with its item), and what it
// read must write out and read back as the same tree.

#include <KORVAutlwin/favourites/FavouriteItem.h>
#include <KORVAutlwin/favourites/FavouritesDocument.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include "FuzzCheck.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace {

std::string Describe(const FavouritesDocument& tree)
{
    std::string text;
    for (FavouriteRow* row = tree.GetRootItem(); row; row = tree.GetNextItem(row)) {
        const FavouriteItem* item = tree.GetFavouriteItem(row);
        Check(item);
        FavouriteRow* parent = tree.GetParentItem(row);
        Check(tree.GetIndentLevel(row) == (parent ? tree.GetIndentLevel(parent) + 1 : 0));
        text += std::to_string(tree.GetIndentLevel(row)) + '\t' + item->GetType() + '\t' + tree.GetItemText(row) +
                '\t' + std::to_string(tree.GetItemStyle(row)) + '\n';
    }
    return text;
}

// Writes the tree's rows into a new document and reads them into a new tree.
std::string Reread(FavouritesManager& manager, FavouritesDocument& tree, FavouritesDocument& into)
{
    XMLSection saved;
    manager.SetFavouritesTree(&tree);
    manager.SaveFavouriteNode(&saved, 1);
    into.SetFavouritesManager(&manager);
    manager.LoadFavouriteNode(&saved, 1);
    return Describe(into);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::unique_ptr<XMLSection> section;
    try {
        XMLStringInputStream stream(reinterpret_cast<const char*>(data), size, "favourites");
        section = std::make_unique<XMLSection>(&stream, true);
    } catch (const Exception&) {
        return 0;
    }
    static FavouritesManager manager;
    FavouritesDocument first;
    first.SetFavouritesManager(&manager);
    const int entries = section->HasSection("Favourites", -1)
                            ? std::unique_ptr<ConfigurationSection>(section->CopyAndChangeSubSection("Favourites"))
                                  ->NumSubSections("FavouriteItem")
                            : section->NumSubSections("FavouriteItem");
    manager.LoadFavouriteNode(section.get(), 1);
    Describe(first);
    Check(first.GetCount() <= entries);

    // Names are trimmed on writing: from the second reading on nothing changes.
    FavouritesDocument second;
    FavouritesDocument third;
    const std::string once = Reread(manager, first, second);
    Check(second.GetCount() == first.GetCount());
    Check(Reread(manager, second, third) == once);
    manager.SetFavouritesTree(nullptr);
    return 0;
}

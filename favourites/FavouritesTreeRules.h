#pragma once
/// \class FavouritesTreeRules
/// The rules of the visible favourites tree that need no window: where a
/// dragged row may go, the name of a new folder, the length of a tool tip and
/// what opening a selection opens. They work on any FavouritesTreeRows, so the
/// in-memory document answers them as the tree control does.

#include <KORVAutlwin/favourites/FavouritesTreeRows.h>

#include <string>
#include <vector>

class FavouritesTreeRules
{
public:
    /// Characters of a tool tip; longer texts are cut.
    static constexpr std::size_t kToolTipLength = 1024;
    /// Characters of a row's name while it is renamed.
    static constexpr int kLabelLimit = 127;

    /// Where `dragged` goes when it is dropped on `target`: null when it may not
    /// go there. `asChild` tells whether it goes into the returned row (an
    /// expanded or empty folder) or behind it.
    static FavouriteRow* GetDropTarget(const FavouritesTreeRows& rows, FavouriteRow* dragged, FavouriteRow* target,
                                       bool& asChild);
    /// Whether `row` may start a drag: it has a node whose item may be dragged.
    static bool IsDropSource(const FavouritesTreeRows& rows, FavouriteRow* row);
    /// The name of a new folder: text 16136, or while a row has that name text
    /// 16137 with 2, 3 ... until no row has it.
    static std::string NewFolderName(const FavouritesTreeRows& rows);
    /// `text` cut to kToolTipLength characters (not bytes).
    static std::string CutToolTipText(const std::string& text);
    /// Copies of the items of `selected` rows, in order; a folder gives the
    /// items below it instead, and separators give nothing. The caller owns them.
    static std::vector<FavouriteItem*> GetSelectedFavouritesItems(const FavouritesTreeRows& rows,
                                                                  const std::vector<FavouriteRow*>& selected);
    /// The trimmed new name of a renamed row, or empty when nothing changes.
    static std::string LabelAfterEdit(const std::string& text);

private:
    static void GetSelectedFavouritesChildItems(const FavouritesTreeRows& rows, FavouriteRow* row,
                                                std::vector<FavouriteItem*>& items);
};

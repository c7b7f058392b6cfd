#pragma once
/// \class FavouriteTreeNode
/// What one row of a favourites tree holds: its favourite, owned, and the
/// collection the row belongs to. A row without a node is a text row (the
/// empty-folder text).

class FavouriteItem;

struct FavouriteTreeNode
{
    /// The favourite; the node owns it (FavouritesTreeRows::DeleteItemData frees both).
    FavouriteItem* item = nullptr;
    /// The collection the row belongs to; -1 where no collection is named.
    int collection = -1;
};

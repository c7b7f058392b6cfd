#pragma once
/// \class FavouritesUtilities
/// Makes a favourites tree without a view: in any window, with its manager.

class FavouritesManager;
class FavouritesTree;
class QWidget;

class FavouritesUtilities
{
public:
    /// A favourites tree in `parent` with the tree styles of favourites,
    /// multiple selection, Delete and drops from outside, bound to `manager`,
    /// which then hears OnInitialUpdate. `id` becomes the tree's "ctrlId".
    static FavouritesTree* CreateFavouritesTree(QWidget* parent, FavouritesManager* manager, unsigned int id);
};

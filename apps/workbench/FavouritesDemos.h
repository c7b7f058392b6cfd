#pragma once
// Favourites without their tree: the "Favourites" menu writes a favourites
// file from a collection held in memory and reads it back, and opens several
// favourites at once through FavouritesManager, whose failures come in one
// details dialog while the windows that did open are tiled; and the dialog in
// which the user picks commands of the workbench's menus to add.

class TessmaMDIFrame;

/// Command ids of the favourites demos.
enum EFavouritesDemo : unsigned int
{
    eDemoFavouritesFile = 34900,
    eDemoOpenFavourites = 34901,
    eDemoAddCommands = 34903
};

/// The tool bar resource whose pictures the demo's commands take.
inline constexpr unsigned int kFavouritesDemoToolBar = 34902;

/// Adds the "Fa&vourites" menu with the commands above.
void AddFavouritesDemos(TessmaMDIFrame& frame);

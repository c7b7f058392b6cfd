#pragma once
// Favourites without their tree: the "Favourites" menu writes a favourites
// file from a collection held in memory and reads it back, and opens several
// favourites at once through FavouritesManager, whose failures come in one
// details dialog while the windows that did open are tiled.

class TessmaMDIFrame;

/// Command ids of the favourites demos.
enum EFavouritesDemo : unsigned int
{
    eDemoFavouritesFile = 34900,
    eDemoOpenFavourites = 34901
};

/// The tool bar resource whose pictures the demo's commands take.
inline constexpr unsigned int kFavouritesDemoToolBar = 34902;

/// Adds the "Fa&vourites" menu with the commands above.
void AddFavouritesDemos(TessmaMDIFrame& frame);

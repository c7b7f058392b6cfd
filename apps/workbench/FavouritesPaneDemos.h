#pragma once
// The favourites pane of the workbench: a docked favourites tree that opens
// the workbench's commands, documents and whole folders of them, takes files
// dropped from a file manager and commands from the add-command dialog, and
// keeps its rows in a favourites file between runs.

class TessmaMDIFrame;

/// Command ids of the favourites pane.
enum EFavouritesPaneDemo : unsigned int
{
    eDemoFavouritesPane = 34950,      // shows or hides the pane
    eDemoFavouritesPaneShown = 34951  // shows the pane with its first folder's rows selected
};

/// Adds the pane's commands to the "Fa&vourites" menu (or a menu of their own).
void AddFavouritesPaneDemos(TessmaMDIFrame& frame);

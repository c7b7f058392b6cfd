#pragma once
// The "Properties" menu of the workbench: a property grid with a row of every
// kind, bound to nothing but its own values, as a pane docked at the frame's
// side, as a document window and as a dialog (the latter for pictures: one with a row being edited and the details
// area, one with a list row's drop-down open).

class TessmaMDIFrame;

/// Command ids of the property grid demos.
enum EPropertyDemo : unsigned int
{
    eDemoPropertiesPane = 34000,     // the grid in a document window
    eDemoPropertiesDialog = 34001,   // the grid in a dialog, a text row in edit, details below
    eDemoPropertiesDropDown = 34002, // the same with the drop-down of a list row open
    eDemoPropertiesDock = 34003      // the "Properties" pane docked at the frame's right, shown or hidden
};

/// Adds the "P&roperties" menu with the commands above to `frame`.
void AddPropertyDemos(TessmaMDIFrame& frame);

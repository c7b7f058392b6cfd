#pragma once
// The "Toolkit" menu of the workbench: a document with a plot of a few thousand
// points inside zoom scroll bars, a colour picker that colours the plot, and the
// date and time entries; and the date format dialog on its own.

class TessmaMDIFrame;

/// Command ids of the toolkit demos.
enum EToolkitDemo : unsigned int
{
    eDemoToolkitDocument = 34300, // the document at full view
    eDemoColourPopup = 34301,     // the document with the picker's popup open
    eDemoDateFormat = 34302,      // the date format dialog, until a valid format or Cancel
    eDemoZoomedPlot = 34303       // the document zoomed into part of the plot
};

/// Adds the "&Toolkit" menu with the commands above to `frame`.
void AddToolkitDemos(TessmaMDIFrame& frame);

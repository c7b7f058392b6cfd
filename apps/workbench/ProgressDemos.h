#pragma once
// The "Progress" menu of the workbench: long work on the main thread that
// reports through Progress on the status bar route, with the gauge and the spin
// indicator in the frame's status bar. The time taken is shown at the end.

class TessmaMDIFrame;

/// Command ids of the progress demos.
enum EProgressDemo : unsigned int
{
    eDemoNestedComputation = 33100, // three phases, the middle one in nested sub-ranges, about 4 seconds
    eDemoSpinOnly = 33101           // the short form: only the spin indicator, about 2 seconds
};

/// Adds the "&Progress" menu with the commands above to `frame`.
void AddProgressDemos(TessmaMDIFrame& frame);

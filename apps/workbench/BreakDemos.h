#pragma once
// The "Computations" menu of the workbench: long work on the main thread that
// reports through Progress on the break route. After its delay the break window
// appears with a painting and a gauge, and its Stop button works although the
// main thread never returns to its event loop. The outcome goes to the message bar.

class TessmaMDIFrame;

/// Command ids of the break demos.
enum EBreakDemo : unsigned int
{
    eDemoLongComputation = 33200  // about 20 seconds, unless stopped
};

/// Adds the "&Computations" menu with the commands above to `frame`.
void AddBreakDemos(TessmaMDIFrame& frame);

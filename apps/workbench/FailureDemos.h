#pragma once
// More of the "Failures" menu of the workbench: faults whose recovery must leave
// the program whole.

class TsFrameWnd;

/// Command ids of the failure demos.
enum EFailureDemo : unsigned int
{
    // Opens a window whose button's handler, a lambda connected without a context
    // object, writes through a null pointer, and clicks the button once.
    eDemoFaultInHandler = 34500
};

/// Adds the commands above to the frame's "F&ailures" menu (made if missing).
void AddFailureDemos(TsFrameWnd& frame);

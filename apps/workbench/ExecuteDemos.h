#pragma once
// The "Background" menu of the workbench: work on another thread while the GUI
// thread stays responsive. One command runs an export behind the modal progress
// dialog with a cancel button; the other starts a low-priority computation and
// shows its result in the message bar when the thread reports its end.

class TessmaMDIFrame;

/// Command ids of the background demos.
enum EExecuteDemo : unsigned int
{
    eDemoExportWithCancel = 33210,   // about 5 seconds behind ExecuteWithProgress, with a cancel button
    eDemoComputeInThread = 33211     // an InThread computation; the result goes to the message bar
};

/// Adds the "&Background" menu with the commands above to `frame`.
void AddExecuteDemos(TessmaMDIFrame& frame);

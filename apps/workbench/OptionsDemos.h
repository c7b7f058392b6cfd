#pragma once
// The "Options" command of the workbench: a property sheet whose pages are
// generated from the option descriptions shipped in the resources, bound to
// the workbench's settings file, so that a change survives a restart.

class TessmaMDIFrame;

/// Command ids of the options demos.
enum EOptionsDemo : unsigned int
{
    eDemoOptions = 35000 // the Options sheet
};

/// Adds the "&Options" menu with its "&Options..." command to `frame`.
void AddOptionsDemos(TessmaMDIFrame& frame);

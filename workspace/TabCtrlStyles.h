#pragma once
// Styles of the tab strip, with the window system's numbers, and the strip's
// control id in the frame.

enum : unsigned long
{
    TCS_BOTTOM = 0x0002,
    TCS_RIGHT = 0x0002,
    TCS_VERTICAL = 0x0080,
    TCS_BUTTONS = 0x0100,
    TCS_FOCUSNEVER = 0x8000,
    TCS_OWNERDRAWFIXED = 0x2000,
};

/// The control id of the tab strip in the frame.
inline constexpr unsigned int kTabbedWorkspaceCtrlId = 1000;

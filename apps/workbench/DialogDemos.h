#pragma once
// The "Dialogs" menu of the workbench: one command per kind of message dialog,
// each opening its dialog with texts as the suite uses them. The answer is
// shown in the status bar.

class TsFrameWnd;

/// Command ids of the dialog demos.
enum EDialogDemo : unsigned int
{
    eDemoMessageBox = 33000,         // TsMessageBox, Yes/No/Cancel with a question icon
    eDemoMessageBoxCaptions = 33001, // TsMessageBox with custom Yes and No captions
    eDemoLongMessageBox = 33002,     // TsMessageBox with a text wrapped at 140 characters
    eDemoDontShowAgain = 33003,      // TsDontShowAgainMessageBox (stored under "WorkbenchDemo")
    eDemoCheckBox = 33004,           // CheckBoxMessageBox with help
    eDemoScrollMessageBox = 33005,   // TsScrollMessageBox with a long report
    eDemoDetails = 33006,            // DetailsDialog with failures behind the details button
    eDemoDetailsDontShowAgain = 33007, // DetailsDialogDontShowAgain (stored under "WorkbenchDetailsDemo")
    eDemoInfo = 33008,               // InfoDialog with Yes, No and the check box
    eDemoYesNo = 33009,              // YesNoDialog with details
    eDemoYesNoCancelAll = 33010,     // YesNoCancelAll with all five buttons
    eDemoYesNoToAll = 33011,         // YesNoToAll, plain sense
    eDemoYesNoToAllInverted = 33012, // YesNoToAll, inverted sense
    eDemoYesYesToAllCancel = 33013,  // YesYesToAllCancelDialog
    eDemoErrorBox = 33014            // TsMessageBox, OK only with the error icon (as DoMessageBox shows it)
};

/// Adds the "&Dialogs" menu with the commands above to `frame`.
void AddDialogDemos(TsFrameWnd& frame);

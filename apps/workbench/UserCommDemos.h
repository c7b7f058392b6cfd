#pragma once
// The "Ask and inform" menu of the workbench: code without a window of its own
// asking and informing through the current user channel (UserComm::GetUserComm()),
// as the suite's computations do. The answers are shown in the message bar.

class TessmaMDIFrame;

/// Command ids of the user channel demos.
enum EUserCommDemo : unsigned int
{
    eDemoAskYesNo = 33300,         // a short yes/no question: a message box
    eDemoAskLongQuestion = 33301,  // a question of 40 lines: the scrolling yes/no dialog
    eDemoInformSilence = 33302,    // an inform the user may silence (id kDemoSilenceId)
    eDemoInformAgain = 33303,      // takes the silence of that inform back
    eDemoCopyScope = 33304,        // a MemoryUserComm scope: "to all" answers and collected informs
    eDemoFatalError = 33305        // a fatal error that lets the application go on
};

/// The silence id of the eDemoInformSilence inform.
inline constexpr unsigned long kDemoSilenceId = 33302;

/// Adds the "&Ask and inform" menu with the commands above to `frame`.
void AddUserCommDemos(TessmaMDIFrame& frame);

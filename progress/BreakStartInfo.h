#pragma once
/// \class BreakStartInfo
/// What the break window learns of its client when it starts serving it: the
/// client's texts and switches, the delay, and where the main window stands.
/// The break window may live in another process, so it gets a copy of these
/// instead of the Progress object itself.

#include <QRect>

#include <string>

struct BreakStartInfo
{
    unsigned int delay = 1000;                     // milliseconds before the window appears
    QRect mainWindow;                              // frame geometry of the main window; empty without one
    bool allowBreak = true;                        // show the stop button
    bool showSpin = false;                         // the spinner layout
    bool showGauge = true;                         // a gauge under the content
    std::string infoText;                          // the window title
    std::string stopQuestion;                      // asked before a stop is confirmed
    std::string stopTitle;                         // title of that question
    std::string stopButton;                        // text of the stop button
};

#pragma once
// The menu of the main window with this title; made at the end of the menu bar
// when there is none yet, so that the demos of several parts share one menu.

#include <KORVAutlwin/frame/TessmaMDIFrame.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>

inline QMenu* MenuOf(TessmaMDIFrame& frame, const QString& title)
{
    for (QAction* action : frame.menuBar()->actions())
        if (action->menu() && action->text() == title)
            return action->menu();
    return frame.AddCommandMenu(title);
}

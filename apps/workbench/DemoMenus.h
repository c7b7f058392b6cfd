#pragma once
// The menus of the workbench's demos. The demos of several parts share a menu,
// and most of them sit in a submenu of a few top menus so that the menu bar
// fits the window.

#include <KORVAutlwin/frame/TessmaMDIFrame.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>

/// The entry titled `title` among `actions` that opens a menu, or none.
inline QMenu* FindMenuIn(const QList<QAction*>& actions, const QString& title)
{
    for (QAction* action : actions)
        if (action->menu() && action->text() == title)
            return action->menu();
    return nullptr;
}

/// The main window's menu with this title; made at the end of the menu bar when
/// there is none yet.
inline QMenu* MenuOf(TessmaMDIFrame& frame, const QString& title)
{
    if (QMenu* menu = FindMenuIn(frame.menuBar()->actions(), title))
        return menu;
    return frame.AddCommandMenu(title);
}

/// Submenu `title` of the main window's menu `group`, made when there is none
/// yet. The group's menu updates its items through the command route before it
/// opens, submenus included.
inline QMenu* SubmenuOf(TessmaMDIFrame& frame, const QString& group, const QString& title)
{
    QMenu* parent = MenuOf(frame, group);
    if (QMenu* menu = FindMenuIn(parent->actions(), title))
        return menu;
    return parent->addMenu(title);
}

/// The top menu that holds the demos of the controls, grids and pickers.
inline QString ControlsMenu() { return QObject::tr("&Controls"); }

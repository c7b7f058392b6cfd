#pragma once
/// \class TsTabbedWorkspaceWindowIdentifier
/// The application's policy for the tabbed workspace: which MDI children share a
/// tab (by a string, the window identifier), with what text, icon, colour and
/// context menu, which tabs stand for no window, and whether the windows of the
/// other tabs are hidden. The defaults give every child a tab of its own.

#include <KORVAutlwin/toolkit/ColorRef.h>

#include <QIcon>

#include <string>

class QWidget;

class TsTabbedWorkspaceWindowIdentifier
{
public:
    virtual ~TsTabbedWorkspaceWindowIdentifier();

    /// The tab of `window` (an MDI child); empty for no tab. Default: the
    /// window's address formatted with "%p", a tab of its own.
    virtual std::string GetWindowIdentifier(const QWidget* window);
    /// The icon of a tab without a window. Default: none.
    virtual QIcon GetTabIcon(const char* id);
    /// The icon of a window's tab. Default: the window's own icon, else the
    /// application main window's; none without either.
    virtual QIcon GetTabIcon(const QWidget* window);
    /// The text of a tab without a window. Default: empty.
    virtual std::string GetTextForTabItem(const char* id);
    /// The text of a window's tab. Default: the window's title.
    virtual std::string GetTextForTabItem(const QWidget* window);
    /// The menu resource whose first popup is the tabs' context menu; 0, the
    /// default, for none.
    virtual unsigned int GetMenuID();
    /// Whether only the windows of the active tab are shown. Default: true.
    virtual bool GetHideNonActiveWindows();
    /// The background of `window`'s tab. Default: the button face.
    virtual COLORREF GetTabColor(const QWidget* window);
    /// Default: false. The strip always draws its tabs itself.
    virtual bool IsOwnerDrawn();
    /// Whether the user may drag tabs into a new order. Default: false.
    virtual bool UseDragAndDrop();
    /// The n-th tab without a window, asked for n = 1, 2, ... until it is
    /// empty. Default: empty.
    virtual std::string GetNonWindowTabID(int n);
    /// The tab `id` became the active one. Default: nothing.
    virtual void OnSetActiveTab(std::string id);
};

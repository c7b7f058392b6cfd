#include <KORVAutlwin/workspace/TsTabbedWorkspaceWindowIdentifier.h>

#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QWidget>

#include <cstdio>

TsTabbedWorkspaceWindowIdentifier::~TsTabbedWorkspaceWindowIdentifier() = default;

std::string TsTabbedWorkspaceWindowIdentifier::GetWindowIdentifier(const QWidget* window)
{
    char text[32];
    std::snprintf(text, sizeof text, "%p", static_cast<const void*>(window));
    return text;
}

QIcon TsTabbedWorkspaceWindowIdentifier::GetTabIcon(const char*)
{
    return {};
}

QIcon TsTabbedWorkspaceWindowIdentifier::GetTabIcon(const QWidget* window)
{
    if (window && !window->windowIcon().isNull())
        return window->windowIcon();
    if (const WinApp* app = WinApp::GetApp(); app && app->GetMainWnd())
        return app->GetMainWnd()->windowIcon();
    return {};
}

std::string TsTabbedWorkspaceWindowIdentifier::GetTextForTabItem(const char*)
{
    return {};
}

std::string TsTabbedWorkspaceWindowIdentifier::GetTextForTabItem(const QWidget* window)
{
    return window ? window->windowTitle().toStdString() : std::string();
}

unsigned int TsTabbedWorkspaceWindowIdentifier::GetMenuID()
{
    return 0;
}

bool TsTabbedWorkspaceWindowIdentifier::GetHideNonActiveWindows()
{
    return true;
}

COLORREF TsTabbedWorkspaceWindowIdentifier::GetTabColor(const QWidget*)
{
    return korva::GetSysColor(COLOR_BTNFACE);
}

bool TsTabbedWorkspaceWindowIdentifier::IsOwnerDrawn()
{
    return false;
}

bool TsTabbedWorkspaceWindowIdentifier::UseDragAndDrop()
{
    return false;
}

std::string TsTabbedWorkspaceWindowIdentifier::GetNonWindowTabID(int)
{
    return {};
}

void TsTabbedWorkspaceWindowIdentifier::OnSetActiveTab(std::string) {}

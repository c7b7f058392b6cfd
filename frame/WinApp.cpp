#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutl/TsSystemInfo.h>

WinApp* WinApp::msCurrentApp = nullptr;

WinApp::WinApp(const char* appName)
    : mAppName(appName ? appName : TsSystemInfo::GetApplicationName()), mProfileName(mAppName)
{
    msCurrentApp = this;
}

WinApp::~WinApp()
{
    if (msCurrentApp == this)
        msCurrentApp = nullptr;
}

WinApp* WinApp::GetApp()
{
    return msCurrentApp;
}

void WinApp::SetRegistryKey(const char* company)
{
    mRegistryKey = company ? company : "";
    mProfileName = mAppName;
}

void WinApp::SetProfileName(const char* profileName)
{
    mProfileName = profileName ? profileName : "";
}

#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/options/TsModelessPropertySheet.h>
#include <KORVAutlwin/options/TsPropertiesHandler.h>
#include <KORVAutlwin/options/TsPropertyPage.h>

#include <QTabWidget>

#include <algorithm>
#include <cstdio>

namespace {

constexpr const char* kPositionSection = "WindowPos\\Properties";

} // namespace

TsModelessPropertySheet* TsModelessPropertySheet::Instance()
{
    // Never deleted: the sheet lives as long as the process.
    static TsModelessPropertySheet* sheet = new TsModelessPropertySheet("Properties");
    return sheet;
}

TsModelessPropertySheet::TsModelessPropertySheet(const char* caption) : TsPropertySheet(caption, nullptr, 0)
{
    mModeless = true;
    setModal(false);
}

bool TsModelessPropertySheet::OnInitDialog()
{
    const bool result = TsPropertySheet::OnInitDialog();
    // Rectangle only, as "x y width height".
    if (WinApp* app = WinApp::GetApp()) {
        const std::string rect = app->GetProfileString(kPositionSection, "Rect", "");
        int x = 0, y = 0, width = 0, height = 0;
        if (std::sscanf(rect.c_str(), "%d %d %d %d", &x, &y, &width, &height) == 4 && width > 0 && height > 0)
            setGeometry(x, y, width, height);
    }
    return result;
}

void TsModelessPropertySheet::hideEvent(QHideEvent* event)
{
    if (WinApp* app = WinApp::GetApp()) {
        const QRect rect = geometry();
        const std::string text = std::to_string(rect.x()) + " " + std::to_string(rect.y()) + " " +
                                 std::to_string(rect.width()) + " " + std::to_string(rect.height());
        app->WriteProfileString(kPositionSection, "Rect", text.c_str());
    }
    TsPropertySheet::hideEvent(event);
}

void TsModelessPropertySheet::ListenerUpdate()
{
    ChangePropertiesHandler(mHandler);
}

void TsModelessPropertySheet::AddRefCountedPage(TsPropertyPage* page)
{
    page->AddRef();
    if (GetPageIndex(page) >= 0 || std::find(mPending.begin(), mPending.end(), page) != mPending.end())
        return;
    mPending.push_back(page);
}

void TsModelessPropertySheet::ChangePropertiesHandler(TsPropertiesHandler* handler)
{
    const bool visible = isVisible();
    ClearChanged();
    for (int index = 0; index < GetPageCount(); ++index)
        GetPage(index)->ReleaseRef();
    TsPropertyPage* former = GetActivePage();
    const int oldLast = GetPageCount() - 1;

    if (handler) {
        handler->AddPages(this);
        if (BasePropertyPageHelper* helper = handler->GetHelper())
            Connect(helper);
    }

    bool redrawOff = false;
    for (TsPropertyPage* page : mPending) {
        if (visible && !redrawOff) {
            setUpdatesEnabled(false);
            redrawOff = true;
        }
        AddPage(page);
        if (!page->GetPageTitle().empty())
            SetTabText(GetPageCount() - 1, page->GetPageTitle().c_str());
    }
    mPending.clear();

    for (int index = oldLast; index >= 0; --index) {
        TsPropertyPage* page = GetPage(index);
        if (page->CountRefs() != 0)
            continue;
        if (!redrawOff) {
            setUpdatesEnabled(false);
            redrawOff = true;
        }
        RemovePage(page);
    }
    if (redrawOff) {
        setUpdatesEnabled(true);
        update();
    }

    if (handler) {
        TsPropertyPage* active = handler->GetActivePage(former);
        if (active && active != GetActivePage())
            SetActivePage(active);
    }
    mHandler = handler;
}

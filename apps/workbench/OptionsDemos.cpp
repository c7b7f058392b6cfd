#include "OptionsDemos.h"
#include "DemoMenus.h"

#include <KORVAutlwin/audit/AuditTrailPage.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/options/BasePropertyPageHelper.h>
#include <KORVAutlwin/options/TsPropertySheet.h>
#include <KORVAutlwin/options/XMLOptionsPage.h>

#include <KORVAutl/AuditTrail.h>
#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/XMLSection.h>

#include <QMenu>
#include <QObject>

#include <memory>

namespace {

enum : unsigned int
{
    eModelDescription = 35010,
    eFileDescription = 35011,
    eOptionsCaption = 35012,
    eModelCaption = 35013,
    eFileCaption = 35014
};

// The last page to apply writes the settings file: each page saved its own
// options into the section before.
class SettingsFileHelper : public BasePropertyPageHelper
{
public:
    explicit SettingsFileHelper(std::shared_ptr<ConfigurationSection> settings) : mSettings(std::move(settings)) {}
    bool Update() override { return mSettings->Flush() && BasePropertyPageHelper::Update(); }

private:
    std::shared_ptr<ConfigurationSection> mSettings;
};

void ShowOptions(QWidget* parent)
{
    auto* app = dynamic_cast<TsApp*>(WinApp::GetApp());
    std::shared_ptr<ConfigurationSection> settings = app ? app->GetAppSettingsSection() : nullptr;
    if (!settings) {
        Log::WriteMessage("OptionsDemos", "ShowOptions", "The workbench has no settings file.", 4, false);
        return;
    }
    std::unique_ptr<ConfigurationSection> options(settings->CopyAndChangeSubSection("Options"));
    if (!options)
        options.reset(settings->CreateSubSection("Options"));
    XMLSection modelDescription(eModelDescription, false);
    XMLSection fileDescription(eFileDescription, false);
    SettingsFileHelper helper(settings);
    XMLOptionsPage model(eModelCaption, options.get(), &modelDescription, nullptr, &helper);
    XMLOptionsPage files(eFileCaption, options.get(), &fileDescription, nullptr, &helper);
    TsPropertySheet sheet(eOptionsCaption, parent);
    sheet.AddPage(&model);
    sheet.AddPage(&files);
    // The session's audit trail has its settings page here too, when the workbench keeps one.
    std::unique_ptr<AuditTrailPage> audit;
    if (AuditTrail* trail = AuditTrail::GetActiveAuditTrail()) {
        audit = std::make_unique<AuditTrailPage>(trail);
        sheet.AddPage(audit.get());
    }
    sheet.resize(520, 480);
    sheet.exec();
}

} // namespace

void AddOptionsDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, ControlsMenu(), QObject::tr("&Options"));
    frame.AddCommand(menu, eDemoOptions, QObject::tr("&Options..."));
    QWidget* parent = &frame;
    frame.OnCommand(eDemoOptions, [parent] { ShowOptions(parent); });
}

#include "AuditDemos.h"

#include "DemoMenus.h"

#include <KORVAutlwin/audit/AuditTrailPage.h>
#include <KORVAutlwin/audit/AuditTrailSettingsUI.h>
#include <KORVAutlwin/audit/AuditTrailView.h>
#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/options/TsPropertySheet.h>
#include <KORVAutlwin/workspace/TsHtmlView.h>

#include <KORVAutl/AuditTrail.h>
#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/Exception.h>
#include <KORVAutl/Log.h>

#include <QMdiSubWindow>
#include <QMenuBar>
#include <QTimer>

#include <memory>

namespace {

// The session's trail and its settings section, living as long as the frame.
struct Session
{
    std::unique_ptr<ConfigurationSection> settings;
    std::unique_ptr<AuditTrail> trail;
};

std::unique_ptr<Session> OpenSession(TsApp* app)
{
    auto session = std::make_unique<Session>();
    session->settings.reset(app->GetAppSettingsSection()->CreateSubSection(AuditTrailSettings::msAuditTrail));
    int logEvents = 0;
    // The workbench keeps a trail unless the user turned it off.
    if (!session->settings->ReadInt(AuditTrailSettings::msLogEvents, logEvents))
        session->settings->WriteInt(AuditTrailSettings::msLogEvents, 1);
    AuditTrailSettingsUI::ApplyAdminSettingsOnUserSettings(session->settings.get());
    const std::string file = app->GetAppDataDirectory() + "/WorkbenchAuditTrail.xml";
    session->trail = std::make_unique<AuditTrail>(file.c_str(), session->settings.get());
    session->trail->SetProjectName("Workbench");
    try {
        session->trail->Load();
        AuditTrailSettings& settings = session->trail->GetSettings();
        if (settings.mLogEvents > 0 && settings.mPromptForExtendedUserInfo) {
            bool disabled = false;
            const std::string info = AuditTrailSettingsUI::EditExtendedUserInfo(&settings, disabled, nullptr);
            if (!info.empty())
                settings.mExtendedUserInfo = info;
        }
        if (settings.mLogEvents > 0) {
            session->trail->BeginSessionAndVerifySignature();
            session->trail->AddEvent("Workbench started.", nullptr, 0);
        }
    } catch (const Exception& failure) {
        // A damaged trail stays as it is; the workbench runs without one.
        Log::WriteMessage("AuditDemos", "OpenSession", failure.RecursiveWhy().c_str(), Log::eLogicFailure);
        session->trail.reset();
    }
    return session;
}

void OpenView(TessmaMDIFrame& frame, AuditTrail* trail)
{
    auto* view = new AuditTrailView;
    view->setWindowTitle(QObject::tr("Audit Trail"));
    view->SetCmdMap({{"Settings", eDemoAuditTrailSettings}}, &frame);
    QMdiSubWindow* child = frame.AddMDIChild(view);
    child->setGeometry(0, 0, 640, 400);
    child->show();
    view->SetAuditTrail(trail);
}

void OpenSettings(TessmaMDIFrame& frame, AuditTrail* trail)
{
    AuditTrailPage page(trail);
    TsPropertySheet sheet(QObject::tr("Options").toUtf8().constData(), &frame);
    sheet.AddPage(&page);
    sheet.resize(460, 240);
    sheet.exec();
}

void OpenHtmlCommands(TessmaMDIFrame& frame)
{
    auto* view = new TsHtmlView;
    view->setWindowTitle(QObject::tr("Commands"));
    view->SetCmdMap({{"AuditTrail", eDemoAuditTrailView},
                     {"Settings", eDemoAuditTrailSettings},
                     {"UserInfo", eDemoExtendedUserInfo}},
                    &frame);
    view->SetHTML("<h2>Workbench commands</h2>"
                  "<p>These links are commands of the application, not pages:</p><ul>"
                  "<li><a href=\"app:AuditTrail\">Open the audit trail</a></li>"
                  "<li><a href=\"app:Settings\">Audit trail settings</a></li>"
                  "<li><a href=\"APP:UserInfo\">Edit the extended user information</a></li>"
                  "<li><a href=\"app:NoSuchCommand\">A link to an unknown command does nothing</a></li></ul>",
                  "body { font-family: sans-serif; margin: 16px; }\nh2 { color: #1f3f6f; }\n"
                  "a { color: #1f5fbf; }");
    QMdiSubWindow* child = frame.AddMDIChild(view);
    child->setGeometry(0, 0, 480, 300);
    child->show();
}

// Every command chosen in a menu becomes an event of the trail.
void LogMenuCommands(TessmaMDIFrame& frame, AuditTrail* trail)
{
    for (QAction* entry : frame.menuBar()->actions())
        if (QMenu* menu = entry->menu())
            QObject::connect(menu, &QMenu::triggered, &frame, [trail, menu](QAction* action) {
                if (korva::GetCommandId(action) != 0)
                    trail->AddEvent("Command run.",
                                    (menu->title().remove('&') + " > " + action->text().remove('&'))
                                        .toStdString()
                                        .c_str(),
                                    0);
            });
}

} // namespace

void AddAuditDemos(TessmaMDIFrame& frame)
{
    auto* app = dynamic_cast<TsApp*>(WinApp::GetApp());
    if (!app)
        return;
    std::shared_ptr<Session> session = OpenSession(app);
    AuditTrail* trail = session->trail.get();
    if (trail)
        AuditTrail::SetActiveAuditTrail(trail);
    QObject::connect(&frame, &QObject::destroyed, [session] {
        if (session->trail && session->trail->GetSettings().mLogEvents > 0) {
            try {
                session->trail->AddEvent("Workbench ended.", nullptr, 0);
                session->trail->EndSessionAndSave();
            } catch (const Exception& failure) {
                Log::WriteMessage("AuditDemos", "AddAuditDemos", failure.RecursiveWhy().c_str(), Log::eLogicFailure);
            }
        }
    });

    QMenu* menu = MenuOf(frame, QObject::tr("&Audit"));
    frame.AddCommand(menu, eDemoAuditTrailView, QObject::tr("Audit Trail &View"));
    frame.AddCommand(menu, eDemoAuditTrailSettings, QObject::tr("Audit Trail &Settings..."));
    frame.AddCommand(menu, eDemoExtendedUserInfo, QObject::tr("&Extended User Information..."));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoHtmlCommands, QObject::tr("&HTML View with Commands"));
    frame.OnCommand(eDemoAuditTrailView, [&frame, trail] { OpenView(frame, trail); });
    frame.OnCommand(eDemoAuditTrailSettings, [&frame, trail] { OpenSettings(frame, trail); });
    frame.OnCommand(eDemoHtmlCommands, [&frame] { OpenHtmlCommands(frame); });
    frame.OnCommand(eDemoExtendedUserInfo, [&frame, trail] {
        bool disabled = false;
        const std::string info = AuditTrailSettingsUI::EditExtendedUserInfo(trail ? &trail->GetSettings() : nullptr,
                                                                           disabled, &frame);
        if (trail && !info.empty()) {
            trail->GetSettings().mExtendedUserInfo = info;
            trail->AddEvent("Audit Trail", ("Extended User Information: " + info).c_str(), 0);
        }
    });
    // Once every demo has put its menu up.
    if (trail)
        QTimer::singleShot(0, &frame, [&frame, trail] { LogMenuCommands(frame, trail); });
}

#include <KORVAutlwin/audit/AuditTrailSettingsUI.h>

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutlwin/platform/UserIdentity.h>

#include <KORVAutl/AuditTrail.h>
#include <KORVAutl/Exception.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutl/XMLSection.h>

#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QTimer>

#include <memory>

namespace {

constexpr const char* kInfoSection = "AuditTrail\\ExtendedUserInfo";

std::string CurrentUser()
{
    return korva::UserName().substr(0, AuditTrailSettingsUI::kMaxInfoLength);
}

} // namespace

std::string AuditTrailSettingsUI::GetExtendedUserInfo(const char* user)
{
    WinApp* app = WinApp::GetApp();
    if (!app || !user || !*user)
        return {};
    return app->GetProfileString(kInfoSection, user, "");
}

std::string AuditTrailSettingsUI::GetExtendedUserInfo()
{
    return GetExtendedUserInfo(CurrentUser().c_str());
}

void AuditTrailSettingsUI::SetExtendedUserInfo(const char* user, const char* info)
{
    WinApp* app = WinApp::GetApp();
    if (!app || !user || !*user || !info)
        return;
    app->WriteProfileString(kInfoSection, user, QString::fromUtf8(info).left(kMaxInfoLength).toUtf8().constData());
}

void AuditTrailSettingsUI::SetExtendedUserInfo(const char* info)
{
    SetExtendedUserInfo(CurrentUser().c_str(), info);
}

std::string AuditTrailSettingsUI::EditExtendedUserInfo(AuditTrailSettings* settings, bool& promptDisabled,
                                                       QWidget* parent)
{
    promptDisabled = false;
    const std::string user = CurrentUser();
    const std::string info = GetExtendedUserInfo(user.c_str());
    QInputDialog dialog(parent);
    dialog.setWindowTitle(QStringLiteral("Edit Extended User Information"));
    dialog.setLabelText(QString::fromStdString(TsString::Format(
        "Enter more information about the current user ('%s'). This information will be added to the Audit "
        "Trail at the beginning of each session.",
        user.c_str())));
    dialog.setTextValue(QString::fromStdString(info));
    // The line edit exists once the dialog knows its mode.
    dialog.setInputMode(QInputDialog::TextInput);
    if (auto* edit = dialog.findChild<QLineEdit*>())
        edit->setMaxLength(kMaxInfoLength);
    if (dialog.exec() == QDialog::Accepted) {
        const std::string text = dialog.textValue().toStdString();
        SetExtendedUserInfo(user.c_str(), text.c_str());
        return text;
    }
    // Only a prompt that came up by itself at a session's start offers to stop prompting.
    if (settings && !settings->mLockedUI && !parent &&
        TsMessageBox("Do you want to disable the prompting for extended user info on the current project?",
                     MB_YESNO | MB_ICONQUESTION) == IDYES) {
        settings->mPromptForExtendedUserInfo = false;
        settings->Save();
        promptDisabled = true;
    }
    return {};
}

bool AuditTrailSettingsUI::GetPromptForExtendedUserInfo()
{
    try {
        return AuditTrailSettings::GetPromptForExtendedUserInfo(GetRegistryBaseKeyName());
    } catch (const Exception&) {
        return false;
    }
}

void AuditTrailSettingsUI::SetPromptForExtendedUserInfo(bool value)
{
    try {
        AuditTrailSettings::SetPromptForExtendedUserInfo(GetRegistryBaseKeyName(), value);
    } catch (const Exception&) {
    }
}

void AuditTrailSettingsUI::ApplyAdminSettingsOnUserSettings(ConfigurationSection* user)
{
    if (!user)
        return;
    try {
        AuditTrailSettings::ApplyAdminSettings(user, GetRegistryBaseKeyName());
    } catch (const Exception&) {
    }
    user->WriteKey(AuditTrailSettings::msExtendedUserInfo, GetExtendedUserInfo().c_str());
}

ConfigurationSection* AuditTrailSettingsUI::GetGlobalAuditTrailSettings()
{
    XMLSection memory;
    ConfigurationSection* section = memory.CreateSubSection("dummy");
    ApplyAdminSettingsOnUserSettings(section);
    return section;
}

void AuditTrailSettingsUI::AuditTrailViewSaveAsDialog(AuditTrail* trail)
{
    if (!trail)
        return;
    if (trail->IsEmpty())
        trail->Load();
    if (trail->IsEmpty()) {
        TsMessageBox("Nothing to save. The audit trail is empty.", MB_OK);
        return;
    }
    QFileDialog dialog(TsGetMainWnd());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setDefaultSuffix(QStringLiteral("xml"));
    dialog.setNameFilter(QStringLiteral("XML Files (*.xml)"));
    dialog.selectFile(QString::fromStdString(
        TsString::Format("%s Audit Trail", TsSystemInfo::GetApplicationName().c_str())));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    trail->SaveAs(dialog.selectedFiles().first().toStdString().c_str());
    TsDontShowAgainMessageBox("ShowAuditTrailSaveMessage",
                              "The Audit Trail has been saved together with a .XSL file.\n\nTo view the .XML file, "
                              "you must store the .XSL file in the same folder.",
                              MB_ICONINFORMATION);
}

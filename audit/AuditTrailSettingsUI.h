#pragma once
/// \class AuditTrailSettingsUI
/// The settings face of the audit trail, all static: the extended user
/// information kept per user in the application profile (section
/// "AuditTrail\\ExtendedUserInfo", entry the user's login name, up to 255
/// characters), the administrator's settings in the registry store merged into
/// a user's, the prompt for the information and the trail's save dialog.

#include <string>

class AuditTrail;
class AuditTrailSettings;
class ConfigurationSection;
class QWidget;

class AuditTrailSettingsUI
{
public:
    /// The longest extended user information, in characters.
    static constexpr int kMaxInfoLength = 255;

    /// The information on `user` from the application profile; empty by default.
    static std::string GetExtendedUserInfo(const char* user);
    /// The same for the current user.
    static std::string GetExtendedUserInfo();
    /// Writes the information on `user`; does nothing when the user is null or
    /// empty, or the info is null.
    static void SetExtendedUserInfo(const char* user, const char* info);
    /// The same for the current user.
    static void SetExtendedUserInfo(const char* info);
    /// Asks the current user for the information (title "Edit Extended User
    /// Information") and stores it. After a cancel of a prompt that came up by
    /// itself (`parent` null) on unlocked settings, offers to turn the prompting
    /// off; on yes, clears the settings' prompt flag, saves them and sets
    /// `promptDisabled`. Returns the text entered, empty after a cancel.
    static std::string EditExtendedUserInfo(AuditTrailSettings* settings, bool& promptDisabled, QWidget* parent);
    /// True when "PromptForExtendedUserInfo" is true in the administrator's key
    /// or, failing that, in the user's. Store trouble gives false.
    static bool GetPromptForExtendedUserInfo();
    /// Writes "PromptForExtendedUserInfo" in the administrator's key, or in the
    /// user's when that cannot be written.
    static void SetPromptForExtendedUserInfo(bool value);
    /// Merges the administrator's "LogEvents", "PromptForExtendedUserInfo" and
    /// "LockedUI" into `user` (see AuditTrailSettings::ApplyAdminSettings), then
    /// writes "ExtendedUserInfo" of the current user into it.
    static void ApplyAdminSettingsOnUserSettings(ConfigurationSection* user);
    /// A section in memory holding the administrator's settings as they apply to
    /// a user without settings. The caller owns the result.
    static ConfigurationSection* GetGlobalAuditTrailSettings();
    /// Offers to save `trail` to a file of the user's choice, with the style sheet
    /// beside it. An empty trail is loaded first; if still empty, the user is told
    /// that there is nothing to save.
    static void AuditTrailViewSaveAsDialog(AuditTrail* trail);
};

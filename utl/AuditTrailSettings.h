#pragma once
/// \class AuditTrailSettings
/// The settings of an audit trail, kept as keys of one settings section:
/// "LogEvents" (int, above 0 the trail is on), "PromptForExtendedUserInfo" (bool),
/// "LockedUI" (bool) and "ExtendedUserInfo" (text, the current user's information).
///
/// An administrator may hold the same three values in the registry store, in the
/// key "AuditTrail" below the application's registry branch, under
/// HKEY_LOCAL_MACHINE; ApplyAdminSettings merges them into a user's section.

#include <string>

class ConfigurationSection;

class AuditTrailSettings
{
public:
    /// The names of the settings, used everywhere as they stand.
    static constexpr const char* msAuditTrail = "AuditTrail";
    static constexpr const char* msLogEvents = "LogEvents";
    static constexpr const char* msPromptForExtendedUserInfo = "PromptForExtendedUserInfo";
    static constexpr const char* msLockedUI = "LockedUI";
    static constexpr const char* msExtendedUserInfo = "ExtendedUserInfo";

    /// Settings on `section`, which the caller keeps alive (it may be null: then
    /// Load and Save do nothing). Fields start off: 0, false, false, empty.
    explicit AuditTrailSettings(ConfigurationSection* section);
    virtual ~AuditTrailSettings();

    /// Reads the fields from the section; a missing key leaves its field alone.
    void Load();
    /// Writes the fields to the section and flushes it. False when the store refused.
    bool Save();

    ConfigurationSection* GetSection() const { return mSection; }

    /// Above 0, the trail is on; 2 and up only comes from an administrator.
    int mLogEvents = 0;
    /// Ask for the extended user information at the start of each session.
    bool mPromptForExtendedUserInfo = false;
    /// An administrator has locked the settings.
    bool mLockedUI = false;
    /// The current user's extended information, written into each session.
    std::string mExtendedUserInfo;

    /// Takes the administrator's values over into `user`, by these rules, when
    /// HKEY_LOCAL_MACHINE\\`registryBase`\\AuditTrail\\ opens for reading:
    ///  - "LogEvents" when the user's is missing or 0, or the admin's is 2 or more;
    ///  - "PromptForExtendedUserInfo" and "LockedUI" when the user's is missing or false.
    /// Only values that exist in the key are copied. False when the key did not open.
    static bool ApplyAdminSettings(ConfigurationSection* user, const char* registryBase);
    /// The "PromptForExtendedUserInfo" value of the administrator's key, or, when
    /// that is missing or false, of the same key under HKEY_CURRENT_USER; false
    /// when neither says true.
    static bool GetPromptForExtendedUserInfo(const char* registryBase);
    /// Writes "PromptForExtendedUserInfo" in the administrator's key, created as
    /// needed, or, when that cannot be opened for writing, in the user's. False
    /// when neither took it.
    static bool SetPromptForExtendedUserInfo(const char* registryBase, bool value);

private:
    ConfigurationSection* mSection;
};

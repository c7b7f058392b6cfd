#pragma once
/// \class StandardUserComm
/// The user channel that asks and informs through dialogs. The application
/// installs one at start (UserComm::SetUserComm); code below it only calls
/// UserComm::GetUserComm(). Everything it shows is modal, parented to the
/// current window (korva::GetSafeOwner), and bracketed by Progress::Hide() and
/// Progress::Show() so that a progress window cannot stand in front of it.
/// Main thread only: callers on other threads marshal their calls there.
///
/// Which dialog a call shows depends on the length of the text, measured by
/// korva::MeasureLines (a one-line text measures 2, each line feed after the
/// first character adds 1):
///   AskUserYesNo without details   above 30: the details form, question as details
///                                  else: a Yes/No message box
///   FatalError                     20 or more: FatalErrorDialog; else an error box
///   InformUser, silenceId 0        20 or more: FatalErrorDialog as an inform; else an information box
///   InformUser, silenceId != 0     CheckBoxMessageBox, unless the user silenced the id
///
/// Silenced informs live in `HKEY_CURRENT_USER\<GetRegistryBaseKeyName()>\UserCommInformUser`,
/// one REG_DWORD per id named by the id in decimal; 0 means silenced, a missing
/// value or any other means shown.

#include <KORVAutlwin/frame/RegistrySection.h>

#include <KORVAutl/UserComm.h>

#include <cstdint>
#include <string>

class StandardUserComm : public UserComm
{
public:
    /// Usage count 0.
    StandardUserComm();
    /// Copies the usage count.
    StandardUserComm(const StandardUserComm& other) = default;
    StandardUserComm& operator=(const StandardUserComm& other) = default;
    ~StandardUserComm() override;

    /// A Yes/No question above its `details` in a scrolling text (YesNoDialog).
    /// `title` null or empty: the application's name. Yes is the default button
    /// when `defaultAnswer` is 1. Returns 1 for yes, 3 for anything else.
    int AskUserYesNo(const char* question, const char* details, const char* title, int defaultAnswer) override;
    /// A Yes/No message box with the exclamation icon; No is the default button
    /// unless `defaultAnswer` is 1. A question that measures above 30 goes to the
    /// details form instead (empty question, `question` as details), which counts
    /// usage once more. Returns 1 for yes, 3 for no.
    int AskUserYesNo(const char* question, const char* title, int defaultAnswer) override;
    /// YesNoCancelAll with all five buttons; `defaultAnswer` (0 to 5) picks the
    /// default button, 0 none. Returns the answer code of the button pressed;
    /// closing the dialog otherwise gives 5 (cancel).
    int AskUserYesYesToAllNoNoToAllCancel(const char* question, const char* details, const char* title,
                                          int defaultAnswer) override;
    /// As above with Yes, Yes to all and Cancel.
    int AskUserYesYesToAllCancel(const char* question, const char* details, const char* title,
                                 int defaultAnswer) override;
    /// As above with Yes and Cancel.
    int AskUserYesCancel(const char* question, const char* details, const char* title, int defaultAnswer) override;
    /// Shows `text` as an error; a null or empty text shows nothing. Returns: the
    /// process goes on.
    void FatalError(const char* text, const char* title) override;
    /// Shows `text` as an information; a null or empty text shows nothing. A
    /// non-zero `silenceId` shows a box with a check box instead (whose title is
    /// the application's name, not `title`); checking it silences the id for
    /// good. Throws Exception when the silence key can be neither opened nor created.
    void InformUser(const char* text, const char* title, unsigned long silenceId) override;
    /// The wait cursor, until the mouse next moves.
    void HourGlassOn() override;
    /// Nothing: the cursor comes back with the next mouse move.
    void HourGlassOff() override;

    /// How often the channel has addressed the user: every question, fatal error
    /// and inform counts once, also those that show nothing.
    int GetUsage() const { return usage; }
    void ResetUsage() { usage = 0; }

private:
    std::int32_t usage;
};

namespace korva {

/// The length measure of a text: 2 plus the number of line feeds after its
/// first character, so a one-line text measures 2. Null or empty measures 2.
int MeasureLines(const char* text);

/// The channel's message box: the application's modeless windows are disabled
/// around it (WinApp::EnableModeless), its owner is the current window, a type
/// without icon bits gets the exclamation mark when it is OK, OK/Cancel,
/// Yes/No/Cancel or Yes/No, and a null `title` gives the application's name.
/// Returns the ID* of the button pressed; a box with only OK returns IDOK.
int UserCommMessageBox(const char* text, const char* title, unsigned int type);

/// The access rights of the silence key: read and write.
inline constexpr unsigned long kInformSilenceAccess = 0x2001F;
/// "<GetRegistryBaseKeyName()>\UserCommInformUser", below HKEY_CURRENT_USER.
std::string GetInformSilenceKeyName();
/// The value name of `silenceId`: its low 32 bits in decimal.
std::string GetInformSilenceValueName(unsigned long silenceId);
/// Opens the silence key, created if missing. Throws Exception (from
/// RegistrySection) when that fails.
RegistrySection OpenInformSilenceKey();
/// True when the value of `silenceId` in `key` reads as 0; a missing value,
/// another type or any other number means the inform is shown.
bool IsInformSilenced(const RegistrySection& key, unsigned long silenceId);
/// Writes 0 for `silenceId`; false when the write failed.
bool SilenceInform(RegistrySection& key, unsigned long silenceId);

/// Progress::Hide() for its lifetime, Progress::Show() at its end, also when
/// an exception passes. The progress code sits above this one and registers
/// the two calls (SetHooks) when a progress display comes up; until then there
/// is nothing to hide.
class ProgressHidden
{
public:
    using Hook = void (*)();
    static void SetHooks(Hook hide, Hook show);

    ProgressHidden();
    ~ProgressHidden();
    ProgressHidden(const ProgressHidden&) = delete;
    ProgressHidden& operator=(const ProgressHidden&) = delete;
};

} // namespace korva

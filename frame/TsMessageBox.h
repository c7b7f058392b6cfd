#pragma once
// The message box functions that replace the system's: every box is a modal
// CustomMessageBoxDlg over the current window (see korva::GetSafeOwner).
// `nType` takes the MB_* button, icon and default-button bits; the result is
// the id of the button pressed (IDOK 1, IDCANCEL 2, IDYES 6, IDNO 7 ...).
//
// Remembered answers ("do not show again") are integers in the application's
// profile, section GetDontShowAgainRegistrySection(), one value per message
// under a key that the caller chooses. Cancel is never remembered.

#include <KORVAutlwin/frame/MessageBoxTypes.h>

class ConfigurationSection;
class QWidget;

/// "DontShowAgainMessages": the profile section of remembered answers.
const char* GetDontShowAgainRegistrySection();

/// A box with `title` (null or empty: the application's name) and `text`.
int TsMessageBox(const char* title, const char* text, unsigned int nType);
/// A box with the text of language string `textId`. With MB_YESNO or
/// MB_YESNOCANCEL a non-empty string behind `yesTextId` or `noTextId` replaces
/// the caption of Yes or No; 0 or an empty string keeps the standard one.
int TsMessageBox(unsigned int textId, unsigned int nType = MB_OK, unsigned int yesTextId = 0,
                 unsigned int noTextId = 0);
/// A box with `text`; `yesText` and `noText` as the string ids above.
int TsMessageBox(const char* text, unsigned int nType = MB_OK, const char* yesText = nullptr,
                 const char* noText = nullptr);

/// A box with a "do not show again" check box. When the profile holds an
/// answer for `key` (any value but -1), that answer is returned and nothing is
/// shown. Otherwise the box runs, and an answer other than IDCANCEL given with
/// the box checked is stored for `key`. With MB_YESNO or MB_YESNOCANCEL,
/// non-empty `yesText` and `noText` replace the captions of Yes and No. A null
/// or empty key shows the box every time and stores nothing.
int TsDontShowAgainMessageBox(const char* key, const char* text, unsigned int nType = MB_OK,
                              const char* yesText = nullptr, const char* noText = nullptr);
/// The same with the answer kept as integer `key` in `section` (null: the profile).
int TsDontShowAgainMessageBox(ConfigurationSection* section, const char* key, const char* text,
                              unsigned int nType = MB_OK, const char* yesText = nullptr,
                              const char* noText = nullptr);
/// True when TsDontShowAgainMessageBox would ask: the profile value for `key`
/// is -1 or missing.
bool ShowDontShowAgainMessage(const char* key);

/// A box with a check box whose state comes from `checked`; `checkBoxText`
/// null or empty takes language string 13199. After any answer but IDCANCEL,
/// `checked` holds the state the user left; after IDCANCEL it is unchanged.
/// A non-zero `helpId` adds the Help button. A null `parent` takes the current window.
int CheckBoxMessageBox(const char* text, bool& checked, unsigned int nType = MB_OK,
                       const char* checkBoxText = nullptr, unsigned int helpId = 0, QWidget* parent = nullptr);

namespace korva {

/// The profile value `key` of the remembered-answers section, `defaultValue`
/// when it is missing. Through the application object when there is one,
/// otherwise straight from the registry branch of GetRegistryBaseKeyName().
int GetDontShowAgainValue(const char* key, int defaultValue);
/// Writes the profile value `key` of that section; false when it failed.
bool WriteDontShowAgainValue(const char* key, int value);

} // namespace korva

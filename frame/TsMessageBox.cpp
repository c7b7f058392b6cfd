#include <KORVAutlwin/frame/TsMessageBox.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/LanguageString.h>

#include <string>

namespace {

constexpr int kAsk = -1;

bool HasYesAndNo(unsigned int nType)
{
    const unsigned int buttons = nType & MB_TYPEMASK;
    return buttons == MB_YESNO || buttons == MB_YESNOCANCEL;
}

void SetYesNoCaptions(CustomMessageBoxDlg& box, unsigned int nType, const char* yesText, const char* noText)
{
    if (!HasYesAndNo(nType))
        return;
    box.SetButtonText(IDYES, yesText);
    box.SetButtonText(IDNO, noText);
}

std::string RegistryPath()
{
    return std::string(GetRegistryBaseKeyName()) + "\\" + GetDontShowAgainRegistrySection();
}

// Shows the box with the check box off; the answer and whether it may be remembered.
int AskWithCheckBox(const char* text, unsigned int nType, const char* yesText, const char* noText, bool& remember)
{
    CustomMessageBoxDlg box(nType, 0, korva::GetSafeOwner());
    box.SetText(text);
    box.SetCheckBox(false);
    SetYesNoCaptions(box, nType, yesText, noText);
    const int answer = box.exec();
    remember = answer != IDCANCEL && box.IsChecked();
    return answer;
}

} // namespace

const char* GetDontShowAgainRegistrySection()
{
    return "DontShowAgainMessages";
}

namespace korva {

int GetDontShowAgainValue(const char* key, int defaultValue)
{
    if (WinApp* app = WinApp::GetApp())
        return app->GetProfileInt(GetDontShowAgainRegistrySection(), key, defaultValue);
    int value = defaultValue;
    RegistrySection section;
    if (section.Open(HKEY_CURRENT_USER, RegistryPath().c_str(), KEY_READ, false))
        section.ReadInt(key, value);
    return value;
}

bool WriteDontShowAgainValue(const char* key, int value)
{
    if (WinApp* app = WinApp::GetApp())
        return app->WriteProfileInt(GetDontShowAgainRegistrySection(), key, value);
    RegistrySection section;
    return section.Open(HKEY_CURRENT_USER, RegistryPath().c_str(), KEY_READ | KEY_WRITE, true) &&
           section.WriteInt(key, value);
}

} // namespace korva

int TsMessageBox(const char* title, const char* text, unsigned int nType)
{
    CustomMessageBoxDlg box(nType, 0, korva::GetSafeOwner());
    box.SetTitle(title);
    box.SetText(text);
    return box.exec();
}

int TsMessageBox(unsigned int textId, unsigned int nType, unsigned int yesTextId, unsigned int noTextId)
{
    // A missing string is empty, and an empty caption keeps the standard one.
    return TsMessageBox(LanguageString::Get(textId), nType, yesTextId ? LanguageString::Get(yesTextId) : nullptr,
                        noTextId ? LanguageString::Get(noTextId) : nullptr);
}

int TsMessageBox(const char* text, unsigned int nType, const char* yesText, const char* noText)
{
    CustomMessageBoxDlg box(nType, 0, korva::GetSafeOwner());
    box.SetText(text);
    SetYesNoCaptions(box, nType, yesText, noText);
    return box.exec();
}

int TsDontShowAgainMessageBox(const char* key, const char* text, unsigned int nType, const char* yesText,
                              const char* noText)
{
    const bool keyed = key && *key;
    if (keyed) {
        const int stored = korva::GetDontShowAgainValue(key, kAsk);
        if (stored != kAsk)
            return stored;
    }
    bool remember = false;
    const int answer = AskWithCheckBox(text, nType, yesText, noText, remember);
    if (keyed && remember)
        korva::WriteDontShowAgainValue(key, answer);
    return answer;
}

int TsDontShowAgainMessageBox(ConfigurationSection* section, const char* key, const char* text, unsigned int nType,
                              const char* yesText, const char* noText)
{
    if (!section)
        return TsDontShowAgainMessageBox(key, text, nType, yesText, noText);
    const bool keyed = key && *key;
    if (keyed) {
        int stored = kAsk;
        section->ReadInt(key, stored);
        if (stored != kAsk)
            return stored;
    }
    bool remember = false;
    const int answer = AskWithCheckBox(text, nType, yesText, noText, remember);
    if (keyed && remember)
        section->WriteInt(key, answer);
    return answer;
}

bool ShowDontShowAgainMessage(const char* key)
{
    return korva::GetDontShowAgainValue(key, kAsk) == kAsk;
}

int CheckBoxMessageBox(const char* text, bool& checked, unsigned int nType, const char* checkBoxText,
                       unsigned int helpId, QWidget* parent)
{
    CustomMessageBoxDlg box(nType, helpId, parent ? parent : korva::GetSafeOwner());
    box.SetText(text);
    box.SetCheckBox(checked, checkBoxText);
    const int answer = box.exec();
    if (answer != IDCANCEL)
        checked = box.IsChecked();
    return answer;
}

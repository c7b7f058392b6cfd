#pragma once
// A message with details on demand: the text fills the dialog, and the
// details button opens a details area below the buttons. Used where a short
// summary stands in front of a long list (failures of many items, a trace).
//
// The DetailsDialog functions are what callers use. While MuteDetailsDialog is
// muted they show nothing and hand their texts to it instead.

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsDialog.h>

#include <string>

class QCheckBox;
class QPlainTextEdit;
class QPushButton;

/// The dialog behind the DetailsDialog functions.
class DetailsDialogClass : public TsDialog
{
    Q_OBJECT

public:
    static constexpr unsigned int kTemplateId = 13100;
    /// Control ids: the text, the details, the details button, the check box and OK.
    static constexpr int kTextCtrlId = 13103;
    static constexpr int kDetailsCtrlId = 13104;
    static constexpr int kDetailsButtonCtrlId = 13105;
    static constexpr int kCheckBoxCtrlId = 13042;
    static constexpr int kOkCtrlId = 1;

    /// Runs the dialog at once, modal, so the object is used and gone in one
    /// statement. `nType` chooses the icon by its MB_ICON* bits; `title` null or
    /// empty gives the application's name. Without `details` the details button
    /// is hidden; `showDetails` opens the details at the start. With a non-empty
    /// `dontShowKey` the dialog has a "do not show again" check box: when the
    /// profile value for the key is 1 nothing is shown, and OK with the box
    /// checked writes 1. Muted (MuteDetailsDialog), nothing is shown and the
    /// texts are collected.
    DetailsDialogClass(QWidget* parent, const char* text, const char* details, const char* title,
                       unsigned int nType, bool showDetails, const char* dontShowKey = nullptr);
    ~DetailsDialogClass() override;

    /// How the dialog ended: IDOK, IDCANCEL (Escape, closing), or 0 when it was not shown.
    int GetResult() const { return mResult; }

    /// True when the details area is open.
    bool IsDetailsShown() const;

protected:
    /// Escape and the title bar end the dialog with IDCANCEL.
    void reject() override;

private:
    void Build(const char* text, const char* title, unsigned int nType, bool showDetails);
    void FitHeight();
    void ShowDetails(bool show);

    std::string details;
    std::string dontShowKey;
    QPlainTextEdit* mDetails = nullptr;
    QPushButton* mDetailsButton = nullptr;
    QCheckBox* mCheckBox = nullptr;
    int mResult = 0;
};

/// Shows `text` with no details.
void DetailsDialog(const char* text, const char* title, unsigned int nType = MB_ICONASTERISK,
                   bool showDetails = false);
/// Shows `text` with `details` behind the details button, over the current window.
void DetailsDialog(const char* text, const char* details, const char* title, unsigned int nType = MB_ICONASTERISK,
                   bool showDetails = false);
/// The same over `parent`.
void DetailsDialog(QWidget* parent, const char* text, const char* details, const char* title,
                   unsigned int nType = MB_ICONASTERISK, bool showDetails = false);
/// The same with a "do not show again" check box bound to profile value `key`.
void DetailsDialogDontShowAgain(const char* key, const char* text, const char* details, const char* title,
                                unsigned int nType = MB_ICONASTERISK, bool showDetails = false);

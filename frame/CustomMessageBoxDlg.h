#pragma once
/// \class CustomMessageBoxDlg
/// The library's own message box: the system box plus a check box, custom
/// button captions and a help button. It lays itself out from the text: an icon
/// by type, the text wrapped at 140 characters per line, the check box below it,
/// the buttons in a row below all.
///
/// Buttons by nType & MB_TYPEMASK (their ids are the answers):
///   MB_OK               OK (1)
///   MB_OKCANCEL         OK (1), Cancel (2)
///   MB_YESNOCANCEL      Yes (6), No (7), Cancel (2)
///   MB_YESNO            Yes (6), No (7)
/// and, so that every box of the framework can be shown with it,
///   MB_ABORTRETRYIGNORE Abort (3), Retry (4), Ignore (5)
///   MB_RETRYCANCEL      Retry (4), Cancel (2)
///   MB_CANCELTRYCONTINUE Cancel (2), Try Again (10), Continue (11)
/// With a help id, Help (9) joins at the end; it shows the help topic and does
/// not end the box.
///
/// Keys: Escape and Ctrl+C end the box with IDCANCEL, except in the forms that
/// offer no way out (Yes/No, Abort/Retry/Ignore), where they do nothing.
/// Closing the window counts as IDCANCEL.

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsDialog.h>

#include <map>
#include <string>
#include <vector>

class QCheckBox;
class QLabel;
class QPixmap;
class QPushButton;

class CustomMessageBoxDlg : public TsDialog
{
    Q_OBJECT

public:
    /// Control ids of the text and the check box.
    static constexpr int kTextCtrlId = 13038;
    static constexpr int kCheckBoxCtrlId = 13042;
    /// The longest line of the text, in characters.
    static constexpr unsigned int kMaxLineLength = 0x8C;

    /// A box of MB_* type `nType` (button, icon and default-button bits). A
    /// non-zero `helpId` adds the Help button and is the dialog's help topic.
    CustomMessageBoxDlg(unsigned int nType, unsigned int helpId, QWidget* parent);
    ~CustomMessageBoxDlg() override;

    /// The message; wrapped when the box is laid out.
    void SetText(const char* text);
    /// The message as it was set, before wrapping.
    const std::string& GetText() const { return text; }
    /// The window title; null or empty gives the application's name.
    void SetTitle(const char* title);
    /// Shows the check box, checked as `checked`, with `text` (null or empty:
    /// language string 13199).
    void SetCheckBox(bool checked, const char* text = nullptr);
    /// The state of the check box: as set before the box ran, as the user left it after.
    bool IsChecked() const { return checked != 0; }
    /// Replaces the caption of button `buttonId` (IDOK, IDYES ...); a null or
    /// empty text keeps the standard caption.
    void SetButtonText(int buttonId, const char* caption);

    /// The MB_* type the box was made with.
    unsigned int GetType() const { return nType; }

    /// Builds the controls on the first show, from what the setters gave.
    void setVisible(bool visible) override;

protected:
    /// Lays the box out: icon, wrapped text, check box, buttons, default button.
    virtual void OnInitDialog();

    void keyPressEvent(QKeyEvent* event) override;
    /// Closing the window answers IDCANCEL.
    void reject() override;

private:
    void OnButton(int id);

    unsigned int nType;
    unsigned int helpId;
    bool hasCheckBox = false;
    std::string text;
    int checked = 0;
    std::string title;
    std::string checkBoxText;
    std::map<int, std::string> buttonTexts;

    bool mInitialized = false;
    QCheckBox* mCheckBox = nullptr;
    QPushButton* mDefaultButton = nullptr;
};

namespace korva {

/// The answer ids of the buttons of a box of type `nType`, left to right,
/// without Help.
std::vector<int> MessageBoxButtonIds(unsigned int nType);
/// The standard caption of the message box button `id` (IDOK, IDYES ...).
std::string MessageBoxButtonText(int id);
/// The icon of a box of type `nType` in the style of `widget`: hand, question
/// and asterisk by their bits, the exclamation mark for anything else.
QPixmap MessageBoxIcon(unsigned int nType, const QWidget* widget);
/// False for the types whose box has no way out but its buttons (Yes/No,
/// Abort/Retry/Ignore): there Escape does nothing.
bool MessageBoxEscapeCancels(unsigned int nType);
/// The index in MessageBoxButtonIds of the default button: the MB_DEFBUTTON
/// bits when they name a button, else Yes where there is one, else the first.
std::size_t MessageBoxDefaultIndex(unsigned int nType, std::size_t buttonCount);

/// The window a message box takes as parent when the caller gives none: the
/// active modal window, else the application's main window, else the active
/// window; null when there is none.
QWidget* GetSafeOwner();
/// `title` when it is not empty, else the application's name.
std::string MessageTitle(const char* title);

/// The small question dialogs: a wrapping plain-text label with control id `ctrlId` ...
QLabel* MakeQuestionText(TsDialog* dialog, int ctrlId);
/// ... answer buttons at least 60 dialog units wide that end the dialog with `result` ...
QPushButton* MakeAnswerButton(TsDialog* dialog, int ctrlId, const QString& caption, int result);
/// ... and the layout: the question icon beside the text, the buttons centred below.
void LayOutQuestion(TsDialog* dialog, QLabel* text, const std::vector<QPushButton*>& buttons);

} // namespace korva

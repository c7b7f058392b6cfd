#pragma once
/// \class ScrollMessageBox
/// A message box for text too long for an ordinary box: the text lies in a
/// read-only field with scroll bars that fills the box, and the box can be
/// resized. Buttons, icon and Escape follow CustomMessageBoxDlg.

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsDialog.h>

#include <string>

class QPlainTextEdit;
class QPushButton;

class ScrollMessageBox : public TsDialog
{
    Q_OBJECT

public:
    /// Control ids of the text field and the icon.
    static constexpr int kTextCtrlId = 16064;
    static constexpr int kIconCtrlId = 16026;

    /// A box for `text` of MB_* type `nType`, titled `title` (null or empty: the
    /// application's name). Run it with exec(); the result is the button's id.
    ScrollMessageBox(const char* text, unsigned int nType, const char* title, QWidget* parent);
    ~ScrollMessageBox() override;

    void setVisible(bool visible) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    /// Closing the window answers IDCANCEL.
    void reject() override;

private:
    unsigned int nType;
    QPlainTextEdit* mText;
    QPushButton* mDefaultButton = nullptr;
    bool mShown = false;
};

/// Runs a ScrollMessageBox over the current window; the id of the button pressed.
int TsScrollMessageBox(const char* text, unsigned int nType = MB_OK, const char* title = nullptr);
/// The same with the text of language string `textId`.
int TsScrollMessageBox(unsigned int textId, unsigned int nType = MB_OK, const char* title = nullptr);

#pragma once
/// \class YesNoCancelAll
/// The question with "to all" answers: a question above a read-only, scrolling
/// details text and up to five buttons, Yes, Yes to all, No, No to all and
/// Cancel. The user channel asks its multi-button questions through it.

#include <KORVAutlwin/frame/TsDialog.h>

#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;

class YesNoCancelAll : public TsDialog
{
    Q_OBJECT

public:
    /// Which button ended the dialog.
    enum ButtonPressed
    {
        eYes = 0,
        eNo = 1,
        eYesToAll = 2,
        eNoToAll = 3,
        eCancel = 4,
        eNone = 5
    };

    static constexpr unsigned int kTemplateId = 13118;
    /// Control ids: question, details and the five buttons.
    static constexpr int kQuestionCtrlId = 13094;
    static constexpr int kDetailsCtrlId = 13091;
    static constexpr int kYesCtrlId = 6;
    static constexpr int kNoCtrlId = 7;
    static constexpr int kYesToAllCtrlId = 13092;
    static constexpr int kNoToAllCtrlId = 13093;
    static constexpr int kCancelCtrlId = 2;

    /// All five buttons, no default, empty texts.
    YesNoCancelAll();
    /// A dialog with `question`, `details` (each line feed becomes a carriage
    /// return and a line feed), `title` (null or empty: the application's name)
    /// and `defaultButton` (eNone: no default button); the flags say which
    /// buttons are shown.
    YesNoCancelAll(const char* question, const char* details, const char* title, ButtonPressed defaultButton,
                   QWidget* parent, bool yes = true, bool yesToAll = true, bool no = true, bool noToAll = true,
                   bool cancel = true);
    ~YesNoCancelAll() override;

    /// Runs the dialog modally. Texts that are not null replace those of the
    /// constructor, and a `defaultButton` other than eNone replaces its default.
    /// The result is the button pressed; closing the window otherwise (Escape,
    /// the title bar) counts as eCancel.
    ButtonPressed DoModal(const char* question = nullptr, const char* details = nullptr, const char* title = nullptr,
                          ButtonPressed defaultButton = eNone);
    /// The button that ended the last run; eCancel before and after any other end.
    ButtonPressed GetButtonPressed() const { return buttonPressed; }

    /// The button that an answer code of the user channel (0 none, 1 yes, 2 yes
    /// to all, 3 no, 4 no to all, 5 cancel) makes the default; eNone for any other.
    static ButtonPressed ButtonOfAnswer(int answer);
    /// The answer code of a button: eYes 1, eNo 3, eYesToAll 2, eNoToAll 4,
    /// eCancel 5, and 5 for any other value.
    static int AnswerOfButton(int button);

    /// Sets the texts and the default button on the first show.
    void setVisible(bool visible) override;

protected:
    /// Title, texts and the focus on the default button; hides what the flags hide.
    virtual void OnInitDialog();

private:
    void Build();
    void OnButton(ButtonPressed button);
    QPushButton* ButtonOf(ButtonPressed button) const;

    std::string question;
    std::string details;
    std::string title;
    ButtonPressed defaultButton = eNone;
    ButtonPressed buttonPressed = eCancel;
    bool showButton[5] = {true, true, true, true, true};

    QLabel* mQuestion = nullptr;
    QPlainTextEdit* mDetails = nullptr;
    QPushButton* mButtons[5] = {};
};

namespace korva {

/// `text` with every line feed preceded by a carriage return, as the details
/// of the question dialogs are kept.
std::string WithCarriageReturns(const char* text);
/// `text` as a text widget shows it: carriage returns before line feeds dropped.
QString ForDisplay(const std::string& text);

} // namespace korva

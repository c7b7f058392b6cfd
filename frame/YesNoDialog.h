#pragma once
/// \class YesNoDialog
/// A yes/no question with a long explanation: the question above a read-only
/// text with scroll bars. Yes ends the dialog with IDOK, No and Escape with
/// IDCANCEL.

#include <KORVAutlwin/frame/TsDialog.h>

#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;

class YesNoDialog : public TsDialog
{
    Q_OBJECT

public:
    static constexpr unsigned int kTemplateId = 10008;
    /// Control ids: the question, the details, and the buttons Yes (IDOK) and No (IDCANCEL).
    static constexpr int kQuestionCtrlId = 10004;
    static constexpr int kDetailsCtrlId = 10001;
    static constexpr int kYesCtrlId = 1;
    static constexpr int kNoCtrlId = 2;

    /// `details` keep their lines (each line feed becomes a carriage return and
    /// a line feed); `title` null or empty gives the application's name. Yes is
    /// the default button when `defaultAnswer` is 1 (the user channel's yes),
    /// No otherwise. Run it with exec(): IDOK means yes.
    YesNoDialog(const char* question, const char* details, const char* title, int defaultAnswer, QWidget* parent);
    ~YesNoDialog() override;

    void setVisible(bool visible) override;

protected:
    /// Escape and the title bar answer No.
    void reject() override;

private:
    std::string details;
    QPushButton* mDefault = nullptr;
    bool mShown = false;
};

#include <KORVAutlwin/frame/YesYesToAllCancelDialog.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>

#include <KORVAutl/LanguageString.h>

#include <QLabel>
#include <QPushButton>

namespace {
constexpr unsigned int kYesToAllText = 30711;
} // namespace

YesYesToAllCancelDialog::YesYesToAllCancelDialog(QWidget* parent) : TsDialog(0u, parent)
{
    mText = korva::MakeQuestionText(this, kTextCtrlId);
    auto makeButton = [this](int ctrlId, const std::string& caption, int result) {
        return korva::MakeAnswerButton(this, ctrlId, QString::fromStdString(caption), result);
    };
    mYes = makeButton(kYesCtrlId, korva::MessageBoxButtonText(IDYES), eYes);
    mYesToAll = makeButton(kYesToAllCtrlId, LanguageString::Get(kYesToAllText), eYesToAll);
    QPushButton* cancel = makeButton(kCancelCtrlId, korva::MessageBoxButtonText(IDCANCEL), IDCANCEL);
    mYes->setDefault(true);
    korva::LayOutQuestion(this, mText, {mYes, mYesToAll, cancel});
}

YesYesToAllCancelDialog::~YesYesToAllCancelDialog() = default;

int YesYesToAllCancelDialog::NewDoModal(const char* text, const char* title, const char* yesToAllText)
{
    mText->setText(QString::fromUtf8(text ? text : ""));
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title)));
    if (yesToAllText && *yesToAllText)
        mYesToAll->setText(QString::fromUtf8(yesToAllText));
    return exec();
}

void YesYesToAllCancelDialog::setVisible(bool visible)
{
    TsDialog::setVisible(visible);
    if (visible && !mShown) {
        mShown = true;
        mYes->setFocus();
    }
}

void YesYesToAllCancelDialog::reject()
{
    done(IDCANCEL);
}

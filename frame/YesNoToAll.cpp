#include <KORVAutlwin/frame/YesNoToAll.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>

#include <KORVAutl/LanguageString.h>

#include <QLabel>
#include <QPushButton>

namespace {
constexpr unsigned int kInvertedCaptions = 13343;
constexpr unsigned int kPlainCaptions = 13346;
} // namespace

YesNoToAll::YesNoToAll(QWidget* parent, bool invert) : TsDialog(kTemplateId, parent)
{
    const unsigned int captions = invert ? kInvertedCaptions : kPlainCaptions;
    const int first = invert ? eNo : eYes;
    const int toAll = invert ? eNoToAll : eYesToAll;
    const int opposite = invert ? eYes : eNo;

    mText = korva::MakeQuestionText(this, kTextCtrlId);
    auto makeButton = [this](int ctrlId, unsigned int caption, int result) {
        return korva::MakeAnswerButton(this, ctrlId, QString::fromUtf8(LanguageString::Get(caption)), result);
    };
    QPushButton* toAllButton = makeButton(kToAllCtrlId, captions, toAll);
    QPushButton* oppositeButton = makeButton(kOppositeCtrlId, captions + 1, opposite);
    mFirst = makeButton(kFirstCtrlId, captions + 2, first);
    mFirst->setDefault(true);
    korva::LayOutQuestion(this, mText, {mFirst, toAllButton, oppositeButton});
}

YesNoToAll::~YesNoToAll() = default;

int YesNoToAll::NewDoModal(const char* text, const char* title)
{
    mText->setText(QString::fromUtf8(text ? text : ""));
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title)));
    return exec();
}

void YesNoToAll::setVisible(bool visible)
{
    TsDialog::setVisible(visible);
    if (visible && !mShown) {
        mShown = true;
        mFirst->setFocus();
    }
}

void YesNoToAll::reject()
{
    done(IDCANCEL);
}

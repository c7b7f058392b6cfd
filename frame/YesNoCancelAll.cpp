#include <KORVAutlwin/frame/YesNoCancelAll.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>

#include <KORVAutl/LanguageString.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr unsigned int kYesToAllText = 30711;
constexpr unsigned int kNoToAllText = 30712;
constexpr int kButtonWidth = 50;

} // namespace

namespace korva {

std::string WithCarriageReturns(const char* text)
{
    std::string result;
    for (const char* c = text ? text : ""; *c; ++c) {
        if (*c == '\n')
            result += '\r';
        result += *c;
    }
    return result;
}

QString ForDisplay(const std::string& text)
{
    QString shown = QString::fromStdString(text);
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return shown;
}

} // namespace korva

YesNoCancelAll::YesNoCancelAll() : TsDialog(kTemplateId, nullptr)
{
    Build();
}

YesNoCancelAll::YesNoCancelAll(const char* questionText, const char* detailsText, const char* titleText,
                               ButtonPressed defaultChoice, QWidget* parent, bool yes, bool yesToAll, bool no,
                               bool noToAll, bool cancel)
    : TsDialog(kTemplateId, parent), question(questionText ? questionText : ""),
      details(korva::WithCarriageReturns(detailsText)), title(titleText ? titleText : ""),
      defaultButton(defaultChoice)
{
    showButton[eYes] = yes;
    showButton[eYesToAll] = yesToAll;
    showButton[eNo] = no;
    showButton[eNoToAll] = noToAll;
    showButton[eCancel] = cancel;
    Build();
}

YesNoCancelAll::~YesNoCancelAll() = default;

void YesNoCancelAll::Build()
{
    mQuestion = new QLabel(this);
    mQuestion->setTextFormat(Qt::PlainText);
    mQuestion->setWordWrap(true);
    mQuestion->setProperty("ctrlId", kQuestionCtrlId);

    mDetails = new QPlainTextEdit(this);
    mDetails->setReadOnly(true);
    mDetails->setProperty("ctrlId", kDetailsCtrlId);

    struct ButtonDef
    {
        ButtonPressed button;
        int ctrlId;
        std::string caption;
    };
    // Left to right as the user reads the answers.
    const ButtonDef definitions[] = {
        {eYes, kYesCtrlId, korva::MessageBoxButtonText(IDYES)},
        {eYesToAll, kYesToAllCtrlId, LanguageString::Get(kYesToAllText)},
        {eNo, kNoCtrlId, korva::MessageBoxButtonText(IDNO)},
        {eNoToAll, kNoToAllCtrlId, LanguageString::Get(kNoToAllText)},
        {eCancel, kCancelCtrlId, korva::MessageBoxButtonText(IDCANCEL)},
    };
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (const ButtonDef& definition : definitions) {
        auto* button = new QPushButton(QString::fromStdString(definition.caption), this);
        button->setProperty("ctrlId", definition.ctrlId);
        button->setMinimumWidth(FromDlgX(kButtonWidth));
        const ButtonPressed value = definition.button;
        connect(button, &QPushButton::clicked, this, [this, value] { OnButton(value); });
        mButtons[definition.button] = button;
        row->addWidget(button);
    }

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mQuestion);
    layout->addWidget(mDetails, 1);
    layout->addLayout(row);
    resize(FromDlgX(300), FromDlgY(170));
}

QPushButton* YesNoCancelAll::ButtonOf(ButtonPressed button) const
{
    return button >= eYes && button <= eCancel ? mButtons[button] : nullptr;
}

YesNoCancelAll::ButtonPressed YesNoCancelAll::DoModal(const char* questionText, const char* detailsText,
                                                      const char* titleText, ButtonPressed defaultChoice)
{
    if (questionText)
        question = questionText;
    if (detailsText)
        details = korva::WithCarriageReturns(detailsText);
    if (titleText)
        title = titleText;
    if (defaultChoice != eNone)
        defaultButton = defaultChoice;
    buttonPressed = eCancel;
    exec();
    return buttonPressed;
}

void YesNoCancelAll::setVisible(bool visible)
{
    if (visible)
        OnInitDialog();
    TsDialog::setVisible(visible);
    if (!visible)
        return;
    // The default button takes the focus; without one, the details do, so that
    // Return presses nothing.
    if (QPushButton* button = ButtonOf(defaultButton); button && showButton[defaultButton])
        button->setFocus();
    else
        mDetails->setFocus();
}

void YesNoCancelAll::OnInitDialog()
{
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title.c_str())));
    mQuestion->setText(QString::fromStdString(question));
    mQuestion->setVisible(!question.empty());
    mDetails->setPlainText(korva::ForDisplay(details));
    for (int i = eYes; i <= eCancel; ++i) {
        QPushButton* button = mButtons[i];
        button->setVisible(showButton[i]);
        const bool isDefault = i == defaultButton && showButton[i];
        button->setDefault(isDefault);
        // Without a default button, Return must not press whichever button has the focus.
        button->setAutoDefault(defaultButton != eNone);
    }
}

void YesNoCancelAll::OnButton(ButtonPressed button)
{
    buttonPressed = button;
    accept();
}

YesNoCancelAll::ButtonPressed YesNoCancelAll::ButtonOfAnswer(int answer)
{
    switch (answer) {
    case 1: return eYes;
    case 2: return eYesToAll;
    case 3: return eNo;
    case 4: return eNoToAll;
    case 5: return eCancel;
    default: return eNone;
    }
}

int YesNoCancelAll::AnswerOfButton(int button)
{
    switch (button) {
    case eYes: return 1;
    case eNo: return 3;
    case eYesToAll: return 2;
    case eNoToAll: return 4;
    default: return 5;
    }
}

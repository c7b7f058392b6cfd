#include <KORVAutlwin/frame/YesNoDialog.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/YesNoCancelAll.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int kButtonWidth = 50;
constexpr int kYesAnswer = 1;
} // namespace

YesNoDialog::YesNoDialog(const char* question, const char* detailsText, const char* title, int defaultAnswer,
                         QWidget* parent)
    : TsDialog(kTemplateId, parent), details(korva::WithCarriageReturns(detailsText))
{
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title)));
    setSizeGripEnabled(true);

    auto* questionLabel = new QLabel(this);
    questionLabel->setTextFormat(Qt::PlainText);
    questionLabel->setWordWrap(true);
    questionLabel->setText(QString::fromUtf8(question ? question : ""));
    questionLabel->setProperty("ctrlId", kQuestionCtrlId);
    questionLabel->setVisible(question && *question);

    auto* detailsView = new QPlainTextEdit(this);
    detailsView->setReadOnly(true);
    detailsView->setLineWrapMode(QPlainTextEdit::NoWrap);
    detailsView->setPlainText(korva::ForDisplay(details));
    detailsView->setProperty("ctrlId", kDetailsCtrlId);

    auto* yes = new QPushButton(QString::fromStdString(korva::MessageBoxButtonText(IDYES)), this);
    yes->setProperty("ctrlId", kYesCtrlId);
    yes->setMinimumWidth(FromDlgX(kButtonWidth));
    connect(yes, &QPushButton::clicked, this, [this] { done(IDOK); });
    auto* no = new QPushButton(QString::fromStdString(korva::MessageBoxButtonText(IDNO)), this);
    no->setProperty("ctrlId", kNoCtrlId);
    no->setMinimumWidth(FromDlgX(kButtonWidth));
    connect(no, &QPushButton::clicked, this, [this] { done(IDCANCEL); });
    mDefault = defaultAnswer == kYesAnswer ? yes : no;
    mDefault->setDefault(true);

    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(yes);
    row->addWidget(no);
    row->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(questionLabel);
    layout->addWidget(detailsView, 1);
    layout->addLayout(row);
    resize(FromDlgX(300), FromDlgY(180));
}

YesNoDialog::~YesNoDialog() = default;

void YesNoDialog::setVisible(bool visible)
{
    TsDialog::setVisible(visible);
    if (visible && !mShown) {
        mShown = true;
        mDefault->setFocus();
    }
}

void YesNoDialog::reject()
{
    done(IDCANCEL);
}

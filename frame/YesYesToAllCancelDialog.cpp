#include <KORVAutlwin/frame/YesYesToAllCancelDialog.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>

#include <KORVAutl/LanguageString.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr unsigned int kYesToAllText = 30711;
constexpr int kButtonWidth = 60;
} // namespace

YesYesToAllCancelDialog::YesYesToAllCancelDialog(QWidget* parent) : TsDialog(0u, parent)
{
    mText = new QLabel(this);
    mText->setTextFormat(Qt::PlainText);
    mText->setWordWrap(true);
    mText->setProperty("ctrlId", kTextCtrlId);

    auto makeButton = [this](int ctrlId, const std::string& caption, int result) {
        auto* button = new QPushButton(QString::fromStdString(caption), this);
        button->setProperty("ctrlId", ctrlId);
        button->setMinimumWidth(FromDlgX(kButtonWidth));
        connect(button, &QPushButton::clicked, this, [this, result] { done(result); });
        return button;
    };
    mYes = makeButton(kYesCtrlId, korva::MessageBoxButtonText(IDYES), eYes);
    mYesToAll = makeButton(kYesToAllCtrlId, LanguageString::Get(kYesToAllText), eYesToAll);
    QPushButton* cancel = makeButton(kCancelCtrlId, korva::MessageBoxButtonText(IDCANCEL), IDCANCEL);
    mYes->setDefault(true);

    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(mYes);
    row->addWidget(mYesToAll);
    row->addWidget(cancel);
    row->addStretch(1);

    auto* icon = new QLabel(this);
    icon->setObjectName(QStringLiteral("icon"));
    icon->setPixmap(korva::MessageBoxIcon(MB_ICONQUESTION, this));
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addWidget(mText, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(row);
    setMinimumWidth(FromDlgX(220));
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

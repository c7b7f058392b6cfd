#include <KORVAutlwin/frame/FatalErrorDialog.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsSystemInfo.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace {
constexpr int kTextCtrlId = 10001;
constexpr int kEndNoticeCtrlId = 10000;
constexpr unsigned int kEndNoticeText = 13325;
} // namespace

FatalErrorDialog::FatalErrorDialog(const char* text, const char* title, QWidget* parent, bool inform)
    : TsDialog(0u, parent)
{
    setWindowTitle(QString::fromUtf8(title && *title ? title : TsSystemInfo::GetApplicationName().c_str()));

    mText = new QPlainTextEdit(this);
    mText->setReadOnly(true);
    mText->setPlainText(QString::fromUtf8(text ? text : ""));
    mText->setProperty("ctrlId", kTextCtrlId);

    mEndNotice = new QLabel(QString::fromUtf8(LanguageString::Get(kEndNoticeText)), this);
    mEndNotice->setWordWrap(true);
    mEndNotice->setProperty("ctrlId", kEndNoticeCtrlId);
    mEndNotice->setVisible(!inform);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mText, 1);
    layout->addWidget(mEndNotice);
    layout->addWidget(buttons);
    // Room for a long text without a screen-filling window.
    resize(560, 420);
}

FatalErrorDialog::~FatalErrorDialog() = default;

#include <KORVAutlwin/frame/DetailsDialog.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/MuteDetailsDialog.h>
#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutlwin/frame/YesNoCancelAll.h>

#include <KORVAutl/LanguageString.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr unsigned int kShowDetailsText = 13181;
constexpr unsigned int kHideDetailsText = 30713;
constexpr unsigned int kDontShowAgainText = 13199;
constexpr int kDontShow = 1;
constexpr int kButtonWidth = 50;

} // namespace

DetailsDialogClass::DetailsDialogClass(QWidget* parent, const char* text, const char* detailsText, const char* title,
                                       unsigned int nType, bool showDetails, const char* key)
    : TsDialog(kTemplateId, parent), details(detailsText ? detailsText : ""), dontShowKey(key ? key : "")
{
    if (!dontShowKey.empty() && korva::GetDontShowAgainValue(dontShowKey.c_str(), 0) == kDontShow)
        return;
    if (MuteDetailsDialog::Instance()->IsMuted()) {
        MuteDetailsDialog::Instance()->Collect(text, detailsText, title, nType);
        return;
    }
    Build(text, title, nType, showDetails);
    mResult = exec();
    if (mResult == IDOK && mCheckBox && mCheckBox->isChecked())
        korva::WriteDontShowAgainValue(dontShowKey.c_str(), kDontShow);
}

DetailsDialogClass::~DetailsDialogClass() = default;

void DetailsDialogClass::Build(const char* text, const char* title, unsigned int nType, bool showDetails)
{
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title)));
    setSizeGripEnabled(true);

    auto* icon = new QLabel(this);
    icon->setObjectName(QStringLiteral("icon"));
    icon->setPixmap(korva::MessageBoxIcon(nType, this));
    icon->setAlignment(Qt::AlignTop | Qt::AlignHCenter);

    auto* message = new QLabel(this);
    message->setTextFormat(Qt::PlainText);
    message->setWordWrap(true);
    message->setTextInteractionFlags(Qt::TextSelectableByMouse);
    message->setText(QString::fromUtf8(text ? text : ""));
    message->setProperty("ctrlId", kTextCtrlId);
    message->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addWidget(message, 1);

    auto* row = new QHBoxLayout;
    if (!dontShowKey.empty()) {
        mCheckBox = new QCheckBox(QString::fromUtf8(LanguageString::Get(kDontShowAgainText)), this);
        mCheckBox->setProperty("ctrlId", kCheckBoxCtrlId);
        row->addWidget(mCheckBox);
    }
    row->addStretch(1);
    auto* ok = new QPushButton(QString::fromStdString(korva::MessageBoxButtonText(IDOK)), this);
    ok->setProperty("ctrlId", kOkCtrlId);
    ok->setMinimumWidth(FromDlgX(kButtonWidth));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, [this] { done(IDOK); });
    row->addWidget(ok);
    mDetailsButton = new QPushButton(this);
    mDetailsButton->setProperty("ctrlId", kDetailsButtonCtrlId);
    mDetailsButton->setMinimumWidth(FromDlgX(kButtonWidth));
    mDetailsButton->setAutoDefault(false);
    mDetailsButton->setVisible(!details.empty());
    connect(mDetailsButton, &QPushButton::clicked, this, [this] { ShowDetails(!IsDetailsShown()); });
    row->addWidget(mDetailsButton);

    mDetails = new QPlainTextEdit(this);
    mDetails->setReadOnly(true);
    mDetails->setLineWrapMode(QPlainTextEdit::NoWrap);
    mDetails->setPlainText(korva::ForDisplay(details));
    mDetails->setProperty("ctrlId", kDetailsCtrlId);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(row);
    layout->addWidget(mDetails, 3);
    setMinimumWidth(FromDlgX(240));
    ShowDetails(showDetails && !details.empty());
    FitHeight();
}

// As tall as the wrapped text, the buttons and (when open) the details need: no empty band.
void DetailsDialogClass::FitHeight()
{
    const int width = std::max(minimumWidth(), sizeHint().width());
    layout()->activate();
    const int height = layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height();
    resize(width, height);
}

bool DetailsDialogClass::IsDetailsShown() const
{
    return mDetails && !mDetails->isHidden();
}

void DetailsDialogClass::ShowDetails(bool show)
{
    mDetails->setVisible(show);
    mDetailsButton->setText(QString::fromUtf8(LanguageString::Get(show ? kHideDetailsText : kShowDetailsText)));
    // The dialog grows by the details area and shrinks back without it; before
    // the first show, the window takes its size from the layout by itself.
    if (isVisible()) {
        layout()->invalidate();
        FitHeight();
    }
}

void DetailsDialogClass::reject()
{
    done(IDCANCEL);
}

void DetailsDialog(const char* text, const char* title, unsigned int nType, bool showDetails)
{
    DetailsDialogClass(korva::GetSafeOwner(), text, nullptr, title, nType, showDetails);
}

void DetailsDialog(const char* text, const char* details, const char* title, unsigned int nType, bool showDetails)
{
    DetailsDialogClass(korva::GetSafeOwner(), text, details, title, nType, showDetails);
}

void DetailsDialog(QWidget* parent, const char* text, const char* details, const char* title, unsigned int nType,
                   bool showDetails)
{
    DetailsDialogClass(parent ? parent : korva::GetSafeOwner(), text, details, title, nType, showDetails);
}

void DetailsDialogDontShowAgain(const char* key, const char* text, const char* details, const char* title,
                                unsigned int nType, bool showDetails)
{
    DetailsDialogClass(korva::GetSafeOwner(), text, details, title, nType, showDetails, key);
}

#include <KORVAutlwin/audit/AuditTrailPage.h>

#include <KORVAutlwin/audit/AuditTrailSettingsUI.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsMessageBox.h>

#include <KORVAutl/AuditTrail.h>
#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/LanguageString.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>

namespace {

template <class Control>
Control* Make(QWidget* parent, int id)
{
    auto* control = new Control(QString::fromUtf8(LanguageString::Get(id)), parent);
    control->setProperty("ctrlId", id);
    return control;
}

} // namespace

AuditTrailPage::AuditTrailPage(AuditTrail* trail)
    : TsPropertyPage(IDD, 0, nullptr, kHelpTopic), mTrail(trail), mLogEvents(Make<QCheckBox>(this, IDC_CB_LOGEVENTS)),
      mExtendedUserInfo(Make<QCheckBox>(this, IDC_CB_EXTENDEDUSERINFO)),
      mClearLog(Make<QPushButton>(this, IDC_B_CLEARLOG)), mSave(Make<QPushButton>(this, IDC_SAVE_BUTTON))
{
    SetPageTitle(LanguageString::Get(IDD));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mLogEvents);
    layout->addWidget(mExtendedUserInfo);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(mClearLog);
    buttons->addWidget(mSave);
    buttons->addStretch();
    layout->addLayout(buttons);
    layout->addStretch();
    connect(mLogEvents, &QCheckBox::clicked, this, [this] { OnCbLogevents(); });
    connect(mExtendedUserInfo, &QCheckBox::clicked, this, [this] { OnCbExtendeduserinfo(); });
    connect(mClearLog, &QPushButton::clicked, this, [this] { OnBClearlog(); });
    connect(mSave, &QPushButton::clicked, this, [this] { OnSaveButton(); });
}

AuditTrailPage::~AuditTrailPage() = default;

bool AuditTrailPage::OnInitDialog()
{
    TsPropertyPage::OnInitDialog();
    std::unique_ptr<AuditTrailSettings> temporary;
    const AuditTrailSettings* settings = nullptr;
    if (mTrail) {
        settings = &mTrail->GetSettings();
        if (mLocked || settings->mLockedUI)
            for (QWidget* control : {static_cast<QWidget*>(mLogEvents), static_cast<QWidget*>(mClearLog),
                                     static_cast<QWidget*>(mExtendedUserInfo)})
                control->setEnabled(false);
    } else {
        // For looking only: what an administrator has set for everyone.
        temporary = std::make_unique<AuditTrailSettings>(AuditTrailSettingsUI::GetGlobalAuditTrailSettings());
        temporary->Load();
        settings = temporary.get();
        for (QWidget* control : {static_cast<QWidget*>(mClearLog), static_cast<QWidget*>(mSave),
                                 static_cast<QWidget*>(mLogEvents), static_cast<QWidget*>(mExtendedUserInfo)})
            control->setEnabled(false);
    }
    mLogEvents->setChecked(settings->mLogEvents >= 1);
    mExtendedUserInfo->setChecked(settings->mPromptForExtendedUserInfo);
    if (temporary)
        delete temporary->GetSection();
    return true;
}

bool AuditTrailPage::OnApply()
{
    if (IsChanged() && mTrail) {
        mDirty = true;
        AuditTrailSettings& settings = mTrail->GetSettings();
        const bool wasOn = settings.mLogEvents > 0;
        // Logged while logging still works.
        if (!mLogEvents->isChecked() && wasOn)
            mTrail->AddEvent("Audit Trail turned off.", nullptr, 0);
        settings.mLogEvents = mLogEvents->isChecked() ? 1 : 0;
        settings.mPromptForExtendedUserInfo = mExtendedUserInfo->isChecked();
        // The store decides what stands (an administrator's values win).
        settings.Save();
        settings.Load();
        if (mLogEvents->isChecked()) {
            mTrail->ResetForSession();
            mTrail->Load();
            mTrail->BeginSessionAndVerifySignature();
            mTrail->AddEvent("Audit Trail turned on.", nullptr, 0);
            mTrail->AddEvent("Audit Trail", mExtendedUserInfo->isChecked() ? "Extended User Information: On"
                                                                         : "Extended User Information: Off",
                             0);
        } else {
            mTrail->EndSessionAndSave();
        }
        mTrail->BroadCastChange();
    }
    return TsPropertyPage::OnApply();
}

void AuditTrailPage::OnBClearlog()
{
    if (mTrail && TsMessageBox("You are about to clear the entire Audit Trail of this investigation. Do you want to "
                               "continue?",
                               MB_YESNO | MB_ICONWARNING) == IDYES)
        mTrail->Clear();
}

void AuditTrailPage::OnSaveButton()
{
    AuditTrailSettingsUI::AuditTrailViewSaveAsDialog(mTrail);
}

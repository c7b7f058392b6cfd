#include <KORVAutlwin/options/BasePropertyPageHelper.h>
#include <KORVAutlwin/options/TsPropertyPage.h>
#include <KORVAutlwin/options/TsPropertySheet.h>

#include <KORVAutl/LanguageString.h>

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QTabWidget>

namespace {

// A wait cursor for the length of a scope.
struct WaitCursor
{
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
};

} // namespace

TsPropertyPage::TsPropertyPage(unsigned int templateId, unsigned int captionId, BasePropertyPageHelper* helper,
                               unsigned int helpTopicId)
    : mTemplateId(templateId), mCaptionId(captionId), mHelpTopicId(helpTopicId),
      mExceptionsHandled(TsDialog::GetDefaultExceptionsHandled()), mHelper(helper)
{
    SetHelpTopicID(helpTopicId);
}

TsPropertyPage::~TsPropertyPage()
{
    if (mSheet)
        mSheet->RemovePage(this);
}

void TsPropertyPage::SetHelpTopicID(unsigned int topic)
{
    mHelpTopicId = topic;
    if (topic != static_cast<unsigned int>(-1))
        mFlags |= PSP_HASHELP;
    else
        mFlags &= ~PSP_HASHELP;
}

std::string TsPropertyPage::GetCaption() const
{
    return mCaptionId ? std::string(LanguageString::Get(mCaptionId)) : std::string();
}

void TsPropertyPage::Changed()
{
    if (!mChanged && mHelper)
        mHelper->AddUpdate();
    mChanged = true;
    SetModified(true);
}

void TsPropertyPage::Unchanged()
{
    if (mChanged && mHelper)
        mHelper->RemoveUpdate();
    mChanged = false;
    SetModified(false);
}

void TsPropertyPage::SetModified(bool changed)
{
    if (mSheet)
        mSheet->PageModified(this, changed);
}

void TsPropertyPage::OnHelp()
{
    TsDialog::ShowHelpTopic(mHelpTopicId);
}

void TsPropertyPage::CreatePageWindow()
{
    if (mHasWindow)
        return;
    mHasWindow = true;
    OnInitDialog();
}

bool TsPropertyPage::OnInitDialog()
{
    if (!mPageTitle.empty())
        SetPageTitle(mPageTitle.c_str());
    return true;
}

bool TsPropertyPage::OnSetActive()
{
    return true;
}

bool TsPropertyPage::OnKillActive()
{
    return true;
}

bool TsPropertyPage::OnApply()
{
    WaitCursor wait;
    if (mChanged && mHelper) {
        // Each changed page counts down; the last one stores them all.
        if (mHelper->Connected() == 1 && !mHelper->Update())
            return false;
    } else {
        OnOK();
    }
    Unchanged();
    return true;
}

void TsPropertyPage::OnOK() {}

void TsPropertyPage::OnCancel()
{
    Unchanged();
}

bool TsPropertyPage::OnWizardFinish()
{
    return OnApply();
}

void TsPropertyPage::SetPageTitle(const char* title)
{
    mPageTitle = title ? title : "";
    if (mHasWindow && mSheet) {
        const int index = mSheet->GetPageIndex(this);
        if (index >= 0)
            mSheet->SetTabText(index, mPageTitle.c_str());
    }
}

void TsPropertyPage::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F1) {
        OnHelp();
        return;
    }
    QWidget::keyPressEvent(event);
}

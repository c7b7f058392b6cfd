#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/options/TsPropertyPage.h>
#include <KORVAutlwin/options/TsPropertySheet.h>

#include <KORVAutl/LanguageString.h>

#include <QHBoxLayout>
#include <QPushButton>
#include <QShowEvent>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <stdexcept>

TsPropertySheet::TsPropertySheet(unsigned int captionId, QWidget* parent, unsigned int selectPage)
    : TsDialog(0u, parent)
{
    setWindowTitle(QString::fromUtf8(LanguageString::Get(captionId)));
    Construct(selectPage);
}

TsPropertySheet::TsPropertySheet(const char* caption, QWidget* parent, unsigned int selectPage)
    : TsDialog(0u, parent)
{
    setWindowTitle(QString::fromUtf8(caption ? caption : ""));
    Construct(selectPage);
}

TsPropertySheet::~TsPropertySheet()
{
    // Pages belong to their owners: take them out before Qt deletes the children.
    for (TsPropertyPage* page : mPages) {
        page->mSheet = nullptr;
        mTabs->removeTab(mTabs->indexOf(page));
        page->setParent(nullptr);
    }
}

void TsPropertySheet::Construct(unsigned int selectPage)
{
    mSelectPage = selectPage;
    setSizeGripEnabled(true);
    auto* layout = new QVBoxLayout(this);
    mTabs = new QTabWidget(this);
    layout->addWidget(mTabs, 1);
    mButtonRow = new QHBoxLayout;
    mButtonRow->addStretch(1);
    struct Button
    {
        unsigned int id;
        unsigned int textId;
    };
    // Back, Next, Finish only in a wizard; OK and Apply only outside one.
    const Button buttons[] = {{ID_WIZBACK, 35001}, {ID_WIZNEXT, 35002}, {ID_WIZFINISH, 35003},
                              {IDOK, 35004},       {IDCANCEL, 35005},   {ID_APPLY_NOW, 35006},
                              {IDHELP, 35007}};
    for (const Button& button : buttons) {
        auto* push = new QPushButton(QString::fromUtf8(LanguageString::Get(button.textId)), this);
        push->setProperty("ctrlId", button.id);
        push->setAutoDefault(false);
        mButtonRow->addWidget(push);
    }
    layout->addLayout(mButtonRow);
    GetButton(IDOK)->setDefault(true);
    GetButton(ID_APPLY_NOW)->setEnabled(false);
    for (EButtonId id : {ID_WIZBACK, ID_WIZNEXT, ID_WIZFINISH})
        GetButton(id)->hide();

    connect(GetButton(IDOK), &QPushButton::clicked, this, [this] { OnOK(); });
    connect(GetButton(IDCANCEL), &QPushButton::clicked, this, [this] { OnCancel(); });
    connect(GetButton(ID_APPLY_NOW), &QPushButton::clicked, this, [this] {
        if (OnApply())
            GetButton(ID_APPLY_NOW)->setEnabled(false);
    });
    connect(GetButton(IDHELP), &QPushButton::clicked, this, [this] {
        if (TsPropertyPage* page = GetActivePage())
            page->OnHelp();
    });
    connect(GetButton(ID_WIZBACK), &QPushButton::clicked, this, [this] { OnWizardMove(-1); });
    connect(GetButton(ID_WIZNEXT), &QPushButton::clicked, this, [this] { OnWizardMove(1); });
    connect(GetButton(ID_WIZFINISH), &QPushButton::clicked, this, [this] { OnWizardFinishButton(); });
    connect(mTabs, &QTabWidget::currentChanged, this, &TsPropertySheet::OnTabChanged);
}

QPushButton* TsPropertySheet::GetButton(unsigned int id) const
{
    for (QPushButton* button : findChildren<QPushButton*>(Qt::FindDirectChildrenOnly))
        if (button->property("ctrlId").toUInt() == id)
            return button;
    return nullptr;
}

void TsPropertySheet::SetWizardMode()
{
    mWizard = true;
    mTabs->tabBar()->hide();
    for (unsigned int id : {static_cast<unsigned int>(IDOK), static_cast<unsigned int>(ID_APPLY_NOW)})
        GetButton(id)->hide();
    for (EButtonId id : {ID_WIZBACK, ID_WIZNEXT})
        GetButton(id)->show();
    GetButton(ID_WIZNEXT)->setDefault(true);
}

void TsPropertySheet::AddPage(TsPropertyPage* page)
{
    if (!page || std::find(mPages.begin(), mPages.end(), page) != mPages.end())
        return;
    mPages.push_back(page);
    page->mSheet = this;
    const std::string title = page->GetPageTitle().empty() ? page->GetCaption() : page->GetPageTitle();
    mSwitching = true;
    mTabs->addTab(page, QString::fromUtf8(title));
    mSwitching = false;
    if (mInitialised && !mActive)
        Activate(page);
    UpdateButtons();
}

void TsPropertySheet::RemovePage(TsPropertyPage* page)
{
    auto found = std::find(mPages.begin(), mPages.end(), page);
    if (found == mPages.end())
        return;
    mPages.erase(found);
    mModified.erase(std::remove(mModified.begin(), mModified.end(), page), mModified.end());
    page->mSheet = nullptr;
    const bool wasActive = mActive == page;
    if (wasActive)
        mActive = nullptr;
    mSwitching = true;
    mTabs->removeTab(mTabs->indexOf(page));
    mSwitching = false;
    page->setParent(nullptr);
    page->hide();
    if (wasActive && mInitialised && !mPages.empty())
        Activate(GetPage(std::max(0, mTabs->currentIndex())));
    UpdateButtons();
}

void TsPropertySheet::RemovePage(int index)
{
    RemovePage(GetPage(index));
}

int TsPropertySheet::GetPageCount() const
{
    return static_cast<int>(mPages.size());
}

TsPropertyPage* TsPropertySheet::GetPage(int index) const
{
    if (index < 0 || index >= GetPageCount())
        throw std::invalid_argument("TsPropertySheet::GetPage: no page at this index");
    return static_cast<TsPropertyPage*>(mTabs->widget(index));
}

int TsPropertySheet::GetPageIndex(const TsPropertyPage* page) const
{
    return mTabs->indexOf(const_cast<TsPropertyPage*>(page));
}

TsPropertyPage* TsPropertySheet::GetActivePage() const
{
    return mActive;
}

int TsPropertySheet::GetActiveIndex() const
{
    return mActive ? GetPageIndex(mActive) : -1;
}

void TsPropertySheet::Activate(TsPropertyPage* page)
{
    page->CreatePageWindow();
    mActive = page;
    mSwitching = true;
    mTabs->setCurrentWidget(page);
    mSwitching = false;
    page->OnSetActive();
    UpdateButtons();
}

bool TsPropertySheet::SetActivePage(TsPropertyPage* page)
{
    if (GetPageIndex(page) < 0)
        return false;
    if (page == mActive)
        return true;
    if (mActive && mInitialised && !mActive->OnKillActive())
        return false;
    if (!mInitialised) {
        mSelectPage = static_cast<unsigned int>(GetPageIndex(page));
        return true;
    }
    Activate(page);
    return true;
}

bool TsPropertySheet::SetActivePage(int index)
{
    return index >= 0 && index < GetPageCount() && SetActivePage(GetPage(index));
}

void TsPropertySheet::OnTabChanged(int index)
{
    if (mSwitching || !mInitialised || index < 0)
        return;
    auto* page = static_cast<TsPropertyPage*>(mTabs->widget(index));
    if (page == mActive)
        return;
    if (mActive && !mActive->OnKillActive()) {
        // The page keeps the tab: it refused to let go.
        mSwitching = true;
        mTabs->setCurrentWidget(mActive);
        mSwitching = false;
        return;
    }
    Activate(page);
}

void TsPropertySheet::SetTabText(int index, const char* text)
{
    if (index >= 0 && index < mTabs->count())
        mTabs->setTabText(index, QString::fromUtf8(text ? text : ""));
}

bool TsPropertySheet::OnInitDialog()
{
    // A modeless wizard initialises as a sheet, then turns into a wizard again.
    const bool wizard = mWizard;
    if (mModeless && wizard)
        mWizard = false;
    mInitialised = true;
    if (!mPages.empty()) {
        const int first = mSelectPage < mPages.size() ? static_cast<int>(mSelectPage) : 0;
        Activate(GetPage(first));
    }
    mWizard = wizard;
    for (int index = 0; index < GetPageCount(); ++index)
        if (!GetPage(index)->GetPageTitle().empty())
            SetTabText(index, GetPage(index)->GetPageTitle().c_str());
    return true;
}

void TsPropertySheet::showEvent(QShowEvent* event)
{
    if (!mInitialised)
        OnInitDialog();
    TsDialog::showEvent(event);
}

void TsPropertySheet::SetWizardButtons(unsigned long flags)
{
    QPushButton* back = GetButton(ID_WIZBACK);
    QPushButton* next = GetButton(ID_WIZNEXT);
    QPushButton* finish = GetButton(ID_WIZFINISH);
    if (!mWizardButtonsRearranged && back && next) {
        // Next stands 6 pixels right of Back, not touching it.
        const int at = mButtonRow->indexOf(next);
        mButtonRow->insertSpacing(at, 6);
        mWizardButtonsRearranged = true;
    }
    next->setEnabled(flags & PSWIZB_NEXT);
    finish->setEnabled(flags & PSWIZB_FINISH);
    finish->setVisible(flags & (PSWIZB_FINISH | PSWIZB_DISABLEDFINISH));
    back->setEnabled(flags & PSWIZB_BACK);
}

void TsPropertySheet::OnWizardMove(int step)
{
    if (!mActive)
        return;
    const int chosen = step < 0 ? mActive->OnWizardBack() : mActive->OnWizardNext();
    if (chosen == -1)
        return;
    const int index = GetActiveIndex() + step;
    if (index >= 0 && index < GetPageCount())
        SetActivePage(index);
}

void TsPropertySheet::OnWizardFinishButton()
{
    if (mActive && mActive->OnWizardFinish())
        done(ID_WIZFINISH);
}

bool TsPropertySheet::ApplyAllNow()
{
    std::vector<TsPropertyPage*> collected;
    for (int index = 0; index < GetPageCount(); ++index) {
        TsPropertyPage* page = GetPage(index);
        if (page->IsChanged() || (!mWizard && page->HasWindow()))
            collected.push_back(page);
    }
    for (TsPropertyPage* page : collected)
        if (!page->OnApply())
            return false;
    return true;
}

void TsPropertySheet::OnOK()
{
    if (mActive && !mActive->OnKillActive())
        return;
    if (ApplyAllNow()) {
        done(IDOK);
        return;
    }
    if (mActive)
        mActive->OnSetActive();
}

void TsPropertySheet::OnCancel()
{
    ClearChanged();
    done(IDCANCEL);
}

bool TsPropertySheet::OnApply()
{
    return ApplyAllNow();
}

void TsPropertySheet::accept()
{
    OnOK();
}

void TsPropertySheet::reject()
{
    OnCancel();
}

void TsPropertySheet::ClearChanged()
{
    for (TsPropertyPage* page : mPages)
        page->Unchanged();
}

bool TsPropertySheet::IsChanged() const
{
    return std::any_of(mPages.begin(), mPages.end(), [](TsPropertyPage* page) { return page->IsChanged(); });
}

void TsPropertySheet::PageModified(TsPropertyPage* page, bool changed)
{
    mModified.erase(std::remove(mModified.begin(), mModified.end(), page), mModified.end());
    if (changed)
        mModified.push_back(page);
    UpdateButtons();
}

void TsPropertySheet::UpdateButtons()
{
    GetButton(ID_APPLY_NOW)->setEnabled(!mModified.empty());
    GetButton(IDHELP)->setEnabled(mActive && (mActive->GetFlags() & TsPropertyPage::PSP_HASHELP));
}

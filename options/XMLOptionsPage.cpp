#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/options/PropertyListCtrl.h>
#include <KORVAutlwin/options/TsPropertySheet.h>
#include <KORVAutlwin/options/XMLOptionsPage.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/LanguageString.h>

#include <QCheckBox>
#include <QContextMenuEvent>
#include <QGridLayout>
#include <QPushButton>

XMLOptionsPage::XMLOptionsPage(const char* title, ConfigurationSection* settings,
                               const ConfigurationSection* description, const ConfigurationSection* defaults,
                               BasePropertyPageHelper* helper, unsigned int helpId)
    : TsPropertyPage(IDD_XMLOPTIONS_PAGE, 0, helper, helpId), mTitle(title ? title : "")
{
    Construct(settings, description, defaults);
}

XMLOptionsPage::XMLOptionsPage(unsigned int captionId, ConfigurationSection* settings,
                               const ConfigurationSection* description, const ConfigurationSection* defaults,
                               BasePropertyPageHelper* helper, unsigned int helpId)
    : TsPropertyPage(IDD_XMLOPTIONS_PAGE, captionId, helper, helpId)
{
    Construct(settings, description, defaults);
}

XMLOptionsPage::~XMLOptionsPage()
{
    // The grid would otherwise go with the page's children, after the manager
    // that a pending edit still reaches.
    delete mList;
    mList = nullptr;
}

void XMLOptionsPage::Construct(ConfigurationSection* settings, const ConfigurationSection* description,
                               const ConfigurationSection* defaults)
{
    // A refused value is reported in the application's message box.
    XMLOptionsPropertyItemManager::SetMessageBoxHook(
        [](const std::string& text) { TsMessageBox(text.c_str(), MB_OK | MB_ICONEXCLAMATION); });
    if (WinApp* app = WinApp::GetApp())
        mShowDetails = app->GetProfileInt("Settings", "XMLOptionsPageShowDetails", 1);
    mSettings = settings;
    if (description)
        mDescription.reset(description->Copy());
    mManager = std::make_unique<XMLOptionsPropertyItemManager>(settings, description, defaults);

    auto* layout = new QGridLayout(this);
    mList = new PropertyListCtrl(this);
    mList->setProperty("ctrlId", static_cast<unsigned int>(IDC_OPTIONS_PROPERTY_LIST));
    mShowDetailsBox = new QCheckBox(QString::fromUtf8(LanguageString::Get(35008)), this);
    mShowDetailsBox->setProperty("ctrlId", static_cast<unsigned int>(IDC_CHB_OPTIONS_SHOW_DETAILS));
    mResetButton = new QPushButton(QString::fromUtf8(LanguageString::Get(35009)), this);
    mResetButton->setProperty("ctrlId", static_cast<unsigned int>(IDC_OPTIONS_BN_RESET));
    mResetButton->setAutoDefault(false);
    layout->addWidget(mList, 0, 0, 1, 3);
    layout->addWidget(mShowDetailsBox, 1, 0, Qt::AlignLeft);
    layout->setColumnStretch(1, 1);
    layout->addWidget(mResetButton, 1, 2, Qt::AlignRight);
    layout->setRowStretch(0, 1);
    mShowDetailsBox->setChecked(mShowDetails == 1);
    connect(mResetButton, &QPushButton::clicked, this, [this] { OnOptionsBnReset(); });
    connect(mShowDetailsBox, &QCheckBox::clicked, this, [this] { OnChbOptionsShowDetails(); });
}

bool XMLOptionsPage::OnInitDialog()
{
    TsPropertyPage::OnInitDialog();
    mManager->OnInitManager(0);
    mManager->SetPage(this);
    mList->SetPropertyItemManager(mManager.get());
    mList->ShowDetails(mShowDetails == 1);
    if (!mTitle.empty())
        SetPageTitle(mTitle.c_str());
    return true;
}

bool XMLOptionsPage::OnApply()
{
    // Destroying the in-place control commits a pending edit first.
    mList->ShowInPlaceControl(false);
    mManager->SaveValues();
    mList->Refresh();
    mList->repaint();
    return TsPropertyPage::OnApply();
}

void XMLOptionsPage::OnOptionsBnReset()
{
    mManager->ResetToDefaults();
    mList->Refresh();
    Changed();
}

void XMLOptionsPage::OnChbOptionsShowDetails()
{
    mShowDetails = mShowDetailsBox->isChecked() ? 1 : 0;
    mList->ShowDetails(mShowDetails == 1);
    mList->Refresh();
    mList->repaint();
    if (WinApp* app = WinApp::GetApp())
        app->WriteProfileInt("Settings", "XMLOptionsPageShowDetails", mShowDetails);
}

void XMLOptionsPage::OnOptionChanged()
{
    Changed();
}

void XMLOptionsPage::ActivateOptionsPage()
{
    TsPropertySheet* sheet = GetSheet();
    if (sheet && sheet->GetActivePage() != this)
        sheet->SetActivePage(this);
}

void XMLOptionsPage::RefreshOptions()
{
    mList->Refresh();
    mList->repaint();
}

void XMLOptionsPage::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
}

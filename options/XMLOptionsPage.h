#pragma once
// An options page made from an option description: a property grid of the
// options, a box showing or hiding the details area, and a button resetting
// every option to its default. Values reach the settings on Apply.

#include <KORVAutlwin/options/TsPropertyPage.h>
#include <KORVAutlwin/options/XMLOptionsPropertyItemManager.h>

#include <memory>
#include <string>

class ConfigurationSection;
class PropertyListCtrl;
class QCheckBox;
class QPushButton;

/// A property page whose options come from an option description and live in a settings section.
class XMLOptionsPage : public TsPropertyPage, public XMLOptionsPageLink
{
    Q_OBJECT
public:
    /// Control ids of the page.
    enum EControlId : unsigned int
    {
        IDD_XMLOPTIONS_PAGE = 16083,
        IDC_OPTIONS_BN_RESET = 16030,
        IDC_CHB_OPTIONS_SHOW_DETAILS = 16031,
        IDC_OPTIONS_PROPERTY_LIST = 16038
    };

    /// `settings` holds the values in its sub-sections; `description` (null:
    /// `settings` itself) the options; `defaults` (may be null) the defaults of
    /// options without "Default". The page titles its tab with `title`.
    XMLOptionsPage(const char* title, ConfigurationSection* settings, const ConfigurationSection* description,
                   const ConfigurationSection* defaults, BasePropertyPageHelper* helper = nullptr,
                   unsigned int helpId = static_cast<unsigned int>(-1));
    /// The same, the tab named by the string `captionId`.
    XMLOptionsPage(unsigned int captionId, ConfigurationSection* settings, const ConfigurationSection* description,
                   const ConfigurationSection* defaults, BasePropertyPageHelper* helper = nullptr,
                   unsigned int helpId = static_cast<unsigned int>(-1));
    ~XMLOptionsPage() override;

    /// Binds the grid to the manager and shows or hides the details by the flag.
    bool OnInitDialog() override;
    /// Commits a pending edit, saves every value, and applies the page.
    bool OnApply() override;
    /// The reset button: every option to its default; nothing is stored before Apply.
    void OnOptionsBnReset();
    /// The show-details box: shows or hides the details and keeps the choice in the profile.
    void OnChbOptionsShowDetails();

    void OnOptionChanged() override;
    void ActivateOptionsPage() override;
    void RefreshOptions() override;

    XMLOptionsPropertyItemManager* GetManager() const { return mManager.get(); }
    PropertyListCtrl* GetPropertyList() const { return mList; }
    QCheckBox* GetShowDetailsBox() const { return mShowDetailsBox; }
    QPushButton* GetResetButton() const { return mResetButton; }
    int GetShowDetails() const { return mShowDetails; }

protected:
    /// Nothing: the grid's parent keeps its context menu to itself.
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void Construct(ConfigurationSection* settings, const ConfigurationSection* description,
                   const ConfigurationSection* defaults);

    PropertyListCtrl* mList = nullptr;
    int mShowDetails = 1;
    std::unique_ptr<XMLOptionsPropertyItemManager> mManager;
    ConfigurationSection* mSettings = nullptr;
    std::unique_ptr<ConfigurationSection> mDescription;
    std::string mTitle;
    QCheckBox* mShowDetailsBox = nullptr;
    QPushButton* mResetButton = nullptr;
};

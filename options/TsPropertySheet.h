#pragma once
// The sheet every settings dialog of the suite uses: tabs of TsPropertyPages
// with OK, Cancel, Apply and Help, or, as a wizard, Back, Next and Finish.
// OK and Apply store every changed page in tab order.

#include <KORVAutlwin/frame/TsDialog.h>

#include <string>
#include <vector>

class QHBoxLayout;
class QPushButton;
class QTabWidget;
class TsPropertyPage;

/// A resizable sheet of TsPropertyPages, as a tabbed dialog or a wizard.
class TsPropertySheet : public TsDialog
{
    Q_OBJECT
public:
    /// Button ids of the sheet.
    enum EButtonId : unsigned int
    {
        ID_APPLY_NOW = 12321,
        ID_WIZBACK = 12323,
        ID_WIZNEXT = 12324,
        ID_WIZFINISH = 12325
    };
    /// Flags of SetWizardButtons.
    enum EWizardButtons : unsigned long
    {
        PSWIZB_BACK = 1,
        PSWIZB_NEXT = 2,
        PSWIZB_FINISH = 4,
        PSWIZB_DISABLEDFINISH = 8
    };

    /// `captionId` is the title's string id; `selectPage` the page shown first.
    TsPropertySheet(unsigned int captionId, QWidget* parent = nullptr, unsigned int selectPage = 0);
    TsPropertySheet(const char* caption, QWidget* parent = nullptr, unsigned int selectPage = 0);
    ~TsPropertySheet() override;

    /// Sets the pages' stored titles on their tabs and shows the first page.
    virtual bool OnInitDialog();
    /// Enables Back, Next and Finish by the PSWIZB_ flags (a wizard's pages call it in OnSetActive).
    virtual void SetWizardButtons(unsigned long flags);
    /// OnApply of every changed page, and, in a sheet that is no wizard, of
    /// every page with a window, in tab order; false at the first refusal.
    virtual bool ApplyAllNow();
    /// The active page must let go; then ApplyAllNow, and the sheet closes with
    /// IDOK, or stays with the active page activated again.
    virtual void OnOK();
    /// Every page unchanged; the sheet closes with IDCANCEL.
    virtual void OnCancel();
    /// ApplyAllNow.
    virtual bool OnApply();

    /// Appends `page` (not owned) as the last tab.
    void AddPage(TsPropertyPage* page);
    /// Removes the tab of `page`; the page itself is left to its owner.
    void RemovePage(TsPropertyPage* page);
    void RemovePage(int index);
    int GetPageCount() const;
    /// Page `index`; an index out of range throws std::invalid_argument.
    TsPropertyPage* GetPage(int index) const;
    int GetPageIndex(const TsPropertyPage* page) const;
    TsPropertyPage* GetActivePage() const;
    int GetActiveIndex() const;
    /// Makes `page` active: the present page must let go (OnKillActive), the new one accept (OnSetActive).
    bool SetActivePage(TsPropertyPage* page);
    bool SetActivePage(int index);

    /// Every page unchanged.
    void ClearChanged();
    /// True when any page is changed.
    bool IsChanged() const;
    /// Makes the sheet a wizard (before it is shown): Back, Next and Finish instead of OK and Apply.
    void SetWizardMode();
    bool IsWizard() const { return mWizard; }
    bool IsModeless() const { return mModeless; }
    bool WizardButtonsRearranged() const { return mWizardButtonsRearranged; }

    /// Sets the text of the tab at `index`.
    void SetTabText(int index, const char* text);
    QTabWidget* GetTabControl() const { return mTabs; }
    /// The button of id IDOK, IDCANCEL, IDHELP, ID_APPLY_NOW or a wizard id, or null.
    QPushButton* GetButton(unsigned int id) const;
    /// Called by a page's SetModified.
    void PageModified(TsPropertyPage* page, bool changed);

protected:
    void showEvent(QShowEvent* event) override;
    void reject() override;
    void accept() override;
    bool mModeless = false;

private:
    void Construct(unsigned int selectPage);
    void OnTabChanged(int index);
    void Activate(TsPropertyPage* page);
    void UpdateButtons();
    void OnWizardMove(int step);
    void OnWizardFinishButton();

    QTabWidget* mTabs;
    QHBoxLayout* mButtonRow;
    std::vector<TsPropertyPage*> mPages;
    std::vector<TsPropertyPage*> mModified;
    TsPropertyPage* mActive = nullptr;
    unsigned int mSelectPage;
    bool mInitialised = false;
    bool mWizard = false;
    bool mWizardButtonsRearranged = false;
    bool mSwitching = false;
};

#pragma once
// A settings page of a TsPropertySheet that knows whether it has changed and
// tells its helper, so that only the last changed page to apply stores the
// result of all of them.

#include <KORVAutlwin/frame/TsDialog.h>

#include <QWidget>

#include <string>

class BasePropertyPageHelper;
class TsPropertySheet;

/// A page of a property sheet with change tracking, a helper, a help topic and a reference count.
class TsPropertyPage : public QWidget, public ExceptionGuardedWindow
{
    Q_OBJECT
public:
    /// The page's flag for a help button.
    static constexpr unsigned long PSP_HASHELP = 32;

    /// `captionId` names the tab (0: none); `helper` (not owned) may be null;
    /// a help topic other than -1 gives the page a help button.
    TsPropertyPage(unsigned int templateId, unsigned int captionId, BasePropertyPageHelper* helper = nullptr,
                   unsigned int helpTopicId = static_cast<unsigned int>(-1));
    ~TsPropertyPage() override;

    /// Marks the page changed; the first time, one more changed page for the helper. Arms Apply.
    virtual void Changed();
    /// Marks the page unchanged; when it was changed, one changed page less for the helper.
    virtual void Unchanged();
    virtual bool IsChanged() const { return mChanged; }
    /// Shows the page's help topic through the application's help.
    virtual void OnHelp();
    virtual void SetPropertyPageHelper(BasePropertyPageHelper* helper) { mHelper = helper; }
    virtual BasePropertyPageHelper* GetPropertyPageHelper() const { return mHelper; }
    /// One reference more; returns the count.
    virtual int AddRef() { return ++mRefs; }
    /// One reference less, never below 0; returns the count.
    virtual int ReleaseRef()
    {
        if (mRefs > 0)
            --mRefs;
        return mRefs;
    }
    virtual int CountRefs() const { return mRefs; }

    /// Runs once, when the sheet first shows the page: the page's window now exists.
    virtual bool OnInitDialog();
    /// The page becomes the active one. True lets it.
    virtual bool OnSetActive();
    /// The page stops being the active one. False keeps it.
    virtual bool OnKillActive();
    /// Stores the page. With a change and a helper, the last changed page runs
    /// the helper's Update, and a false from it keeps the page changed.
    virtual bool OnApply();
    /// The plain store of a page without helper or change; nothing here.
    virtual void OnOK();
    /// Forgets the change.
    virtual void OnCancel();
    /// A wizard's Finish: false when OnApply fails.
    virtual bool OnWizardFinish();
    /// A wizard's Back and Next: the page to go to (0: the neighbour, -1: stay).
    virtual int OnWizardBack() { return 0; }
    virtual int OnWizardNext() { return 0; }

    /// Tells the sheet that the page has unsaved changes, which enables Apply.
    void SetModified(bool changed = true);
    /// Stores the tab text; on a page shown in a sheet the tab shows it at once.
    void SetPageTitle(const char* title);
    const std::string& GetPageTitle() const { return mPageTitle; }
    /// The tab text from the caption id, or empty.
    std::string GetCaption() const;
    unsigned int GetHelpTopicID() const { return mHelpTopicId; }
    /// Sets the topic, and the help flag by the constructor's rule.
    void SetHelpTopicID(unsigned int topic);
    unsigned long GetFlags() const { return mFlags; }
    unsigned int GetTemplateId() const { return mTemplateId; }

    /// True once OnInitDialog ran: the page has its window.
    bool HasWindow() const { return mHasWindow; }
    /// The sheet holding the page, or null.
    TsPropertySheet* GetSheet() const { return mSheet; }

    int GetExceptionsHandled() const override { return mExceptionsHandled; }
    void SetExceptionsHandled(int mask) { mExceptionsHandled = mask; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    friend class TsPropertySheet;
    /// Called by the sheet before the page is first shown.
    void CreatePageWindow();

    unsigned int mTemplateId;
    unsigned int mCaptionId;
    unsigned long mFlags = 0;
    unsigned int mHelpTopicId;
    int mExceptionsHandled;
    bool mChanged = false;
    BasePropertyPageHelper* mHelper;
    int mRefs = 0;
    std::string mPageTitle;
    bool mHasWindow = false;
    TsPropertySheet* mSheet = nullptr;
};

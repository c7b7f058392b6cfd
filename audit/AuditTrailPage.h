#pragma once
/// \class AuditTrailPage
/// The options page that turns a project's audit trail on and off, and sets
/// the prompt for extended user information. Controls, by "ctrlId": 16255 the
/// log events box, 16254 the extended user info box, 16252 the clear log
/// button, 16256 the save button.
///
/// Without a trail the page shows the administrator's settings as they apply to
/// every user, with every control disabled. A page locked by LockPage, or whose
/// trail's settings are locked, keeps only its save button.
///
/// A TsPropertySheet shows it with its other pages; a change of a box arms
/// the sheet's Apply button.

#include <KORVAutlwin/options/TsPropertyPage.h>

class AuditTrail;
class QCheckBox;
class QPushButton;

class AuditTrailPage : public TsPropertyPage
{
    Q_OBJECT
public:
    static constexpr unsigned int IDD = 16257;
    /// The page's help topic.
    static constexpr unsigned int kHelpTopic = 18;
    static constexpr int IDC_CB_LOGEVENTS = 16255;
    static constexpr int IDC_CB_EXTENDEDUSERINFO = 16254;
    static constexpr int IDC_B_CLEARLOG = 16252;
    static constexpr int IDC_SAVE_BUTTON = 16256;

    /// `trail` may be null; it is not owned.
    explicit AuditTrailPage(AuditTrail* trail);
    ~AuditTrailPage() override;

    void LockPage(bool locked) { mLocked = locked; }
    /// An OnApply has done its work.
    bool IsDirty() const { return mDirty; }
    /// Fills the controls from the trail's settings, or from the administrator's
    /// without a trail, and disables what may not be changed. Returns true.
    bool OnInitDialog() override;
    /// Applies a change: logs "Audit Trail turned off." before turning the trail
    /// off, saves and reloads the settings, begins a session with its two events
    /// when the trail is on, ends it when off, and tells all listeners. Exceptions
    /// of the trail pass on to the sheet. Returns the base class's result.
    bool OnApply() override;

    void OnCbLogevents() { Changed(); }
    void OnCbExtendeduserinfo() { Changed(); }
    /// Clears the whole trail after the user agrees.
    void OnBClearlog();
    /// The trail's save dialog.
    void OnSaveButton();

private:
    AuditTrail* mTrail;
    bool mLocked = false;
    bool mDirty = false;
    QCheckBox* mLogEvents;
    QCheckBox* mExtendedUserInfo;
    QPushButton* mClearLog;
    QPushButton* mSave;
};

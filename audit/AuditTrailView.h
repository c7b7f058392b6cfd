#pragma once
/// \class AuditTrailView
/// The audit trail in a browser: the trail's XML file, rendered by the
/// browser's own XSLT through "audit_trail.xsl" put beside it. The view never
/// reads the XML itself. It shows one of three things: the default page (no
/// trail, or no readable file), the not-on page (the trail is off), or the file
/// (the trail is on), and follows the trail's signals:
///  - a session start navigates to the file anew; a session end of a trail
///    turned off shows the not-on page;
///  - a change of the active trail takes the new trail's file;
///  - a trail that is deleted is dropped.
/// F5 saves unsaved events before the browser refreshes; so does any
/// navigation. "app:" links post the command mapped to their name (exact
/// match) to the command target. A right click shows the view's own menu
/// (menu resource 13352), whose print and save entries are grey without a trail.

#include <KORVAutlwin/workspace/AcceleratorTable.h>
#include <KORVAutlwin/workspace/HtmlBrowserView.h>

#include <boost/signals2/connection.hpp>

#include <string>

class AuditTrail;

class AuditTrailView : public HtmlBrowserView
{
    Q_OBJECT
public:
    static constexpr unsigned int kDefaultResource = 13167;
    static constexpr unsigned int kNotOnResource = 13169;
    static constexpr unsigned int kContextMenu = 13352;
    static constexpr unsigned int ID_AUDIT_TRAIL_START = 13358;
    static constexpr unsigned int kAccelerators = 21514;

    explicit AuditTrailView(QWidget* parent = nullptr);
    ~AuditTrailView() override;

    /// Takes `trail` (not owned) and, when it is not null, its file.
    void SetAuditTrail(AuditTrail* trail);
    AuditTrail* GetAuditTrail() const { return mTrail; }
    /// Shows what the trail's state asks for.
    void Update();
    /// Puts the style sheet beside `xmlPath` and takes it as the file shown;
    /// with `update`, shows it. A null path shows the default page.
    void Init(const char* xmlPath, bool update);
    void SetDefaultResourceID(unsigned int id, bool load);
    unsigned int GetDefaultResourceID() const { return mDefaultResource; }
    void SetNotOnResourceID(unsigned int id) { mNotOnResource = id; }
    static const char* GetXSLFileName();

    /// Loads the accelerators, and shows the default page unless something has been shown already.
    void OnInitialUpdate();

    void OnBeforeNavigate2(const QString& url, bool& cancel) override;
    bool PreTranslateMessage(QObject* window, QEvent* event) override;
    /// The view's menu at the screen point `point`; (-1, -1) places it near the top left.
    void OnContextMenu(QWidget* window, QPoint point);
    void OnFileSaveAs();
    void OnEditSelectAll();

    /// True while the trail is on, as the last update found.
    bool IsLoggingOn() const { return mLoggingOn; }
    /// The file has been navigated to; later updates refresh it.
    bool IsNavigated() const { return mNavigated; }

protected:
    const DHtmlCommandRow* GetCommandTable() const override;
    void showEvent(QShowEvent* event) override;
    static const DHtmlCommandRow m_commands[];

private:
    bool PrepareUpdateView();
    void UpdateView();
    void OnBCBeginSession(AuditTrail* trail);
    void OnBCEventAdded(AuditTrail* trail);
    void OnBCEndSession(AuditTrail* trail);
    void OnBCAuditTrailChanged(AuditTrail* trail);
    void OnBCAuditTrailDestroyed(AuditTrail* trail);

    std::string mXmlPath;
    unsigned int mDefaultResource = kDefaultResource;
    unsigned int mNotOnResource = kNotOnResource;
    bool mShown = false;
    AcceleratorTable mAccelerators;
    AuditTrail* mTrail = nullptr;
    bool mLoggingOn = true;
    bool mNavigated = false;
    boost::signals2::scoped_connection mBeginSession, mEventAdded, mEndSession, mProjectNameChanged,
        mActiveAuditTrailChanged, mDeleting;
    bool mInitialUpdateDone = false;
};

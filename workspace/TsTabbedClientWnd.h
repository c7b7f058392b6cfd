#pragma once
/// \class TsTabbedClientWnd
/// Takes over the MDI client of a TessmaMDIFrame and lays a TsTabbedWorkspace
/// around it: the frame's central area then holds the strip, and the client sits
/// in the strip's panel. The client's own events keep the tabs honest: a child
/// that comes or goes, or a new size, has the next idle update lay out the frame;
/// a child that goes gives up its tab reference at once; hiding or showing the
/// client hides or shows the strip with it.
///
///   TsTabbedClientWnd tabs;
///   tabs.Attach(frame, &policy, 0);   // 1: the strip is there
///   ...
///   tabs.Detach();                    // the client is the central widget again

#include <QObject>
#include <QPointer>
#include <QRect>

#include <string>

class QMdiArea;
class QWidget;
class TessmaMDIFrame;
class TsTabbedWorkspace;
class TsTabbedWorkspaceWindowIdentifier;

class TsTabbedClientWnd : public QObject
{
    Q_OBJECT

public:
    explicit TsTabbedClientWnd(QObject* parent = nullptr);
    /// Detaches.
    ~TsTabbedClientWnd() override;

    /// Takes over `frame`'s MDI client and makes the strip (control id 1000,
    /// styles `style` and TCS_FOCUSNEVER), asking `identifier` (not owned; it
    /// must outlive the attachment). 0 when already attached or without a
    /// frame or client; else 1.
    int Attach(TessmaMDIFrame* frame, TsTabbedWorkspaceWindowIdentifier* identifier, unsigned long style);
    /// Removes the strip, showing every window it hid, and gives the client
    /// back to the frame. 0 when not attached.
    int Detach();

    bool IsAttached() const { return mFrame != nullptr; }
    /// The strip; null while detached.
    TsTabbedWorkspace* GetTabCtrl() const;
    TessmaMDIFrame* GetParentFrame() const { return mFrame; }
    /// 0 while detached.
    int GetNumTabs() const;
    /// -1 while detached.
    int GetCurrentTab() const;
    /// Empty while detached or out of range.
    std::string GetTabWindowIdentifier(int index) const;
    /// Selects tab `id` and shows its windows.
    void SetActiveTab(const std::string& id);
    /// Adds the style bits `style` to the strip's.
    void SetTabCtrlStyle(unsigned long style);

    /// Lays out the strip and the client in the frame's central area again.
    void RecalcLayout();
    /// Places the strip over `rect` and the client in its panel; the client
    /// takes all of `rect` while the strip is hidden.
    void CalcWindowRect(const QRect& rect);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Area;
    friend class Area;
    void AreaGoing();

    TsTabbedWorkspace* mWorkspace = nullptr;
    TessmaMDIFrame* mFrame = nullptr;
    QMdiArea* mClient = nullptr;
    Area* mArea = nullptr;
};

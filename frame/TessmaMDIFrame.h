#pragma once
/// \class TessmaMDIFrame
/// The application's main window: a frame whose client is a QMdiArea with the
/// documents' windows, and which owns the process-level safety net.
///
///  - Commands go to the active MDI child first: to the child window itself if
///    it is a command target, else to its widget if that is one; then to the
///    frame, then to the application. The frame handles the Window menu's
///    Cascade and Tile commands itself.
///  - Events of the frame stop at the application's guard and end in the
///    internal error dialog by the frame's exception mask (15 at construction).
///    Processor faults are translated on the thread that built the frame.
///  - Exhausted memory: the frame installs NewHandler as the process's new
///    handler. Every 30 seconds (timer 1) it reads the free memory; below 5 % it
///    warns once and asks the registered CanGarbageCollect objects to give back
///    memory; the warning comes back only after free memory has risen to 10 %.
///  - The splash (TsStartWindow) goes 2 seconds after the frame is made (timer 2).
///  - The window position is kept in the profile section "WindowPos" (keys
///    "Status", "Top", "Left", "Bottom", "Right"): written on close, applied when
///    the frame is first shown, moved into the work area of the nearest screen.
///
/// Timer messages do not nest: a timer that fires while a box of another timer
/// message is up is ignored.

#include <KORVAutlwin/frame/TsFrameWnd.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <QBasicTimer>
#include <QByteArray>
#include <QPoint>
#include <QPointer>
#include <QRect>

#include <functional>
#include <map>
#include <new>
#include <set>
#include <string>
#include <vector>

class CanGarbageCollect;
class QMdiArea;
class QMdiSubWindow;
class TsStatusBar;

/// Command ids of the Window menu.
inline constexpr unsigned int ID_WINDOW_NEW = 57648;
inline constexpr unsigned int ID_WINDOW_CASCADE = 57650;
inline constexpr unsigned int ID_WINDOW_TILE_HORZ = 57651;

class TessmaMDIFrame : public TsFrameWnd, public ModelessHost
{
    Q_OBJECT

public:
    /// The frame's window timers.
    enum ETimer : unsigned int
    {
        eMemoryTimer = 1, // memory watch, every kMemoryWatchInterval ms
        eSplashTimer = 2  // takes the splash down, once, after kSplashDelay ms
    };
    static constexpr int kMemoryWatchInterval = 30000;
    static constexpr int kSplashDelay = 2000;
    /// Free memory below this warns; the warning is armed again at kMemoryRecovered.
    static constexpr double kLowMemory = 0.05;
    static constexpr double kMemoryRecovered = 0.1;

    /// Makes the MDI area the central widget, starts timers 1 and 2, sets the
    /// window title to the application name, installs NewHandler and becomes
    /// the frame that NewHandler serves.
    explicit TessmaMDIFrame(QWidget* parent = nullptr);
    /// Puts the previous new handler back.
    ~TessmaMDIFrame() override;

    // --- MDI ---------------------------------------------------------------

    /// The MDI client area.
    QMdiArea* GetMDIClient() const { return mMdiArea; }
    /// The active child (the current one, also while the application is not
    /// active), or null.
    QMdiSubWindow* MDIGetActive() const;
    /// Puts `view` into a new child window, shows and activates it. The child
    /// is deleted when it closes, with `view`.
    QMdiSubWindow* AddMDIChild(QWidget* view);
    void MDIActivate(QMdiSubWindow* child);
    void MDICascade();
    void MDITile();
    /// Closes the active child until none is left; stops at a child that refuses.
    void CloseAllChildWindows();

    // --- Dialogs -------------------------------------------------------------

    /// Closes every visible dialog (QDialog) whose top-level owner is this
    /// frame. A dialog that refuses to close ends the walk. True at the end of
    /// the walk or at a refusing dialog; false when an exception broke it.
    bool CancelAllMyDialogs();
    /// Enables or disables those same dialogs.
    void EnableAllDialogs(bool enable);
    /// The application disables the frame's dialogs while a box is up.
    void EnableModelessWindows(bool enable) override;

    // --- Memory --------------------------------------------------------------

    /// `object` is asked to give back memory until it unregisters. Not owned.
    void RegisterCanGarbageCollect(CanGarbageCollect* object);
    void UnregisterCanGarbageCollect(CanGarbageCollect* object);
    /// Calls FreeMemoryNow on every registered object, in the set's order.
    /// Allocates nothing.
    void FreeMemoryNow();

    /// The new handler: runs when an allocation fails. Asks the frame's objects
    /// to give back memory, then shows language strings 13289, the application
    /// name and 13290 in a box with OK and Cancel. OK lets the allocation fail
    /// (std::bad_alloc) and has timer 1 run soon; Cancel ends the process with
    /// exit(1). Off the GUI thread, or while the box is up, it does not ask: the
    /// allocation fails. Without a frame the allocation fails at once.
    static void NewHandler();

    /// The fraction of memory that is free, 0 to 1: available memory and free
    /// swap over all memory and swap, from /proc/meminfo; NaN when it cannot be
    /// read, which the memory watch ignores.
    static double ReadFreeMemory();
    /// What the memory watch reads; ReadFreeMemory when empty. Replaceable (tests).
    static std::function<double()> msFreeMemoryReader;
    /// Whether the next low reading warns; true at start.
    static bool GetWarnAboutMemory();
    static void SetWarnAboutMemory(bool warn);

    /// The frame that NewHandler serves, or null.
    static TessmaMDIFrame* GetFrameInstance() { return msFrameInstance; }

    // --- Status bar --------------------------------------------------------

    /// The message bar: a TsStatusBar, made and installed as the frame's status
    /// bar at the first call. A derived frame may return another status bar
    /// (a TsXTPStatusBar); long work finds it here and uses it as TsStatusAccess.
    virtual QWidget* GetMessageBar();
    /// Shows `text` in the message bar's first pane with id 0.
    void SetMessageText(const std::string& text);

    // --- Window position ---------------------------------------------------

    /// The available geometries of the screens; replaceable (tests, and
    /// screen sets that the platform does not report).
    static std::function<std::vector<QRect>()> msWorkAreaSource;
    /// msWorkAreaSource's answer, else the available geometry of every QScreen.
    static std::vector<QRect> GetWorkAreas();
    /// `rect` with its size, moved fully into the work area that it overlaps most,
    /// or, when it overlaps none, into the nearest (as far as its size allows: a
    /// larger rectangle keeps its top-left corner in the area). Unchanged without areas.
    static QRect FitIntoNearestWorkArea(const QRect& rect, const std::vector<QRect>& areas);
    /// Writes "Status" (1 normal, 2 minimized, 3 maximized) and the edges of the
    /// normal geometry to "WindowPos"; false without an application object.
    bool SaveWindowPosition() const;
    /// Applies the saved position, if all five values are there (a value of -1
    /// counts as missing); false otherwise, and nothing changes.
    bool LoadWindowPosition();

    // --- Tool bars and docks -----------------------------------------------
    //
    // Stored form: the profile section `profileName` holds "State", the bytes of
    // QMainWindow::saveState() as Base64 text, and "BarCount" with "Bar0" ...
    // "Bar<n-1>", the object names of the tool bars and dock widgets that the
    // state describes; a bar that floats has "Bar<i>Float" beside its name, the
    // screen position of its window as "x,y". Bars without an object name are not stored.

    /// What the frame keeps of its bars: Qt's state bytes, and the screen
    /// position of each floating bar's window by the bar's object name.
    struct DockState
    {
        QByteArray state;
        std::map<QString, QPoint> floatingPositions;
    };

    /// The state of the frame's tool bars and docks now.
    DockState GetDockState() const;
    /// Applies `state` as QMainWindow::restoreState does, then gives each floating
    /// bar the stored position of its window, and hides each floating bar with no
    /// visible content (a dock widget without a shown widget, a tool bar without a
    /// visible item), whatever the state says. False when Qt refuses the state.
    bool SetDockState(const DockState& state);
    /// Stores the state of the frame's tool bars and docks; false without an application object.
    bool SaveBarState(const char* profileName) const;
    /// Restores a stored state through SetDockState; false when there is none or Qt refuses it.
    /// Call VerifyBarState first: a state of other bars must not be applied.
    bool LoadBarState(const char* profileName);
    /// 1 when every bar named in the stored state is a tool bar or dock widget
    /// of this frame today, or when the state names none; 0 otherwise.
    int VerifyBarState(const char* profileName) const;

    // --- Ending ------------------------------------------------------------

    /// Called by a derived application when it crashes; does nothing here.
    virtual void OnCrash();
    /// Stops timer 1, then DestroyWindow().
    virtual void CleanupWindow();
    /// Stops the timers and hides the frame, without the closing steps (the
    /// position is not saved); a frame with Qt::WA_DeleteOnClose is deleted later.
    virtual void DestroyWindow();

    /// The first show applies the saved position.
    void setVisible(bool visible) override;

protected:
    /// Activation keeps the splash in front.
    void changeEvent(QEvent* event) override;
    CmdTarget* GetActiveCommandTarget() const override;
    /// The frame's timers by their ids (ETimer).
    virtual void OnTimer(unsigned int id);
    void timerEvent(QTimerEvent* event) override;
    /// Saves the position, then closes as a QMainWindow does.
    void closeEvent(QCloseEvent* event) override;

private:
    void WatchMemory();
    std::vector<QWidget*> MyDialogs() const;
    std::vector<QWidget*> MyBars() const;

    std::set<CanGarbageCollect*> mCollectors;
    QPointer<TsStatusBar> mStatusBar;
    QMdiArea* mMdiArea;
    QBasicTimer mMemoryTimer;
    void KeepSplashOnTop();

    QBasicTimer mSplashTimer;
    bool mPositionApplied = false;
    std::new_handler mPreviousNewHandler = nullptr;

    static TessmaMDIFrame* msFrameInstance;
    static char msLowMemoryText[1024];
    static bool msInTimer;
    static bool msWarnAboutMemory;
};

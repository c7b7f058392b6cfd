#pragma once
// The workbench's main window: an MDI frame whose first child shows where the
// application keeps its settings, with text windows beside it, a child that
// shows the toolkit status bar, and the commands that put the library's parts
// to work.

#include <KORVAutlwin/frame/TessmaMDIFrame.h>

class QMdiSubWindow;
class TsApp;

class WorkbenchFrame : public TessmaMDIFrame
{
    Q_OBJECT

public:
    explicit WorkbenchFrame(TsApp& app);

    /// Command ids of the workbench's own commands.
    enum ECommand : unsigned int
    {
        eThrowException = 32771,
        eThrowUnknown = 32772,
        eNullPointer = 32773,
        eCloseAllWindows = 32774,
        eEditClear = 57632,
        eAppExit = 57665
    };
    /// The message bar's pane that counts the windows.
    static constexpr unsigned int kWindowCountPane = 59393;

private:
    void BuildMenus();
    void BuildMessageBar();
    QMdiSubWindow* BuildSettingsPage(TsApp& app);
    QMdiSubWindow* BuildStatusBarPage();
    QMdiSubWindow* NewTextWindow();
    void UpdateWindowCount();

    int mTextWindows = 0;
};

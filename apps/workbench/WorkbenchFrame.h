#pragma once
// The workbench's main window: it shows where the application keeps its
// settings and offers the commands that put the library's parts to work.

#include <KORVAutlwin/frame/TsFrameWnd.h>

class QLabel;
class TsApp;

class WorkbenchFrame : public TsFrameWnd
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
        eAppExit = 57665
    };

private:
    void BuildMenus();
    void BuildPage(TsApp& app);
};

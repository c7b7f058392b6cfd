#include "WorkbenchFrame.h"

#include "AuditDemos.h"
#include "BreakDemos.h"
#include "DialogDemos.h"
#include "ExecuteDemos.h"
#include "FailureDemos.h"
#include "FavouritesDemos.h"
#include "FavouritesPaneDemos.h"
#include "HelpDemos.h"
#include "OperationsDemos.h"
#include "OptionsDemos.h"
#include "PrintDemos.h"
#include "ListDemos.h"
#include "ProgressDemos.h"
#include "PropertyDemos.h"
#include "ToolkitDemos.h"
#include "TreeDemos.h"
#include "UserCommDemos.h"
#include "WorkspaceDemos.h"

#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/frame/TsStatusBar.h>
#include <KORVAutlwin/frame/TsXTPStatusBar.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/Exception.h>
#include <KORVAutl/Log.h>

#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QTimer>
#include <QVBoxLayout>

#include <memory>

namespace {

// Reads through a pointer the compiler cannot see to be null.
int ReadThroughNull()
{
    int* volatile pointer = nullptr;
    return *pointer;
}

struct UnknownFailure
{
    int code;
};

QLabel* ValueLabel(const std::string& text)
{
    auto* label = new QLabel(QString::fromStdString(text));
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

// A text window that handles the Edit menu's Clear itself: the command reaches
// it first while it is the active child, and is disabled while no text window is.
class TextWindow : public QPlainTextEdit, public CmdTarget
{
public:
    explicit TextWindow(const QString& text)
    {
        setPlainText(text);
        OnCommand(WorkbenchFrame::eEditClear, [this] { clear(); });
        OnUpdateCommand(WorkbenchFrame::eEditClear,
                        [this](CCmdUI* cmdUI) { cmdUI->Enable(!document()->isEmpty()); });
    }
};

// The hosted window of the status bar page.
constexpr unsigned int kSliderPane = 59394;

} // namespace

WorkbenchFrame::WorkbenchFrame(TsApp& app)
{
    setWindowTitle(QStringLiteral("Workbench"));
    BuildMenus();
    BuildMessageBar();

    // Side by side at the start, so that each window shows what it is for.
    QMdiSubWindow* settings = BuildSettingsPage(app);
    settings->setGeometry(0, 0, 600, 378);
    NewTextWindow()->setGeometry(604, 0, 206, 378);
    BuildStatusBarPage()->setGeometry(0, 382, 810, 134);
    MDIActivate(settings);


    // The count asks the application's main window, which this frame is only once made.
    connect(GetMDIClient(), &QMdiArea::subWindowActivated, this, [this] { UpdateWindowCount(); });
    QTimer::singleShot(0, this, [this] { UpdateWindowCount(); });
    SetMessageText("Ready");
    resize(820, 560);
}

void WorkbenchFrame::BuildMenus()
{
    QMenu* file = AddCommandMenu(tr("&File"));
    AddCommand(file, eAppExit, tr("E&xit"));
    OnCommand(eAppExit, [this] { close(); });

    QMenu* edit = AddCommandMenu(tr("&Edit"));
    AddCommand(edit, eEditClear, tr("&Clear"));

    QMenu* window = AddCommandMenu(tr("&Window"));
    AddCommand(window, ID_WINDOW_NEW, tr("&New window"));
    AddCommand(window, ID_WINDOW_CASCADE, tr("&Cascade"));
    AddCommand(window, ID_WINDOW_TILE_HORZ, tr("&Tile"));
    window->addSeparator();
    AddCommand(window, eCloseAllWindows, tr("Close &all"));
    OnCommand(ID_WINDOW_NEW, [this] { NewTextWindow(); });
    OnCommand(eCloseAllWindows, [this] { CloseAllChildWindows(); });
    OnUpdateCommand(eCloseAllWindows, [this](CCmdUI* cmdUI) { cmdUI->Enable(MDIGetActive() != nullptr); });

    QMenu* failures = AddCommandMenu(tr("F&ailures"));
    AddCommand(failures, eThrowException, tr("Throw an &Exception"));
    AddCommand(failures, eThrowUnknown, tr("Throw something &unknown"));
    AddCommand(failures, eNullPointer, tr("Dereference a &null pointer"));
    OnCommand(eThrowException, [] {
        throw Exception("The workbench threw this exception on purpose, to show the internal error dialog.");
    });
    OnCommand(eThrowUnknown, [] { throw UnknownFailure{42}; });
    OnCommand(eNullPointer, [this] { SetMessageText(std::to_string(ReadThroughNull())); });
    AddFailureDemos(*this);

    AddDialogDemos(*this);
    AddProgressDemos(*this);
    AddUserCommDemos(*this);
    AddBreakDemos(*this);
    AddExecuteDemos(*this);
    AddPropertyDemos(*this);
    AddOptionsDemos(*this);
    AddOperationsDemos(*this);
    AddPrintDemos(*this);
    AddListDemos(*this);
    AddWorkspaceDemos(*this);
    AddToolkitDemos(*this);
    AddTreeDemos(*this);
    AddFavouritesDemos(*this);
    AddFavouritesPaneDemos(*this);
    AddAuditDemos(*this);

    QMenu* help = AddCommandMenu(tr("&Help"));
    AddCommand(help, ID_APP_ABOUT, tr("&About"));
    AddHelpDemos(*this);
}

void WorkbenchFrame::BuildMessageBar()
{
    auto* bar = static_cast<TsStatusBar*>(GetMessageBar());
    const unsigned int panes[] = {0, kWindowCountPane};
    bar->SetIndicators(panes, 2);
    bar->SetPaneInfo(1, kWindowCountPane, SBPS_NORMAL, 110);
    // The progress gauge joins this bar once the frame is the main window (Progress::InitProgress).
}

QMdiSubWindow* WorkbenchFrame::BuildSettingsPage(TsApp& app)
{
    auto* page = new QFrame;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(24, 20, 24, 20);

    auto* heading = new QLabel(tr("Workbench"), page);
    QFont headingFont = heading->font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.8);
    headingFont.setBold(true);
    heading->setFont(headingFont);
    layout->addWidget(heading);
    auto* intro = new QLabel(tr("The suite shell that shows the parts of the library at work: message dialogs and "
                                "code that asks the user (Dialogs), long computations with a stop button that "
                                "works while the main thread computes (Progress), grids, option pages, lists, "
                                "trees, favourites and pickers (Controls), events and the processor's load "
                                "(Operations), faults ending in the internal error dialog (Failures), and "
                                "windows with their tabs (Window)."),
                             page);
    intro->setWordWrap(true);
    layout->addWidget(intro);
    layout->addSpacing(12);

    int starts = 0;
    if (auto settings = app.GetAppSettingsSection())
        settings->ReadInt("StartCount", starts);

    auto* facts = new QFormLayout;
    facts->setLabelAlignment(Qt::AlignRight);
    facts->addRow(tr("Settings file:"), ValueLabel(app.GetSettingsFile()));
    facts->addRow(tr("Machine-wide settings:"), ValueLabel(app.GetCommonSettingsFile()));
    facts->addRow(tr("Registry branch:"), ValueLabel(std::string("HKEY_CURRENT_USER\\") + GetRegistryBaseKeyName()));
    facts->addRow(tr("User data folder:"), ValueLabel(app.GetAppDataDirectory()));
    facts->addRow(tr("Plug-in folder:"), ValueLabel(app.GetPluginDirectory()));
    facts->addRow(tr("Application log:"), ValueLabel(Log::GetLogFile()));
    facts->addRow(tr("Starts so far:"), ValueLabel(std::to_string(starts)));
    layout->addLayout(facts);
    layout->addStretch(1);

    page->setWindowTitle(tr("Settings"));
    return AddMDIChild(page);
}

QMdiSubWindow* WorkbenchFrame::BuildStatusBarPage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* text = new QLabel(tr("The toolkit status bar below can host a window in a pane of its own. "
                               "The frame's message bar at the bottom of the main window counts the windows."),
                            page);
    text->setWordWrap(true);
    text->setMargin(12);
    layout->addWidget(text);

    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(12, 0, 12, 0);
    auto* host = new QPushButton(tr("Host a slider"), page);
    auto* remove = new QPushButton(tr("Take it out"), page);
    buttons->addWidget(host);
    buttons->addWidget(remove);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    layout->addStretch(1);

    auto* bar = new TsXTPStatusBar(page);
    const unsigned int panes[] = {0};
    bar->SetIndicators(panes, 1);
    bar->SetPaneText(0, "Toolkit status bar", 1);
    const int position = bar->AddIndicator(kSliderPane + 1);
    bar->SetPaneInfo(position, kSliderPane + 1, SBPS_NORMAL, 70);
    bar->SetPaneText(position, "Pane 2", 1);
    layout->addWidget(bar);

    auto* slider = new QSlider(Qt::Horizontal, bar);
    slider->hide();
    connect(host, &QPushButton::clicked, bar, [bar, slider] {
        if (bar->GetWindowIndex(slider) < 0)
            bar->InsertWindow(slider, 100, 1, kSliderPane);
    });
    connect(remove, &QPushButton::clicked, bar, [bar, slider] { bar->RemoveWindow(slider, false, kSliderPane); });
    bar->InsertWindow(slider, 100, 1, kSliderPane);

    page->setWindowTitle(tr("Status bars"));
    return AddMDIChild(page);
}

QMdiSubWindow* WorkbenchFrame::NewTextWindow()
{
    const QString title = tr("Text %1").arg(++mTextWindows);
    auto* view = new TextWindow(tr("%1\n\nCommands reach the active window first: Edit > Clear empties this "
                                   "text while it is the active window, and is disabled while no text window is.")
                                    .arg(title));
    view->setWindowTitle(title);
    QMdiSubWindow* child = AddMDIChild(view);
    child->resize(420, 260);
    return child;
}

void WorkbenchFrame::UpdateWindowCount()
{
    auto* bar = static_cast<TsStatusBar*>(GetMessageBar());
    const int count = GUIUtilities::GetMDIChildWnds(nullptr, true);
    const QString text = count == 1 ? tr("1 window") : tr("%1 windows").arg(count);
    bar->SetPaneText(bar->CommandToIndex(kWindowCountPane), text.toStdString(), 1);
}

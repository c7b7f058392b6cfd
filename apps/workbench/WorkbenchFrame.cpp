#include "WorkbenchFrame.h"

#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/frame/TsApp.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/Exception.h>
#include <KORVAutl/Log.h>

#include <QApplication>
#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
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

} // namespace

WorkbenchFrame::WorkbenchFrame(TsApp& app)
{
    setWindowTitle(QStringLiteral("Workbench"));
    BuildMenus();
    BuildPage(app);
    statusBar()->showMessage(QStringLiteral("Ready"));
    resize(820, 560);
}

void WorkbenchFrame::BuildMenus()
{
    QMenu* file = AddCommandMenu(tr("&File"));
    AddCommand(file, eAppExit, tr("E&xit"));
    OnCommand(eAppExit, [this] { close(); });

    QMenu* failures = AddCommandMenu(tr("F&ailures"));
    AddCommand(failures, eThrowException, tr("Throw an &Exception"));
    AddCommand(failures, eThrowUnknown, tr("Throw something &unknown"));
    AddCommand(failures, eNullPointer, tr("Dereference a &null pointer"));
    OnCommand(eThrowException, [] {
        throw Exception("The workbench threw this exception on purpose, to show the internal error dialog.");
    });
    OnCommand(eThrowUnknown, [] { throw UnknownFailure{42}; });
    OnCommand(eNullPointer, [this] { statusBar()->showMessage(QString::number(ReadThroughNull())); });

    QMenu* help = AddCommandMenu(tr("&Help"));
    AddCommand(help, ID_APP_ABOUT, tr("&About"));
}

void WorkbenchFrame::BuildPage(TsApp& app)
{
    auto* page = new QFrame(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(24, 20, 24, 20);

    auto* heading = new QLabel(tr("Workbench"), page);
    QFont headingFont = heading->font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.8);
    headingFont.setBold(true);
    heading->setFont(headingFont);
    layout->addWidget(heading);
    auto* intro = new QLabel(tr("The suite shell that shows the parts of the library at work. "
                                "The Failures menu ends each of its commands in the internal error dialog; "
                                "Help shows the About box."),
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
    setCentralWidget(page);
}

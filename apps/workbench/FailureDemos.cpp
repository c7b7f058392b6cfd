#include "FailureDemos.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>

#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// A pointer the compiler cannot see to be null.
int* volatile gNowhere = nullptr;

QMenu* FailuresMenu(TsFrameWnd& frame)
{
    for (QAction* action : frame.menuBar()->actions())
        if (action->menu() && action->text() == QObject::tr("F&ailures"))
            return action->menu();
    return frame.AddCommandMenu(QObject::tr("F&ailures"));
}

void OpenFaultingWindow(TsFrameWnd& frame)
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    auto* text = new QLabel(QObject::tr("The button's handler writes through a null pointer. Go on in the "
                                        "internal error dialog, then click again or close this window: the "
                                        "program stays whole."),
                            page);
    text->setWordWrap(true);
    auto* button = new QPushButton(QObject::tr("Write through a null pointer"), page);
    layout->addWidget(text);
    layout->addWidget(button);
    layout->addStretch(1);
    // No context object: the emission that faults runs on the button itself.
    QObject::connect(button, &QPushButton::clicked, [] { *gNowhere = 1; });
    page->setWindowTitle(QObject::tr("Faulting handler"));
    if (auto* mdi = dynamic_cast<TessmaMDIFrame*>(&frame))
        mdi->AddMDIChild(page)->resize(360, 160);
    else
        page->show();
    QTimer::singleShot(0, button, [button] { button->click(); });
}

} // namespace

void AddFailureDemos(TsFrameWnd& frame)
{
    QMenu* failures = FailuresMenu(frame);
    frame.AddCommand(failures, eDemoFaultInHandler, QObject::tr("A fault in a &handler connected without context"));
    frame.OnCommand(eDemoFaultInHandler, [&frame] { OpenFaultingWindow(frame); });
}

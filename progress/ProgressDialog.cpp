#include <KORVAutlwin/progress/ProgressDialog.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/progress/IndeterminateProgressCtrl.h>

#include <QHBoxLayout>
#include <QLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// The template's measures in dialog units.
constexpr int kBarWidth = 200;
constexpr int kBarHeight = 12;
constexpr int kButtonWidth = 50;

} // namespace

ProgressDialog::ProgressDialog(const char* titleText, std::binary_semaphore* ready,
                               const std::function<void()>* cancel, QWidget* parent)
    : TsDialog(kTemplateId, parent), title(titleText ? titleText : ""), dialogReady(ready),
      cancelFunction(cancel && *cancel ? cancel : nullptr)
{
    setModal(true);
    // No help button in the title bar: there is no help to give.
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    bar = new IndeterminateProgressCtrl(this);
    bar->setProperty("ctrlId", kBarCtrlId);
    bar->setFixedSize(FromDlgX(kBarWidth), FromDlgY(kBarHeight));

    cancelButton = new QPushButton(QString::fromStdString(korva::MessageBoxButtonText(IDCANCEL)), this);
    cancelButton->setProperty("ctrlId", kCancelCtrlId);
    cancelButton->setMinimumWidth(FromDlgX(kButtonWidth));
    // Never the default button: Return must not cancel.
    cancelButton->setAutoDefault(false);
    cancelButton->setDefault(false);
    cancelButton->setVisible(false);
    cancelButton->setEnabled(false);
    connect(cancelButton, &QPushButton::clicked, this, [this] { OnCancelButton(); });

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cancelButton);
    buttons->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(bar);
    layout->addLayout(buttons);
}

ProgressDialog::~ProgressDialog() = default;

void ProgressDialog::showEvent(QShowEvent* event)
{
    if (!initialised) {
        initialised = true;
        OnInitDialog();
    }
    TsDialog::showEvent(event);
}

void ProgressDialog::OnInitDialog()
{
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title.c_str())));
    if (cancelFunction) {
        cancelButton->setVisible(true);
        cancelButton->setEnabled(true);
        // The new size now, before the window appears.
        layout()->activate();
    }
    SignalReady();
}

void ProgressDialog::SignalReady()
{
    if (readySignalled)
        return;
    readySignalled = true;
    if (dialogReady)
        dialogReady->release();
}

void ProgressDialog::OnCancelButton()
{
    if (cancelFunction)
        (*cancelFunction)();
}

void ProgressDialog::accept() {}

void ProgressDialog::reject()
{
    if (finished.load())
        TsDialog::reject();
}

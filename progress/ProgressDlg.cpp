#include <KORVAutlwin/progress/ProgressDlg.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>

#include <QProgressBar>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// The template's size in dialog units.
constexpr int kDialogWidth = 186;
constexpr int kBarHeight = 14;

} // namespace

ProgressDlg::ProgressDlg(const char* title, QWidget* parent) : TsDialog(kTemplateId, parent)
{
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title)));
    setWindowFlag(Qt::WindowStaysOnTopHint, true);
    setModal(false);

    bar = new QProgressBar(this);
    bar->setProperty("ctrlId", kProgressCtrlId);
    bar->setRange(0, 100);
    bar->setValue(0);
    bar->setTextVisible(false);
    bar->setFixedHeight(FromDlgY(kBarHeight));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(bar);
    setFixedWidth(FromDlgX(kDialogWidth));
    setFixedHeight(sizeHint().height());

    OnInitDialog();
    show();
}

ProgressDlg::~ProgressDlg() = default;

void ProgressDlg::OnInitDialog() {}

void ProgressDlg::SetRange(short lower, short upper)
{
    const int high = std::max<int>(lower, upper);
    const int position = std::clamp(bar->value(), static_cast<int>(lower), high);
    bar->setRange(lower, high);
    bar->setValue(position);
}

int ProgressDlg::SetPos(int position)
{
    const int previous = bar->value();
    bar->setValue(std::clamp(position, bar->minimum(), bar->maximum()));
    return previous;
}

int ProgressDlg::SetStep(int step)
{
    const int previous = stepAmount;
    stepAmount = step;
    return previous;
}

int ProgressDlg::StepIt()
{
    const int previous = bar->value();
    bar->setValue(SteppedPosition(previous, stepAmount, bar->minimum(), bar->maximum()));
    return previous;
}

int ProgressDlg::GetPos() const
{
    return bar->value();
}

int ProgressDlg::SteppedPosition(int position, int step, int lower, int upper)
{
    const int span = upper - lower;
    if (span <= 0)
        return lower;
    const long long next = static_cast<long long>(position) + step;
    if (next >= lower && next <= upper)
        return static_cast<int>(next);
    // Outside the range: around again, keeping what went past the end.
    long long wrapped = (next - lower) % span;
    if (wrapped < 0)
        wrapped += span;
    return static_cast<int>(lower + wrapped);
}

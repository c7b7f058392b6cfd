#include <KORVAutlwin/frame/TsXTPStatusBar.h>

#include <KORVAutl/LanguageString.h>

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>

#include <algorithm>

namespace {

constexpr int kTextPadding = 3;

} // namespace

TsXTPStatusBar::TsXTPStatusBar(QWidget* parent) : QStatusBar(parent)
{
    mPanes.push_back(MakePane(0, SBPS_STRETCH, 0, std::string()));
    Relayout();
    connect(this, &QStatusBar::messageChanged, this, [this] {
        const int index = CommandToIndex(0);
        if (index >= 0)
            ShowText(index);
    });
}

TsXTPStatusBar::~TsXTPStatusBar() = default;

TsXTPStatusBar::Pane TsXTPStatusBar::MakePane(unsigned int id, unsigned int style, int width, std::string text)
{
    auto* cell = new QFrame(this);
    auto* layout = new QHBoxLayout(cell);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->setSpacing(0);
    auto* label = new QLabel(cell);
    label->setContentsMargins(kTextPadding - 1, 0, kTextPadding - 1, 0);
    label->setTextFormat(Qt::PlainText);
    layout->addWidget(label);
    return Pane{{id, style, std::max(0, width), std::move(text)}, cell, label, nullptr};
}

bool TsXTPStatusBar::SetIndicators(const unsigned int* ids, int count)
{
    if (count < 0)
        return false;
    while (GetCount() > 0)
        DeletePane(GetCount() - 1);
    for (int i = 0; i < count; ++i)
        AddIndicator(ids ? ids[i] : 0);
    if (GetCount() > 0)
        mPanes[0].style |= SBPS_STRETCH;
    Relayout();
    return true;
}

int TsXTPStatusBar::AddIndicator(unsigned int id, int index)
{
    std::string text = id != 0 ? LanguageString::Get(id) : std::string();
    const int width =
        text.empty() ? 0 : fontMetrics().horizontalAdvance(QString::fromStdString(text)) + 2 * kTextPadding + 2;
    if (index < 0 || index > GetCount())
        index = GetCount();
    mPanes.insert(mPanes.begin() + index, MakePane(id, SBPS_NORMAL, width, std::move(text)));
    Relayout();
    return index;
}

bool TsXTPStatusBar::RemoveIndicator(unsigned int id)
{
    const int index = CommandToIndex(id);
    if (index < 0)
        return false;
    DeletePane(index);
    Relayout();
    return true;
}

bool TsXTPStatusBar::AddControl(QWidget* control, unsigned int id)
{
    const int index = CommandToIndex(id);
    if (index < 0 || !control)
        return false;
    HostControl(index, control);
    return true;
}

void TsXTPStatusBar::HostControl(int index, QWidget* control)
{
    // A control has one pane at a time.
    const int previous = GetWindowIndex(control);
    if (previous >= 0 && previous != index)
        ReleaseControl(mPanes[previous]);
    Pane& pane = mPanes[index];
    if (pane.control && pane.control != control)
        ReleaseControl(pane);
    pane.control = control;
    pane.cell->layout()->addWidget(control);
    ApplyPane(pane);
    if (pane.width > 0 || (pane.style & SBPS_STRETCH))
        control->show();
}

void TsXTPStatusBar::ReleaseControl(Pane& pane)
{
    if (QWidget* control = pane.control) {
        pane.cell->layout()->removeWidget(control);
        control->setParent(this);
        control->hide();
    }
    pane.control = nullptr;
    ApplyPane(pane);
}

void TsXTPStatusBar::DeletePane(int index)
{
    Pane& pane = mPanes[index];
    ReleaseControl(pane);
    removeWidget(pane.cell);
    delete pane.cell;
    mPanes.erase(mPanes.begin() + index);
}

void TsXTPStatusBar::SetPaneInfo(int index, unsigned int id, unsigned int style, int width)
{
    if (!IsValidIndex(index))
        return;
    Pane& pane = mPanes[index];
    const bool stretchChanged = (pane.style & SBPS_STRETCH) != (style & SBPS_STRETCH);
    pane.id = id;
    pane.style = style;
    pane.width = std::max(0, width);
    // The stretch factor is fixed when a widget enters the bar.
    if (stretchChanged)
        Relayout();
    else
        ApplyPane(pane);
    ShowText(index);
}

QRect TsXTPStatusBar::GetItemRect(int index) const
{
    if (!IsValidIndex(index) || mPanes[index].cell->isHidden())
        return QRect();
    return mPanes[index].cell->geometry();
}

int TsXTPStatusBar::GetWindowIndex(const QWidget* window) const
{
    for (int i = 0; i < GetCount(); ++i)
        if (window && mPanes[i].control == window)
            return i;
    return -1;
}

int TsXTPStatusBar::SetPaneText(int index, const std::string& text, int update)
{
    if (!IsValidIndex(index))
        return 0;
    mPanes[index].text = text;
    ShowText(index);
    if (update)
        mPanes[index].label->repaint();
    return 1;
}

bool TsXTPStatusBar::InsertWindow(QWidget* window, int width, int index, unsigned int id)
{
    if (!window)
        return false;
    if (GetWindowIndex(window) >= 0)
        RemoveWindow(window, false, id);
    index = AddIndicator(id, std::clamp(index, 0, GetCount()));
    SetPaneInfo(index, id, SBPS_NORMAL, width);
    HostControl(index, window);
    return true;
}

void TsXTPStatusBar::RemoveWindow(QWidget* window, bool hide, unsigned int id)
{
    const int hostedAt = GetWindowIndex(window);
    const int index = hostedAt >= 0 ? hostedAt : CommandToIndex(id);
    if (!IsValidIndex(index))
        return;
    if (hide) {
        mPanes[index].width = 0;
        ApplyPane(mPanes[index]);
        if (window)
            window->hide();
        return;
    }
    DeletePane(index);
    Relayout();
}

void TsXTPStatusBar::ApplyPane(Pane& pane)
{
    if (pane.style & SBPS_NOBORDERS)
        pane.cell->setFrameStyle(QFrame::NoFrame);
    else
        pane.cell->setFrameStyle(QFrame::Panel | ((pane.style & SBPS_POPOUT) ? QFrame::Raised : QFrame::Sunken));
    if (pane.style & SBPS_STRETCH) {
        pane.cell->setMinimumWidth(pane.width);
        pane.cell->setMaximumWidth(QWIDGETSIZE_MAX);
    } else {
        pane.cell->setFixedWidth(pane.width);
    }
    pane.cell->setVisible(pane.width > 0 || (pane.style & SBPS_STRETCH));
    pane.label->setVisible(!pane.control);
}

void TsXTPStatusBar::ShowText(int index)
{
    Pane& pane = mPanes[index];
    QString text = QString::fromStdString(pane.text);
    if (index == CommandToIndex(0) && !currentMessage().isEmpty())
        text = currentMessage();
    pane.label->setText((pane.style & SBPS_DISABLED) ? QString() : text);
}

void TsXTPStatusBar::Relayout()
{
    for (Pane& pane : mPanes)
        removeWidget(pane.cell);
    for (int i = 0; i < GetCount(); ++i) {
        Pane& pane = mPanes[i];
        addPermanentWidget(pane.cell, (pane.style & SBPS_STRETCH) ? 1 : 0);
        ApplyPane(pane);
        ShowText(i);
    }
}

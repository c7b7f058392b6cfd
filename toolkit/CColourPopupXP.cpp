#include <KORVAutlwin/toolkit/CColourPopupXP.h>

#include <KORVAutlwin/toolkit/CColourPickerXP.h>

#include <KORVAutlwin/frame/RegistrySection.h>

#include <QColorDialog>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QStyle>
#include <QStyleOption>
#include <QToolTip>

#include <algorithm>

namespace {

// The custom colours live in the application's key, below the section.
std::unique_ptr<RegistrySection> OpenSectionKey(const std::string& section)
{
    if (section.empty())
        return nullptr;
    auto key = std::make_unique<RegistrySection>();
    const std::string path = std::string(GetRegistryBaseKeyName()) + "\\" + section;
    if (!key->Open(HKEY_CURRENT_USER, path.c_str(), KEY_ALL_ACCESS, true))
        return nullptr;
    return key;
}

} // namespace

CColourPopupXP::CColourPopupXP(const QRect& button, COLORREF colour, CColourPickerXP* picker,
                               const std::string& defaultText, const std::string& customText,
                               const std::string& regSection)
    : QWidget(picker, Qt::Popup | Qt::FramelessWindowHint), mInitialColour(colour), mChosenColour(colour),
      mPicker(picker), mDefaultText(defaultText), mCustomText(customText), mRegSection(regSection)
{
    setAttribute(Qt::WA_DeleteOnClose);
    // A click on the picker that closes the popup must not open it again.
    setAttribute(Qt::WA_NoMouseReplay);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);

    QSize textSize;
    for (const std::string* text : {&mDefaultText, &mCustomText})
        if (!text->empty())
            textSize = textSize.expandedTo(fontMetrics().size(Qt::TextSingleLine, QString::fromStdString(*text)));
    const int margin = std::max(1, style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this));
    mLayout = std::make_unique<ColourPopupLayout>(ColourTable::GetCount(), margin, textSize, !mDefaultText.empty(),
                                                  !mCustomText.empty());

    if (colour == ColourTable::kAutomaticColour && mLayout->IsValidIndex(ColourTable::eDefaultRow))
        mCurrentIndex = ColourTable::eDefaultRow;
    else
        mCurrentIndex = ColourTable::FindColour(colour);
    mChosenIndex = mCurrentIndex;

    setGeometry(mLayout->PlaceBelow(button, ScreenArea(button)));
}

CColourPopupXP::~CColourPopupXP() = default;

QRect CColourPopupXP::ScreenArea(const QRect& button) const
{
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::screenAt(button.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(button.topLeft(), QSize(4096, 4096));
}

COLORREF CColourPopupXP::ColourAt(int index) const
{
    if (index == ColourTable::eDefaultRow)
        return ColourTable::kAutomaticColour;
    if (index >= 0 && index < mLayout->GetCount())
        return ColourTable::GetColour(index);
    return mInitialColour;
}

std::string CColourPopupXP::NameAt(int index) const
{
    if (index == ColourTable::eDefaultRow)
        return mDefaultText;
    if (index == ColourTable::eCustomRow)
        return mCustomText;
    return ColourTable::GetName(index);
}

void CColourPopupXP::ChangeSelection(int index)
{
    if (!mLayout->IsValidIndex(index))
        index = ColourTable::eNoIndex;
    if (index == mCurrentIndex)
        return;
    mCurrentIndex = index;
    update();
    if (index != ColourTable::eNoIndex && index != ColourTable::eCustomRow && mPicker)
        mPicker->OnPopupNotice(ColourTable::eSelectionChanged, ColourAt(index));
}

void CColourPopupXP::EndSelection(int message)
{
    if (mEnded)
        return;
    mEnded = true;
    releaseMouse();

    if (message == ColourTable::eSelectionEndCancel) {
        mChosenColour = mInitialColour;
    } else if (mCurrentIndex == ColourTable::eCustomRow) {
        mColourDialogOpen = true;
        hide(); // a popup would keep the dialog from the mouse
        std::unique_ptr<RegistrySection> key = OpenSectionKey(mRegSection);
        const auto loaded = ColourTable::LoadCustomColours(key.get());
        for (int i = 0; i < ColourTable::kCustomColours; ++i)
            QColorDialog::setCustomColor(i, korva::ToQColor(loaded[i]));

        QPointer<CColourPopupXP> self(this);
        QColorDialog dialog(korva::ToQColor(mInitialColour), parentWidget() ? parentWidget()->window() : nullptr);
        dialog.setOptions(QColorDialog::DontUseNativeDialog);
        if (dialog.exec() == QDialog::Accepted)
            mChosenColour = korva::FromQColor(dialog.selectedColor());
        else
            message = ColourTable::eSelectionEndCancel;

        // Edits to the custom colours are kept whether the dialog ended with OK or not.
        std::array<COLORREF, ColourTable::kCustomColours> edited;
        for (int i = 0; i < ColourTable::kCustomColours; ++i)
            edited[i] = korva::FromQColor(QColorDialog::customColor(i));
        ColourTable::SaveCustomColours(key.get(), edited);
        if (!self)
            return;
        mColourDialogOpen = false;
        if (message == ColourTable::eSelectionEndCancel)
            mChosenColour = mInitialColour;
    } else {
        mChosenColour = ColourAt(mCurrentIndex);
    }

    if (mPicker)
        mPicker->OnPopupNotice(message, mChosenColour);
    if (!mColourDialogOpen)
        close();
}

void CColourPopupXP::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QPalette& pal = palette();
    painter.fillRect(rect(), pal.color(QPalette::Window));
    QStyleOptionFrame frame;
    frame.initFrom(this);
    frame.lineWidth = mLayout->GetMargin();
    style()->drawPrimitive(QStyle::PE_FrameMenu, &frame, &painter, this);

    auto drawText = [&](int index, const std::string& text) {
        const QRect area = mLayout->GetItemRect(index);
        if (area.isEmpty())
            return;
        if (index == mCurrentIndex) {
            painter.fillRect(area, pal.color(QPalette::Highlight).lighter(170));
            painter.setPen(pal.color(QPalette::Highlight));
            painter.drawRect(area.adjusted(0, 0, -1, -1));
        }
        if (index == ColourTable::eDefaultRow && mChosenIndex == index) {
            painter.setPen(pal.color(QPalette::Dark));
            painter.drawRect(area.adjusted(1, 1, -2, -2));
        }
        painter.setPen(pal.color(QPalette::WindowText));
        painter.drawText(area, Qt::AlignCenter, QString::fromStdString(text));
    };
    drawText(ColourTable::eDefaultRow, mDefaultText);
    drawText(ColourTable::eCustomRow, mCustomText);

    const int inset = mLayout->GetMargin() + 1;
    for (int i = 0; i < mLayout->GetCount(); ++i) {
        const QRect box = mLayout->GetItemRect(i);
        if (i == mCurrentIndex || i == mChosenIndex) {
            painter.fillRect(box, i == mCurrentIndex ? pal.color(QPalette::Highlight).lighter(170) : pal.color(QPalette::Midlight));
            painter.setPen(i == mCurrentIndex ? pal.color(QPalette::Highlight) : pal.color(QPalette::Dark));
            painter.drawRect(box.adjusted(0, 0, -1, -1));
        }
        const QRect swatch = box.adjusted(inset, inset, -inset, -inset);
        painter.fillRect(swatch, korva::ToQColor(ColourTable::GetColour(i)));
        painter.setPen(pal.color(QPalette::Shadow));
        painter.drawRect(swatch.adjusted(0, 0, -1, -1));
    }
}

void CColourPopupXP::mouseMoveEvent(QMouseEvent* event)
{
    if (rect().contains(event->position().toPoint()))
        ChangeSelection(mLayout->HitTest(event->position().toPoint()));
}

void CColourPopupXP::mouseReleaseEvent(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    if (!rect().contains(point)) {
        EndSelection(ColourTable::eSelectionEndCancel);
        return;
    }
    const int index = mLayout->HitTest(point);
    if (index == ColourTable::eNoIndex)
        return; // between the boxes: the popup stays
    ChangeSelection(index);
    EndSelection(ColourTable::eSelectionEndOk);
}

void CColourPopupXP::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Down: ChangeSelection(mLayout->MoveIndex(mCurrentIndex, ColourPopupLayout::eDown)); break;
    case Qt::Key_Up: ChangeSelection(mLayout->MoveIndex(mCurrentIndex, ColourPopupLayout::eUp)); break;
    case Qt::Key_Left: ChangeSelection(mLayout->MoveIndex(mCurrentIndex, ColourPopupLayout::eLeft)); break;
    case Qt::Key_Right: ChangeSelection(mLayout->MoveIndex(mCurrentIndex, ColourPopupLayout::eRight)); break;
    case Qt::Key_Escape: EndSelection(ColourTable::eSelectionEndCancel); break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space: EndSelection(ColourTable::eSelectionEndOk); break;
    default: QWidget::keyPressEvent(event); break;
    }
}

void CColourPopupXP::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    // Closed from outside (a click elsewhere, focus lost): no choice.
    if (!mColourDialogOpen && !mEnded)
        EndSelection(ColourTable::eSelectionEndCancel);
}

bool CColourPopupXP::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const int index = mLayout->HitTest(help->pos());
        if (index != ColourTable::eNoIndex)
            QToolTip::showText(help->globalPos(), QString::fromStdString(NameAt(index)), this,
                               mLayout->GetItemRect(index));
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(event);
}

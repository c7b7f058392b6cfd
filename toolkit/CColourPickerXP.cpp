#include <KORVAutlwin/toolkit/CColourPickerXP.h>

#include <KORVAutlwin/toolkit/CColourPopupXP.h>

#include <KORVAutl/LanguageString.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace {

constexpr unsigned int kAutomaticText = 34350;
constexpr unsigned int kMoreColoursText = 34351;

} // namespace

std::string CColourPickerXP::msRegSection;

CColourPickerXP::CColourPickerXP(QWidget* parent)
    : QPushButton(parent),
      // What automatic means: the application workspace colour, the ground of MDI areas.
      mDefaultColour(korva::FromQColor(QApplication::palette().color(QPalette::Dark))),
      mDefaultText(LanguageString::Get(kAutomaticText)), mCustomText(LanguageString::Get(kMoreColoursText))
{
    setAttribute(Qt::WA_Hover);
    connect(this, &QPushButton::clicked, this, &CColourPickerXP::OnClicked);
}

CColourPickerXP::~CColourPickerXP()
{
    // An open popup goes first, while it can still tell this picker nothing.
    qDeleteAll(findChildren<CColourPopupXP*>(Qt::FindDirectChildrenOnly));
}

COLORREF CColourPickerXP::GetColor()
{
    return mColour;
}

COLORREF CColourPickerXP::GetColor(int translate)
{
    return translate && mColour == ColourTable::kAutomaticColour ? mDefaultColour : mColour;
}

void CColourPickerXP::SetColor(COLORREF colour)
{
    mColour = colour;
    update();
}

COLORREF CColourPickerXP::GetDefaultColor()
{
    return mDefaultColour;
}

void CColourPickerXP::SetDefaultColor(COLORREF colour)
{
    mDefaultColour = colour;
    update();
}

void CColourPickerXP::SetCustomText(const char* text)
{
    mCustomText = text ? text : "";
}

void CColourPickerXP::SetDefaultText(const char* text)
{
    mDefaultText = text ? text : "";
    update();
}

void CColourPickerXP::SetRegSection(const char* section)
{
    mRegSection = section ? section : "";
}

void CColourPickerXP::SetTrackSelection(int track)
{
    mTrackSelection = track != 0;
}

int CColourPickerXP::GetTrackSelection()
{
    return mTrackSelection;
}

void CColourPickerXP::SetStyle(int style)
{
    mStyle = style != 0;
    if (mStyle)
        resize(width(), fontMetrics().height() + 8);
    updateGeometry();
    update();
}

int CColourPickerXP::GetStyle()
{
    return mStyle;
}

void CColourPickerXP::SetRGBText(const char* text)
{
    mRGBText = ColourTable::PadRGBText(text ? text : "");
    update();
}

void CColourPickerXP::SetAlwaysRGB(int always)
{
    mAlwaysRGB = always != 0;
    update();
}

int CColourPickerXP::GetAlwaysRGB()
{
    return mAlwaysRGB;
}

void CColourPickerXP::DrawHotArrow(int hot)
{
    if (mHot == (hot != 0))
        return;
    mHot = hot != 0;
    update();
}

void CColourPickerXP::SetRegSectionStatic(const char* section)
{
    msRegSection = section ? section : "";
}

void CColourPickerXP::SetColoursName(unsigned int firstStringId)
{
    ColourTable::SetColoursName(firstStringId);
}

std::string CColourPickerXP::GetColourText() const
{
    return ColourTable::GetColourText(mColour, mDefaultText, mRGBText, mAlwaysRGB);
}

void CColourPickerXP::OnClicked()
{
    mPopupActive = true;
    const QRect button(mapToGlobal(QPoint(0, 0)), size());
    auto* popup = new CColourPopupXP(button, mColour, this, mDefaultText, mCustomText,
                                     mRegSection.empty() ? msRegSection : mRegSection);
    popup->show();
    popup->setFocus();
    emit Notice(ColourTable::eDroppedDown, mColour);
}

void CColourPickerXP::OnPopupNotice(int message, COLORREF colour)
{
    switch (message) {
    case ColourTable::eSelectionEndOk: {
        mPopupActive = false;
        const COLORREF before = mColour;
        SetColor(colour);
        emit Notice(ColourTable::eClosedUp, colour);
        emit Notice(ColourTable::eSelectionEndOk, colour);
        if (colour != before)
            emit Notice(ColourTable::eSelectionChanged, colour);
        break;
    }
    case ColourTable::eSelectionEndCancel:
        mPopupActive = false;
        SetColor(colour);
        emit Notice(ColourTable::eClosedUp, colour);
        emit Notice(ColourTable::eSelectionEndCancel, colour);
        break;
    case ColourTable::eSelectionChanged:
        if (mTrackSelection)
            SetColor(colour);
        emit Notice(ColourTable::eSelectionChanged, colour);
        break;
    default:
        break;
    }
}

QSize CColourPickerXP::sizeHint() const
{
    const int height = mStyle ? fontMetrics().height() + 8 : QPushButton::sizeHint().height();
    return QSize(mStyle ? 160 : 60, height);
}

void CColourPickerXP::keyPressEvent(QKeyEvent* event)
{
    // The keys that drop a combo box down open the popup as well.
    const bool altDown = event->key() == Qt::Key_Down && (event->modifiers() & Qt::AltModifier);
    if ((event->key() == Qt::Key_F4 || altDown) && !mPopupActive) {
        click();
        return;
    }
    QPushButton::keyPressEvent(event);
}

void CColourPickerXP::enterEvent(QEnterEvent* event)
{
    DrawHotArrow(true);
    QPushButton::enterEvent(event);
}

void CColourPickerXP::leaveEvent(QEvent* event)
{
    DrawHotArrow(false);
    QPushButton::leaveEvent(event);
}

void CColourPickerXP::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    DrawItem(painter);
}

void CColourPickerXP::DrawItem(QPainter& painter)
{
    const QColor shown = korva::ToQColor(GetColor(1));
    const int arrowWidth = style()->pixelMetric(QStyle::PM_MenuButtonIndicator, nullptr, this);
    if (mStyle) {
        QStyleOptionComboBox combo;
        combo.initFrom(this);
        combo.editable = false;
        combo.state.setFlag(QStyle::State_MouseOver, mHot);
        combo.state.setFlag(QStyle::State_On, mPopupActive);
        style()->drawComplexControl(QStyle::CC_ComboBox, &combo, &painter, this);
        const QRect field = style()->subControlRect(QStyle::CC_ComboBox, &combo, QStyle::SC_ComboBoxEditField, this);
        const int side = field.height() - 4;
        const QRect swatch(field.left() + 2, field.top() + 2, side, side);
        painter.fillRect(swatch, shown);
        painter.setPen(palette().color(QPalette::Shadow));
        painter.drawRect(swatch.adjusted(0, 0, -1, -1));
        painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
        painter.drawText(field.adjusted(side + 8, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft,
                         QString::fromStdString(GetColourText()));
        return;
    }

    QStyleOptionButton button;
    initStyleOption(&button);
    button.text.clear();
    button.state.setFlag(QStyle::State_Sunken, mPopupActive || isDown());
    button.state.setFlag(QStyle::State_MouseOver, mHot);
    style()->drawControl(QStyle::CE_PushButtonBevel, &button, &painter, this);

    const int inset = 5;
    const QRect swatch = rect().adjusted(inset, inset, -(inset + arrowWidth + 4), -inset);
    painter.fillRect(swatch, isEnabled() ? shown : palette().color(QPalette::Disabled, QPalette::Button));
    painter.setPen(palette().color(QPalette::Shadow));
    painter.drawRect(swatch.adjusted(0, 0, -1, -1));

    QStyleOption arrow;
    arrow.initFrom(this);
    arrow.rect = QRect(swatch.right() + 4, 0, arrowWidth, height());
    arrow.state.setFlag(QStyle::State_MouseOver, mHot);
    if (mHot)
        arrow.palette.setColor(QPalette::ButtonText, palette().color(QPalette::Highlight));
    style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, &painter, this);
}

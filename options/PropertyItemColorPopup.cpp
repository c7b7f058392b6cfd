#include <KORVAutlwin/options/PropertyItemColorPopup.h>
#include <KORVAutlwin/options/PropertyItemControls.h>

#include <KORVAutl/TsString.h>

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>

PropertyItemColorPopup::PropertyItemColorPopup(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
    : PropertyItem(nameId, propertyId, descriptionId)
{
}

PropertyItemColorPopup::PropertyItemColorPopup(const char* name, unsigned int propertyId, const char* description)
    : PropertyItem(name, propertyId, description)
{
}

std::string PropertyItemColorPopup::FormatColor(COLORREF color)
{
    return TsString::Format("R: %d G: %d B: %d", GetRValue(color), GetGValue(color), GetBValue(color));
}

void PropertyItemColorPopup::DrawValue(QPainter* dc, QRect cell)
{
    const QPalette palette = QGuiApplication::palette();
    // The swatch: from left + 1 to left + 31, top + 1 to bottom - 1, framed in the face colour.
    const QRect swatch(QPoint(cell.left() + 1, cell.top() + 1), QPoint(cell.left() + 30, cell.bottom() - 1));
    dc->fillRect(swatch, korva::ToQColor(mValue));
    dc->save();
    dc->setPen(palette.color(QPalette::Button));
    dc->setBrush(Qt::NoBrush);
    dc->drawRect(swatch.adjusted(0, 0, -1, -1));
    dc->restore();
    const QRect text(QPoint(cell.left() + 37, cell.top()), QPoint(cell.right() - 3, cell.bottom()));
    dc->drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, QString::fromStdString(FormatColor(mValue)));
}

QWidget* PropertyItemColorPopup::CreateInPlaceControl(QWidget* parent, QRect cell)
{
    PropertyItemControls* controls = PropertyItemControls::Get();
    return controls ? controls->CreateInPlaceControl(*this, parent, cell) : nullptr;
}

void PropertyItemColorPopup::SetData(QWidget* control)
{
    if (PropertyItemControls* controls = PropertyItemControls::Get(); controls && control)
        controls->SetData(*this, control);
}

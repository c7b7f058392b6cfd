// The value rows: text, numbers and paths.
#include <KORVAutlwin/options/PropertyItemControls.h>
#include <KORVAutlwin/options/PropertyItemFilePath.h>
#include <KORVAutlwin/options/PropertyItemFloat.h>
#include <KORVAutlwin/options/PropertyItemFolderPath.h>
#include <KORVAutlwin/options/PropertyItemNegNumber.h>
#include <KORVAutlwin/options/PropertyItemNumber.h>
#include <KORVAutlwin/options/PropertyItemString.h>
#include <KORVAutlwin/options/PropertyPathCompact.h>

#include <KORVAutl/TsString.h>

#include <QPainter>

#include <cctype>
#include <climits>

// The window side, when one is installed, creates the controls and reads them.
#define KORVA_CREATE_CONTROL(parent, cell)                                                                   \
    (PropertyItemControls::Get() ? PropertyItemControls::Get()->CreateInPlaceControl(*this, parent, cell) \
                                 : nullptr)
#define KORVA_TAKE_DATA(control)                                \
    do {                                                        \
        if (PropertyItemControls::Get() && control)            \
            PropertyItemControls::Get()->SetData(*this, control); \
    } while (false)

PropertyItemString::PropertyItemString(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
    : PropertyItem(nameId, propertyId, descriptionId)
{
}

PropertyItemString::PropertyItemString(const char* name, unsigned int propertyId, const char* description)
    : PropertyItem(name, propertyId, description)
{
}

void PropertyItemString::DrawValue(QPainter* dc, QRect cell) { korva::DrawValueText(dc, cell, mValue); }

QWidget* PropertyItemString::CreateInPlaceControl(QWidget* parent, QRect cell) { return KORVA_CREATE_CONTROL(parent, cell); }

void PropertyItemString::SetData(QWidget* control) { KORVA_TAKE_DATA(control); }

PropertyItemNumber::PropertyItemNumber(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
    : PropertyItem(nameId, propertyId, descriptionId)
{
}

PropertyItemNumber::PropertyItemNumber(const char* name, unsigned int propertyId, const char* description)
    : PropertyItem(name, propertyId, description)
{
}

void PropertyItemNumber::DrawValue(QPainter* dc, QRect cell) { korva::DrawValueText(dc, cell, GetValueText()); }

QWidget* PropertyItemNumber::CreateInPlaceControl(QWidget* parent, QRect cell) { return KORVA_CREATE_CONTROL(parent, cell); }

void PropertyItemNumber::SetData(QWidget* control) { KORVA_TAKE_DATA(control); }

std::string PropertyItemNumber::GetValueText() const { return TsString::Format("%d", mValue); }

int PropertyItemNumber::Atoi(const char* text)
{
    if (!text)
        return 0;
    while (std::isspace(static_cast<unsigned char>(*text)))
        ++text;
    bool negative = false;
    if (*text == '+' || *text == '-')
        negative = *text++ == '-';
    long long value = 0;
    for (; std::isdigit(static_cast<unsigned char>(*text)); ++text) {
        value = value * 10 + (*text - '0');
        if (value > static_cast<long long>(INT_MAX) + 1)
            break;
    }
    if (negative)
        value = -value;
    if (value > INT_MAX)
        return INT_MAX;
    if (value < INT_MIN)
        return INT_MIN;
    return static_cast<int>(value);
}

bool PropertyItemNumber::AcceptText(const char* text)
{
    const int value = Atoi(text);
    // What atoi gives on overflow; the two numbers themselves are lost with it.
    if (value == INT_MIN || value == INT_MAX)
        return false;
    mValue = value;
    return true;
}

PropertyItemNegNumber::PropertyItemNegNumber(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
    : PropertyItemNumber(nameId, propertyId, descriptionId)
{
}

PropertyItemNegNumber::PropertyItemNegNumber(const char* name, unsigned int propertyId, const char* description)
    : PropertyItemNumber(name, propertyId, description)
{
}

QWidget* PropertyItemNegNumber::CreateInPlaceControl(QWidget* parent, QRect cell) { return KORVA_CREATE_CONTROL(parent, cell); }

bool PropertyItemNegNumber::ValidateText(std::string& text) const
{
    int value = 0;
    if (TsString::ToInt(text.c_str(), value))
        return true;
    text = GetValueText();
    return false;
}

PropertyItemFloat::PropertyItemFloat(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
    : PropertyItem(nameId, propertyId, descriptionId)
{
}

PropertyItemFloat::PropertyItemFloat(const char* name, unsigned int propertyId, const char* description)
    : PropertyItem(name, propertyId, description)
{
}

void PropertyItemFloat::DrawValue(QPainter* dc, QRect cell) { korva::DrawValueText(dc, cell, GetValueText()); }

QWidget* PropertyItemFloat::CreateInPlaceControl(QWidget* parent, QRect cell) { return KORVA_CREATE_CONTROL(parent, cell); }

void PropertyItemFloat::SetData(QWidget* control) { KORVA_TAKE_DATA(control); }

std::string PropertyItemFloat::GetValueText() const { return TsString::Format("%g", static_cast<double>(mValue)); }

bool PropertyItemFloat::AcceptText(const char* text) { return TsString::ToFloat(text, mValue); }

bool PropertyItemFloat::ValidateText(std::string& text) const
{
    float value = 0.0f;
    if (TsString::ToFloat(text.c_str(), value))
        return true;
    text = GetValueText();
    return false;
}

void PropertyItemPath::DrawValue(QPainter* dc, QRect cell)
{
    const QRect text = korva::ValueTextRect(cell);
    korva::DrawValueText(dc, cell, PathCompactPath(dc->fontMetrics(), mValue, text.width()));
}

QWidget* PropertyItemFolderPath::CreateInPlaceControl(QWidget* parent, QRect cell) { return KORVA_CREATE_CONTROL(parent, cell); }

void PropertyItemFolderPath::SetData(QWidget* control) { KORVA_TAKE_DATA(control); }

QWidget* PropertyItemFilePath::CreateInPlaceControl(QWidget* parent, QRect cell) { return KORVA_CREATE_CONTROL(parent, cell); }

void PropertyItemFilePath::SetData(QWidget* control) { KORVA_TAKE_DATA(control); }

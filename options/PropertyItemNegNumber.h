#pragma once
// A number row that also takes negative numbers: any text in the edit, checked
// when the edit loses the focus.

#include <KORVAutlwin/options/PropertyItemNumber.h>

class PropertyInPlaceEdit;

/// A number row that also takes negative numbers.
class PropertyItemNegNumber : public PropertyItemNumber
{
public:
    PropertyItemNegNumber(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItemNegNumber(const char* name, unsigned int propertyId, const char* description);

    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;

    /// The edit's validate function, `context` being the item: text that is no
    /// whole number goes back to the present value, without a message.
    static void ValidateFunc(PropertyInPlaceEdit* edit, void* context);
    /// What ValidateFunc does to the text: true when `text` is a whole number,
    /// otherwise `text` becomes the present value's text and the answer is false.
    bool ValidateText(std::string& text) const;
};

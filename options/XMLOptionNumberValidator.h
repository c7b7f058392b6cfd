#pragma once
// Inclusive signed 32-bit limits of a "Number" option.

#include <KORVAutlwin/options/XMLOptionValidator.h>

/// Inclusive integer limits, either of them optional, of a PropertyItemNumber
/// (a PropertyItemNegNumber included).
class XMLOptionNumberValidator : public XMLOptionValidator
{
public:
    XMLOptionNumberValidator();

    /// Reads "Min" and "Max" with ReadInt.
    bool Load(const ConfigurationSection* section) override;
    /// False for an item that is no PropertyItemNumber.
    bool IsValid(PropertyItem* item) override;
    /// "The value should be between %d and %d.", "... greater than %d." or "... lower than %d.".
    std::string GetErrorMessage(PropertyItem* item) override;

    bool HasMin() const { return mHasMin; }
    bool HasMax() const { return mHasMax; }
    int GetMin() const { return mMin; }
    int GetMax() const { return mMax; }

private:
    bool mHasMin = false;
    bool mHasMax = false;
    int mMin = 0;
    int mMax = 0;
};

#pragma once
// Inclusive 32-bit float limits of a "Float" option.

#include <KORVAutlwin/options/XMLOptionValidator.h>

/// Inclusive float limits, either of them optional, of a PropertyItemFloat.
class XMLOptionFloatValidator : public XMLOptionValidator
{
public:
    XMLOptionFloatValidator();

    /// Reads "Min" and "Max" with ReadFloat.
    bool Load(const ConfigurationSection* section) override;
    /// False for an item that is no PropertyItemFloat. A value that compares
    /// unordered (NaN) passes.
    bool IsValid(PropertyItem* item) override;
    /// "The value should be between %g and %g.", "... greater than %g." or "... lower than %g.".
    std::string GetErrorMessage(PropertyItem* item) override;

    bool HasMin() const { return mHasMin; }
    bool HasMax() const { return mHasMax; }
    float GetMin() const { return mMin; }
    float GetMax() const { return mMax; }

private:
    bool mHasMin = false;
    bool mHasMax = false;
    float mMin = 0.0f;
    float mMax = 0.0f;
};

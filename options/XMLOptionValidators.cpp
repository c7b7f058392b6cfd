#include <KORVAutlwin/options/PropertyItemFloat.h>
#include <KORVAutlwin/options/PropertyItemNumber.h>
#include <KORVAutlwin/options/XMLOptionFloatValidator.h>
#include <KORVAutlwin/options/XMLOptionNumberValidator.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/TsString.h>

XMLOptionValidator::XMLOptionValidator(const char* type) : mType(type) {}

XMLOptionValidator::~XMLOptionValidator() = default;

XMLOptionFloatValidator::XMLOptionFloatValidator() : XMLOptionValidator("Float") {}

bool XMLOptionFloatValidator::Load(const ConfigurationSection* section)
{
    mHasMin = section->ReadFloat("Min", mMin);
    mHasMax = section->ReadFloat("Max", mMax);
    return mHasMin || mHasMax;
}

bool XMLOptionFloatValidator::IsValid(PropertyItem* item)
{
    auto* floatItem = dynamic_cast<PropertyItemFloat*>(item);
    if (!floatItem)
        return false;
    float value = 0.0f;
    floatItem->GetData(value);
    // Written as "below" and "above" so that NaN, unordered, passes.
    if (mHasMin && value < mMin)
        return false;
    if (mHasMax && value > mMax)
        return false;
    return true;
}

std::string XMLOptionFloatValidator::GetErrorMessage(PropertyItem* item)
{
    if (IsValid(item))
        return {};
    const double low = mMin, high = mMax;
    if (mHasMin && mHasMax)
        return TsString::Format("The value should be between %g and %g.", low, high);
    if (mHasMin)
        return TsString::Format("The value should be greater than %g.", low);
    return TsString::Format("The value should be lower than %g.", high);
}

XMLOptionNumberValidator::XMLOptionNumberValidator() : XMLOptionValidator("Number") {}

bool XMLOptionNumberValidator::Load(const ConfigurationSection* section)
{
    mHasMin = section->ReadInt("Min", mMin);
    mHasMax = section->ReadInt("Max", mMax);
    return mHasMin || mHasMax;
}

bool XMLOptionNumberValidator::IsValid(PropertyItem* item)
{
    auto* numberItem = dynamic_cast<PropertyItemNumber*>(item);
    if (!numberItem)
        return false;
    int value = 0;
    numberItem->GetData(value);
    if (mHasMin && value < mMin)
        return false;
    if (mHasMax && value > mMax)
        return false;
    return true;
}

std::string XMLOptionNumberValidator::GetErrorMessage(PropertyItem* item)
{
    if (IsValid(item))
        return {};
    if (mHasMin && mHasMax)
        return TsString::Format("The value should be between %d and %d.", mMin, mMax);
    if (mHasMin)
        return TsString::Format("The value should be greater than %d.", mMin);
    return TsString::Format("The value should be lower than %d.", mMax);
}

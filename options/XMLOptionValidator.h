#pragma once
// The limits of one option of an XML option description, from its "Validator"
// section: "Type" "Float" or "Number", and "Min" and/or "Max".

#include <string>

class ConfigurationSection;
class PropertyItem;

/// The limits of one option of an option description; abstract, one subclass per type.
class XMLOptionValidator
{
public:
    /// `type` is the type name, "Float" or "Number".
    explicit XMLOptionValidator(const char* type);
    virtual ~XMLOptionValidator();

    /// Reads "Min" and "Max" of the "Validator" section `section`; true when at least one was read.
    virtual bool Load(const ConfigurationSection* section) = 0;
    /// True when `item` is of the validator's item class and its value lies within the limits.
    virtual bool IsValid(PropertyItem* item) = 0;
    /// Empty when IsValid is true; otherwise the text naming the limits.
    virtual std::string GetErrorMessage(PropertyItem* item) = 0;

    const std::string& GetType() const { return mType; }

protected:
    std::string mType;
};

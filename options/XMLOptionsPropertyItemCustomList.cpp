#include <KORVAutlwin/options/XMLOptionsPropertyItemCustomList.h>

XMLOptionsPropertyItemCustomList::XMLOptionsPropertyItemCustomList(const char* name, unsigned int propertyId,
                                                                   const char* description)
    : PropertyItemCustomList(name, propertyId, description)
{
}

void XMLOptionsPropertyItemCustomList::InitPropertyItemList(std::vector<std::string>& list, unsigned int)
{
    list = mNames;
}

void XMLOptionsPropertyItemCustomList::SetSelectedValue(const std::string& value)
{
    for (size_t index = 0; index < mValues.size(); ++index)
        if (mValues[index] == value) {
            SetData(static_cast<int>(index));
            return;
        }
    SetData(-1);
}

void XMLOptionsPropertyItemCustomList::GetSelectedValue(std::string& value)
{
    value.clear();
    int index = 0;
    GetData(index);
    if (index >= 0 && static_cast<size_t>(index) < mValues.size())
        value = mValues[static_cast<size_t>(index)];
}

void XMLOptionsPropertyItemCustomList::AddEntry(const std::string& value, const std::string& name)
{
    mValues.push_back(value);
    mNames.push_back(name);
    mEntries = mNames;
}

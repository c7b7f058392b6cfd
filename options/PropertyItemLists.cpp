// The list rows: the base, the two-state lists and the custom list.
#include <KORVAutlwin/options/PropertyItemControls.h>
#include <KORVAutlwin/options/PropertyItemCustomList.h>
#include <KORVAutlwin/options/PropertyItemListTwoState.h>

#include <KORVAutl/LanguageString.h>

#include <algorithm>

PropertyItemList::PropertyItemList(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
    : PropertyItem(nameId, propertyId, descriptionId)
{
}

PropertyItemList::PropertyItemList(const char* name, unsigned int propertyId, const char* description)
    : PropertyItem(name, propertyId, description)
{
}

void PropertyItemList::DrawValue(QPainter* dc, QRect cell)
{
    korva::DrawValueText(dc, cell, GetItemData(static_cast<unsigned int>(mValue)));
}

QWidget* PropertyItemList::CreateInPlaceControl(QWidget* parent, QRect cell)
{
    PropertyItemControls* controls = PropertyItemControls::Get();
    return controls ? controls->CreateInPlaceControl(*this, parent, cell) : nullptr;
}

void PropertyItemList::SetData(QWidget* control)
{
    if (PropertyItemControls* controls = PropertyItemControls::Get(); controls && control)
        controls->SetData(*this, control);
}

unsigned int PropertyItemList::GetNumItems() { return 0; }

std::string PropertyItemList::GetItemData(unsigned int) { return std::string(); }

PropertyItemListTwoState::PropertyItemListTwoState(unsigned int nameId, unsigned int propertyId,
                                                   unsigned int descriptionId, const unsigned int (&stringIds)[2])
    : PropertyItemList(nameId, propertyId, descriptionId), mStringIds(stringIds)
{
}

PropertyItemListTwoState::PropertyItemListTwoState(const char* name, unsigned int propertyId, const char* description,
                                                   const unsigned int (&stringIds)[2])
    : PropertyItemList(name, propertyId, description), mStringIds(stringIds)
{
}

unsigned int PropertyItemListTwoState::GetNumItems() { return 2; }

std::string PropertyItemListTwoState::GetItemData(unsigned int index)
{
    return index < GetNumItems() ? std::string(LanguageString::Get(mStringIds[index])) : std::string();
}

PropertyItemCustomList::PropertyItemCustomList(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
    : PropertyItemList(nameId, propertyId, descriptionId)
{
}

PropertyItemCustomList::PropertyItemCustomList(const char* name, unsigned int propertyId, const char* description)
    : PropertyItemList(name, propertyId, description)
{
}

void PropertyItemCustomList::DrawValue(QPainter* dc, QRect cell)
{
    if (!mInitialised) {
        InitPropertyItemList(mEntries, mPropertyID);
        mInitialised = true;
    }
    PropertyItemList::DrawValue(dc, cell);
}

unsigned int PropertyItemCustomList::GetNumItems() { return static_cast<unsigned int>(mEntries.size()); }

std::string PropertyItemCustomList::GetItemData(unsigned int index)
{
    return index < mEntries.size() ? mEntries[index] : std::string();
}

void PropertyItemCustomList::InitPropertyItemList(std::vector<std::string>& list, unsigned int)
{
    if (&list != &mEntries)
        mEntries = list;
}

void PropertyItemCustomList::SetData(int index)
{
    InitPropertyItemList(mEntries, 0);
    mValue = index;
}

void PropertyItemCustomList::SetSelectedData(const std::string& text)
{
    const auto found = std::find(mEntries.begin(), mEntries.end(), text);
    const int position = static_cast<int>(found - mEntries.begin());
    if (found == mEntries.end()) {
        InitPropertyItemList(mEntries, 0);
        mValue = 0;
    }
    // On purpose after the step above: text that matches nothing ends one past
    // the last entry, so the row paints empty.
    InitPropertyItemList(mEntries, 0);
    mValue = position;
}

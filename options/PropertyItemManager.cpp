#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemManager.h>
#include <KORVAutlwin/options/PropertyListModel.h>

PropertyItemManager::PropertyItemManager() = default;

PropertyItemManager::~PropertyItemManager()
{
    for (PropertyItemCategory* category : mCategories)
        delete category;
}

void PropertyItemManager::OnDataChanged(PropertyItem*, PropertyListCtrl*, int) {}

PropertyItemCategory* PropertyItemManager::AddPropertyCategory(const char* name, const char* description,
                                                               bool childrenVisible)
{
    return AddCategory(new PropertyItemCategory(name, description, childrenVisible));
}

PropertyItemCategory* PropertyItemManager::AddPropertyCategory(unsigned int nameId, unsigned int descriptionId,
                                                               bool childrenVisible)
{
    return AddCategory(new PropertyItemCategory(nameId, descriptionId, childrenVisible));
}

PropertyItemCategory* PropertyItemManager::AddCategory(PropertyItemCategory* category)
{
    try {
        mCategories.push_back(category);
    } catch (...) {
        delete category;
        throw;
    }
    ++mNumCategories;
    return category;
}

PropertyItemCategory* PropertyItemManager::GetPropertyCategory(int index) const
{
    if (index < 0 || index >= mNumCategories)
        return nullptr;
    return mCategories[static_cast<size_t>(index)];
}

void PropertyItemManager::InitControl(PropertyListModel* list)
{
    list->NoInPlaceControl();
    list->ResetContent();
    int index = 0;
    for (PropertyItemCategory* category : mCategories) {
        list->InsertPropertyItem(category, index);
        if (category->GetChildrenVisible())
            list->DoExpand(category, index);
        ++index;
    }
}

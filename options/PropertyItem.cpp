#include <KORVAutlwin/options/PropertyItem.h>
#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemControls.h>

#include <KORVAutl/LanguageString.h>

#include <QPainter>

PropertyItem::PropertyItem(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
    : mName(LanguageString::Get(nameId)), mShowName(mName), mPropertyID(propertyId),
      mDescription(LanguageString::Get(descriptionId))
{
}

PropertyItem::PropertyItem(const char* name, unsigned int propertyId, const char* description)
    : mName(name ? name : ""), mShowName(mName), mPropertyID(propertyId), mDescription(description ? description : "")
{
}

PropertyItem::~PropertyItem() = default;

void PropertyItem::DrawValue(QPainter*, QRect) {}

QWidget* PropertyItem::CreateInPlaceControl(QWidget*, QRect) { return nullptr; }

void PropertyItem::SetData(QWidget*) {}

namespace korva {

QRect ValueTextRect(const QRect& cell) { return cell.adjusted(3, 0, -3, 0); }

void DrawValueText(QPainter* dc, const QRect& cell, const std::string& text)
{
    dc->drawText(ValueTextRect(cell), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                 QString::fromStdString(text));
}

} // namespace korva

PropertyItemCategory::PropertyItemCategory(unsigned int nameId, unsigned int descriptionId, bool childrenVisible)
    : PropertyItem(nameId, 0, descriptionId), mChildrenVisible(childrenVisible)
{
}

PropertyItemCategory::PropertyItemCategory(const char* name, const char* description, bool childrenVisible)
    : PropertyItem(name, 0, description), mChildrenVisible(childrenVisible)
{
}

PropertyItemCategory::~PropertyItemCategory()
{
    for (PropertyItem* item : mItems)
        delete item;
}

void PropertyItemCategory::AddPropertyItem(PropertyItem* item)
{
    mItems.push_back(item);
    ++mNumItems;
}

namespace {
PropertyItemControls* gControls = nullptr;
}

PropertyItemControls::~PropertyItemControls() = default;

PropertyItemControls* PropertyItemControls::Get() { return gControls; }

void PropertyItemControls::Set(PropertyItemControls* controls) { gControls = controls; }

#include <KORVAutlwin/controls/GrayListBox.h>

#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QStyledItemDelegate>

namespace {

constexpr int kGrayRole = Qt::UserRole + 1;
constexpr int kDataRole = Qt::UserRole + 2;

class GrayDelegate : public QStyledItemDelegate
{
public:
    explicit GrayDelegate(GrayListBox* box) : QStyledItemDelegate(box), mBox(box) {}

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        if (!index.data(kGrayRole).toBool())
            return;
        option->palette.setColor(QPalette::Text, korva::ToQColor(korva::GetSysColor(COLOR_GRAYTEXT)));
        if (!mBox->GetGrayItemsSelectable())
            option->state &= ~QStyle::State_Selected;
    }

private:
    GrayListBox* mBox;
};

} // namespace

GrayListBox::GrayListBox(QWidget* parent) : QListWidget(parent)
{
    setItemDelegate(new GrayDelegate(this));
}

int GrayListBox::AddString(const char* text, bool gray)
{
    return InsertString(count(), text, gray);
}

int GrayListBox::InsertString(int index, const char* text, bool gray)
{
    if (index < 0 || index > count())
        index = count();
    auto* item = new QListWidgetItem(QString::fromUtf8(text ? text : ""));
    item->setData(kGrayRole, gray);
    item->setData(kDataRole, QVariant::fromValue<qulonglong>(0));
    insertItem(index, item);
    return index;
}

bool GrayListBox::IsGray(int index) const
{
    if (index < 0)
        return true;
    const QListWidgetItem* entry = item(index);
    return entry && entry->data(kGrayRole).toBool();
}

void GrayListBox::SetGray(int index, bool gray)
{
    if (QListWidgetItem* entry = item(index))
        entry->setData(kGrayRole, gray); // repaints the entry
}

int GrayListBox::GetSel(int index) const
{
    if (index < 0 || IsGray(index))
        return 0;
    const QListWidgetItem* entry = item(index);
    return entry && entry->isSelected() ? 1 : 0;
}

int GrayListBox::GetSelCount() const
{
    int selected = 0;
    for (int index = 0; index < count(); ++index)
        selected += GetSel(index);
    return selected;
}

uintptr_t GrayListBox::GetItemData(int index) const
{
    const QListWidgetItem* entry = item(index);
    return entry ? static_cast<uintptr_t>(entry->data(kDataRole).toULongLong()) : 0;
}

bool GrayListBox::SetItemData(int index, uintptr_t data)
{
    QListWidgetItem* entry = item(index);
    if (!entry)
        return false;
    entry->setData(kDataRole, QVariant::fromValue<qulonglong>(data));
    return true;
}

void GrayListBox::SetGrayItemsSelectable(bool selectable)
{
    mGrayItemsSelectable = selectable;
    viewport()->update();
}

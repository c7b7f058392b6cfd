#include <KORVAutlwin/favourites/CommandsListBox.h>

#include <QMimeData>

#include <QPainter>
#include <QStyledItemDelegate>

namespace {
constexpr int kSelectionLeft = 23;
constexpr int kTextLeft = 28;
} // namespace

// Draws a row as the list always has: picture, then the text on the window's
// colours, or on the selection's from the selection's edge.
class CommandsListBox::Painter : public QStyledItemDelegate
{
public:
    explicit Painter(CommandsListBox* list) : QStyledItemDelegate(list), list(list) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const Item* item = list->GetItem(index.row());
        if (!item)
            return;
        const QRect rect = option.rect;
        const bool selected = option.state & QStyle::State_Selected;
        painter->save();
        painter->fillRect(rect, option.palette.color(QPalette::Base));
        if (!item->icon.isNull())
            painter->drawImage(rect.left() + (kSelectionLeft - item->icon.width()) / 2,
                               rect.top() + (rect.height() - item->icon.height()) / 2, item->icon);
        if (selected)
            painter->fillRect(rect.adjusted(kSelectionLeft, 0, 0, 0), option.palette.color(QPalette::Highlight));
        painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
        painter->drawText(rect.adjusted(kTextLeft, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          QString::fromStdString(item->text));
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        return {QStyledItemDelegate::sizeHint(option, index).width() + kTextLeft, kItemHeight};
    }

private:
    CommandsListBox* list;
};

CommandsListBox::CommandsListBox(QWidget* parent)
    : QListWidget(parent)
{
    setItemDelegate(new Painter(this));
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
}

CommandsListBox::~CommandsListBox() = default;

int CommandsListBox::AddItem(Item item)
{
    auto* row = new QListWidgetItem(QString::fromStdString(item.text));
    row->setSizeHint(QSize(0, kItemHeight));
    items.push_back(std::make_unique<Item>(std::move(item)));
    addItem(row);
    return count() - 1;
}

const CommandsListBox::Item* CommandsListBox::GetItem(int index) const
{
    return index >= 0 && index < static_cast<int>(items.size()) ? items[index].get() : nullptr;
}

void CommandsListBox::ResetContent()
{
    clear();
    items.clear();
}

QStringList CommandsListBox::mimeTypes() const { return {QString::fromLatin1(kMimeType)}; }

QMimeData* CommandsListBox::mimeData(const QList<QListWidgetItem*>& rows) const
{
    const Item* item = rows.isEmpty() ? nullptr : GetItem(row(rows.first()));
    if (!item || item->commandId == 0)
        return nullptr;
    auto* data = new QMimeData;
    data->setData(kMimeType, QStringLiteral("CommandItem\n%1\n%2")
                                 .arg(item->commandId)
                                 .arg(QString::fromStdString(item->text))
                                 .toUtf8());
    return data;
}

#pragma once
/// \class CommandsListBox
/// The list of commands in the dialog that adds commands to favourites: one
/// row of 22 pixels per command or sub-menu, with its picture at the left and
/// its text from 28 pixels in; a selected row is filled from 23 pixels in.
/// The list owns the records of its rows.

#include <QImage>
#include <QListWidget>

#include <memory>
#include <string>
#include <vector>

class CommandsListBox : public QListWidget
{
public:
    /// What a row stands for.
    struct Item
    {
        std::string text;
        QImage icon;
        /// 0 for a sub-menu.
        unsigned int commandId = 0;
        /// The entry's position in its menu.
        int position = -1;
    };

    /// The fixed height of a row.
    static constexpr int kItemHeight = 22;

    explicit CommandsListBox(QWidget* parent = nullptr);
    ~CommandsListBox() override;

    /// Appends a row for `item` and returns its index.
    int AddItem(Item item);
    /// The record of row `index`, null outside the list.
    const Item* GetItem(int index) const;
    /// Removes every row with its record.
    void ResetContent();

    /// The MIME type of a dragged command, the favourites' clipboard format
    /// "TsFavourite": "CommandItem\n<command id>\n<text>".
    static constexpr char kMimeType[] = "application/x-qt-windows-mime;value=\"TsFavourite\"";

protected:
    /// Commands can be dragged into a favourites tree; sub-menus cannot.
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QList<QListWidgetItem*>& rows) const override;

private:
    class Painter;
    std::vector<std::unique_ptr<Item>> items;
};

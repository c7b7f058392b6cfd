#pragma once
// The rows of a report list: what the platform list keeps for each row (cell
// texts, image, item data, state bits) and for each column (title, width,
// format), with the window styles that the list's rules look at. It is a Qt
// item model, so that a view shows it directly; nothing here needs a window.
//
// State bits keep the platform's meaning: LVIS_FOCUSED 0x1, LVIS_SELECTED 0x2,
// the overlay image in 0x0F00 and the state image (check box) in 0xF000, where
// state image 1 is unchecked and 2 checked.
//
// Owner-data lists (LVS_OWNERDATA) hold no texts: SetItemCount gives the row
// count and a callback gives each cell's text; only the state bits are kept.

#include <QAbstractTableModel>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// Styles, with their Win32 numbers.
constexpr unsigned long LVS_REPORT = 0x0001;
constexpr unsigned long LVS_SINGLESEL = 0x0004;
constexpr unsigned long LVS_SHOWSELALWAYS = 0x0008;
constexpr unsigned long LVS_OWNERDATA = 0x1000;
constexpr unsigned long LVS_NOCOLUMNHEADER = 0x4000;
constexpr unsigned long LVS_EX_CHECKBOXES = 0x0004;
constexpr unsigned long LVS_EX_FULLROWSELECT = 0x0020;
constexpr unsigned long LVS_EX_LABELTIP = 0x4000;
// Item state bits.
constexpr unsigned int LVIS_FOCUSED = 0x0001;
constexpr unsigned int LVIS_SELECTED = 0x0002;
constexpr unsigned int LVIS_OVERLAYMASK = 0x0F00;
constexpr unsigned int LVIS_STATEIMAGEMASK = 0xF000;
/// The state image index `i` placed in the state bits.
constexpr unsigned int INDEXTOSTATEIMAGEMASK(unsigned int i) { return i << 12; }
// Column formats.
constexpr int LVCFMT_LEFT = 0;
constexpr int LVCFMT_RIGHT = 1;
constexpr int LVCFMT_CENTER = 2;
constexpr int LVCFMT_JUSTIFYMASK = 3;

/// The rows and columns of a report list as a Qt item model, with the platform list's state bits.
class ListData : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// Item roles beyond Qt's: the state bits, the image index and the item data.
    enum ERole { eStateRole = Qt::UserRole + 1, eImageRole, eItemDataRole };

    /// One column: title, width, format and the header item's parameter.
    struct Column
    {
        std::string title;
        int width = 0;
        int format = LVCFMT_LEFT;
        intptr_t headerParam = 0; ///< the header item's lParam
    };

    explicit ListData(QObject* parent = nullptr);

    // --- styles ----------------------------------------------------------
    unsigned long GetStyle() const { return mStyle; }
    void ModifyStyle(unsigned long remove, unsigned long add);
    unsigned long GetExtendedStyle() const { return mExStyle; }
    void SetExtendedStyle(unsigned long exStyle);
    bool IsSingleSelection() const { return (mStyle & LVS_SINGLESEL) != 0; }
    bool IsOwnerData() const { return (mStyle & LVS_OWNERDATA) != 0; }
    bool HasCheckBoxes() const { return (mExStyle & LVS_EX_CHECKBOXES) != 0; }

    // --- columns ---------------------------------------------------------
    int GetColumnCount() const { return static_cast<int>(mColumns.size()); }
    /// Inserts a column before `col` (at the end when past it); its number, or -1.
    int InsertColumn(int col, const char* title, int format = LVCFMT_LEFT, int width = 0);
    bool DeleteColumn(int col);
    const Column& GetColumn(int col) const { return mColumns[static_cast<size_t>(col)]; }
    int GetColumnWidth(int col) const;
    bool SetColumnWidth(int col, int width);
    bool SetColumnTitle(int col, const char* title);
    bool SetColumnFormat(int col, int format);
    bool SetColumnParam(int col, intptr_t param);

    // --- rows ------------------------------------------------------------
    int GetItemCount() const;
    /// Inserts a row at `row` (the end when past it) with `text` in column 0; its number, or -1.
    int InsertItem(int row, const char* text, int image = 0, uintptr_t data = 0);
    bool DeleteItem(int row);
    bool DeleteAllItems();
    /// Owner data: the number of rows, texts from the callback. Clears the states.
    void SetItemCount(int count);
    void SetTextCallback(std::function<std::string(int row, int col)> callback) { mTextCallback = std::move(callback); }

    std::string GetItemText(int row, int col) const;
    /// The stored text itself, without a copy (not for owner data).
    const std::string& ItemTextRef(int row, int col) const;
    bool SetItemText(int row, int col, const char* text);
    int GetItemImage(int row) const;
    bool SetItemImage(int row, int image);
    uintptr_t GetItemData(int row) const;
    bool SetItemData(int row, uintptr_t data);
    unsigned int GetItemState(int row, unsigned int mask) const;
    /// Sets the bits of `mask` to those of `state`; a row of -1 means every row.
    bool SetItemState(int row, unsigned int state, unsigned int mask);
    /// The next row after `after` (-1: from the start) whose state has all of `bits`; -1 if none.
    int GetNextItem(int after, unsigned int bits) const;
    int GetSelectedCount() const;
    bool GetCheck(int row) const;
    bool SetCheck(int row, bool check);

    /// The state of a cell beyond column 0 (owner-drawn lists keep their own bits there).
    unsigned int GetSubItemState(int row, int col, unsigned int mask) const;
    bool SetSubItemState(int row, int col, unsigned int state, unsigned int mask);

    /// Exchanges two rows' texts, image, item data and the state bits of `stateMask`.
    void SwapRows(int a, int b, unsigned int stateMask);

    /// With redraw off, changes signal nothing; turning it on again signals one
    /// change of everything, so that a long operation repaints once.
    void SetRedraw(bool redraw);
    bool IsRedrawOn() const { return mRedraw; }

    // --- QAbstractTableModel ----------------------------------------------
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    /// A row's state bits changed (after the change).
    void ItemStateChanged(int row, unsigned int oldState, unsigned int newState);

private:
    struct Row
    {
        std::vector<std::string> cells;
        int image = 0;
        uintptr_t data = 0;
        unsigned int state = 0;
        std::vector<unsigned int> cellStates;
    };

    bool ValidRow(int row) const { return row >= 0 && row < GetItemCount(); }
    unsigned int& StateOf(int row);
    unsigned int StateOf(int row) const;
    void RowChanged(int row);

    unsigned long mStyle = LVS_REPORT;
    unsigned long mExStyle = 0;
    std::vector<Column> mColumns;
    std::vector<Row> mRows;
    int mOwnerCount = 0;
    std::vector<unsigned int> mOwnerStates;
    std::function<std::string(int, int)> mTextCallback;
    bool mRedraw = true;
};

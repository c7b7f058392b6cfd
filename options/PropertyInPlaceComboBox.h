#pragma once
// The in-place combo of list rows: a display of the chosen entry, a drop-down
// button, and a list that hangs below the grid, as a child of the grid's parent.
// Every choice commits at once; a double click steps to the next entry.

#include <QEvent>
#include <QListWidget>
#include <QRect>
#include <QWidget>

#include <string>

class PropertyInPlaceComboBox;

/// The display part (child id 2): shows the entry, edits nothing; a click opens the list.
class PropertyInPlaceComboBoxEdit : public QWidget
{
    Q_OBJECT
public:
    explicit PropertyInPlaceComboBoxEdit(PropertyInPlaceComboBox* combo);
    void SetText(const std::string& text);
    std::string GetText() const { return mText; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    PropertyInPlaceComboBox* mCombo;
    std::string mText;
};

/// The button part (child id 1): a flat scroll-down arrow, pushed while the list shows.
class PropertyInPlaceComboBoxButton : public QWidget
{
    Q_OBJECT
public:
    explicit PropertyInPlaceComboBoxButton(PropertyInPlaceComboBox* combo);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    PropertyInPlaceComboBox* mCombo;
};

/// The drop-down list (child id 3), with the mouse captured while it shows.
class PropertyInPlaceComboBoxListBox : public QListWidget
{
    Q_OBJECT
public:
    PropertyInPlaceComboBoxListBox(PropertyInPlaceComboBox* combo, QWidget* parent);

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // The mouse events of the list or of its viewport (`from`); true when taken.
    bool OnMouseEvent(QEvent* event, const QWidget* from);
    // Mouse events at `pos`, in the list's own coordinates.
    bool OnMouse(QEvent::Type type, QPoint pos, Qt::MouseButtons buttons);
    // Presses on the scroll bar, and the drag after one, go to it; true when they did.
    bool ForwardToScrollBar(QEvent::Type type, QPoint pos, Qt::MouseButtons buttons);
    void Choose();
    void Cancel();

    PropertyInPlaceComboBox* mCombo;
    bool mScrolling = false;
};

/// The in-place combo of list rows: display, drop-down button and a list hanging below the grid.
class PropertyInPlaceComboBox : public QWidget
{
    Q_OBJECT
public:
    /// A new combo (child id 1) over `cell` of `parent` (the grid).
    static PropertyInPlaceComboBox* CreateInPlaceControl(QWidget* parent, QRect cell);
    /// Also deletes the list, which belongs to the grid's parent.
    ~PropertyInPlaceComboBox() override;

    PropertyInPlaceComboBoxEdit* GetEdit() const { return mEdit; }
    PropertyInPlaceComboBoxButton* GetButton() const { return mButton; }
    PropertyInPlaceComboBoxListBox* GetList() const { return mList; }

    /// Appends an entry; returns its index.
    int AddString(const char* text, unsigned long data);
    void ResetContent();
    int GetCount() const;
    int GetCurSel() const;
    /// Selects entry `index` and shows it; with `notify` the choice is committed.
    /// An index at or past the count is refused with -1.
    int SetCurSel(int index, bool notify);
    /// Sizes the list for its entries: 8 rows at most, 100 pixels when empty;
    /// its width is the combo's less 1.
    void ResetListBoxHeight();
    /// The list's height by that rule.
    int GetListBoxHeight() const;
    /// Moves the combo over `cell`, and the list below it.
    void MoveControl(QRect cell);
    /// Where the commit goes; null (the default) means the parent.
    void SetOwner(QWidget* owner) { mOwner = owner; }

    /// The button (or a click on the display): opens or closes the list.
    void OnBnClicked();
    /// The list's choice of entry `index`: hide the list, select, commit.
    void OnSelectionOk(int index, unsigned long data);
    /// The list was left without a choice: hide it.
    void OnSelectionCancel();
    /// Steps back for Up, forward for any other key, stopping at the ends, and commits.
    void OnNewSelection(int virtualKey);

protected:
    explicit PropertyInPlaceComboBox(QWidget* parent);
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// The list, which lives beside the grid, goes with the combo.
    void hideEvent(QHideEvent* event) override;

private:
    void HideList();
    void Commit();
    QPoint ListPosition() const;

    PropertyInPlaceComboBoxEdit* mEdit;
    PropertyInPlaceComboBoxButton* mButton;
    PropertyInPlaceComboBoxListBox* mList;
    QWidget* mOwner = nullptr;
};

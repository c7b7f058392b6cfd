#pragma once
// The in-place control of path and colour rows: an edit line and a "..." button
// that opens a browser. Typing commits at focus loss; a browse commits at once.

#include <QLineEdit>
#include <QPushButton>
#include <QRect>
#include <QWidget>

#include <string>

class PropertyInPlaceEditAndBrowse;
class QFileDialog;

/// The edit part (child id 2). Its keys behave as PropertyInPlaceEdit's, with
/// the focus going two levels up, to the grid.
class PropertyInPlaceEditAndBrowseEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit PropertyInPlaceEditAndBrowseEdit(PropertyInPlaceEditAndBrowse* composite);

protected:
    bool event(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    PropertyInPlaceEditAndBrowse* mComposite;
};

/// An edit line with a "..." button that opens a browser; the base of the path and colour controls.
class PropertyInPlaceEditAndBrowse : public QWidget
{
    Q_OBJECT
public:
    /// Opens the browser, seeded with the data; true when the user chose, and
    /// the choice is then the data.
    virtual bool OnBrowse() = 0;

    PropertyInPlaceEditAndBrowseEdit* GetEdit() const { return mEdit; }
    QPushButton* GetButton() const { return mButton; }

    /// Stores `data` and shows it, with the caret at its end.
    void SetData(const std::string& data);
    std::string GetData() const { return mData; }
    /// Where the commit goes; null (the default) means the parent.
    void SetOwner(QWidget* owner) { mOwner = owner; }
    /// The commit (WM_USER+3) to the owner, or else the parent.
    void SendSetData();
    /// What a click on the button does: browse, and on a choice show it and commit.
    void Browse();

protected:
    explicit PropertyInPlaceEditAndBrowse(QWidget* parent);
    /// Creates `control` over `cell` and shows it.
    static void Place(PropertyInPlaceEditAndBrowse* control, QRect cell);
    /// Runs `dialog` at the data's path; true when a path was chosen, which is then the data.
    bool BrowseWith(QFileDialog& dialog);
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

    friend class PropertyInPlaceEditAndBrowseEdit;
    std::string mData;
    bool mBrowsing = false;

private:
    PropertyInPlaceEditAndBrowseEdit* mEdit;
    QPushButton* mButton;
    QWidget* mOwner = nullptr;
};

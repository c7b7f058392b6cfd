#pragma once
// The in-place edit of text and number rows. It commits when it loses the
// focus; Tab, Return and Escape hand the focus back to the grid, so Escape
// commits just as Return does (there is no cancel in this family).

#include <QLineEdit>
#include <QRect>

#include <string>

class PropertyInPlaceEdit;

/// Called from the edit's focus loss, before its data is handed on.
using PropertyValidateFunc = void (*)(PropertyInPlaceEdit* edit, void* context);

/// Digits only, as the number rows want.
inline constexpr unsigned long ES_NUMBER = 0x2000;

/// The in-place edit line of text and number rows; it commits when it loses the focus.
class PropertyInPlaceEdit : public QLineEdit
{
    Q_OBJECT
public:
    /// A new edit (child id 1) over `cell` of `parent`, holding `text`, `style`
    /// being 0 or ES_NUMBER; `validate` (may be null) runs with `context` at focus loss.
    static PropertyInPlaceEdit* CreateInPlaceControl(const char* text, QWidget* parent, QRect cell, unsigned long style,
                                                     PropertyValidateFunc validate, void* context);

    /// Shows `text` with the caret at its end.
    void SetText(const char* text);
    /// Moves the edit over `cell`: the height of a line of text, centred, 3 pixels in on each side.
    void MoveControl(QRect cell);
    /// Where the commit goes; null (the default) means the parent.
    void SetOwner(QWidget* owner) { mOwner = owner; }
    /// The commit: tells the owner, or else the parent, to take the data.
    virtual void ProcessData();

protected:
    PropertyInPlaceEdit(const char* text, QWidget* parent, unsigned long style, PropertyValidateFunc validate,
                        void* context);
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    std::string mInitText;
    PropertyValidateFunc mValidate;
    void* mContext;
    unsigned long mStyle;
    QWidget* mOwner = nullptr;
};

namespace korva {

/// The geometry of an in-place edit line in `cell`: a line of "DummyText" in
/// `font` high, centred, from left + `left` to right - `right`.
QRect InPlaceEditRect(const QFont& font, QRect cell, int left, int right);
/// Hands the focus to `target` and sends it the key of `event`, for the keys
/// that an in-place edit passes on (Up and Down).
void ForwardKey(QWidget* target, const QKeyEvent* event);
/// Handles a key an in-place edit line passes to `focusTarget`: Tab, Return and
/// Escape give it the focus; Up and Down also forward the key. True when consumed.
bool InPlaceEditKey(QWidget* focusTarget, const QKeyEvent* event);
/// The commit message of the family (WM_USER+3), to `target`.
void SendSetData(QWidget* target);

} // namespace korva

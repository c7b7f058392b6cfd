#pragma once
// One row of a property grid: a caption, an id for the caller, a long
// description, and, in the derived classes, one value in its own type.
//
// Items are plain objects. Of the three operations that touch a window, the
// painting works on any QPainter; the in-place control and the take-back go
// through PropertyItemControls, the window side that the grid's layer installs.

#include <QRect>

#include <string>

class QPainter;
class QWidget;

/// One row of a property grid: caption, property id and description; the base of every row kind.
class PropertyItem
{
public:
    /// Name and description from the string resources `nameId` and
    /// `descriptionId` of the active module (empty when missing).
    PropertyItem(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItem(const char* name, unsigned int propertyId, const char* description);
    PropertyItem(const PropertyItem&) = default;
    PropertyItem& operator=(const PropertyItem&) = default;
    virtual ~PropertyItem();

    /// Paints the value into `cell` (the value cell of the row). The base paints nothing.
    virtual void DrawValue(QPainter* dc, QRect cell);
    /// Creates the editing control over `cell`, a child of `parent` (the grid),
    /// holding the present value. The base creates none and returns null.
    virtual QWidget* CreateInPlaceControl(QWidget* parent, QRect cell);
    /// Takes the value back out of `control`, made by CreateInPlaceControl. The base takes nothing.
    virtual void SetData(QWidget* control);

    const char* GetName() const { return mName.c_str(); }
    /// The caption as painted: the name, or the grid's word-wrapped copy of it.
    const char* GetShowName() const { return mShowName.c_str(); }
    const char* GetDescription() const { return mDescription.c_str(); }
    unsigned int GetPropertyID() const { return mPropertyID; }
    void SetShowName(const char* showName) { mShowName = showName ? showName : ""; }

protected:
    std::string mName;
    std::string mShowName;
    unsigned int mPropertyID;
    std::string mDescription;
};

namespace korva {

/// `cell` narrowed by 3 pixels on the left and on the right, where values are written.
QRect ValueTextRect(const QRect& cell);
/// Writes `text` on one line, vertically centred, in the narrowed `cell`.
void DrawValueText(QPainter* dc, const QRect& cell, const std::string& text);

} // namespace korva

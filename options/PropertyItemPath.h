#pragma once
// What the file and folder path rows share: text kept as a string row keeps it,
// painted compacted with "..." so that both ends of a long path stay in sight.

#include <KORVAutlwin/options/PropertyItemString.h>

/// A row holding a path; the file and folder rows add their own browse control.
class PropertyItemPath : public PropertyItemString
{
public:
    using PropertyItemString::PropertyItemString;
    using PropertyItemString::SetData;

    /// Paints the path, compacted with "..." to fit the cell.
    void DrawValue(QPainter* dc, QRect cell) override;
};

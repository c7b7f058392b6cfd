#pragma once
/// \class TsStatusAccess
/// What long-running code needs of a status bar: find a pane by its id, set a
/// pane's text, and put a window (a gauge, a spin indicator) into a pane of its
/// own and take it out again. Both status bars of the frame implement it, so
/// callers need not know which one the application chose.

#include <string>

class QWidget;

/// Pane styles, with the framework's values.
enum : unsigned int
{
    SBPS_NORMAL = 0x0000,
    SBPS_NOBORDERS = 0x0100,   // no sunken frame
    SBPS_POPOUT = 0x0200,      // a raised frame
    SBPS_DISABLED = 0x04000000, // the text is not drawn
    SBPS_STRETCH = 0x08000000  // the pane takes the room that the others leave
};

class TsStatusAccess
{
public:
    virtual ~TsStatusAccess() = default;

    /// The index of the first pane with id `id`, or -1.
    virtual int CommandToIndex(unsigned int id) const = 0;
    /// Sets the text of pane `index`; a non-zero `update` repaints at once.
    /// Non-zero on success, 0 for an index out of range.
    virtual int SetPaneText(int index, const std::string& text, int update) = 0;
    /// Inserts a new pane with id `id` and `width` pixels at `index` (clamped
    /// to the panes there are) and lets `window` cover it; panes and hosted
    /// windows from `index` on move one place on. False for a null window.
    virtual bool InsertWindow(QWidget* window, int width, int index, unsigned int id) = 0;
    /// Takes `window` out of its pane again. With `hide` the pane stays, with
    /// width 0, and the window is hidden; without it the pane goes and the panes
    /// behind it move one place back. A window that is not hosted leaves the
    /// pane with id `id` to the same treatment.
    virtual void RemoveWindow(QWidget* window, bool hide, unsigned int id) = 0;
    /// The number of panes.
    virtual int GetCount() const = 0;
    /// The id of pane `index`; 0 for an index out of range.
    virtual unsigned int GetItemID(int index) const = 0;
};

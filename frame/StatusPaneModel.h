#pragma once
/// \class StatusPaneModel
/// The panes of a status bar as data, and the look-ups of TsStatusAccess that
/// both status bars answer the same way: id, style, width and text of each pane,
/// in order. A bar that keeps more per pane (cells, hosted controls) derives its
/// pane type from StatusPane.

#include <KORVAutlwin/frame/TsStatusAccess.h>

#include <string>
#include <vector>

/// What a status bar keeps of each pane.
struct StatusPane
{
    unsigned int id;
    unsigned int style;
    int width;
    std::string text;
};

template <class Pane>
class StatusPaneModel : public TsStatusAccess
{
public:
    int CommandToIndex(unsigned int id) const override
    {
        for (std::size_t i = 0; i < mPanes.size(); ++i)
            if (mPanes[i].id == id)
                return static_cast<int>(i);
        return -1;
    }
    int GetCount() const override { return static_cast<int>(mPanes.size()); }
    unsigned int GetItemID(int index) const override { return IsValidIndex(index) ? mPanes[index].id : 0; }

    /// Id, style (SBPS_*) and width of pane `index`; false for an index out of range.
    bool GetPaneInfo(int index, unsigned int& id, unsigned int& style, int& width) const
    {
        if (!IsValidIndex(index))
            return false;
        id = mPanes[index].id;
        style = mPanes[index].style;
        width = mPanes[index].width;
        return true;
    }
    /// The text of pane `index`; empty for an index out of range.
    std::string GetPaneText(int index) const { return IsValidIndex(index) ? mPanes[index].text : std::string(); }

protected:
    bool IsValidIndex(int index) const { return index >= 0 && index < GetCount(); }

    std::vector<Pane> mPanes;
};

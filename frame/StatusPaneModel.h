#pragma once
// The panes of a status bar as data: id, style, width and text of each, in
// order, and the look-ups that both status bars answer the same way. A bar
// that keeps more per pane (cells, hosted controls) derives its pane from
// StatusPane.

#include <string>
#include <vector>

struct StatusPane
{
    unsigned int id;
    unsigned int style;
    int width;
    std::string text;
};

template <class Pane>
class StatusPaneModel
{
public:
    std::vector<Pane>& Panes() { return panes; }
    const std::vector<Pane>& Panes() const { return panes; }
    Pane& operator[](int index) { return panes[index]; }
    const Pane& operator[](int index) const { return panes[index]; }

    bool IsValidIndex(int index) const { return index >= 0 && index < GetCount(); }
    int GetCount() const { return static_cast<int>(panes.size()); }

    /// The index of the first pane with id `id`, or -1.
    int CommandToIndex(unsigned int id) const
    {
        for (std::size_t i = 0; i < panes.size(); ++i)
            if (panes[i].id == id)
                return static_cast<int>(i);
        return -1;
    }
    /// The id of pane `index`; 0 for an index out of range.
    unsigned int GetItemID(int index) const { return IsValidIndex(index) ? panes[index].id : 0; }
    /// The text of pane `index`; empty for an index out of range.
    std::string GetPaneText(int index) const { return IsValidIndex(index) ? panes[index].text : std::string(); }
    /// Id, style and width of pane `index`; false for an index out of range.
    bool GetPaneInfo(int index, unsigned int& id, unsigned int& style, int& width) const
    {
        if (!IsValidIndex(index))
            return false;
        id = panes[index].id;
        style = panes[index].style;
        width = panes[index].width;
        return true;
    }

private:
    std::vector<Pane> panes;
};

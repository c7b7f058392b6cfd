// The tab-indented text form of a tree comes from files people edit. Whatever
// the lines, loading places each non-empty line exactly once, never more than
// one level below the line before it, and what is stored loads back into the
// same tree.

#include <KORVAutlwin/controls/TreeRules.h>

#include "FuzzCheck.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

// Items are indices + 1 into flat arrays; the order of insertion is pre-order.
class FlatTree : public TreeAccess
{
public:
    struct Node
    {
        std::string text;
        size_t parent = 0;
        std::vector<size_t> children;
    };
    std::vector<Node> nodes{Node{}}; // node 0 is the root

    HTREEITEM GetRootItem() const override { return GetChildItem(nullptr); }
    HTREEITEM GetParentItem(HTREEITEM item) const override { return H(nodes[I(item)].parent); }
    HTREEITEM GetChildItem(HTREEITEM item) const override
    {
        const auto& children = nodes[I(item)].children;
        return children.empty() ? nullptr : H(children.front());
    }
    HTREEITEM GetNextSiblingItem(HTREEITEM item) const override { return Sibling(item, 1); }
    HTREEITEM GetPrevSiblingItem(HTREEITEM item) const override { return Sibling(item, -1); }
    std::string GetItemText(HTREEITEM item) const override { return nodes[I(item)].text; }
    HTREEITEM InsertItem(const std::string& text, HTREEITEM parent) override
    {
        nodes.push_back(Node{text, I(parent), {}});
        nodes[I(parent)].children.push_back(nodes.size() - 1);
        return H(nodes.size() - 1);
    }
    int GetCheckIndex(HTREEITEM) const override { return 0; }
    void SetCheckIndex(HTREEITEM, int) override {}
    void SortChildren(HTREEITEM, const std::function<int(HTREEITEM, HTREEITEM)>&) override {}
    size_t Depth(size_t index) const
    {
        size_t depth = 0;
        for (; nodes[index].parent != 0; index = nodes[index].parent)
            ++depth;
        return depth;
    }

private:
    static size_t I(HTREEITEM item) { return reinterpret_cast<size_t>(item); }
    static HTREEITEM H(size_t index) { return reinterpret_cast<HTREEITEM>(index); }
    HTREEITEM Sibling(HTREEITEM item, long step) const
    {
        const auto& list = nodes[nodes[I(item)].parent].children;
        const long at = std::find(list.begin(), list.end(), I(item)) - list.begin() + step;
        return at < 0 || at >= static_cast<long>(list.size()) ? nullptr : H(list[static_cast<size_t>(at)]);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    FlatTree tree;
    const int count = TreeRules::LoadText(tree, text);

    size_t lines = 0;
    for (size_t pos = 0; pos < text.size();) {
        size_t end = std::min(text.find('\n', pos), text.size());
        const bool crOnly = end == pos + 1 && text[pos] == '\r';
        lines += end > pos && !crOnly;
        pos = end + 1;
    }
    Check(static_cast<size_t>(count) == lines);
    Check(tree.nodes.size() == lines + 1);
    for (size_t i = 2; i < tree.nodes.size(); ++i)
        Check(tree.Depth(i) <= tree.Depth(i - 1) + 1);

    // An empty text at the top level stores as an empty line, which loading skips.
    bool emptyTopLevel = false;
    for (size_t child : tree.nodes[0].children)
        emptyTopLevel = emptyTopLevel || tree.nodes[child].text.empty();
    if (!emptyTopLevel) {
        const std::string stored = TreeRules::StoreText(tree);
        FlatTree again;
        TreeRules::LoadText(again, stored);
        Check(again.nodes.size() == tree.nodes.size());
        Check(TreeRules::StoreText(again) == stored);
    }
    return 0;
}

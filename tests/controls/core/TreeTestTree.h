#pragma once
// A plain tree behind TreeAccess for the window-free tree tests; "a(b c(d))"
// notation builds and prints it.

#include <KORVAutlwin/controls/TreeAccess.h>
#include <KORVAutlwin/controls/TreeRules.h>

#include <algorithm>
#include <memory>
#include <vector>

class TestTree : public TreeAccess
{
public:
    struct Node
    {
        std::string text;
        int check = 0;
        Node* parent = nullptr;
        std::vector<std::unique_ptr<Node>> children;
    };

    /// Items named by single words, children in brackets: "a(b c(d)) e".
    explicit TestTree(const std::string& shape = {})
    {
        std::vector<HTREEITEM> parents{nullptr};
        std::string word;
        HTREEITEM last = nullptr;
        auto flush = [&] {
            if (!word.empty())
                last = InsertItem(word, parents.back());
            word.clear();
        };
        for (char c : shape) {
            if (c == '(') { flush(); parents.push_back(last); }
            else if (c == ')') { flush(); parents.pop_back(); }
            else if (c == ' ') flush();
            else word += c;
        }
        flush();
    }
    /// The tree in the notation of the constructor.
    std::string Shape(const Node* node = nullptr) const
    {
        std::string out;
        for (const auto& child : (node ? node : &mRoot)->children) {
            out += (out.empty() ? "" : " ") + child->text;
            if (!child->children.empty())
                out += "(" + Shape(child.get()) + ")";
        }
        return out;
    }
    /// The item whose text is `text`, in pre-order.
    HTREEITEM Find(const std::string& text) const
    {
        for (HTREEITEM item = GetRootItem(); item; item = TreeRules::GetNextItem(*this, item))
            if (N(item)->text == text)
                return item;
        return nullptr;
    }

    HTREEITEM GetRootItem() const override { return GetChildItem(nullptr); }
    HTREEITEM GetParentItem(HTREEITEM item) const override { return item ? N(item)->parent == &mRoot ? nullptr : N(item)->parent : nullptr; }
    HTREEITEM GetChildItem(HTREEITEM item) const override
    {
        const Node* node = item ? N(item) : &mRoot;
        return node->children.empty() ? nullptr : node->children.front().get();
    }
    HTREEITEM GetNextSiblingItem(HTREEITEM item) const override { return Sibling(item, 1); }
    HTREEITEM GetPrevSiblingItem(HTREEITEM item) const override { return Sibling(item, -1); }
    std::string GetItemText(HTREEITEM item) const override { return N(item)->text; }
    HTREEITEM InsertItem(const std::string& text, HTREEITEM parent) override
    {
        Node* owner = parent ? N(parent) : &mRoot;
        owner->children.push_back(std::make_unique<Node>(Node{text, 0, owner, {}}));
        return owner->children.back().get();
    }
    int GetCheckIndex(HTREEITEM item) const override { return N(item)->check; }
    void SetCheckIndex(HTREEITEM item, int index) override { N(item)->check = index; }
    void SortChildren(HTREEITEM parent, const std::function<int(HTREEITEM, HTREEITEM)>& compare) override
    {
        auto& children = (parent ? N(parent) : &mRoot)->children;
        std::stable_sort(children.begin(), children.end(),
                         [&](const auto& a, const auto& b) { return compare(a.get(), b.get()) < 0; });
    }

private:
    static Node* N(HTREEITEM item) { return static_cast<Node*>(item); }
    HTREEITEM Sibling(HTREEITEM item, int step) const
    {
        if (!item)
            return nullptr;
        const auto& list = N(item)->parent->children;
        const auto it = std::find_if(list.begin(), list.end(), [&](const auto& n) { return n.get() == item; });
        const long index = (it - list.begin()) + step;
        return index < 0 || index >= static_cast<long>(list.size()) ? nullptr : list[static_cast<size_t>(index)].get();
    }
    Node mRoot;
};

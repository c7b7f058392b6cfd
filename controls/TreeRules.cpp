#include <KORVAutlwin/controls/TreeRules.h>

#include <algorithm>
#include <cctype>
#include <vector>

// --- navigation ----------------------------------------------------------------

HTREEITEM TreeRules::GetNextItem(const TreeAccess& tree, HTREEITEM item)
{
    if (!item)
        return tree.GetRootItem();
    if (HTREEITEM child = tree.GetChildItem(item))
        return child;
    for (HTREEITEM up = item; up; up = tree.GetParentItem(up))
        if (HTREEITEM next = tree.GetNextSiblingItem(up))
            return next;
    return nullptr;
}

HTREEITEM TreeRules::GetPrevItem(const TreeAccess& tree, HTREEITEM item)
{
    if (HTREEITEM prev = tree.GetPrevSiblingItem(item))
        return GetLastItem(tree, prev);
    return tree.GetParentItem(item);
}

HTREEITEM TreeRules::GetLastItem(const TreeAccess& tree, HTREEITEM item)
{
    if (!item) {
        item = tree.GetRootItem();
        if (!item)
            return nullptr;
        while (HTREEITEM next = tree.GetNextSiblingItem(item))
            item = next;
    }
    while (HTREEITEM child = tree.GetChildItem(item)) {
        item = child;
        while (HTREEITEM next = tree.GetNextSiblingItem(item))
            item = next;
    }
    return item;
}

int TreeRules::GetIndentLevel(const TreeAccess& tree, HTREEITEM item)
{
    int level = 0;
    while (item && (item = tree.GetParentItem(item)))
        ++level;
    return level;
}

int TreeRules::GetNumChildren(const TreeAccess& tree, HTREEITEM item)
{
    int count = 0;
    if (!item) {
        for (HTREEITEM it = tree.GetRootItem(); it; it = GetNextItem(tree, it))
            ++count;
        return count;
    }
    for (HTREEITEM child = tree.GetChildItem(item); child; child = tree.GetNextSiblingItem(child))
        ++count;
    return count;
}

// --- check boxes -------------------------------------------------------------------

namespace {
bool IsChecked(int index) { return index == TreeRules::eChecked || index == TreeRules::eAllChecked; }
bool TakesPart(int index) { return index != TreeRules::eNoCheckBox && index != TreeRules::eDisabled; }
} // namespace

bool TreeRules::GetCheck(const TreeAccess& tree, HTREEITEM item)
{
    if (!item)
        return false;
    const int index = tree.GetCheckIndex(item);
    return index >= eChecked && index <= eAllChecked;
}

int TreeRules::SetCheck(TreeAccess& tree, HTREEITEM item, int type)
{
    if (!item)
        return 0;
    if (type == eRemoveBox || type == eDisable) {
        tree.SetCheckIndex(item, type == eRemoveBox ? eNoCheckBox : eDisabled);
        return 1;
    }
    if (type == eToggle)
        type = GetCheck(tree, item) ? eUncheck : eCheck;
    int index = tree.GetCheckIndex(item);
    if (type == eCheck) {
        index = eChecked;
        CheckAllChildItems(tree, item, eChecked);
    } else if (type == eUncheck) {
        index = eUnchecked;
        CheckAllChildItems(tree, item, eUnchecked);
    }
    tree.SetCheckIndex(item, index);
    // Boxes of index 0 and 5 keep theirs, but the walk goes on above them.
    if (index == eChecked) {
        for (HTREEITEM up = tree.GetParentItem(item); up; up = tree.GetParentItem(up))
            if (TakesPart(tree.GetCheckIndex(up)))
                tree.SetCheckIndex(up, AllChildrenChecked(tree, up, true) ? eAllChecked : ePartlyChecked);
    } else if (index == eUnchecked) {
        for (HTREEITEM up = tree.GetParentItem(item); up; up = tree.GetParentItem(up))
            if (TakesPart(tree.GetCheckIndex(up)))
                tree.SetCheckIndex(up, AllChildrenChecked(tree, up, false)  ? eUnchecked
                                       : AllChildrenChecked(tree, up, true) ? eAllChecked
                                                                            : ePartlyChecked);
    }
    return 1;
}

void TreeRules::CheckAllChildItems(TreeAccess& tree, HTREEITEM item, int state)
{
    for (HTREEITEM child = tree.GetChildItem(item); child; child = tree.GetNextSiblingItem(child)) {
        if (TakesPart(tree.GetCheckIndex(child)))
            tree.SetCheckIndex(child, state);
        CheckAllChildItems(tree, child, state);
    }
}

bool TreeRules::AllChildrenChecked(const TreeAccess& tree, HTREEITEM item, bool checked)
{
    for (HTREEITEM child = tree.GetChildItem(item); child; child = tree.GetNextSiblingItem(child)) {
        const int index = tree.GetCheckIndex(child);
        if (checked ? !IsChecked(index) : index != eUnchecked)
            return false;
    }
    return true;
}

HTREEITEM TreeRules::GetFirstCheckedItem(const TreeAccess& tree)
{
    for (HTREEITEM item = tree.GetRootItem(); item; item = GetNextItem(tree, item))
        if (IsChecked(tree.GetCheckIndex(item)))
            return item;
    return nullptr;
}

HTREEITEM TreeRules::GetNextCheckedItem(const TreeAccess& tree, HTREEITEM item)
{
    while (item) {
        const int index = tree.GetCheckIndex(item);
        if (index == ePartlyChecked || IsChecked(index)) {
            item = GetNextItem(tree, item);
        } else {
            HTREEITEM next = tree.GetNextSiblingItem(item);
            item = next ? next : GetNextItem(tree, item);
        }
        if (item && IsChecked(tree.GetCheckIndex(item)))
            return item;
    }
    return nullptr;
}

HTREEITEM TreeRules::GetPrevCheckedItem(const TreeAccess& tree, HTREEITEM item)
{
    for (item = item ? GetPrevItem(tree, item) : nullptr; item; item = GetPrevItem(tree, item)) {
        const int index = tree.GetCheckIndex(item);
        if (index >= eChecked && index <= eAllChecked)
            return item;
    }
    return nullptr;
}

// --- search --------------------------------------------------------------------------

namespace {
bool JoinsWord(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }
std::string Lower(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}
} // namespace

bool TreeRules::TextMatches(const std::string& itemText, const std::string& text, bool matchCase, bool wholeWord)
{
    if (text.empty())
        return false;
    std::string rest = matchCase ? itemText : Lower(itemText);
    const std::string wanted = matchCase ? text : Lower(text);
    for (;;) {
        const size_t hit = rest.find(wanted);
        if (hit == std::string::npos)
            return false;
        const size_t end = hit + wanted.size();
        if (!wholeWord)
            return true;
        if ((hit == 0 || !JoinsWord(rest[hit - 1])) && (end == rest.size() || !JoinsWord(rest[end])))
            return true;
        // A failed hit cuts the text after itself: the rest starts a new text.
        rest.erase(0, end);
    }
}

HTREEITEM TreeRules::FindItem(const TreeAccess& tree, const std::string& text, bool matchCase, bool down,
                              bool wholeWord, HTREEITEM start, const std::function<bool(HTREEITEM)>& isValid)
{
    if (text.empty() || !start)
        return nullptr;
    HTREEITEM item = start;
    do {
        if (TextMatches(tree.GetItemText(item), text, matchCase, wholeWord) && (!isValid || isValid(item)))
            return item;
        item = down ? GetNextItem(tree, item) : GetPrevItem(tree, item);
        if (!item)
            item = down ? tree.GetRootItem() : GetLastItem(tree, nullptr);
    } while (item && item != start);
    return nullptr;
}

// --- text form ---------------------------------------------------------------------------

std::string TreeRules::StoreText(const TreeAccess& tree)
{
    std::string out;
    int level = 0;
    for (HTREEITEM item = tree.GetRootItem(); item;) {
        out.append(static_cast<size_t>(level), '\t');
        out += tree.GetItemText(item);
        out += "\r\n";
        // Pre-order with the level kept along, not recounted per item.
        if (HTREEITEM child = tree.GetChildItem(item)) {
            item = child;
            ++level;
            continue;
        }
        while (item && !tree.GetNextSiblingItem(item)) {
            item = tree.GetParentItem(item);
            --level;
        }
        if (item)
            item = tree.GetNextSiblingItem(item);
    }
    return out;
}

int TreeRules::LoadText(TreeAccess& tree, const std::string& text)
{
    int baseIndent = -1;
    HTREEITEM last = nullptr;
    int depth = 0;
    int count = 0;
    size_t pos = 0;
    while (pos < text.size()) {
        size_t end = text.find('\n', pos);
        if (end == std::string::npos)
            end = text.size();
        size_t stop = end;
        if (stop > pos && text[stop - 1] == '\r')
            --stop;
        const size_t tabs = std::min(text.find_first_not_of('\t', pos), stop) - pos;
        if (baseIndent < 0)
            baseIndent = static_cast<int>(tabs);
        if (stop > pos) {
            const int level = static_cast<int>(tabs) - baseIndent;
            HTREEITEM parent = nullptr;
            if (last) {
                if (level > depth) {
                    parent = last; // however deep the jump, a direct child of the last item
                } else {
                    parent = tree.GetParentItem(last);
                    for (int up = level; up < depth && parent; ++up)
                        parent = tree.GetParentItem(parent);
                }
            }
            const int newDepth = !parent ? 0 : level > depth ? depth + 1 : level;
            last = tree.InsertItem(text.substr(pos + tabs, stop - pos - tabs), parent);
            depth = newDepth;
            ++count;
        }
        pos = end + 1;
    }
    return count;
}

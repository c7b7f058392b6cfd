#include <KORVAutlwin/help/ContextHelpTable.h>

void ContextHelpTable::FillContextHelpLookUpTable(const std::vector<Pair>& children)
{
    mTable.fill({0, 0});
    int count = 0;
    for (const Pair& child : children) {
        if (count >= kSize - 1)
            break;
        // OK, Cancel and Help explain themselves.
        if (child.first == 1 || child.first == 2 || child.first == 9)
            continue;
        mTable[count++] = child;
    }
}

int ContextHelpTable::GetCount() const
{
    int count = 0;
    while (count < kSize && (mTable[count].first != 0 || mTable[count].second != 0))
        ++count;
    return count;
}

unsigned long ContextHelpTable::ContextIdOf(unsigned long id) const
{
    for (int i = 0; i < GetCount(); ++i)
        if (mTable[i].first == id)
            return mTable[i].second;
    return 0;
}

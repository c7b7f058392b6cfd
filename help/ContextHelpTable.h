#pragma once
/// \class ContextHelpTable
/// The table of (control id, context help id) pairs handed to the help viewer for
/// a dialog's context help: up to 99 children of the dialog, without the OK,
/// Cancel and Help buttons (ids 1, 2 and 9), ended by a zero pair.

#include <array>
#include <utility>
#include <vector>

class ContextHelpTable
{
public:
    /// Pairs the table holds at most, the ending zero pair included.
    static constexpr int kSize = 100;
    using Pair = std::pair<unsigned long, unsigned long>;

    /// Fills the table from the dialog's children, given as (control id, context id) in their order.
    void FillContextHelpLookUpTable(const std::vector<Pair>& children);
    /// The pairs before the ending zero pair.
    int GetCount() const;
    const std::array<Pair, kSize>& GetTable() const { return mTable; }
    /// The context id of control `id`; 0 when the table has none.
    unsigned long ContextIdOf(unsigned long id) const;

private:
    std::array<Pair, kSize> mTable{};
};

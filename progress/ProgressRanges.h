#pragma once
/// \class ProgressRanges
/// The nested ranges of a Progress, as plain numbers: no window, no clock.
///
/// The first range covers the whole display (0 to 1) in the caller's units.
/// Push opens a scale 0 to 1 for a part of the top range; Pop closes it and
/// tells where the display stands in the parent's units, so that it stays
/// where the part ended. The gauge always shows the whole operation, expressed
/// in the units of the top range (GetGaugeRange).

#include <list>

class ProgressRanges
{
public:
    /// `gaugeLow` to `gaugeHigh` is the part of the whole display (0 to 1) that
    /// a range covers, `low` to `high` the caller's units in it.
    struct Range
    {
        float gaugeLow;
        float gaugeHigh;
        float low;
        float high;
    };

    /// The first range: `low` equal to `high` becomes `low` to `low` + 1,
    /// `low` above `high` is swapped.
    ProgressRanges(float low, float high);

    /// The ranges, first at the front, top at the back; never empty.
    const std::list<Range>& GetList() const { return ranges; }
    const Range& Top() const { return ranges.back(); }

    /// Sets `low` and `high` of the top range as given: no checks, no swap.
    void SetTop(float low, float high);
    /// `value` held within the top range as it stands (SetTop does not order it).
    float HoldWithin(float value) const;
    /// Opens the scale 0 to 1 for the part `low` to `high` of the top range,
    /// bounds held within it. The parent's low is deliberately not subtracted:
    /// exact when the parent starts at 0, which is how parts are opened.
    void Push(float low, float high);
    /// Closes the top scale; false with only the first range left. On true,
    /// `endValue` is where the closed part ended, in the new top's units.
    bool Pop(float& endValue);

    /// The whole display's minimum and maximum in the units of `range`.
    static void GetGaugeRange(const Range& range, float& minimum, float& maximum);

private:
    std::list<Range> ranges;
};

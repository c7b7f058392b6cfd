#include <KORVAutlwin/progress/ProgressRanges.h>

#include <utility>

ProgressRanges::ProgressRanges(float low, float high)
{
    if (low == high)
        high = low + 1.0f;
    else if (low > high)
        std::swap(low, high);
    ranges.push_back({0.0f, 1.0f, low, high});
}

void ProgressRanges::SetTop(float low, float high)
{
    ranges.back().low = low;
    ranges.back().high = high;
}

float ProgressRanges::HoldWithin(float value) const
{
    const Range& top = ranges.back();
    if (value < top.low)
        value = top.low;
    if (value > top.high)
        value = top.high;
    return value;
}

void ProgressRanges::Push(float low, float high)
{
    const Range top = ranges.back();
    if (low < top.low)
        low = top.low;
    if (high > top.high)
        high = top.high;
    const float span = top.gaugeHigh - top.gaugeLow;
    const float units = top.high - top.low;
    ranges.push_back({low * span / units + top.gaugeLow, span * high / units + top.gaugeLow, 0.0f, 1.0f});
}

bool ProgressRanges::Pop(float& endValue)
{
    if (ranges.size() <= 1)
        return false;
    const float endedAt = ranges.back().gaugeHigh;
    ranges.pop_back();
    float minimum = 0.0f, maximum = 0.0f;
    GetGaugeRange(ranges.back(), minimum, maximum);
    endValue = (maximum - minimum) * endedAt + minimum;
    return true;
}

void ProgressRanges::GetGaugeRange(const Range& range, float& minimum, float& maximum)
{
    const float scale = (range.high - range.low) / (range.gaugeHigh - range.gaugeLow);
    minimum = range.low - range.gaugeLow * scale;
    maximum = scale * (1.0f - range.gaugeHigh) + range.high;
}

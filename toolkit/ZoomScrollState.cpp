#include <KORVAutlwin/toolkit/ZoomScrollState.h>

#include <KORVAutlwin/toolkit/StandardColor.h>

#include <algorithm>
#include <cmath>

namespace {

// Halves away from zero.
int Round(double value)
{
    return static_cast<int>(std::lround(value));
}

int Page(const SCROLLINFO& info)
{
    return static_cast<int>(info.nPage);
}

} // namespace

bool ZoomScrollState::GetPos(int length, int arrow, int coordinate)
{
    if (length - 4 * arrow <= 0)
        return false;
    mPixelsPerUnit = static_cast<double>(length - 2 * arrow) / (mInfo.nMax - mInfo.nMin + 1);
    mThumbStart = std::min(Round((mInfo.nPos - mInfo.nMin) * mPixelsPerUnit), length - arrow - kMinimumThumb);
    mThumbEnd = std::max(Round((Page(mInfo) - mInfo.nMin + mInfo.nPos) * mPixelsPerUnit) - 1,
                         mThumbStart + kMinimumThumb);
    mMousePosition = coordinate - arrow;
    return true;
}

ZoomScrollState::ESelected ZoomScrollState::SelectPos() const
{
    if (mMousePosition >= mThumbStart - 1 && mMousePosition <= mThumbStart + 3)
        return eLowEnd;
    if (mMousePosition >= mThumbEnd - 3 && mMousePosition <= mThumbEnd + 1)
        return eHighEnd;
    return eNone;
}

bool ZoomScrollState::SetPos(unsigned int& code, int& position) const
{
    if (mSelected == eNone || mPixelsPerUnit <= 0.0)
        return false;
    code = mSelected == eLowEnd ? eMoveLowEnd : eMoveHighEnd;
    position = Round(mMousePosition / mPixelsPerUnit) + mInfo.nMin;
    return true;
}

void ZoomScrollState::OnScroll(unsigned int code, int position)
{
    SCROLLINFO info = mInfo;
    switch (code) {
    case 0: info.nPos -= 1; break;
    case 1: info.nPos += 1; break;
    case 2: info.nPos -= Page(info); break;
    case 3: info.nPos += Page(info); break;
    case 4:
    case 5: info.nPos = position; break;
    case 6: info.nPos = info.nMin; break;
    case 7: info.nPos = info.nMax - Page(info) + 1; break;
    case eMoveLowEnd: {
        // The high end stays where it is; the thumb keeps at least one unit.
        const int end = info.nPos + Page(info);
        info.nPos = std::clamp(position, info.nMin, std::max(info.nMin, end - 1));
        info.nPage = static_cast<unsigned int>(end - info.nPos);
        break;
    }
    case eMoveHighEnd:
        info.nPage = static_cast<unsigned int>(std::clamp(position - info.nPos, 1, std::max(1, info.nMax - info.nPos + 1)));
        break;
    default: break;
    }
    info.nPos = std::clamp(info.nPos, info.nMin, std::max(info.nMin, info.nMax - Page(info) + 1));
    Store(info);
}

bool ZoomScrollState::Update(double fullLow, double viewLow, double viewHigh, double fullHigh, bool reverse,
                             bool vertical)
{
    SCROLLINFO info = mInfo;
    const double range = info.nMax - info.nMin + 1;
    const double full = fullHigh - fullLow;
    int position = info.nMin + (full != 0.0 ? Round((viewLow - fullLow) / full * range) : 0);
    position = std::clamp(position, info.nMin, std::max(info.nMin, info.nMax));
    int page = (full != 0.0 ? Round((viewHigh - fullLow) / full * range) : static_cast<int>(range)) + info.nMin - position;
    page = std::clamp(page, 1, std::max(1, info.nMax - position + 1));
    if (reverse != vertical)
        position = info.nMax - page - position + 1;
    info.nPos = position;
    info.nPage = static_cast<unsigned int>(page);
    Store(info);
    return true;
}

bool ZoomScrollState::Compare(const SCROLLINFO& a, const SCROLLINFO& b)
{
    return a.nMin != b.nMin || a.nMax != b.nMax || a.nPage != b.nPage || a.nPos != b.nPos || a.nTrackPos != b.nTrackPos;
}

void ZoomScrollState::Store(const SCROLLINFO& info)
{
    mInfo = info;
    mChanged = Compare(mInfo, mLastState);
    mLastState = mInfo;
}

void ZoomScrollState::GetZoomRange(const SCROLLINFO& info, bool ascending, float fullLow, float fullHigh, float& low,
                                   float& high)
{
    int position = info.nPos;
    const int page = Page(info);
    if (!ascending)
        position = info.nMax - page - position + 1;
    const double range = info.nMax - info.nMin + 1;
    const double full = static_cast<double>(fullHigh) - fullLow;
    const float lowest = std::min(fullLow, fullHigh);
    const float highest = std::max(fullLow, fullHigh);
    low = std::clamp(static_cast<float>(fullLow + (position - info.nMin) / range * full), lowest, highest);
    high = std::clamp(static_cast<float>(fullLow + (position + page - info.nMin) / range * full), lowest, highest);
}

bool ZoomScrollState::AxisShows(bool enabled, float fullLow, float viewLow, float viewHigh, float fullHigh)
{
    if (!enabled)
        return false;
    constexpr double kTolerance = 0.0005;
    if (korva::fcmp(fullLow, fullHigh, kTolerance) == 0)
        return korva::fcmp(static_cast<double>(viewLow) - fullLow, 0.0, kTolerance) > 0 ||
               korva::fcmp(static_cast<double>(viewHigh) - fullHigh, 0.0, kTolerance) < 0;
    return korva::fcmp(viewLow, fullLow, kTolerance) > 0 || korva::fcmp(viewHigh, fullHigh, kTolerance) < 0;
}

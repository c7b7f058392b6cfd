#include <KORVAutlwin/platform/MonotonicClock.h>

namespace korva {

MonotonicClock::MonotonicClock(int tickMilliseconds)
{
    timespec resolution{};
    if (clock_getres(CLOCK_MONOTONIC_COARSE, &resolution) == 0 && resolution.tv_sec == 0 &&
        resolution.tv_nsec <= tickMilliseconds * 1000000L)
        mClock = CLOCK_MONOTONIC_COARSE;
}

} // namespace korva

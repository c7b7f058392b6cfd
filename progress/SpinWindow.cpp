#include <KORVAutlwin/progress/SpinWindow.h>

#include <KORVAutlwin/toolkit/DisplayColor.h>
#include <KORVAutlwin/toolkit/StandardColor.h>

#include <QPainter>
#include <QPolygon>
#include <QTimerEvent>

#include <chrono>

SpinWindow::SpinWindow(QWidget* parent) : QWidget(parent)
{
    // Every pixel is painted, so the background need not be cleared first.
    setAttribute(Qt::WA_OpaquePaintEvent);
    mState.lastTick = Now();
    mTimer.start(kRoundInterval, this);
}

SpinWindow::~SpinWindow() = default;

std::uint32_t SpinWindow::Now()
{
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
}

bool SpinWindow::StepState(SpinState& state, std::uint32_t now)
{
    // Unsigned difference: right across the wrap of the clock.
    if (now - state.lastTick <= kStepInterval)
        return false;
    state.position = (state.position + 1) % kPositions;
    state.lastTick = now;
    return true;
}

void SpinWindow::AnimateState(SpinState& state, bool visible, std::uint32_t now)
{
    if (visible)
        state.hue = (state.hue + 1) % kHueSteps;
    if (state.running) {
        state.phase = !state.phase;
        if (!state.phase)
            StepState(state, now);
    }
}

COLORREF SpinWindow::StripeColor(int hue)
{
    return static_cast<COLORREF>(StandardColor::HSV2RGB(hue * kHueDegrees, kSaturation, kValue));
}

std::vector<SpinWindow::Stripe> SpinWindow::Stripes(int left, int right, int height, int position)
{
    int x = left + position;
    bool colored = true;
    // Back to the left until the stripe's lower left corner leaves the client
    // area; flipping at each step keeps every colour where it was.
    while (x + height > left) {
        x -= kStripeWidth;
        colored = !colored;
    }
    std::vector<Stripe> stripes;
    for (; x < right; x += kStripeWidth, colored = !colored)
        stripes.push_back({x, colored});
    return stripes;
}

void SpinWindow::Step()
{
    StepState(mState, Now());
}

void SpinWindow::Rest()
{
    mState.position = 0;
    mState.running = false;
}

QSize SpinWindow::sizeHint() const
{
    return QSize(100, fontMetrics().height() + 4);
}

void SpinWindow::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != mTimer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    const bool visible = isVisible();
    AnimateState(mState, visible, Now());
    if (visible)
        update();
}

void SpinWindow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRect client = rect();
    // The background stripes are the button face: fill once, then lay the coloured ones on top.
    painter.fillRect(client, palette().color(korva::SysColorRole(COLOR_BTNFACE)));
    painter.setPen(Qt::NoPen);
    painter.setBrush(korva::ToQColor(StripeColor(mState.hue)));
    const int top = client.top();
    const int height = client.height();
    for (const Stripe& stripe : Stripes(client.left(), client.left() + client.width(), height, mState.position)) {
        if (!stripe.colored)
            continue;
        const QPoint corners[4] = {{stripe.left, top},
                                   {stripe.left + kStripeWidth, top},
                                   {stripe.left + kStripeWidth + height, top + height},
                                   {stripe.left + height, top + height}};
        painter.drawPolygon(corners, 4);
    }
}

#include <KORVAutlwin/toolkit/StandardPen.h>

#include <KORVAutlwin/toolkit/StandardColor.h>

#include <QList>

bool StandardPen::bIsInitialized = false;

const QPen* StandardPen::SolidPen = nullptr;
const QPen* StandardPen::DashPen = nullptr;
const QPen* StandardPen::DashDotPen = nullptr;
const QPen* StandardPen::DotPen = nullptr;
const QPen* StandardPen::LightGrayPen = nullptr;
const QPen* StandardPen::WhitePen = nullptr;
const QPen* StandardPen::ThickPen = nullptr;
const QPen* StandardPen::NonePen = nullptr;

namespace {

// Stock pens by their stock object numbers: made once, never deleted, like the system's own.
constexpr int WHITE_PEN = 6;
constexpr int BLACK_PEN = 7;
constexpr int NULL_PEN = 8;

const QPen* StockPen(int which)
{
    static const QPen black(QBrush(Qt::black), 0, Qt::SolidLine);
    static const QPen white(QBrush(Qt::white), 0, Qt::SolidLine);
    static const QPen none(Qt::NoPen);
    switch (which) {
    case WHITE_PEN: return &white;
    case NULL_PEN: return &none;
    default: return &black;
    }
}

// A cosmetic pen with the platform's dash lengths; flat ends, so that a dash is
// exactly as long as the pattern says.
QPen* StyledPen(const QList<qreal>& pattern, unsigned long color)
{
    auto* pen = new QPen(QBrush(korva::ToQColor(color)), 0, Qt::CustomDashLine, Qt::FlatCap);
    pen->setDashPattern(pattern);
    return pen;
}

} // namespace

void StandardPen::Initialize()
{
    const unsigned long black = StandardColor::GetColorBlack();
    SolidPen = StockPen(BLACK_PEN);
    DashPen = StyledPen({18, 6}, black);
    DashDotPen = StyledPen({9, 6, 3, 6}, black);
    DotPen = StyledPen({3, 3}, black);
    LightGrayPen = new QPen(QBrush(korva::ToQColor(StandardColor::GetColorLightGray())), 0, Qt::SolidLine);
    WhitePen = StockPen(WHITE_PEN);
    ThickPen = new QPen(QBrush(korva::ToQColor(black)), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    NonePen = StockPen(NULL_PEN);
    bIsInitialized = true;
}

void StandardPen::UnloadPens()
{
    if (!bIsInitialized)
        return;
    for (const QPen** made : {&DashPen, &DashDotPen, &DotPen, &LightGrayPen, &ThickPen}) {
        delete *made;
        *made = nullptr;
    }
    bIsInitialized = false;
}

#define KORVA_PEN_GETTER(getter, field) \
    const QPen* StandardPen::getter()   \
    {                                   \
        if (!bIsInitialized)            \
            Initialize();               \
        return field;                   \
    }

KORVA_PEN_GETTER(GetSolidPen, SolidPen)
KORVA_PEN_GETTER(GetDashPen, DashPen)
KORVA_PEN_GETTER(GetDashDotPen, DashDotPen)
KORVA_PEN_GETTER(GetDotPen, DotPen)
KORVA_PEN_GETTER(GetLightGrayPen, LightGrayPen)
KORVA_PEN_GETTER(GetWhitePen, WhitePen)
KORVA_PEN_GETTER(GetThickPen, ThickPen)
KORVA_PEN_GETTER(GetNonePen, NonePen)

#undef KORVA_PEN_GETTER

const QPen* StandardPen::GetPen(PenStyle style)
{
    switch (style) {
    case ePenSolid: return GetSolidPen();
    case ePenDash: return GetDashPen();
    case ePenDashDot: return GetDashDotPen();
    case ePenDot: return GetDotPen();
    case ePenLightGray: return GetLightGrayPen();
    case ePenWhite: return GetWhitePen();
    case ePenThick: return GetThickPen();
    case ePenNone: return GetNonePen();
    }
    return nullptr;
}

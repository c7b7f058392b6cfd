#include <KORVAutlwin/progress/TsGaugeBase.h>

TsGaugeBase::~TsGaugeBase() = default;

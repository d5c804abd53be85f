#include "emc/ambient_view.h"

#include "core/context.h"
#include "emc/emc_test.h"

#include <algorithm>
#include <cmath>
#include <limits>

quint8 *emcViewFlag(AppState &s, int number)
{
    quint8 *const flags[] = {&s.viewMaxhold,     &s.viewQPeak,       &s.viewAverage,    &s.viewMemoryB,
                             &s.emcViewAmbientH, &s.emcViewAmbientV, &s.emcCalcAmbient, &s.emcViewAmbient};
    return number >= 1 && number <= 8 ? flags[number - 1] : nullptr;
}

void emcViewChecked(Context &ctx, int number, bool on)
{
    quint8 *flag = emcViewFlag(ctx.state, number);
    if (!flag)
        return;
    *flag = on ? 1 : 0;
    ctx.state.repaintRequest = 1;
}

void ambientDistanceEntered(Context &ctx, const QString &text)
{
    AppState &s = ctx.state;
    const double dB = std::nearbyint(typedValue(text, s.decimalChar));
    s.emcAmbientDistance = qint16(std::clamp(dB, double(std::numeric_limits<qint16>::min()),
                                             double(std::numeric_limits<qint16>::max())));
    ctx.testPage().setEmcText1(QString::number(s.emcAmbientDistance));
    s.repaintRequest = 1;
}

#include "signal/level_math.h"

#include <cmath>

double logTen(double &x)
{
    constexpr double floor = 1e-10;
    if (x < floor)
        x = floor;
    return std::log10(x);
}

double toDecibel(double x)
{
    return 20.0 * logTen(x);
}

double powerOfTen(double x)
{
    return std::pow(10.0, x);
}

double fromDecibel(double x)
{
    return powerOfTen(x / 20.0);
}

double levelInUnit(double dBm, double unitOffset)
{
    return dBm + unitOffset;
}

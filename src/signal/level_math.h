#pragma once
// Level arithmetic shared by the conversion, the detectors and the limit comparison.

// Decimal logarithm. An argument below 1e-10 is first set to 1e-10, also in the caller's
// variable, so zero and negative input give -10 instead of failing.
double logTen(double &x);
// Linear amplitude to dB: 20 x logTen(x).
double toDecibel(double x);
// 10 to the power x.
double powerOfTen(double x);
// dB to linear amplitude.
double fromDecibel(double x);
// A level on the dBmW scale shown in a display unit: the unit's offset added.
double levelInUnit(double dBm, double unitOffset);

#pragma once
// The analyser's command set: one operation per setting and per query, each mirroring a field
// of the panel record, and the composite operations that bring analyser and record into step.
// Settings do nothing while the link is down; numbers go out with a point in any locale.

#include "core/context.h"

// Settings
void sendCenterFrequency(Context &ctx);
void sendSpan(Context &ctx);
void sendZeroSpan(Context &ctx);
void sendRefLevel(Context &ctx);
void sendAttenuator(Context &ctx);
void sendBandwidth(Context &ctx);
void sendBandwidth1000(Context &ctx);
void sendBandwidth120(Context &ctx);
void sendBandwidth9(Context &ctx);
void sendVideoFilter(Context &ctx);
void sendReadMode(Context &ctx);
void sendTraceTarget(Context &ctx);
void sendMemoryReadMode(Context &ctx);
void sendTrackingOn(Context &ctx);
void sendTrackingLevel(Context &ctx);
void sendDbPerDivision(Context &ctx);
void calculationStart(Context &ctx);
void calculationStop(Context &ctx);
void singleSweepModeOff(Context &ctx);
void singleSweepModeOn(Context &ctx);
void startSingleSweep(Context &ctx);
void storeAtoB(Context &ctx);
void saveSettingsMemory(Context &ctx);
void recallSettingsMemory(Context &ctx);
void sendTriggerLevel(Context &ctx);
void triggerOff(Context &ctx);

// Queries
void readCenterFrequency(Context &ctx);
void readRefLevelRaw(Context &ctx);
void readRefLevel(Context &ctx);
void readAttenuator(Context &ctx);
void readSpan(Context &ctx);
void readBandwidth(Context &ctx);
void readVideoFilter(Context &ctx);
void readReadMode(Context &ctx);
void readTrackingOn(Context &ctx);
void readTrackingLevel(Context &ctx);
void readCalculation(Context &ctx);
void readDbPerDivision(Context &ctx);
void readUncalFlag(Context &ctx);

// Composites
void readAllSettings(Context &ctx);
void sendAllSettings(Context &ctx);
void sendPresetSettings(Context &ctx);
void sendZeroSpanSettings(Context &ctx);

// A number by a picture of zeros: `integerDigits` digits before the point, always written,
// `decimals` after it; a negative value gets its minus sign in front. Always a point.
QString numberPicture(double value, int integerDigits, int decimals);

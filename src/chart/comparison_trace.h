#pragma once
// The trace of a second stored file that the chart lays over the one shown and the result table
// holds against it: an EMC run's peak (the rows a detector measured), a measurement's sample trace.

#include "core/app_state.h"

#include <QString>
#include <optional>
#include <vector>

// The trace of `path` in frequency order (MHz, dBm). A file that a load would refuse gives none,
// and `fault` says why, naming the file.
std::optional<std::vector<ComparisonPoint>> readComparisonTrace(const QString &path, QString *fault = nullptr);

// Takes `path` as the view's comparison. Empty when taken; on refusal the view keeps what it had
// and the text says why.
QString compareWith(ChartView &view, const QString &path);
void clearComparison(ChartView &view);

// The compared level at `frequency`, where the trace has a point at the same whole kHz.
std::optional<float> comparedLevel(const std::vector<ComparisonPoint> &trace, float frequency);

#include "chart/level_meter.h"

#include "chart/canvas.h"
#include "chart/chart_painter.h"
#include "chart/cursors.h"
#include "core/context.h"
#include "store/measurement_file.h"
#include "store/sqlite_file.h"

#include <QSqlQuery>
#include <QSqlRecord>

#include <cmath>

namespace {

constexpr double kMeterWidth = 46.0; // ten bars of 4 units with their gaps
constexpr quint32 kBlack = 0;

// One bar: its x, caption and stored column, and the trace whose screen colour it takes.
struct MeterBar {
    int x;
    const char *caption;
    const char *column;
    ColourRole colour;
};
const MeterBar kBars[] = {
    {1, "S_H", "h_memory_dbmw", MemoryColour},     {5, "S_V", "v_memory_dbmw", MemoryColour},
    {10, "A_H", "h_average_dbmw", AverageColour},  {14, "A_V", "v_average_dbmw", AverageColour},
    {19, "Q_H", "h_qpeak_dbmw", QPeakColour},      {23, "Q_V", "v_qpeak_dbmw", QPeakColour},
    {28, "P_H", "h_maxhold_dbmw", MaxholdColour},  {32, "P_V", "v_maxhold_dbmw", MaxholdColour},
    {37, "a_H", "ambient_h_dbmw", AmbientHColour}, {41, "a_V", "ambient_v_dbmw", AmbientVColour},
};

} // namespace

std::optional<QString> refreshLevelmeter(Context &ctx, Canvas &graph)
{
    const AppState &s = ctx.state;
    if (s.measurementFileName.isEmpty())
        return std::nullopt;
    const ChartView &v = s.chart;
    const double top = v.grafikMax * 1.2;
    graph.setScale(0, top, kMeterWidth, (v.grafikMin - top) * 1.1);
    const double textOffset = std::round((v.grafikMin - top) * 0.1);

    SqliteFile file(measurementFilePath(s));
    QSqlQuery query(file.handle());
    query.prepare(QStringLiteral("select * from measurement where frequency >= ? order by frequency"));
    query.addBindValue(double(linearCursorFrequency(s, s.chart.cursorAX)));
    const bool found = query.exec() && query.next();
    const QSqlRecord row = found ? query.record() : QSqlRecord();

    graph.clear();
    graph.setForeColour(kBlack);
    for (const MeterBar &bar : kBars) {
        graph.setTextPosition(bar.x, v.grafikMin);
        graph.print(QLatin1String(bar.caption));
    }
    if (!found)
        return QString();
    for (const MeterBar &bar : kBars) {
        const QVariant value = row.value(QLatin1String(bar.column)); // names match without regard to case
        bool isNumber = false;
        const float level = value.toFloat(&isNumber);
        if (value.isNull() || !isNumber)
            continue;
        const double y = std::nearbyint(double(level) * 2.5);
        if (!(y > v.grafikMin))
            continue;
        graph.box(bar.x, y, bar.x + 4, v.grafikMin, s.screenColours[bar.colour]);
        graph.line(bar.x, y, bar.x + 4, y, kBlack);
        graph.setForeColour(kBlack);
        graph.setTextPosition(bar.x, y - textOffset);
        graph.print(formatPicture(double(level + s.analyser.unitOffset), QStringLiteral("0.0")));
    }
    return QStringLiteral("Measure-Freq.: ")
           + formatPicture(row.value(QStringLiteral("frequency")).toFloat(), QStringLiteral("000.000"))
           + QStringLiteral("MHz");
}

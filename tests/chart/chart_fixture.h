#pragma once
// A chart painter on recording pictures over a fresh context: Picture1 1000 x 500 pixels,
// Picture2 beside it 50 pixels wide, Picture3 below it 30 pixels high.

#include "support/no_port.h"
#include "chart/chart_painter.h"
#include "chart/grafik_controls.h"
#include "chart/recording_canvas.h"
#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"

#include <QTest>

using Op = RecordingCanvas::Op;

// The value of a column of the current data row, for use inside an expression.
template <typename T>
T fetched(const char *column)
{
    return *static_cast<T *>(QTest::qData(column, qMetaTypeId<T>()));
}
using Operation = RecordingCanvas::Operation;

struct ChartFixture {
    ChartFixture()
        : ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(), std::make_unique<NoPort>()}),
          picture1(1000, 500), picture2(50, 500), picture3(1000, 30),
          painter(ctx, picture1, picture2, picture3, controls)
    {
        // Colours of their own, so that each line tells its role (some defaults are shared).
        for (int role = AmbientHColour; role <= CompareColour; ++role)
            ctx.state.screenColours[role] = 0x10000u * role + 0x40u;
    }

    AppState &state() { return ctx.state; }
    ChartView &view() { return ctx.state.chart; }
    quint32 colour(ColourRole role) const { return ctx.state.screenColours[role]; }
    void paint()
    {
        for (RecordingCanvas *picture : {&picture1, &picture2, &picture3})
            picture->forget();
        painter.paintChart();
    }
    // Vertical lines of Picture1 in a colour, by their x.
    QList<double> verticalLines(quint32 colour) const
    {
        QList<double> xs;
        for (const Operation &o : picture1.lines(colour))
            if (o.x1 == o.x2)
                xs.append(o.x1);
        return xs;
    }

    Context ctx;
    GrafikControls controls;
    RecordingCanvas picture1, picture2, picture3;
    ChartPainter painter;
};

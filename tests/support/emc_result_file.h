#pragma once
// Writes an .emc file with plain SQL for the tests of the result table: the empty tables as the
// program makes them, a settings row, the limit lines and the detector rows as given.

#include "core/clock.h"
#include "core/context.h"
#include "core/scripted_prompts.h"
#include "store/measurement_file.h"
#include "support/no_port.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

struct EmcLimitPoint {
    double frequency, level; // MHz, dBm
};

// One row: frequency, then peak, quasi-peak and average with their H and V columns (dBm, -1000
// where nothing was measured).
struct EmcResultRow {
    double frequency;
    double peak, hPeak, vPeak;
    double qpeak = -1000, hQPeak = -1000, vQPeak = -1000;
    double average = -1000, hAverage = -1000, vAverage = -1000;
    double ambientH = -1000, ambientV = -1000;
};

struct EmcResultFile {
    QString unit = QStringLiteral("dBuV");
    int mode = 2; // 0 makes it a trace file
    bool maxholdLog = false, averageLog = false;
    QList<EmcLimitPoint> maxhold, average;
    QList<EmcResultRow> rows;
};

inline bool writeEmcResultFile(const QString &path, const EmcResultFile &file)
{
    {
        Context ctx(Platform{std::make_unique<VirtualClock>(), std::make_unique<ScriptedPrompts>(),
                             std::make_unique<NoPort>()});
        ctx.state.measurementFileName = path;
        if (!createMeasurementFile(ctx))
            return false;
    }
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("emc-result"));
        db.setDatabaseName(path);
        ok = db.open();
        QSqlQuery q(db);
        const auto run = [&](const QString &sql, const QVariantList &values) {
            q.prepare(sql);
            for (const QVariant &value : values)
                q.addBindValue(value);
            ok = ok && q.exec();
        };
        // A level window of -120 to -20 dB, in counts, as a finished run leaves it.
        run(QStringLiteral("insert into Settings (vernr, mode, unit, lmaxlog, lavelog, grafikmin, grafikmax) "
                           "values (?, ?, ?, ?, ?, -300, -50)"),
            {file.mode == 0 ? 100 : 102, file.mode, file.unit, file.maxholdLog ? -1 : 0, file.averageLog ? -1 : 0});
        for (qsizetype i = 0; i < std::max(file.maxhold.size(), file.average.size()); ++i) {
            const auto at = [i](const QList<EmcLimitPoint> &line, bool level) {
                return i < line.size() ? QVariant(level ? line[i].level : line[i].frequency) : QVariant();
            };
            run(QStringLiteral("insert into Limitlines (maxfreq, maxhold_dBmW, avefreq, average_dBmW) values (?, ?, ?, ?)"),
                {at(file.maxhold, false), at(file.maxhold, true), at(file.average, false), at(file.average, true)});
        }
        for (const EmcResultRow &r : file.rows)
            run(QStringLiteral("insert into Measurement (Frequency, Sample_dBmW, memory_dBmW, Maxhold_dBmW, H_Maxhold_dBmW, "
                               "V_Maxhold_dBmW, QPeak_dBmW, H_QPeak_dBmW, V_QPeak_dBmW, Average_dBmW, H_Average_dBmW, "
                               "V_Average_dBmW, Ambient_H_dBmW, Ambient_V_dBmW) "
                               "values (?, 1, -90, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                {r.frequency, r.peak, r.hPeak, r.vPeak, r.qpeak, r.hQPeak, r.vQPeak, r.average, r.hAverage,
                 r.vAverage, r.ambientH, r.ambientV});
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("emc-result"));
    return ok;
}

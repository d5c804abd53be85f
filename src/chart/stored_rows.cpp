#include "chart/stored_rows.h"

QString storedColumn(Slot slot, int selection)
{
    static const char *const plain[SlotCount] = {"sample_dbmw", "average_dbmw", "maxhold_dbmw", "qpeak_dbmw",
                                                 "memory_dbmw", "ambient_h_dbmw", "ambient_v_dbmw"};
    const QString name = QLatin1String(plain[slot]);
    if (slot == Sample || slot >= AmbientH || (selection != 1 && selection != 2))
        return name;
    return (selection == 1 ? QStringLiteral("h_") : QStringLiteral("v_")) + name;
}

Slots visibleSlots(const AppState &s)
{
    return {s.viewSample != 0, s.viewAverage != 0, s.viewMaxhold != 0, s.viewQPeak != 0,
            s.viewMemoryB != 0 || s.viewMemoryAB != 0, s.emcViewAmbientH != 0, s.emcViewAmbientV != 0};
}

// Walks the rows as the stored lines and bars do, handing each stretch to `step`. With `thin`
// a point stands for itself and the next `thinFactor` rows: the highest value of each column, at
// the frequency of the group's last row. The walk ends at the first row beyond `stop`.
void walkStored(StoredRows &rows, bool thin, int thinFactor, float stop, const StoredStep &step)
{
    Levels current{};
    if (!rows.next())
        return;
    rows.read(current);
    Levels previous = current;
    float f1 = 0;
    rows.readFrequency(f1);
    float f2 = f1;
    while (rows.next() && !rows.beyond(stop)) {
        rows.read(current);
        rows.readFrequency(f2);
        bool beyond = false;
        for (int k = 0; thin && k < thinFactor; ++k) {
            if (!rows.next())
                break;
            if (rows.beyond(stop)) {
                beyond = true;
                break;
            }
            rows.raise(current);
            rows.readFrequency(f2);
        }
        step(f1, previous, f2, current);
        if (beyond)
            return;
        previous = current;
        f1 = f2;
    }
}

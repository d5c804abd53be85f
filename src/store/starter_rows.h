#pragma once
// The catalogue a pristine working database is delivered with, so that a bench can measure on
// the first day: published limit lines, known radio bands, example components, a workplace
// configuration for each kind of measurement, and one EMC test of each scan mode.

#include <QList>
#include <QString>
#include <QVariantList>

// One insert or update, with its values bound in order to the statement's placeholders.
struct StarterStatement {
    QString sql;
    QVariantList values;
};

// The delivered rows, in an order that runs after the fixed rows (units, the counter row and
// loshead 0): heads before their points, and the counter row set to the highest numbers given.
QList<StarterStatement> deliveredRows();

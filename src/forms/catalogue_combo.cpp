#include "forms/catalogue_combo.h"

#include "store/data_view.h"
#include "store/database.h"

QComboBox *catalogueCombo(const char *name, const QString &toolTip, QWidget *parent)
{
    auto *combo = new QComboBox(parent);
    combo->setObjectName(QLatin1String(name));
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setToolTip(toolTip);
    return combo;
}

void fillCombo(QComboBox *combo, const Context &ctx, const DataView &view, const QString &column)
{
    const QString shown = combo->currentText();
    const QSignalBlocker quiet(combo);
    combo->clear();
    Recordset rows(workingDatabase(ctx), view.source());
    for (rows.moveFirst(); !rows.isEof(); rows.moveNext())
        combo->addItem(rows.value(column).toString());
    // No item is current: Return on a name in the box is taken only when it differs from the
    // current item's text, so a filled list whose first item stood current would ignore that name.
    combo->setCurrentIndex(-1);
    combo->setEditText(shown);
}

#pragma once
// The points of a loss/gain component as the correction chain reads them from the working database.

#include "core/app_state.h"

#include <QList>

class Context;

// Rows of table losdef for component `losnr`, in frequency order: the correction to add to a
// reading (a gain negative). Empty when the working database is not open or has no such rows.
// A row without a numeric frequency is left out.
QList<ComponentRow> componentRows(const Context &ctx, qint32 losnr);

// Lets the correction chain read its components from this context's working database.
void attachStore(Context &ctx);

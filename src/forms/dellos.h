#pragma once
// dellos: dellim for loss/gain components; the fixed entry 0 is not offered.

#include "forms/dellim.h"

DeleteCurveDialog *dellos(Context &ctx, QWidget *parent, DefinitionChanged changed);

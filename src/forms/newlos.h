#pragma once
// newlos: newlim for loss/gain components. The fixed entry 0 may be copied, never receive a copy.

#include "forms/newlim.h"

NewCurveDialog *newlos(Context &ctx, QWidget *parent, DefinitionChanged changed);

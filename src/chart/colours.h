#pragma once
// The 14 screen and 14 printer colours that the form colordef edits: the rows with their
// captions and buttons, and the choice of one colour through the colour dialog.

#include "core/app_state.h"

#include <array>

class Context;

struct ColourRow {
    ColourRole role;
    const char *caption;       // "Grid color"
    const char *screenButton;  // the form's button for the screen colour
    const char *printerButton; // and for the printer colour
};

// The rows in the order of the two lists.
const std::array<ColourRow, 14> &colourRows();

// One colour button: the colour dialog starts from the row's colour and the list takes what it
// returns; a cancelled dialog keeps the colour. A new screen colour asks for a repaint.
// Returns the colour the list now holds.
quint32 chooseColour(Context &ctx, ColourRole role, bool printer);

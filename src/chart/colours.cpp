#include "chart/colours.h"

#include "core/context.h"

const std::array<ColourRow, 14> &colourRows()
{
    static const std::array<ColourRow, 14> rows = {{
        {AmbientHColour, "Ambient H color", "Command10", "Command17"},
        {AmbientVColour, "Ambient V color", "Command11", "Command16"},
        {GridColour, "Grid color", "Command1", "Command26"},
        {DecadeColour, "Decade-Marker color", "Command2", "Command25"},
        {LimitColour, "Limitline color", "Command3", "Command24"},
        {LossGainColour, "Los/Gain color", "Command4", "Command23"},
        {SampleColour, "Sample color", "Command5", "Command22"},
        {MaxholdColour, "Maxhold/Peak color", "Command7", "Command20"},
        {AverageColour, "Average color", "Command6", "Command21"},
        {MemoryColour, "Memory/Sweep color", "Command9", "Command18"},
        {QPeakColour, "QPeak color", "Command8", "Command19"},
        {CursorAColour, "Cursor A color", "Command12", "Command15"},
        {CursorBColour, "Cursor B color", "Command13", "Command14"},
        {CompareColour, "Compare color", "Command27", "Command28"},
    }};
    return rows;
}

quint32 chooseColour(Context &ctx, ColourRole role, bool printer)
{
    quint32 &colour = (printer ? ctx.state.printColours : ctx.state.screenColours)[role];
    colour = ctx.prompts.colourDialog(colour).value_or(colour);
    if (!printer)
        ctx.state.repaintRequest = 1;
    return colour;
}

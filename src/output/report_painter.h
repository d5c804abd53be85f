#pragma once
// The report: the chart drawn once more on a page, with a header above it (headline, the traces
// shown, the print date, the unit line), optionally the cursors, and a notes section (the
// analyser's settings and the notes) under the chart in portrait or on a second page in
// landscape. Two twins draw it: printChart on the printer's page, previewChart on the picture of
// the preview, which has its own scale and cursor texts and no notes section.
//
// The chart's own drawing of grids, known bands, limit lines and traces is used, on the page.
// In colour the page takes the printer colours, in black everything is black; grid lines are
// black in both, known bands keep their own colour.

class Context;
class ReportCanvas;

void printChart(Context &ctx, ReportCanvas &page);
void previewChart(Context &ctx, ReportCanvas &picture);

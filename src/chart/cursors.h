#pragma once
// Cursors A and B over the chart: cross-hairs drawn on Picture1 in not-xor mode, so that drawing
// one a second time takes it away again. The mouse drags them; the readouts freqa, leva, freqb,
// levb, freqab and levab show the frequency and level under each and their distance; three
// buttons tie them to the peak and to the analyser's centre frequency.

#include <QString>
#include <QtGlobal>

class ChartPainter;
class Context;
class GrafikControls;
struct AppState;

enum class CursorId { A, B };

// The frequency in MHz under a cursor at x, by the axis in force: the zoom window, the log axis,
// the single frequency of a zero span. Never negative.
float cursorFrequency(const AppState &s, qint32 x, CursorId cursor);
// The same by the linear rule whatever the log axis (zoomed or not): the frequency that the level
// meter and the band name look up.
float linearCursorFrequency(const AppState &s, double x);
// A readout's frequency: "###0.0K" below 1 MHz; otherwise "###0.000M" or "###0.000G" as `scale`
// (MHz) is below 1000 or not.
QString cursorFrequencyText(float f, float scale);

enum class MousePointer { Keep, Cross, Grip };
enum MouseButton { NoButton = 0, LeftButton = 1, RightButton = 2 };

class ChartCursors {
public:
    ChartCursors(Context &ctx, ChartPainter &painter, GrafikControls &controls);

    // Both cursors at their positions (clamped to the picture), each taken away first from where
    // it was last drawn unless a paint has cleared the picture since; then the readouts.
    void paintCursors();
    // Picture1's mouse at x, y in its user coordinates with `buttons` held: a cursor near the
    // mouse (A before B), or the one grabbed, follows it. Gives the pointer to show.
    MousePointer mouseMove(int buttons, double x, double y);
    // The right button names the known band under the mouse in the form's caption, until the
    // mouse moves again without it.
    void mouseDown(int button, double x);
    // A double click reads the analyser anew (normal mode) or repaints the stored run (EMC mode).
    void doubleClicked();
    void peakClicked();         // Command1 "CA -> PK": cursor A to the peak of the live traces
    // Cursor A to a frequency (MHz) and a level (counts), drawn there with its readouts.
    void moveCursorA(float frequency, qint32 level);
    void centreClicked();       // Command2 "CA = CF": the centre frequency to cursor A
    void doubleCentreClicked(); // Command3 "2 * CF": the centre frequency doubled
    // The readouts of both cursors where they stand, as the paint shows them.
    void showReadouts();

private:
    void drawCursor(qint32 x, qint32 y, quint32 colour);
    void centreChanged();

    Context &ctx_;
    ChartPainter &painter_;
    GrafikControls &controls_;
};

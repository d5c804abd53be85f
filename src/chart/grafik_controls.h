#pragma once
// What the chart painter changes on the form grafik besides its three pictures. The values
// are kept here so that logic and tests can read them back; the form overrides the setters
// to mirror them on screen.

#include <QString>

// The readouts of the cursors: frequency and level under A and under B, and their distance.
struct CursorReadouts {
    QString freqa, leva, freqb, levb, freqab, levab;
};

class GrafikControls {
public:
    virtual ~GrafikControls() = default;

    virtual void setCaption(const QString &text) { caption = text; }
    // Check1: the logarithmic frequency axis.
    virtual void setLogAxisCheck(bool enabled, bool ticked)
    {
        logAxisEnabled = enabled;
        logAxisTicked = ticked;
    }
    // Label5: "Distance from DUT: ..."
    virtual void setDistanceLabel(bool visible, const QString &text)
    {
        distanceVisible = visible;
        distanceText = text;
    }
    // Label6: the level unit.
    virtual void setUnitLabel(const QString &text) { unitText = text; }
    // Command1 and Command3 of the measurement tab: live data only.
    virtual void setLiveButtonsEnabled(bool on) { liveButtonsEnabled = on; }
    // Check6, Text2, Text4: the zoom window as it stands after a paint.
    virtual void setZoomControls(bool ticked, const QString &start, const QString &span)
    {
        zoomTicked = ticked;
        zoomStartText = start;
        zoomSpanText = span;
    }
    // Check5: known bands shown.
    virtual void setKnownBandsCheck(bool ticked) { knownBandsTicked = ticked; }
    // Third caption of the trace selection row: "Mem B" in normal mode, "Sweep" in EMC mode.
    virtual void setMemoryTraceCaption(const QString &text) { memoryTraceCaption = text; }
    virtual void setCursorReadouts(const CursorReadouts &texts) { readouts = texts; }

    QString caption;
    bool logAxisEnabled = true;
    bool logAxisTicked = false;
    bool distanceVisible = false;
    QString distanceText;
    QString unitText;
    bool liveButtonsEnabled = true;
    bool zoomTicked = false;
    QString zoomStartText, zoomSpanText;
    bool knownBandsTicked = false;
    QString memoryTraceCaption = QStringLiteral("Mem B");
    CursorReadouts readouts;
};

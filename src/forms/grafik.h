#pragma once
// The form grafik: the tab grtab with the measurement tab (the chart on Picture1, its level
// labels on Picture2, its frequency labels on Picture3, the legend and the chart's own
// controls) and the EMC frame Frame1 below the tab.

#include "chart/chart_painter.h"
#include "chart/grafik_controls.h"
#include "chart/image_canvas.h"

#include <QWidget>
#include <array>

class Context;
class GrafikEquipment;
class GrafikPanel;
class GrafikResults;
class GrafikTests;
class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;

// One picture of the chart: shows its canvas at the screen's pixel ratio, asks for a repaint
// when its size or its screen changes, and hands on the mouse.
class CanvasView : public QWidget {
    Q_OBJECT
public:
    CanvasView(const char *name, Context &ctx, QWidget *parent);
    ImageCanvas &canvas() { return canvas_; }

signals:
    // The position in pixels of the widget; buttons as MouseButton flags.
    void mouseMoved(int buttons, QPointF position);
    void mousePressed(int button, QPointF position);
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    void fitCanvas();

    Context &ctx_;
    ImageCanvas canvas_;
};

class GrafikForm : public QWidget, public GrafikControls {
    Q_OBJECT
public:
    explicit GrafikForm(Context &ctx, QWidget *parent = nullptr);

    // The chart drawn anew from the state; the pictures show it at once.
    void paintChart();
    int paintCount() const { return paintCount_; }
    ChartPainter &painter() { return painter_; }
    GrafikEquipment *equipment() const { return equipment_; }
    GrafikPanel *panel() const { return panel_; }

    // The controls that differ between normal and EMC mode; the measurement tab comes to the front.
    void applyMode(bool emc);
    void setUncalVisible(bool on);

    void setCaption(const QString &text) override;
    void setLogAxisCheck(bool enabled, bool ticked) override;
    void setDistanceLabel(bool visible, const QString &text) override;
    void setUnitLabel(const QString &text) override;
    void setLiveButtonsEnabled(bool on) override;
    void setZoomControls(bool ticked, const QString &start, const QString &span) override;
    void setKnownBandsCheck(bool ticked) override;
    void setMemoryTraceCaption(const QString &text) override;
    void setCursorReadouts(const CursorReadouts &texts) override;

private:
    QWidget *buildMeasurementTab();
    QWidget *buildLegend();
    QWidget *buildChartControls();
    QWidget *buildCursorReadouts();
    // Picture1's mouse: the cursors, the band name, the double click.
    void connectCursors();
    QPointF plotPoint(QPointF position) const;
    QFrame *buildEmcFrame();
    QFrame *placeholderPage(const char *frameName, const char *labelName, QWidget **label,
                            QWidget *content = nullptr);
    // The views that a tab reads are refreshed when it comes to the front.
    void tabChanged(int index);
    void showLegendColours();
    // Command7, Text2, Text4 and their labels follow Check6.
    void setZoomFieldsEnabled(bool on);
    void showZoomWindow();

    Context &ctx_;
    QTabWidget *grtab_;
    CanvasView *picture1_;
    CanvasView *picture2_;
    CanvasView *picture3_;
    ChartPainter painter_;
    std::array<QLabel *, 9> legend_{};
    QLabel *label1_ = nullptr;
    QLabel *label5_ = nullptr;
    QLabel *label6_ = nullptr;
    QLabel *label11_ = nullptr;
    QCheckBox *check1_ = nullptr;
    QCheckBox *check5_ = nullptr;
    QCheckBox *check6_ = nullptr;
    QLineEdit *text2_ = nullptr;
    QLineEdit *text4_ = nullptr;
    QLabel *label4_ = nullptr;
    QLabel *label7_ = nullptr;
    QPushButton *zoomLeft_ = nullptr;
    QPushButton *zoomRight_ = nullptr;
    bool zoomStartByEnter_ = false;
    std::array<QPushButton *, 3> cursorCommands_{};
    std::array<QLabel *, 6> readouts_{}; // freqa, leva, freqb, levb, freqab, levab
    QFrame *frame1_ = nullptr;
    GrafikPanel *panel_ = nullptr;
    GrafikTests *tests_ = nullptr;
    GrafikResults *results_ = nullptr;
    GrafikEquipment *equipment_ = nullptr;
    QWidget *fSetunit_ = nullptr;
    QWidget *fTest_ = nullptr;
    QWidget *lNotValid2_ = nullptr;
    QWidget *lNotvalid1_ = nullptr;
    int paintCount_ = 0;
};

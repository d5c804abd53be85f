#pragma once
// The main frame MDI: the shell of the program with its tool bar, menu, four timers and the
// status caption. The chart form grafik and the other forms live in its MDI area.

#include "core/context.h"
#include "core/frame_controls.h"

#include <QMainWindow>
#include <QPointer>

#include <memory>

class QAction;
class QCheckBox;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QPushButton;
class QTimer;
class QToolBar;
class BoxcomForm;
class GrafikForm;
class RunControlsView;
class TrForm;

class MainFrame : public QMainWindow, public FrameControls {
    Q_OBJECT
public:
    explicit MainFrame(Context &ctx, QWidget *parent = nullptr);
    ~MainFrame() override;

    void setCaption(const QString &text) override;
    void setRemoteChecked(bool on) override;
    void setAutoChecked(bool on) override;
    void setToolboxVisible(bool on) override;
    void setUncalVisible(bool on) override;
    void setTimer4Enabled(bool on) override;
    void setBusyCursor(bool on) override;
    void setMonitorLabel(MonitorLabel label, const QString &text) override;
    void closeBoxcom() override;
    void takeFormGeometry(FormGeometry &geometry) override;

    void enterNormalMode();
    void enterEmcMode();
    void paintChart();
    GrafikForm *grafik() const { return grafik_; }

    // The timers' duties; the QTimers named Timer1..Timer4 call them.
    void timer1Tick();
    void timer2Tick();
    void timer3Tick();
    void timer4Tick();

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildToolBar();
    void buildMenu();
    void buildTimers();
    void showGrafik();
    void unloadGrafik();
    void applyModeControls(bool emc);
    QAction *action(const char *name) const; // a menu item
    QWidget *tool(const char *name) const;
    void remoteClicked(bool checked);
    void autoClicked(bool checked);
    void readClicked();
    void setReadClicked();
    void eraseClicked();
    void refreshChartClicked();
    void toolboxClicked();
    void autostoreClicked();
    // A dialog of the frame: the one that is open, else a new one.
    template <typename Form> void showDialog();
    void pictureClicked();
    void loadMeasurementClicked();
    void saveMeasurementClicked();
    void printerSetupClicked();
    void openSetprn();
    void databaseSelectionClicked();
    void exitClicked();
    void configurationClicked();
    void normalModeClicked();
    void emcModeClicked();
    void openSaveset();
    void openLoadset();
    void manualClicked(const QString &fileName);
    void aboutClicked();

    Context &ctx_;
    QMdiArea *mdi_;
    QToolBar *toolBar_ = nullptr;
    QCheckBox *ckrm_ = nullptr;
    QCheckBox *ckauto_ = nullptr;
    QAction *toolboxAction_ = nullptr;
    QLabel *picture1_ = nullptr;
    QTimer *timers_[4] = {};
    QMenu *mnusave_ = nullptr;
    GrafikForm *grafik_ = nullptr;
    QMdiSubWindow *grafikWindow_ = nullptr;
    QPointer<TrForm> tr_;
    QPointer<BoxcomForm> boxcom_;
    // The default extension the file dialog was last given; it stays with the dialog between uses.
    QString rememberedExtension_ = QStringLiteral("MES");
    bool unloaded_ = false;
    std::unique_ptr<RunControlsView> runControls_;
};

#pragma once
// The main frame MDI: the shell of the program with its tool bar, menu, four timers and the
// status caption. Child forms live in its MDI area.

#include "core/context.h"
#include "core/frame_controls.h"

#include <QMainWindow>
#include <QPointer>

class QAction;
class QCheckBox;
class QLabel;
class QMdiArea;
class QTimer;
class BoxcomForm;
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
    void setTimer4Enabled(bool on) override;
    void setBusyCursor(bool on) override;
    void setMonitorLabel(MonitorLabel label, const QString &text) override;
    void closeBoxcom() override;

    void enterNormalMode();
    void enterEmcMode();

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildToolBar();
    void buildMenu();
    void buildTimers();
    void remoteClicked(bool checked);
    void autoClicked(bool checked);
    void toolboxClicked();
    void pictureClicked();
    void exitClicked();
    void configurationClicked();

    Context &ctx_;
    QMdiArea *mdi_;
    QCheckBox *ckrm_ = nullptr;
    QCheckBox *ckauto_ = nullptr;
    QAction *toolboxAction_ = nullptr;
    QLabel *picture1_ = nullptr;
    QTimer *timer4_ = nullptr;
    QPointer<TrForm> tr_;
    QPointer<BoxcomForm> boxcom_;
    bool unloaded_ = false;
};

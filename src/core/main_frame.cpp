#include "core/main_frame.h"

#include "core/app.h"
#include "link/boxcom_form.h"
#include "link/discovery.h"
#include "link/serial_link.h"
#include "link/tr_form.h"
#include "signal/trace_store.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QToolBar>

#include <cmath>

namespace {

constexpr int kHiddenSetupClicks = 5;

QPixmap pictureOfSpectrum()
{
    QPixmap pixmap(56, 28);
    pixmap.fill(Qt::black);
    QPainter painter(&pixmap);
    painter.setPen(QColor(0, 200, 0));
    const int levels[] = {24, 23, 24, 22, 24, 6, 23, 24, 21, 24, 14, 24, 23, 24};
    for (int i = 1; i < int(std::size(levels)); ++i)
        painter.drawLine((i - 1) * 4 + 2, levels[i - 1], i * 4 + 2, levels[i]);
    return pixmap;
}

// One of the hidden prompts: the typed text as a number, 0 when nothing usable was typed.
double askNumber(Context &ctx, const QString &title, const QString &prompt, int current)
{
    return numberValue(ctx.prompts.inputBox(title, prompt, QString::number(current)));
}

// The three prompts behind the fifth click on the picture: serial timeout, the monitor, the noise value.
void runHiddenSetup(Context &ctx)
{
    AppState &s = ctx.state;
    const double timeout = askNumber(ctx, QStringLiteral("Transmission timing setup"),
                                     QStringLiteral("Serial timeout in s (+1s)[1]"), s.serialTimeoutSeconds);
    if (timeout >= 1 && timeout <= 255) // any number but 0 that fits the byte
        s.serialTimeoutSeconds = quint8(std::lround(timeout));
    // The monitor can be switched on here, never off: it stays until the next start.
    if (askNumber(ctx, QStringLiteral("Transmission debug"), QStringLiteral("Show transmission  Yes = 1 / No = 0 "),
                  s.transmissionMonitorOn)
        == 1)
        s.transmissionMonitorOn = 1;
    // Everything below 100 is taken, an empty answer too (as 0).
    const double noise = askNumber(ctx, QStringLiteral("Transmission debug"), QStringLiteral("Noisevalue default=50"),
                                   s.noiseValue);
    if (noise < 100 && noise >= -32768)
        s.noiseValue = qint16(std::lround(noise));
}

QCheckBox *checkBox(const char *name, const QString &caption, QWidget *parent)
{
    auto *box = new QCheckBox(caption, parent);
    box->setObjectName(QLatin1String(name));
    return box;
}

} // namespace

MainFrame::MainFrame(Context &ctx, QWidget *parent) : QMainWindow(parent), ctx_(ctx), mdi_(new QMdiArea(this))
{
    setObjectName(QStringLiteral("MDI"));
    mdi_->setObjectName(QStringLiteral("mdiArea"));
    setCentralWidget(mdi_);
    buildToolBar();
    buildMenu();
    buildTimers();
    resize(1000, 700);
    ctx_.attachFrame(this);
    ctx_.calls.enterNormalMode = [this] { enterNormalMode(); };
    ctx_.calls.enterEmcMode = [this] { enterEmcMode(); };
}

MainFrame::~MainFrame()
{
    ctx_.calls.enterNormalMode = nullptr;
    ctx_.calls.enterEmcMode = nullptr;
    ctx_.attachFrame(nullptr);
    if (busyCursor)
        QApplication::restoreOverrideCursor();
}

void MainFrame::buildToolBar()
{
    auto *bar = addToolBar(QStringLiteral("Tools"));
    bar->setObjectName(QStringLiteral("toolBar"));
    bar->setMovable(false);
    ckrm_ = checkBox("ckrm", QStringLiteral("RM"), bar);
    ckauto_ = checkBox("ckauto", QStringLiteral("Auto"), bar);
    auto *command6 = new QPushButton(QStringLiteral("Toolbox"), bar);
    command6->setObjectName(QStringLiteral("Command6"));
    picture1_ = new QLabel(bar);
    picture1_->setObjectName(QStringLiteral("Picture1"));
    picture1_->setPixmap(pictureOfSpectrum());
    picture1_->installEventFilter(this);
    auto *spacer = new QWidget(bar);
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);

    bar->addWidget(ckrm_);
    bar->addWidget(ckauto_);
    // Hidden through its action: a widget in a tool bar is shown and hidden by the action that holds it.
    toolboxAction_ = bar->addWidget(command6);
    toolboxAction_->setVisible(false);
    bar->addWidget(spacer);
    bar->addWidget(picture1_);

    connect(ckrm_, &QCheckBox::clicked, this, &MainFrame::remoteClicked);
    connect(ckauto_, &QCheckBox::clicked, this, &MainFrame::autoClicked);
    connect(command6, &QPushButton::clicked, this, &MainFrame::toolboxClicked);
}

void MainFrame::buildMenu()
{
    const auto menu = [this](const char *name, const QString &caption) {
        QMenu *m = menuBar()->addMenu(caption);
        m->setObjectName(QLatin1String(name));
        return m;
    };
    const auto item = [this](QMenu *parent, const char *name, const QString &caption, auto slot) {
        QAction *action = parent->addAction(caption);
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    QMenu *data = menu("mnuKonfiguration", QStringLiteral("&Data"));
    item(data, "mnuBeenden", QStringLiteral("E&xit"), &MainFrame::exitClicked);
    QMenu *settings = menu("settings", QStringLiteral("&Settings"));
    item(settings, "mnuconf", QStringLiteral("&Configuration"), &MainFrame::configurationClicked);
}

void MainFrame::buildTimers()
{
    // Their ticks get their duties with reading, scanning and the unsolicited input.
    const int intervals[] = {1000, 10, 20, 1000};
    for (int i = 0; i < 4; ++i) {
        auto *timer = new QTimer(this);
        timer->setObjectName(QStringLiteral("Timer%1").arg(i + 1));
        timer->setInterval(intervals[i]);
        if (i == 0 || i == 3)
            timer->start();
        if (i == 3)
            timer4_ = timer;
    }
}

void MainFrame::setCaption(const QString &text)
{
    FrameControls::setCaption(text);
    setWindowTitle(text);
}

void MainFrame::setRemoteChecked(bool on)
{
    FrameControls::setRemoteChecked(on);
    ckrm_->setChecked(on);
}

void MainFrame::setAutoChecked(bool on)
{
    FrameControls::setAutoChecked(on);
    ckauto_->setChecked(on);
}

void MainFrame::setToolboxVisible(bool on)
{
    FrameControls::setToolboxVisible(on);
    toolboxAction_->setVisible(on);
}

void MainFrame::setTimer4Enabled(bool on)
{
    FrameControls::setTimer4Enabled(on);
    if (on)
        timer4_->start();
    else
        timer4_->stop();
}

void MainFrame::setBusyCursor(bool on)
{
    // The pointer is set once however often the busy state is entered.
    if (on && !busyCursor)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else if (!on && busyCursor)
        QApplication::restoreOverrideCursor();
    FrameControls::setBusyCursor(on);
}

void MainFrame::setMonitorLabel(MonitorLabel label, const QString &text)
{
    FrameControls::setMonitorLabel(label, text);
    if (!tr_) {
        tr_ = new TrForm;
        mdi_->addSubWindow(tr_)->show();
    }
    tr_->showText(label, text);
}

void MainFrame::closeBoxcom()
{
    if (boxcom_)
        boxcom_->close();
}

void MainFrame::enterNormalMode()
{
    ctx_.state.emcMode = 0;
    clearTraces(ctx_);
}

void MainFrame::enterEmcMode()
{
    ctx_.state.emcMode = 1;
    clearTraces(ctx_);
}

void MainFrame::closeEvent(QCloseEvent *event)
{
    if (!unloaded_) {
        unloaded_ = true;
        unloadMainFrame(ctx_);
    }
    event->accept();
}

bool MainFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == picture1_ && event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() == Qt::LeftButton && picture1_->rect().contains(mouse->position().toPoint()))
            pictureClicked();
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainFrame::remoteClicked(bool checked)
{
    FrameControls::setRemoteChecked(checked);
    if (checked)
        connectUnit(ctx_);
    else
        goLocal(ctx_);
    setRemoteChecked(ctx_.state.online == 1);
}

void MainFrame::autoClicked(bool checked)
{
    AppState &s = ctx_.state;
    FrameControls::setAutoChecked(checked);
    if (checked) {
        if (s.online == 0)
            connectUnit(ctx_);
        // A failed connect has cleared the box meanwhile; automatic reading is switched on all the same.
        s.autoReading = 1;
    } else {
        s.autoReading = 0;
    }
    if (s.triggerOn == 1) {
        s.autoReading = 0;
        setAutoChecked(false);
    }
}

void MainFrame::toolboxClicked()
{
    ctx_.state.autoReading = 0;
    setAutoChecked(false);
}

void MainFrame::pictureClicked()
{
    if (++ctx_.state.debugClickCount < kHiddenSetupClicks)
        return;
    ctx_.state.debugClickCount = 0;
    runHiddenSetup(ctx_);
}

void MainFrame::exitClicked()
{
    if (ctx_.state.online == 1)
        goLocal(ctx_);
    close();
}

void MainFrame::configurationClicked()
{
    if (ctx_.state.busy == 1)
        return;
    if (!boxcom_)
        boxcom_ = new BoxcomForm(ctx_, this);
    boxcom_->show();
    boxcom_->raise();
}

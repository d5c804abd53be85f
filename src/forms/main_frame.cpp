#include "forms/main_frame.h"

#include "chart/comparison_command.h"
#include "forms/app.h"
#include "forms/autost.h"
#include "forms/boxcom.h"
#include "forms/colordef.h"
#include "forms/delconf.h"
#include "forms/grafik.h"
#include "forms/grafik_components.h"
#include "forms/grafik_configurations.h"
#include "forms/grafik_equipment.h"
#include "forms/grafik_limits.h"
#include "forms/levelmeter.h"
#include "forms/loadset.h"
#include "forms/newconf.h"
#include "forms/notesfrm.h"
#include "forms/printe.h"
#include "forms/run_controls_view.h"
#include "forms/saveset.h"
#include "forms/setprn.h"
#include "forms/setsingle.h"
#include "forms/tr.h"
#include "link/commands.h"
#include "link/discovery.h"
#include "link/serial_link.h"
#include "signal/trace_store.h"
#include "store/database.h"
#include "store/measurement_csv.h"
#include "store/measurement_file.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QToolBar>
#include <QUrl>

#include <cmath>

namespace {

constexpr int kHiddenSetupClicks = 5;

QPixmap pictureOfTrace()
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

const QString kSelectMeasurement = QStringLiteral("Select Measurement");
constexpr int kOpenMeasurementFlags = 6148; // path and file must exist, hide read-only
constexpr int kSaveMeasurementFlags = 8198; // overwrite prompt, hide read-only, create prompt
constexpr int kTwipsPerPixel = 15;
constexpr int kGrafikMinWidth = 10215; // twips
constexpr int kGrafikMinHeight = 8050;

bool isDefaultGeometry(const FormGeometry &g)
{
    const FormGeometry fresh;
    return g.grafikLeft == fresh.grafikLeft && g.grafikTop == fresh.grafikTop && g.grafikWidth == fresh.grafikWidth
           && g.grafikHeight == fresh.grafikHeight && g.grafikWindowState == fresh.grafikWindowState;
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
    resize(1100, 760);
    ctx_.attachFrame(this);
    runControls_ = std::make_unique<RunControlsView>(*this);
    ctx_.attachRunControls(runControls_.get());
    ctx_.calls.enterNormalMode = [this] { enterNormalMode(); };
    ctx_.calls.enterEmcMode = [this] { enterEmcMode(); };
    ctx_.calls.paintChart = [this] { paintChart(); };
}

MainFrame::~MainFrame()
{
    ctx_.calls.enterNormalMode = nullptr;
    ctx_.calls.enterEmcMode = nullptr;
    ctx_.calls.paintChart = nullptr;
    ctx_.attachFrame(nullptr);
    ctx_.attachRunControls(nullptr);
    if (busyCursor)
        QApplication::restoreOverrideCursor();
}

void MainFrame::buildToolBar()
{
    auto *bar = toolBar_ = addToolBar(QStringLiteral("Tools"));
    bar->setObjectName(QStringLiteral("toolBar"));
    bar->setMovable(false);
    ckrm_ = checkBox("ckrm", QStringLiteral("RM"), bar);
    ckauto_ = checkBox("ckauto", QStringLiteral("Auto"), bar);
    bar->addWidget(ckrm_);
    bar->addWidget(ckauto_);
    const auto command = [this, bar](const char *name, const QString &caption, auto slot) {
        auto *button = new QPushButton(caption, bar);
        button->setObjectName(QLatin1String(name));
        connect(button, &QPushButton::clicked, this, slot);
        return bar->addWidget(button);
    };
    command("Command2", QStringLiteral("Read"), &MainFrame::readClicked);
    command("Command3", QStringLiteral("Set/Read"), &MainFrame::setReadClicked);
    command("Command4", QStringLiteral("Erase"), &MainFrame::eraseClicked);
    command("Command7", QStringLiteral("Refresh Chart"), &MainFrame::refreshChartClicked);
    command("Command1", QStringLiteral("Print"), &MainFrame::openSetprn);
    command("Command5", QStringLiteral("Notes"), [this] { (new NotesForm(ctx_, this))->show(); });
    // Hidden through its action: a widget in a tool bar is shown and hidden by the action that holds it.
    toolboxAction_ = command("Command6", QStringLiteral("Toolbox"), &MainFrame::toolboxClicked);
    toolboxAction_->setVisible(false);
    auto *spacer = new QWidget(bar);
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(spacer);
    picture1_ = new QLabel(bar);
    picture1_->setObjectName(QStringLiteral("Picture1"));
    picture1_->setPixmap(pictureOfTrace());
    picture1_->installEventFilter(this);
    bar->addWidget(picture1_);

    connect(ckrm_, &QCheckBox::clicked, this, &MainFrame::remoteClicked);
    connect(ckauto_, &QCheckBox::clicked, this, &MainFrame::autoClicked);
}

void MainFrame::buildMenu()
{
    // Menus carry their name on the menu and on the action that opens it.
    const auto menu = [](auto *parent, const char *name, const QString &caption) {
        QMenu *m = parent->addMenu(caption);
        m->setObjectName(QLatin1String(name));
        m->menuAction()->setObjectName(QLatin1String(name));
        return m;
    };
    const auto named = [](QMenu *parent, const char *name, const QString &caption) {
        QAction *action = parent->addAction(caption);
        action->setObjectName(QLatin1String(name));
        return action;
    };
    const auto item = [this, named](QMenu *parent, const char *name, const QString &caption, auto slot) {
        QAction *action = named(parent, name, caption);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };

    QMenu *data = menu(menuBar(), "mnuKonfiguration", QStringLiteral("&Data"));
    QMenu *load = menu(data, "mnuload", QStringLiteral("&Load"));
    item(load, "mnulsettings", QStringLiteral("&Settings"), &MainFrame::openLoadset);
    item(load, "mnulmeasure", QStringLiteral("&Measurements"), &MainFrame::loadMeasurementClicked);
    mnusave_ = menu(data, "mnusave", QStringLiteral("&Save"));
    item(mnusave_, "mnussettings", QStringLiteral("&Settings"), &MainFrame::openSaveset);
    item(mnusave_, "mnusmeasurement", QStringLiteral("&Measurement"), &MainFrame::saveMeasurementClicked);
    item(data, "mnuexportcsv", QStringLiteral("Export &CSV..."), [this] { exportCsvCommand(ctx_); });
    // A second stored file over the chart; "End comparison" is there only while one is compared.
    const auto comparison = [this](void (*command)(Context &)) {
        return [this, command] {
            command(ctx_);
            action("mnucompareend")->setEnabled(!ctx_.state.chart.comparePath.isEmpty());
        };
    };
    item(data, "mnucompare", QStringLiteral("&Compare with..."), comparison(compareWithCommand));
    item(data, "mnucompareend", QStringLiteral("E&nd comparison"), comparison(endComparisonCommand))->setEnabled(false);
    item(data, "mnuprint", QStringLiteral("&Print"), &MainFrame::openSetprn);
    // The dialogs of the equipment catalogue; the editors on the chart's equipment tab reload after them.
    QMenu *equipment = menu(data, "mnuequipment", QStringLiteral("&Equipment"));
    const auto editor = [this](auto open) {
        return [this, open] {
            if (grafik_)
                open(*grafik_->equipment());
        };
    };
    item(equipment, "mnunewlim", QStringLiteral("&New limit definition..."),
         editor([](GrafikEquipment &e) { e.limits()->openNewDialog(); }));
    item(equipment, "mnudellim", QStringLiteral("&Delete limit definition..."),
         editor([](GrafikEquipment &e) { e.limits()->openDeleteDialog(); }));
    item(equipment, "mnunewlos", QStringLiteral("New &Loss/Gain component..."),
         editor([](GrafikEquipment &e) { e.components()->openNewDialog(); }));
    item(equipment, "mnudellos", QStringLiteral("D&elete Loss/Gain component..."),
         editor([](GrafikEquipment &e) { e.components()->openDeleteDialog(); }));
    item(data, "mnuprsetup", QStringLiteral("Prin&ter setup"), &MainFrame::printerSetupClicked);
    item(data, "mnuseldata", QStringLiteral("D&atabase selection"), &MainFrame::databaseSelectionClicked);
    item(data, "mnuBeenden", QStringLiteral("E&xit"), &MainFrame::exitClicked);

    QMenu *settings = menu(menuBar(), "settings", QStringLiteral("&Settings"));
    item(settings, "mnuconf", QStringLiteral("&Configuration"), &MainFrame::configurationClicked);
    const auto reloadConfigurations = [this] {
        if (grafik_)
            grafik_->equipment()->configurations()->reload();
    };
    item(settings, "mnunewconf", QStringLiteral("&New workplace configuration"),
         [this, reloadConfigurations] { (new NewconfForm(ctx_, reloadConfigurations, this))->show(); });
    item(settings, "mnudelconf", QStringLiteral("&Delete workplace configuration"),
         [this, reloadConfigurations] { (new DelconfForm(ctx_, reloadConfigurations, this))->show(); });
    item(settings, "mnucolor", QStringLiteral("Color &definition"), [this] {
        auto *colordef = findChild<ColordefForm *>();
        if (!colordef)
            colordef = new ColordefForm(ctx_, this);
        colordef->show();
        colordef->raise();
    });
    // The check follows the window: closing it by its own frame clears the check too.
    auto *levelmeter = new LevelmeterForm(ctx_, this);
    item(settings, "mnulevelmeter", QStringLiteral("&View Levelmeter"), [levelmeter](bool checked) {
        if (checked)
            levelmeter->load();
        else
            levelmeter->close();
    })->setCheckable(true);
    connect(levelmeter, &LevelmeterForm::closed, this, [this] { action("mnulevelmeter")->setChecked(false); });
    QMenu *mode = menu(settings, "mnumode", QStringLiteral("&Mode"));
    item(mode, "mnunormal", QStringLiteral("&Normal"), &MainFrame::normalModeClicked)->setCheckable(true);
    item(mode, "mnuemc", QStringLiteral("&EMC"), &MainFrame::emcModeClicked)->setCheckable(true);
    item(settings, "mnuautostore", QStringLiteral("&Autostore"), &MainFrame::autostoreClicked);

    QMenu *help = menu(menuBar(), "mnuhlp", QStringLiteral("&Help"));
    QMenu *manuals = menu(help, "mnuhelp", QStringLiteral("&Help"));
    item(manuals, "mnuhlp_deu", QStringLiteral("&Handbuch (Deutsch - PDF)"),
         [this] { manualClicked(QStringLiteral("delfor_d.pdf")); });
    item(manuals, "mnuhlp_eng", QStringLiteral("&Manual (English - PDF)"),
         [this] { manualClicked(QStringLiteral("delfor_e.pdf")); });
    item(help, "mnuabout", QStringLiteral("&About/Support"), &MainFrame::aboutClicked);
}

void MainFrame::buildTimers()
{
    // Intervals of the form; nothing changes them. Timer2 is the stepped scan's and Timer3 is
    // never enabled.
    const int intervals[] = {1000, 10, 20, 1000};
    void (MainFrame::*ticks[])() = {&MainFrame::timer1Tick, &MainFrame::timer2Tick, &MainFrame::timer3Tick,
                                    &MainFrame::timer4Tick};
    for (int i = 0; i < 4; ++i) {
        auto *timer = new QTimer(this);
        timer->setObjectName(QStringLiteral("Timer%1").arg(i + 1));
        timer->setInterval(intervals[i]);
        connect(timer, &QTimer::timeout, this, ticks[i]);
        timers_[i] = timer;
    }
    timers_[0]->start();
    timers_[3]->start();
}

void MainFrame::timer1Tick()
{
    AppState &s = ctx_.state;
    if (s.autoReading == 1)
        readTraces(ctx_);
    if (s.autostoreOn == 1 && s.autoReading == 1) {
        const QDateTime now = ctx_.clock.now();
        if (!s.autostoreNextTime.isValid() || s.autostoreNextTime.secsTo(now) >= 0) {
            // Set first, so that the form shows the next time when it has stored.
            s.autostoreNextTime = now.addSecs(s.autostoreInterval);
            call(ctx_.calls.autostoreNow);
        }
    }
    // The one place where a requested repaint happens: many requests in a tick make one paint.
    if (s.repaintRequest == 1) {
        paintChart();
        s.repaintRequest = 0;
    }
}

void MainFrame::timer2Tick()
{
    timers_[1]->stop();
    ctx_.state.repaintRequest = 0;
    call(ctx_.calls.steppedScanStep);
}

void MainFrame::timer3Tick() { ++ctx_.state.timer3Ticks; }

void MainFrame::timer4Tick()
{
    AppState &s = ctx_.state;
    if (!ctx_.port.isOpen() || s.emcRunActive != 0 || ctx_.port.bytesWaiting() <= 0)
        return;
    setTimer4Enabled(false);
    QByteArray input;
    while (ctx_.port.bytesWaiting() > 0)
        input += ctx_.port.readByte();
    // The print key of the analyser: read the unit and print at once.
    if (input.contains("PR")) {
        if (s.emcMode != 0)
            enterNormalMode();
        if (s.online == 0)
            connectUnit(ctx_);
        readAllSettings(ctx_);
        readTraces(ctx_);
        call(ctx_.calls.printNow);
        goLocal(ctx_);
    }
    // The analyser left remote by its own key; it is told nothing. Automatic reading ends with
    // the link, so that a later RM does not find Timer1 still reading.
    if (input.contains("LO")) {
        s.autoReadOn = 0;
        s.autoReading = 0;
        s.online = 0;
        setRemoteChecked(false);
        setAutoChecked(false);
        setCaption(offlineCaption());
    }
    setTimer4Enabled(true);
}

void MainFrame::showGrafik()
{
    if (!grafik_) {
        grafik_ = new GrafikForm(ctx_);
        grafik_->painter().hooks.refreshLevelmeter = [this] { findChild<LevelmeterForm *>()->refresh(); };
        grafik_->painter().hooks.refreshPreview = [this] {
            if (auto *printe = findChild<PrinteForm *>(); printe && ctx_.state.previewOpen == 1)
                printe->refresh();
        };
        grafikWindow_ = mdi_->addSubWindow(grafik_);
        const FormGeometry &g = ctx_.state.geometry;
        grafikWindow_->setGeometry(g.grafikLeft / kTwipsPerPixel, g.grafikTop / kTwipsPerPixel,
                                   qMax<int>(g.grafikWidth, kGrafikMinWidth) / kTwipsPerPixel,
                                   qMax<int>(g.grafikHeight, kGrafikMinHeight) / kTwipsPerPixel);
        // Until a window was kept in setting.def the chart takes the whole frame.
        if (g.grafikWindowState == 2 || isDefaultGeometry(g))
            grafikWindow_->showMaximized();
    }
    grafikWindow_->show();
}

// The form is gone with all it showed; the next mode entry loads it anew from the stored geometry.
void MainFrame::unloadGrafik()
{
    delete grafikWindow_;
    grafikWindow_ = nullptr;
    grafik_ = nullptr;
}

void MainFrame::applyModeControls(bool emc)
{
    action("mnunormal")->setChecked(!emc);
    action("mnuemc")->setChecked(emc);
    tool("Command6")->setEnabled(!emc);
    mnusave_->menuAction()->setEnabled(!emc);
    action("mnulsettings")->setEnabled(!emc);
    for (const char *name : {"ckauto", "Command2", "Command3", "Command4"})
        tool(name)->setEnabled(!emc);
    action("mnulevelmeter")->setEnabled(emc);
    grafik_->applyMode(emc);
}

QAction *MainFrame::action(const char *name) const
{
    return findChild<QAction *>(QLatin1String(name));
}

QWidget *MainFrame::tool(const char *name) const
{
    // grafik has controls of the same names; the tool bar's are meant here.
    return toolBar_->findChild<QWidget *>(QLatin1String(name));
}

void MainFrame::enterNormalMode()
{
    AppState &s = ctx_.state;
    s.emcMode = 0;
    showGrafik();
    applyModeControls(false);
    call(ctx_.calls.clearTraces);
    s.viewSample = 1;
    s.viewMaxhold = s.viewAverage = s.viewMemoryB = s.viewMemoryAB = s.viewQPeak = 0;
    call(ctx_.calls.refreshConfiguration);
    call(ctx_.calls.refreshUnits);
    call(ctx_.calls.refreshLimits);
    s.emcRunActive = 0;
    findChild<LevelmeterForm *>()->close();
    action("mnulevelmeter")->setChecked(false);
    s.chart.zoomOn = false;
    paintChart();
}

void MainFrame::enterEmcMode()
{
    ctx_.state.emcMode = 1;
    showGrafik();
    applyModeControls(true);
    call(ctx_.calls.clearTraces);
    call(ctx_.calls.applyEmcTest);
    paintChart();
}

void MainFrame::paintChart()
{
    if (grafik_)
        grafik_->paintChart();
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

void MainFrame::setUncalVisible(bool on)
{
    FrameControls::setUncalVisible(on);
    if (grafik_)
        grafik_->setUncalVisible(on);
}

void MainFrame::setTimer4Enabled(bool on)
{
    FrameControls::setTimer4Enabled(on);
    if (on)
        timers_[3]->start();
    else
        timers_[3]->stop();
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

void MainFrame::takeFormGeometry(FormGeometry &g)
{
    // A closed level meter would come up with the fields as they are: they stay.
    if (const LevelmeterForm *levelmeter = findChild<LevelmeterForm *>(); levelmeter->isOpen())
        levelmeter->takeGeometry(g);
    if (!grafikWindow_ || !grafikWindow_->isVisible())
        return;
    g.grafikWindowState = grafikWindow_->isMaximized() ? 2 : grafikWindow_->isMinimized() ? 1 : 0;
    // A minimised or maximised form keeps the place it had last as a normal window.
    if (g.grafikWindowState != 0)
        return;
    const QRect r = grafikWindow_->geometry();
    // A window left of or above the screen keeps its negative place.
    const auto twips = [](int pixels) { return qint16(qBound(-32768, pixels * kTwipsPerPixel, 32767)); };
    g.grafikLeft = twips(r.x());
    g.grafikTop = twips(r.y());
    g.grafikWidth = twips(r.width());
    g.grafikHeight = twips(r.height());
}

void MainFrame::closeEvent(QCloseEvent *event)
{
    ctx_.state.triggerOn = 0; // a trigger watch in its wait loop ends with the program
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

void MainFrame::readClicked()
{
    if (ctx_.state.online == 0)
        connectUnit(ctx_);
    readAllSettings(ctx_);
    readTraces(ctx_);
}

void MainFrame::setReadClicked()
{
    if (ctx_.state.online == 0)
        connectUnit(ctx_);
    sendAllSettings(ctx_);
    readAllSettings(ctx_);
    readTraces(ctx_);
}

void MainFrame::eraseClicked() { call(ctx_.calls.clearTraces); }

void MainFrame::refreshChartClicked()
{
    if (ctx_.state.emcMode != 0) {
        if (ctx_.state.emcRunActive == 0)
            ctx_.state.repaintRequest = 1;
        return;
    }
    readClicked();
    action("mnusmeasurement")->setEnabled(true);
}

void MainFrame::toolboxClicked()
{
    ctx_.state.autoReading = 0;
    setAutoChecked(false);
    showDialog<SetsingleForm>();
}

// The normal mode's view, without the rest of a mode change, and the form autost.
void MainFrame::autostoreClicked()
{
    AppState &s = ctx_.state;
    action("mnuemc")->setChecked(false);
    action("mnunormal")->setChecked(true);
    setUncalVisible(false);
    s.viewSample = 1;
    s.viewMaxhold = s.viewAverage = s.viewMemoryB = s.viewMemoryAB = s.viewQPeak = 0;
    call(ctx_.calls.refreshConfiguration);
    call(ctx_.calls.refreshUnits);
    call(ctx_.calls.refreshLimits);
    call(ctx_.calls.clearTraces);
    s.emcMode = 0;
    showDialog<AutostForm>();
    s.repaintRequest = 1;
}

template <typename Form> void MainFrame::showDialog()
{
    auto *form = findChild<Form *>();
    if (!form)
        form = new Form(ctx_, this);
    form->show();
    form->raise();
}

void MainFrame::pictureClicked()
{
    if (++ctx_.state.debugClickCount < kHiddenSetupClicks)
        return;
    ctx_.state.debugClickCount = 0;
    runHiddenSetup(ctx_);
}

void MainFrame::loadMeasurementClicked()
{
    AppState &s = ctx_.state;
    FileDialogRequest request;
    request.title = kSelectMeasurement;
    request.filter = QStringLiteral("Measurement (*.MES) |*.MES|EMC (*.emc) |*.emc");
    request.filterIndex = s.emcMode != 0 ? 2 : 1;
    rememberedExtension_ = rememberedExtension_.right(3);
    request.defaultExtension = rememberedExtension_;
    request.flags = kOpenMeasurementFlags;
    const std::optional<QString> chosen = ctx_.prompts.openFileDialog(request);
    if (chosen) {
        setBusy(ctx_);
        const QString previous = s.measurementFileName;
        s.measurementFileName = *chosen;
        if (ckrm_->isChecked())
            goLocal(ctx_);
        if (const QString refusal = readMeasurementFile(ctx_); !refusal.isEmpty()) {
            // The file is not shown: what was on display stays.
            s.measurementFileName = previous;
            ctx_.prompts.messageBox(kSelectMeasurement, refusal);
        } else {
            setCaption(kTitle + QStringLiteral("   File: ") + s.measurementFileName);
            action("mnusmeasurement")->setEnabled(false);
            s.repaintRequest = 1;
            call(ctx_.calls.refreshResults);
        }
    } else {
        // A cancel gets the same words as a file that is not there.
        ctx_.prompts.messageBox(kSelectMeasurement, QStringLiteral("File not found ( ")
                                                        + s.measurementFileName.trimmed() + QStringLiteral(" )"));
    }
    clearBusy(ctx_);
}

void MainFrame::saveMeasurementClicked()
{
    FileDialogRequest request;
    request.title = kSelectMeasurement;
    request.filter = QStringLiteral("Measurement (*.mes) |*.mes");
    // Lower case: file names are case sensitive here, and the load dialog looks for "*.mes".
    rememberedExtension_ = QStringLiteral("mes");
    request.defaultExtension = rememberedExtension_;
    request.flags = kSaveMeasurementFlags;
    const std::optional<QString> chosen = ctx_.prompts.saveFileDialog(request);
    if (!chosen)
        return;
    setBusy(ctx_);
    // A name without an extension gets one, whether or not the dialog added it.
    ctx_.state.measurementFileName = *chosen;
    if (QFileInfo(*chosen).suffix().isEmpty())
        ctx_.state.measurementFileName += QLatin1Char('.') + rememberedExtension_;
    if (const QString failure = saveTraceMeasurement(ctx_); !failure.isEmpty())
        ctx_.prompts.messageBox(kSelectMeasurement, failure);
    clearBusy(ctx_);
}

// The print dialog with its preview; one at a time.
void MainFrame::openSetprn()
{
    auto *setprn = findChild<SetprnForm *>();
    if (!setprn)
        setprn = new SetprnForm(ctx_, this);
    setprn->show();
    setprn->raise();
}

void MainFrame::printerSetupClicked()
{
    if (const std::optional<QString> chosen = ctx_.prompts.printerSetup(ctx_.state.printerName))
        ctx_.state.printerName = *chosen;
}

void MainFrame::databaseSelectionClicked()
{
    unloadGrafik();
    selectDatabase(ctx_);
    // The mode flips on every database selection.
    if (ctx_.state.emcMode > 0)
        enterNormalMode();
    else
        enterEmcMode();
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

void MainFrame::normalModeClicked()
{
    action("mnunormal")->setChecked(ctx_.state.emcMode == 0);
    if (ctx_.state.emcMode == 0)
        return;
    // On Yes loadset opens, and enters the mode when it unloads.
    if (ctx_.prompts.messageBox(QStringLiteral("Select Normal-Mode"), QStringLiteral("Do you want to load the settings"),
                                MsgButtons::YesNo)
        == MsgAnswer::Yes) {
        ctx_.state.modeSwitchSettingsPrompt = -1;
        openLoadset();
    } else {
        enterNormalMode();
    }
}

void MainFrame::emcModeClicked()
{
    action("mnuemc")->setChecked(ctx_.state.emcMode != 0);
    if (ctx_.state.emcMode != 0)
        return;
    // On Yes saveset opens, and enters the mode when it unloads.
    if (ctx_.prompts.messageBox(QStringLiteral("Select EMC-Mode"), QStringLiteral("Do you want to save the settings"),
                                MsgButtons::YesNo)
        == MsgAnswer::Yes) {
        ctx_.state.modeSwitchSettingsPrompt = -1;
        openSaveset();
    } else {
        enterEmcMode();
    }
}

void MainFrame::openSaveset() { (new SavesetForm(ctx_, this))->show(); }

void MainFrame::openLoadset() { (new LoadsetForm(ctx_, this))->show(); }

void MainFrame::manualClicked(const QString &fileName)
{
    setBusy(ctx_);
    const QString path = QCoreApplication::applicationDirPath() + QLatin1Char('/') + fileName;
    if (QFile::exists(path))
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    else
        ctx_.prompts.messageBox(QStringLiteral("Manual"), QStringLiteral("File not found ( ") + path
                                                              + QStringLiteral(" )"));
    clearBusy(ctx_);
}

void MainFrame::aboutClicked()
{
    ctx_.prompts.messageBox(QStringLiteral("About/Support"),
                            kTitle + QStringLiteral("\r\rRemote control, trace display and EMC pre-compliance "
                                                    "tests for the analysers K310-A, K320-A and K550-B."));
}

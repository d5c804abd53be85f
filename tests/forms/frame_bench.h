#pragma once
// The main frame on a simulated analyser: virtual time, scripted prompts, a temporary data folder.

#include "chart/image_canvas.h"
#include "forms/app.h"
#include "forms/main_frame.h"
#include "output/logic_wiring.h"
#include "signal/trace_store.h"
#include "support/sim_bench.h"

#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

struct FrameBench {
    explicit FrameBench(const QString &model = QStringLiteral("K320-A"),
                        std::optional<SimBench::DeviceBoxes> deviceBoxes = std::nullopt)
        : sim(model, QStringLiteral("1.40"), QTime(10, 0), deviceBoxes)
    {
        ctx().dataFolder = folder.path() + QStringLiteral("/delfor");
        Context &c = ctx();
        attachLogic(c);
        frame = std::make_unique<MainFrame>(c);
        frame->show();
        if (!QTest::qWaitForWindowExposed(frame.get()))
            qWarning("main frame not exposed");
    }

    // Start-up as the program runs it; the settings box of a first start is a plain box.
    void start() { loadMainFrame(ctx()); }

    template <typename T> T *find(const QString &name) const
    {
        T *found = frame->findChild<T *>(name);
        if (!found)
            qWarning("no control %s", qPrintable(name));
        return found;
    }
    // A control of the tool bar before one of the same name on a form (MDI.Command2, grafik.Command2).
    QWidget *control(const QString &name) const
    {
        QWidget *tool = frame->findChild<QWidget *>(QStringLiteral("toolBar"))->findChild<QWidget *>(name);
        return tool ? tool : find<QWidget>(name);
    }
    void click(const QString &name) const { QTest::mouseClick(control(name), Qt::LeftButton); }
    void trigger(const QString &name) const { find<QAction>(name)->trigger(); }

    Context &ctx() { return *sim.ctx; }
    AppState &state() { return sim.state(); }
    ScriptedPrompts &prompts() { return *sim.prompts; }
    QString settingsPath() const { return folder.path() + QStringLiteral("/delfor/setting.def"); }

    QTemporaryDir folder;
    SimBench sim;
    std::unique_ptr<MainFrame> frame;
};

// Pixels of a colour (0xBBGGRR) in an image of a canvas or a window.
inline int pixelsOf(const QImage &image, quint32 bgr)
{
    const QRgb wanted = bgrColour(bgr).rgb();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            count += (line[x] & 0xFFFFFF) == (wanted & 0xFFFFFF);
    }
    return count;
}

inline const QString kOffline = QStringLiteral("DELFOR - V3.00       Offline");

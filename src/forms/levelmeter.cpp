#include "forms/levelmeter.h"

#include "chart/level_meter.h"
#include "core/context.h"
#include "forms/grafik.h"

#include <QCloseEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int kTwipsPerPixel = 15;

qint16 twips(int pixels) { return qint16(qBound(-32768, pixels * kTwipsPerPixel, 32767)); }

} // namespace

LevelmeterForm::LevelmeterForm(Context &ctx, QWidget *parent)
    : QWidget(parent, Qt::Tool), ctx_(ctx), label1_(new QLabel(this)), graph_(new CanvasView("graph", ctx, this))
{
    setObjectName(QStringLiteral("levelmeter"));
    setWindowTitle(QStringLiteral("Levelmeter"));
    label1_->setObjectName(QStringLiteral("Label1"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label1_);
    layout->addWidget(graph_, 1);
    resize(420, 320);
}

void LevelmeterForm::load()
{
    const FormGeometry &g = ctx_.state.geometry;
    move(g.levelmeterLeft / kTwipsPerPixel, g.levelmeterTop / kTwipsPerPixel);
    if (g.levelmeterWindowState == 2)
        showMaximized();
    else if (g.levelmeterWindowState == 1)
        showMinimized();
    else
        showNormal();
    refresh();
}

void LevelmeterForm::refresh()
{
    if (!isOpen())
        return;
    if (const std::optional<QString> text = refreshLevelmeter(ctx_, graph_->canvas())) {
        label1_->setText(*text);
        graph_->update();
    }
}

void LevelmeterForm::takeGeometry(FormGeometry &g) const
{
    g.levelmeterWindowState = qint16(isMaximized() ? 2 : isMinimized() ? 1 : 0);
    if (g.levelmeterWindowState != 0)
        return;
    g.levelmeterLeft = twips(x());
    g.levelmeterTop = twips(y());
}

void LevelmeterForm::closeEvent(QCloseEvent *event)
{
    if (isOpen())
        takeGeometry(ctx_.state.geometry);
    event->accept();
    emit closed();
}

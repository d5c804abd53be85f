#include "forms/printe.h"

#include "core/context.h"
#include "output/page_canvas.h"
#include "output/report_painter.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int kTwipsPerPixel = 15;

} // namespace

PrinteForm::PrinteForm(Context &ctx, QWidget *parent) : QWidget(parent, Qt::Window), ctx_(ctx)
{
    setObjectName(QStringLiteral("printe"));
    setWindowTitle(QStringLiteral("Print Preview"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    picture1_ = new QLabel(this);
    picture1_->setObjectName(QStringLiteral("Picture1"));
    picture1_->setMinimumSize(1, 1);
    picture1_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    layout->addWidget(picture1_);
    setGeometry(1600 / kTwipsPerPixel, 1000 / kTwipsPerPixel, 8000 / kTwipsPerPixel, 5700 / kTwipsPerPixel);
    ctx_.state.previewOpen = 1;
}

PrinteForm::~PrinteForm() { ctx_.state.previewOpen = 0; }

void PrinteForm::refresh()
{
    const qreal ratio = devicePixelRatioF();
    picture_ = QImage(picture1_->size() * ratio, QImage::Format_RGB32);
    picture_.setDevicePixelRatio(ratio);
    picture_.fill(Qt::white);
    PageCanvas canvas(picture_);
    previewChart(ctx_, canvas);
    picture1_->setPixmap(QPixmap::fromImage(picture_));
}

void PrinteForm::closeEvent(QCloseEvent *event)
{
    ctx_.state.previewOpen = 0;
    QWidget::closeEvent(event);
}

void PrinteForm::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    refresh();
}

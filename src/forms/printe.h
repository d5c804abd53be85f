#pragma once
// The form printe, "Print Preview": the report's page as previewChart draws it, on a picture that
// fills the form. It is drawn anew when the form changes size and whenever the chart is painted.

#include <QImage>
#include <QWidget>

class Context;
class QLabel;

class PrinteForm : public QWidget {
    Q_OBJECT
public:
    explicit PrinteForm(Context &ctx, QWidget *parent = nullptr);
    ~PrinteForm() override;

    void refresh();
    // What the picture shows.
    const QImage &picture() const { return picture_; }

protected:
    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    Context &ctx_;
    QLabel *picture1_;
    QImage picture_;
};

#pragma once
// The form levelmeter: Label1 with the frequency of the row shown and the picture graph with a
// bar for each stored result under cursor A. It is loaded once and hidden when it closes.

#include <QWidget>

class CanvasView;
class Context;
class QLabel;
struct FormGeometry;

class LevelmeterForm : public QWidget {
    Q_OBJECT
public:
    explicit LevelmeterForm(Context &ctx, QWidget *parent = nullptr);

    // Shows the form at the place and in the state kept in setting.def, and draws the meter.
    void load();
    bool isOpen() const { return isVisible(); }
    // Draws the meter anew while the form is open.
    void refresh();
    // The form's window state and, in its normal state, its place, for setting.def.
    void takeGeometry(FormGeometry &geometry) const;

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    Context &ctx_;
    QLabel *label1_;
    CanvasView *graph_;
};

#pragma once
// What the limit tab and the loss/gain tab of the equipment area share: the name combo, the point
// grid with its two entry fields, the head's text fields, the three-picture preview, and the
// buttons that open the dialogs. The pages name their controls with their prefix ("lim", "LG").

#include "chart/curve_preview.h"
#include "chart/image_canvas.h"
#include "store/catalogue_csv.h"

#include <QWidget>
#include <array>
#include <functional>

class Context;
class DataView;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

// One picture of a preview: shows its canvas and asks for the graph again when its size changes.
class PreviewPicture : public QWidget {
    Q_OBJECT
public:
    PreviewPicture(const QString &name, QWidget *parent);
    ImageCanvas &canvas() { return canvas_; }
    std::function<void()> resized;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    ImageCanvas canvas_;
};

class CurvePage : public QWidget {
    Q_OBJECT
public:
    // Loads the editor from its views, as the tab changes of grafik ask.
    void reload();
    // After a dialog: the views read again, the definition of this name (when given) in the editor.
    void showDefinition(const QString &name);

protected:
    CurvePage(Context &ctx, const QString &prefix, DataView &heads, const char *nameColumn, QWidget *parent);

    // The editor's load; false when there is nothing to show.
    virtual bool reloadEditor() = 0;
    // fillLimitGrid / fillLossGainGrid and the preview drawn from the grid.
    virtual CurveGrid fillGrid() = 0;
    virtual void drawPreview(const CurveGrid &grid) = 0;
    virtual void enterPoint(const QString &frequency, const QString &level) = 0;
    virtual std::optional<CurveGridRow> findPoint(const QString &frequency) = 0;
    virtual bool deletePoint(const QString &frequency) = 0;
    virtual bool choose(const QString &name) = 0;
    virtual void saveHead(const QString &column, const QVariant &value) = 0;
    virtual void openNewDialog() = 0;
    virtual void openDeleteDialog() = 0;
    // The definition shown, to or from a CSV file.
    virtual CsvOutcome importCsv(const QString &name, const QString &path) = 0;
    virtual CsvOutcome exportCsv(const QString &name, const QString &path) = 0;

    // The grid filled and the preview drawn.
    void fill();
    // The buttons that all pages have, after the page's own.
    void addCommonButtons();
    // The head's name in the combo, the text fields from the head.
    void showHead(const QString &name, const QString &distance, const QString &memo, const QString &dat,
                  const QString &tim);
    PreviewPictures pictures();
    QLineEdit *text(int n) const { return texts_[n - 1]; }
    QLabel *distanceLabel() const { return distanceLabel_; }
    // Rows for the page's own controls, between the entry fields and the distance.
    QGridLayout *headLayout() const { return headLayout_; }
    int nextHeadRow() { return headRow_++; }
    QPushButton *addButton(const char *name, const QString &caption);
    // Opens a dialog once: a second request brings the open one to the front.
    template <typename Dialog> void openDialog(const char *name, const std::function<Dialog *()> &make);

    Context &ctx_;

private:
    void buildControls(const QString &prefix);
    void fillNameCombo();
    void nameChosen(const QString &name);
    // "Import CSV...": the points of the definition shown are replaced after a question.
    void importClicked();
    void exportClicked();
    void showGridPoint();
    void deleteGridPoint();
    bool eventFilter(QObject *watched, QEvent *event) override;

    QString prefix_;
    DataView &heads_;
    QString nameColumn_;
    QComboBox *name_ = nullptr;
    QTableWidget *grid_ = nullptr;
    std::array<QLineEdit *, 6> texts_{};
    QLabel *distanceLabel_ = nullptr;
    QGridLayout *headLayout_ = nullptr;
    int headRow_ = 0;
    QGridLayout *buttons_ = nullptr;
    std::array<PreviewPicture *, 3> pictures_{};
    bool loading_ = false;
};

template <typename Dialog> void CurvePage::openDialog(const char *name, const std::function<Dialog *()> &make)
{
    Dialog *dialog = window()->findChild<Dialog *>(QLatin1String(name), Qt::FindDirectChildrenOnly);
    if (!dialog)
        dialog = make();
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

#pragma once
// The tab "Results" of grafik: the result table of the stored EMC run shown (resultTable), with
// "All rows" (resultAll) for every row of the file and, while a file is compared, the difference
// column. A double click on a row puts cursor A on its frequency. It is filled anew when the tab
// comes to the front and, while it is shown, through the hook refreshResults (a file shown, a run
// ended, a comparison changed).

#include <QWidget>

class ChartCursors;
class Context;
class QCheckBox;
class QLabel;
class QTableWidget;

class GrafikResults : public QWidget {
    Q_OBJECT
public:
    GrafikResults(Context &ctx, ChartCursors &cursors, QWidget *parent = nullptr);
    ~GrafikResults() override;
    // The table of the stored EMC run shown, or the note that the table lists one.
    void refresh();

private:
    void rowDoubleClicked(int row);
    void sortByColumn(int column);
    void showNote(const QString &text);

    Context &ctx_;
    ChartCursors &cursors_;
    QLabel *note_;
    QCheckBox *all_;
    QTableWidget *table_;
};

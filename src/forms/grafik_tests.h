#pragma once
// The page fTest of grafik: the EMC test in the editor, every field written to its row at once,
// and the buttons New and Delete that open the dialogs newtest and deltest. It mirrors
// TestControls on screen, and the view boxes of the EMC frame where the form has them.

#include "core/test_controls.h"

#include <QWidget>

#include <array>

class Context;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDialog;
class QLineEdit;

class GrafikTests : public QWidget, public TestControls {
    Q_OBJECT
public:
    explicit GrafikTests(Context &ctx, QWidget *parent = nullptr);
    ~GrafikTests() override;
    // The lists anew from the catalogue, then the test on the current row.
    void reload();

    void setFieldText(TestField field, const QString &text) override;
    void setListText(TestList list, const QString &text) override;
    void setOption(TestOption group, int index) override;
    void setLimitReferenceEnabled(int index, bool on) override;
    void setSweepControlsEnabled(bool on) override;
    void setBoundValues(const TestBoundValues &values) override;
    void setEmcCheck(int number, bool on) override;
    void setEmcText1(const QString &text) override;

private:
    QWidget *buildLists();
    QWidget *buildRange();
    QWidget *buildAnalyser();
    QWidget *buildRun();
    // The radio buttons `name`_0, `name`_1, ... of an option array, in a row or a column.
    QWidget *optionGroup(TestOption group, const char *name, const QStringList &captions,
                         Qt::Orientation orientation = Qt::Horizontal);
    QLineEdit *numberField(TestField field, const char *name);
    QCheckBox *boundCheck(const char *name, const QString &caption);
    void boundChanged();
    // newtest or deltest, modal; the lists follow when it closes.
    void openDialog(QDialog *dialog);
    void reloadLists();

    Context &ctx_;
    std::array<QLineEdit *, kTestFields> fields_{};
    std::array<QComboBox *, kTestLists> lists_{};
    std::array<QButtonGroup *, kTestOptions> options_{};
    QLineEdit *text1_ = nullptr;
    std::array<QCheckBox *, 4> checks_{}; // testCheck1 .. testCheck4
};

#pragma once
// The dialog that adds a definition and copies one into another: newlim for limits, and its
// counterpart newlos for loss/gain components (newlos.h). "Add New" makes a head of the typed name
// (Text1); "Copy" merges the source (DBCombo1, green) into the destination (DBCombo2, red).

#include "core/app_state.h"
#include "store/curve_editor.h"

#include <QDialog>
#include <functional>

class Context;
class QComboBox;
class QLineEdit;

struct NewCurveForm {
    const char *formName;
    const char *title;
    CurveTables tables;
    const char *destinationSource; // Data2: the heads that may receive
    const char *sourceSource;      // Data3: the heads that may be copied
    QStringList copiedColumns;     // head columns a copy takes over
    QString AppState::*selectionName; // the destination last shown
    bool nameLimited;              // Text1 refuses keys beyond 80 characters
};

// Tells the editor to read its views again and to show the definition of this name (when given).
using DefinitionChanged = std::function<void(const QString &name)>;

class NewCurveDialog : public QDialog {
    Q_OBJECT
public:
    NewCurveDialog(Context &ctx, const NewCurveForm &form, DefinitionChanged changed, QWidget *parent);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addNewClicked();
    void copyClicked();
    // Both combos list their views and stand on the current rows.
    void showCombos();

    Context &ctx_;
    NewCurveForm form_;
    DefinitionChanged changed_;
    DataView data1_, data2_, data3_, data4_, data5_;
    QLineEdit *text1_;
    QComboBox *source_;      // DBCombo1 on Data3
    QComboBox *destination_; // DBCombo2 on Data2
};

NewCurveDialog *newlim(Context &ctx, QWidget *parent, DefinitionChanged changed);

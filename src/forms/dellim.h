#pragma once
// The dialog that deletes a definition with its points, without asking: dellim for limits, and
// dellos for loss/gain components (dellos.h).

#include "forms/newlim.h"

struct DeleteCurveForm {
    const char *formName;
    const char *title;
    CurveTables tables;
    const char *headSource; // Data2
    const char *tip;        // of Command1
};

class DeleteCurveDialog : public QDialog {
    Q_OBJECT
public:
    DeleteCurveDialog(Context &ctx, const DeleteCurveForm &form, DefinitionChanged changed, QWidget *parent);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void deleteClicked();
    void showCombo();

    Context &ctx_;
    DeleteCurveForm form_;
    DefinitionChanged changed_;
    DataView data1_, data2_;
    QComboBox *combo_; // DBCombo2 on Data2
};

DeleteCurveDialog *dellim(Context &ctx, QWidget *parent, DefinitionChanged changed);

#pragma once
// The limit tab of the equipment area: limGrid1, limText1..limText6, limCheck1, limCheck2,
// limDBCombo1, limDBCombo2 and the preview on limPicture1..limPicture3.

#include "forms/curve_page.h"

class QCheckBox;
class QComboBox;

class GrafikLimits : public CurvePage {
    Q_OBJECT
public:
    GrafikLimits(Context &ctx, QWidget *parent = nullptr);
    // The dialogs newlim and dellim, also opened from the main frame's menu.
    void openNewDialog() override;
    void openDeleteDialog() override;

protected:
    bool reloadEditor() override;
    CurveGrid fillGrid() override;
    void drawPreview(const CurveGrid &grid) override;
    void enterPoint(const QString &frequency, const QString &level) override;
    std::optional<CurveGridRow> findPoint(const QString &frequency) override;
    bool deletePoint(const QString &frequency) override;
    bool choose(const QString &name) override;
    void saveHead(const QString &column, const QVariant &value) override;
    CsvOutcome importCsv(const QString &name, const QString &path) override;
    CsvOutcome exportCsv(const QString &name, const QString &path) override;

private:
    void fillUnitCombo();

    QComboBox *unit_;
    QCheckBox *radiated_;
    QCheckBox *logarithmic_;
};

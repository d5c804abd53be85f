#pragma once
// The loss/gain tab of the equipment area: LGGrid1, LGText1..LGText6, lgOption1 (antenna, loss,
// gain), LGDBCombo1 and the preview on LGPicture1..LGPicture3.

#include "forms/curve_page.h"

class QRadioButton;

class GrafikComponents : public CurvePage {
    Q_OBJECT
public:
    GrafikComponents(Context &ctx, QWidget *parent = nullptr);
    // The dialogs newlos and dellos, also opened from the main frame's menu.
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
    // The distance belongs to an antenna only.
    void showDistance(int kind);

    std::array<QRadioButton *, 3> kind_{};
};

#include "forms/colordef.h"

#include "chart/colours.h"
#include "core/context.h"
#include "forms/qt_prompts.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace {

// The label beside a button has the button's number: Command5 and Label5.
QString labelName(const char *button) { return QString::fromLatin1(button).replace(QStringLiteral("Command"), QStringLiteral("Label")); }

void showColour(QLabel *label, quint32 colour)
{
    label->setStyleSheet(QStringLiteral("background-color: %1; border: 1px solid gray").arg(colourFromBgr(colour).name()));
}

} // namespace

ColordefForm::ColordefForm(Context &ctx, QWidget *parent) : QDialog(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("colordef"));
    setWindowTitle(QStringLiteral("Color definition"));
    auto *layout = new QHBoxLayout(this);
    for (bool printer : {false, true}) {
        auto *group = new QGroupBox(printer ? QStringLiteral("Printer") : QStringLiteral("Screen"), this);
        auto *grid = new QGridLayout(group);
        int row = 0;
        for (const ColourRow &colourRow : colourRows()) {
            const char *name = printer ? colourRow.printerButton : colourRow.screenButton;
            auto *button = new QPushButton(QLatin1String(colourRow.caption), group);
            button->setObjectName(QLatin1String(name));
            button->setAutoDefault(false);
            auto *label = new QLabel(group);
            label->setObjectName(labelName(name));
            label->setFixedSize(40, 20);
            grid->addWidget(button, row, 0);
            grid->addWidget(label, row++, 1);
            const ColourRole role = colourRow.role;
            connect(button, &QPushButton::clicked, this,
                    [this, label, role, printer] { showColour(label, chooseColour(ctx_, role, printer)); });
        }
        layout->addWidget(group);
    }
}

void ColordefForm::showEvent(QShowEvent *event)
{
    for (const ColourRow &row : colourRows()) {
        showColour(findChild<QLabel *>(labelName(row.screenButton)), ctx_.state.screenColours[row.role]);
        showColour(findChild<QLabel *>(labelName(row.printerButton)), ctx_.state.printColours[row.role]);
    }
    QDialog::showEvent(event);
}

#include "forms/boxcom.h"

#include "link/discovery.h"
#include "link/port_selector.h"
#include "link/qt_serial_port.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

QRadioButton *option(const QString &name, const QString &caption, QWidget *parent)
{
    auto *button = new QRadioButton(caption, parent);
    button->setObjectName(name);
    return button;
}

QPushButton *button(const char *name, const QString &caption, QWidget *parent)
{
    auto *b = new QPushButton(caption, parent);
    b->setObjectName(QLatin1String(name));
    b->setAutoDefault(false);
    return b;
}

} // namespace

BoxcomForm::BoxcomForm(Context &ctx, QWidget *parent) : QDialog(parent), ctx_(ctx)
{
    setObjectName(QStringLiteral("boxcom"));
    setWindowTitle(QStringLiteral("Serial port setup"));
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(true);

    auto *ok = button("cbok", QStringLiteral("&Ok"), this);
    auto *exit = button("cbabbruch", QStringLiteral("E&xit"), this);
    auto *search = button("Command1", QStringLiteral("Autosearch"), this);
    search->setToolTip(QStringLiteral("Search the connected analyser"));
    connect(ok, &QPushButton::clicked, this, &BoxcomForm::okClicked);
    connect(exit, &QPushButton::clicked, this, &QWidget::close);
    connect(search, &QPushButton::clicked, this, &BoxcomForm::autosearchClicked);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(search);
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(exit);
    auto *groups = new QHBoxLayout;
    groups->addWidget(buildBaudGroup());
    groups->addWidget(buildPortGroup(), 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(groups);
    layout->addLayout(buttons);
}

QWidget *BoxcomForm::buildBaudGroup()
{
    auto *group = new QGroupBox(QStringLiteral("Baud"), this);
    auto *layout = new QVBoxLayout(group);
    for (int i = 0; i < int(std::size(kBaudRates)); ++i) {
        baud_.append(option(QStringLiteral("baud%1").arg(i + 1), QString::number(kBaudRates[i]), group));
        baud_.last()->setChecked(kBaudRates[i] == ctx_.state.baudRate);
        layout->addWidget(baud_.last());
    }
    layout->addStretch();
    return group;
}

QWidget *BoxcomForm::buildPortGroup()
{
    auto *group = new QGroupBox(QStringLiteral("Port"), this);
    auto *grid = new QGridLayout(group);
    const QStringList paths = loadDevicePaths();
    port_.append(option(QStringLiteral("port0"), QStringLiteral("Simulator"), group));
    for (int i = 1; i <= 4; ++i) {
        port_.append(option(QStringLiteral("port%1").arg(i), QStringLiteral("Com%1").arg(i), group));
        portPath_.append(new QLineEdit(paths.value(i - 1), group));
        portPath_.last()->setObjectName(QStringLiteral("portPath%1").arg(i));
        grid->addWidget(port_.last(), i - 1, 0);
        grid->addWidget(portPath_.last(), i - 1, 1);
    }
    grid->addWidget(port_.first(), 4, 0, 1, 2);
    // A port number outside the list (5 after a search that found nothing) selects no option.
    if (ctx_.state.comPort >= 0 && ctx_.state.comPort < port_.size())
        port_[ctx_.state.comPort]->setChecked(true);
    return group;
}

// The checked options replace `baudRate` and `comPort`; with none checked they stay as they are.
void BoxcomForm::takeOptions()
{
    for (int i = 0; i < baud_.size(); ++i)
        if (baud_[i]->isChecked())
            ctx_.state.baudRate = kBaudRates[i];
    for (int i = 0; i < port_.size(); ++i)
        if (port_[i]->isChecked())
            ctx_.state.comPort = qint16(i);
}

// The typed device paths are kept for the next start and take effect on the next open.
void BoxcomForm::applyDevicePaths()
{
    QStringList paths;
    for (const QLineEdit *path : portPath_)
        paths.append(path->text().trimmed());
    saveDevicePaths(paths);
    if (auto *selector = dynamic_cast<PortSelector *>(&ctx_.port))
        selector->real().setDevicePaths(paths);
}

void BoxcomForm::okClicked()
{
    AppState &s = ctx_.state;
    if (ctx_.port.isOpen() && s.online == 1) {
        goLocal(ctx_);
        s.online = 0;
    }
    setBusy(ctx_);
    takeOptions();
    applyDevicePaths();
    connectUnit(ctx_);
    close();
}

void BoxcomForm::autosearchClicked()
{
    applyDevicePaths();
    autosearchUnit(ctx_); // closes this form when it finds the unit
}

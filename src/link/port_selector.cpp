#include "link/port_selector.h"

PortSelector::PortSelector(std::unique_ptr<SerialPort> simulated, std::unique_ptr<QtSerialPort> real)
    : simulated_(std::move(simulated)), real_(std::move(real))
{
}

void PortSelector::setPortNumber(int number)
{
    if ((number == 0) != (number_ == 0))
        active().close();
    number_ = number;
    active().setPortNumber(number);
}

bool PortSelector::setSettings(const QString &settings)
{
    const bool simulatedTakes = simulated_->setSettings(settings);
    const bool realTakes = real_->setSettings(settings);
    return number_ == 0 ? simulatedTakes : realTakes;
}

#include "link/qt_serial_port.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QSettings>
#include <QThread>

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

// Handing one byte to the driver takes no time unless the line is stuck; this bounds that case.
constexpr int kWriteLimitMs = 1000;

QString pathKey(int index)
{
    return QStringLiteral("serial/com%1").arg(index + 1);
}

} // namespace

QStringList defaultDevicePaths()
{
    return {QStringLiteral("/dev/ttyUSB0"), QStringLiteral("/dev/ttyUSB1"), QStringLiteral("/dev/ttyS0"),
            QStringLiteral("/dev/ttyS1")};
}

QStringList loadDevicePaths()
{
    QSettings settings(QStringLiteral("delfor"), QStringLiteral("delfor"));
    QStringList paths = defaultDevicePaths();
    for (int i = 0; i < paths.size(); ++i)
        paths[i] = settings.value(pathKey(i), paths[i]).toString();
    return paths;
}

void saveDevicePaths(const QStringList &paths)
{
    QSettings settings(QStringLiteral("delfor"), QStringLiteral("delfor"));
    for (int i = 0; i < paths.size(); ++i)
        settings.setValue(pathKey(i), paths[i]);
}

QtSerialPort::QtSerialPort() : paths_(defaultDevicePaths()) {}

bool QtSerialPort::setSettings(const QString &settings)
{
    static const QHash<QString, QSerialPort::Parity> parities = {
        {QStringLiteral("N"), QSerialPort::NoParity},   {QStringLiteral("E"), QSerialPort::EvenParity},
        {QStringLiteral("O"), QSerialPort::OddParity},  {QStringLiteral("M"), QSerialPort::MarkParity},
        {QStringLiteral("S"), QSerialPort::SpaceParity}};
    static const QHash<QString, QSerialPort::StopBits> stopBits = {{QStringLiteral("1"), QSerialPort::OneStop},
                                                                   {QStringLiteral("1.5"), QSerialPort::OneAndHalfStop},
                                                                   {QStringLiteral("2"), QSerialPort::TwoStop}};
    const QStringList parts = settings.split(QLatin1Char(','));
    if (parts.size() != 4)
        return false;
    bool rateOk = false, bitsOk = false;
    const qint32 rate = parts[0].trimmed().toInt(&rateOk);
    const int bits = parts[2].trimmed().toInt(&bitsOk);
    const QString parity = parts[1].trimmed().toUpper();
    const QString stop = parts[3].trimmed();
    if (!rateOk || rate <= 0 || !bitsOk || bits < 5 || bits > 8 || !parities.contains(parity) || !stopBits.contains(stop))
        return false;
    // Kept by the port while closed and applied when it opens; an open port takes them at once.
    return port_.setBaudRate(rate) && port_.setParity(parities[parity])
        && port_.setDataBits(QSerialPort::DataBits(bits)) && port_.setStopBits(stopBits[stop]);
}

bool QtSerialPort::open()
{
    close();
    const QString path = paths_.value(number_ - 1);
    if (path.isEmpty())
        return false;
    port_.setPortName(path);
    port_.setFlowControl(QSerialPort::NoFlowControl); // the handshake lines are left as they are
    return port_.open(QIODevice::ReadWrite);
}

void QtSerialPort::close()
{
    if (port_.isOpen())
        port_.close();
}

int QtSerialPort::bytesWaiting()
{
    if (!port_.isOpen())
        return 0;
    // Without an event loop nothing moves the driver's bytes into the port's buffer: look now.
    port_.waitForReadyRead(0);
    return int(std::min<qint64>(port_.bytesAvailable(), INT_MAX));
}

void QtSerialPort::discardInput()
{
    if (port_.isOpen())
        port_.clear(QSerialPort::Input); // the port's buffer and the driver's
}

void QtSerialPort::discardOutput()
{
    if (port_.isOpen())
        port_.clear(QSerialPort::Output);
}

bool QtSerialPort::writeByte(char byte)
{
    if (!port_.isOpen() || port_.write(&byte, 1) != 1)
        return false;
    // Without an event loop the byte would stay in the port's buffer: hand it to the driver now.
    return port_.bytesToWrite() == 0 || port_.waitForBytesWritten(kWriteLimitMs);
}

QByteArray QtSerialPort::readByte()
{
    if (bytesWaiting() == 0)
        return {};
    return port_.read(1);
}

void QtSerialPort::waitForInput(int count, double seconds)
{
    const double bounded = seconds > 0 ? std::min(seconds, 86400.0) : 0.0; // also a NaN gives no wait
    const QDeadlineTimer deadline(qint64(std::ceil(bounded * 1000.0)));
    while (port_.isOpen() && bytesWaiting() < count && !deadline.hasExpired()) {
        const int remaining = int(std::max<qint64>(1, deadline.remainingTime()));
        port_.clearError();
        if (port_.waitForReadyRead(remaining) || port_.error() == QSerialPort::TimeoutError)
            continue;
        // The device fails at once (unplugged, hung up): sleep the wait out rather than spin on it.
        QThread::msleep(ulong(remaining));
    }
}

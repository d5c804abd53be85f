#include "core/clock.h"

#include <QThread>

#include <cmath>

float SystemClock::secondsSinceMidnight()
{
    return float(QTime::currentTime().msecsSinceStartOfDay()) / 1000.0f;
}

QDateTime SystemClock::now()
{
    return QDateTime::currentDateTime();
}

double SystemClock::steadySeconds()
{
    return double(steady_.nsecsElapsed()) / 1e9;
}

QElapsedTimer SystemClock::started()
{
    QElapsedTimer timer;
    timer.start();
    return timer;
}

void SystemClock::sleep(double seconds)
{
    if (seconds > 0)
        QThread::usleep(static_cast<unsigned long>(seconds * 1e6));
}

VirtualClock::VirtualClock(QDateTime start) : start_(std::move(start)) {}

float VirtualClock::secondsSinceMidnight()
{
    const double since = start_.time().msecsSinceStartOfDay() / 1000.0 + elapsed_;
    return float(std::fmod(since, 86400.0));
}

QDateTime VirtualClock::now()
{
    return start_.addMSecs(qint64(elapsed_ * 1000.0));
}

void VirtualClock::sleep(double seconds)
{
    if (seconds > 0)
        elapsed_ += seconds;
}

#pragma once
#include "core/platform.h"

#include <QElapsedTimer>

// The machine's clock.
class SystemClock : public Clock {
public:
    float secondsSinceMidnight() override;
    QDateTime now() override;
    double steadySeconds() override;
    void sleep(double seconds) override;

private:
    QElapsedTimer steady_ = started();
    static QElapsedTimer started();
};

// A clock that runs only when the program waits, so long timeouts cost no real time.
class VirtualClock : public Clock {
public:
    explicit VirtualClock(QDateTime start = QDateTime(QDate(2026, 1, 5), QTime(10, 0)));
    float secondsSinceMidnight() override;
    QDateTime now() override;
    double steadySeconds() override { return elapsed_; }
    void sleep(double seconds) override;

private:
    QDateTime start_;
    double elapsed_ = 0.0;
};

#pragma once

#include <QDate>
#include <QDateTime>

/// "Today" and "now" for the whole program: the loan engine's dates and the
/// databases' Date() and Now() read it, so tests can fix the day.
class Clock {
public:
    static QDate today();
    static QDateTime now();
    /// Fixes the clock (tests); an invalid value returns it to the system clock.
    static void setFixed(const QDateTime &moment);
};

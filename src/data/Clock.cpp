#include "Clock.h"

namespace {
QDateTime fixedMoment;
}

QDate Clock::today() { return now().date(); }

QDateTime Clock::now() { return fixedMoment.isValid() ? fixedMoment : QDateTime::currentDateTime(); }

void Clock::setFixed(const QDateTime &moment) { fixedMoment = moment; }

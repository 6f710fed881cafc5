#include "BackupRotation.h"

#include <algorithm>
#include <functional>
#include <set>

QList<QDateTime> BackupRotation::keep(QList<QDateTime> taken)
{
    std::sort(taken.begin(), taken.end(), std::greater<>());
    std::set<QDateTime> kept;
    // Newest first: the first backup seen in a period is that period's newest.
    const auto keepNewestPer = [&](int periods, const std::function<qint64(const QDate &)> &period) {
        std::set<qint64> seen;
        for (const QDateTime &t : taken) {
            if (int(seen.size()) == periods)
                break;
            if (seen.insert(period(t.date())).second)
                kept.insert(t);
        }
    };
    keepNewestPer(Days, [](const QDate &d) { return d.toJulianDay(); });
    keepNewestPer(Weeks, [](const QDate &d) {
        int year = 0;
        const int week = d.weekNumber(&year);
        return qint64(year) * 100 + week;
    });
    keepNewestPer(Months, [](const QDate &d) { return qint64(d.year()) * 100 + d.month(); });
    QList<QDateTime> result(kept.rbegin(), kept.rend());
    return result;
}

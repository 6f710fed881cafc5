// One desk of the four-desk load: runs a seeded mix of issues, returns, renewals and reservations
// through the loan engine against the shared library database and logs every committed action
// ("I txid", "R txid", "N txid", "V member item") and every failure ("E text"), then one line
// "L count p50 p99" of its action latencies in milliseconds.
#include "PostgresEngine.h"
#include "SqliteEngine.h"
#include "AppError.h"
#include "Clock.h"
#include "LoanRoutines.h"
#include "LoanRules.h"
#include "MessageScript.h"
#include "Reservations.h"
#include "DatabaseLocations.h"
#include "clsDataObject.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char *argv[])
{
    SqliteEngine::install(EngineRegistry::installed());
    PostgresEngine::install(EngineRegistry::installed());
    QCoreApplication app(argc, argv);
    if (argc != 5)
        return std::fprintf(stderr, "usage: desk_load_helper LIBRARY SCHOOL SEED ACTIONS\n"), 2;
    LibraryDatabasePath = QString::fromLocal8Bit(argv[1]);
    CentralDatabasePath = QString::fromLocal8Bit(argv[2]);
    QRandomGenerator random(QByteArray(argv[3]).toUInt());
    const int actions = QByteArray(argv[4]).toInt();
    MessageScript messages;
    const QDate issued(2026, 11, 2), due = issued.addDays(7), late = issued.addDays(10);
    Clock::setFixed(QDateTime(issued, QTime(9, 0)));
    const Money fine = Money::fromUnits(50000); // 5.00 a day
    std::vector<double> times;
    for (int n = 0; n < actions; ++n) {
        const int kind = int(random.bounded(100));
        const QString copy = QStringLiteral("C%1").arg(random.bounded(1, 31), 3, 10, QLatin1Char('0'));
        QElapsedTimer timer;
        timer.start();
        try {
            if (kind < 40) {
                const int member = int(random.bounded(1, 26));
                const IssueCheck check = CheckIssue(member, QStringLiteral("L"), 1000, copy);
                if (check.refusal == IssueRefusal::None) {
                    const int loan = RecordIssue(copy, QStringLiteral("L"), member, check.itemID, due);
                    if (loan != LentElsewhere)
                        std::printf("I %d\n", loan);
                }
            } else if (kind < 85) {
                const bool renew = kind >= 70;
                LoanHandled handled;
                if (ReturnOrRenewLoan(copy, late, 0, renew ? QStringLiteral("renewal") : QStringLiteral("return"), late, fine, 1, &handled))
                    std::printf("%c %d\n", renew ? 'N' : 'R', handled.transactionID);
            } else {
                const int member = int(random.bounded(26, 51));
                const int item = int(random.bounded(31, 41));
                const QString refusal = PlaceReservation(
                    {QStringLiteral("L"), member, item, QStringLiteral("C%1").arg(item, 3, 10, QLatin1Char('0')), 2, 3});
                if (refusal.isEmpty())
                    std::printf("V %d %d\n", member, item);
            }
        } catch (const AppError &e) {
            std::printf("E %s\n", qPrintable(e.description()));
        }
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    std::printf("L %zu %.3f %.3f\n", times.size(), times[times.size() / 2], times[std::min(times.size() - 1, times.size() * 99 / 100)]);
    return 0;
}

// One desk of the two-desk race: waits for the agreed moment, then returns the loan of an
// accession number and prints "true" or "false" (what ReturnOrRenewLoan answered).
#include "PostgresEngine.h"
#include "SqliteEngine.h"
#include "AppError.h"
#include "LoanRoutines.h"
#include "MessageScript.h"
#include "DatabaseLocations.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QThread>

#include <cstdio>

int main(int argc, char *argv[])
{
    SqliteEngine::install(EngineRegistry::installed());
    PostgresEngine::install(EngineRegistry::installed());
    QCoreApplication app(argc, argv);
    if (argc != 5)
        return std::fprintf(stderr, "usage: return_race_helper LIBRARY ACCESSION yyyy-mm-dd START_MS\n"), 2;
    LibraryDatabasePath = QString::fromLocal8Bit(argv[1]);
    const QDate day = QDate::fromString(QString::fromLatin1(argv[3]), Qt::ISODate);
    const qint64 start = QByteArray(argv[4]).toLongLong();
    MessageScript messages;
    while (QDateTime::currentMSecsSinceEpoch() < start)
        QThread::usleep(200);
    try {
        const bool done = ReturnOrRenewLoan(QString::fromLatin1(argv[2]), day, 0, QStringLiteral("return"), QDate(),
                                            Money::fromUnits(5000), 1);
        std::printf("%s\n", done ? "true" : "false");
    } catch (const AppError &e) {
        std::printf("error %s\n", qPrintable(e.description()));
    }
    return 0;
}

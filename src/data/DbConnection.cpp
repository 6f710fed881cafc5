#include "DbConnection.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "Recordset.h"

#include <QRandomGenerator>
#include <QThread>

namespace {
QStringList *traceSink = nullptr;

}

DbConnection::~DbConnection() = default;

void DbConnection::traceStatements(QStringList *sink) { traceSink = sink; }
QStringList *DbConnection::statementTrace() { return traceSink; }

void DbConnection::Open()
{
    if (physical_)
        throw AppError(3705, QStringLiteral("Operation is not allowed when the object is open."));
    physical_ = ConnectionPool::shared().acquire(DataSource, ReadOnly);
}

void DbConnection::Close()
{
    if (!physical_)
        throw AppError(3704, QStringLiteral("Operation is not allowed when the object is closed."));
    physical_.reset();
}

PhysicalConnection &DbConnection::physical()
{
    if (!physical_)
        throw AppError(3709, QStringLiteral("The connection cannot be used to perform this operation. It is either closed or invalid in this context."));
    return *physical_;
}

bool DbConnection::HoldsTable(const QString &table) { return physical().holdsTable(table); }

std::shared_ptr<Recordset> DbConnection::Execute(const QString &sql, int *recordsAffected)
{
    auto rows = std::make_shared<Recordset>();
    if (traceSink)
        traceSink->append(sql);
    const int affected = physical().execute(sql, rows.get());
    if (recordsAffected)
        *recordsAffected = affected;
    return rows;
}

std::shared_ptr<Recordset> DbConnection::Execute(const QString &sql, int count, const std::function<void(const Recordset &)> &show)
{
    auto rows = std::make_shared<Recordset>();
    rows->setFirstRows(count, show);
    if (traceSink)
        traceSink->append(sql);
    physical().execute(sql, rows.get());
    return rows;
}

int DbConnection::ExecuteCommand(const QString &sql)
{
    if (traceSink)
        traceSink->append(sql);
    return physical().execute(sql, nullptr);
}

qint64 DbConnection::ExecuteInsert(const QString &sql, const QString &keyColumn)
{
    if (traceSink)
        traceSink->append(sql);
    return physical().insertReturningKey(sql, keyColumn);
}

void DbConnection::BulkInsert(const QString &table, const Recordset &rows) { physical().bulkInsert(table, rows); }

void DbConnection::BeginTrans() { physical().beginTransaction(); }
void DbConnection::CommitTrans() { physical().commitTransaction(); }
void DbConnection::RollbackTrans() { physical().rollbackTransaction(); }

bool DbConnection::RunTransaction(const std::function<bool()> &work)
{
    constexpr int Attempts = 20;
    for (int attempt = 1;; ++attempt) {
        BeginTrans();
        try {
            const bool keep = work();
            if (keep)
                CommitTrans();
            else
                RollbackTrans();
            return keep;
        } catch (const AppError &e) {
            RollbackTrans();
            if (e.cause() != AppError::Cause::WriteConflict || attempt == Attempts)
                throw;
        } catch (...) {
            RollbackTrans();
            throw;
        }
        // An uneven pause, longer each time, so the desks do not meet again at once; a busy server
        // (several desks and a backup) gets about a second before the librarian is told.
        QThread::usleep(QRandomGenerator::global()->bounded(500u, 3000u) * unsigned(attempt < 10 ? attempt : 10));
    }
}

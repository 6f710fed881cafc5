#include "clsDataObject.h"

#include "AppError.h"
#include "DbConnection.h"
#include "GridTarget.h"
#include "DatabaseLocations.h"
#include "Messages.h"


#include <string>

namespace {
// The provider's advice text; when an open failure carries it, the connection is left as it is.
const QString PathAdvice = QStringLiteral(
    "Make sure that the path name is spelled correctly and that you are connected to the server on which the file resides.");
} // namespace

clsDataObject::clsDataObject() = default;
clsDataObject::~clsDataObject() = default;

void clsDataObject::Connection()
{
    if (!connection_)
        connection_ = std::make_unique<DbConnection>();
    connection_->DataSource = LibraryDatabasePath;
}

bool clsDataObject::ConOpen()
{
    if (held_)
        return true; // a transaction's statements share its connection
    try {
        if (connection_ && connection_->state() != DbConnection::adStateClosed)
            connection_ = std::make_unique<DbConnection>();
        Connection();
        connection_->Open();
        return true;
    } catch (const AppError &e) {
        if (e.cause() == AppError::Cause::Unreachable)
            throw; // the action's one message names the server and the reason
        if (!e.description().isEmpty())
            UserMessage(QStringLiteral("Database connection failed"));
        if (e.description().size() >= PathAdvice.size() && e.description().left(PathAdvice.size()) != PathAdvice)
            ConClose();
        return false;
    }
}

void clsDataObject::prepare(const QString &sql) { commandText_ = sql; }

void clsDataObject::rstRecordSetOpen()
{
    rstRecordSetclose();
    auto run = [this](DbConnection &connection) {
        return showFirst_ ? connection.Execute(commandText_, firstRows_, showFirst_) : connection.Execute(commandText_);
    };
    if (held_ || (connection_ && connection_->state() == DbConnection::adStateOpen)) {
        rst = run(active());
        return;
    }
    // The command opens its own connection from the connection text, and fails as that open fails.
    DbConnection own;
    own.DataSource = LibraryDatabasePath;
    own.Open();
    rst = run(own);
}

void clsDataObject::ExecuteNonQuery(const QString &sql)
{
    if (ConOpen()) {
        prepare(sql);
        active().ExecuteCommand(sql);
    }
    ConClose();
}

qint64 clsDataObject::InsertReturningKey(const QString &sql, const QString &keyColumn)
{
    qint64 key = 0;
    if (ConOpen()) {
        prepare(sql);
        key = active().ExecuteInsert(sql, keyColumn);
    }
    ConClose();
    return key;
}

DbConnection &clsDataObject::active() { return held_ ? *held_ : *connection_; }

bool clsDataObject::RunTransaction(const std::function<bool()> &work)
{
    if (held_)
        return work(); // already inside one: the outer transaction decides
    DbConnection connection;
    connection.DataSource = LibraryDatabasePath;
    connection.Open();
    struct Release {
        clsDataObject *d;
        ~Release() { d->held_ = nullptr; }
    } release{this};
    held_ = &connection;
    return connection.RunTransaction([&] {
        rstRecordSetclose();
        return work();
    });
}

bool clsDataObject::TableExist(const QString &sql)
{
    bool exists = true;
    try {
        ConOpen();
        prepare(sql);
        if (!connection_ || connection_->state() != DbConnection::adStateOpen)
            return false;
        connection_->ExecuteCommand(sql);
    } catch (const AppError &) {
        exists = false;
    }
    return exists;
}

int clsDataObject::GetData(const QString &sql)
{
    openForReading(sql);
    return rst->RecordCount();
}

int clsDataObject::GetData(const QString &sql, int firstRows, const std::function<void(const Recordset &)> &show)
{
    firstRows_ = firstRows;
    showFirst_ = show;
    struct Reset {
        clsDataObject *d;
        ~Reset()
        {
            d->firstRows_ = 0;
            d->showFirst_ = nullptr;
        }
    } reset{this};
    openForReading(sql);
    return rst->RecordCount();
}

int clsDataObject::GetDatas(const QString &sql)
{
    openForReading(sql);
    return 0;
}

int clsDataObject::GetID(const QString &sql, const QVariant &)
{
    openForReading(sql);
    return 0;
}

int clsDataObject::GetAuto(const QString &sql)
{
    int result = 0;
    if (ConOpen()) {
        prepare(sql);
        rstRecordSetOpen();
    }
    if (rst && !rst->atEnd()) {
        if (rst->RecordCount() > 1)
            rst->MoveLast();
        result = rst->field(0).toInt();
    }
    rstRecordSetclose();
    ConClose();
    return result;
}

QVariant clsDataObject::GetKeyword(const QString &sql, bool english)
{
    QVariant value;
    openForReading(sql);
    for (rst->MoveFirst(); !rst->atEnd(); rst->MoveNext())
        value = rst->field(english ? 1 : 2).value();
    rstRecordSetclose();
    ConClose();
    return value;
}

void clsDataObject::ConClose()
{
    if (held_)
        return; // closed when the transaction ends
    if (connection_ && connection_->state() == DbConnection::adStateOpen)
        connection_->Close();
}

void clsDataObject::rstRecordSetclose() { rst.reset(); }

void clsDataObject::CloseCompact()
{
    rstRecordSetclose();
    ConClose();
}

bool clsDataObject::connectionOpen() const { return held_ || (connection_ && connection_->state() == DbConnection::adStateOpen); }

void clsDataObject::openForReading(const QString &sql)
{
    ConOpen();
    prepare(sql);
    rstRecordSetOpen();
}


void clsDataObject::fillRows(GridTarget &grid, int firstRow, bool widen)
{
    const int fields = rst->fieldCount();
    std::string text;
    int row = firstRow;
    for (; !rst->atEnd(); rst->MoveNext(), ++row) {
        for (int f = 0; f < fields; ++f) {
            const Field value = rst->field(f);
            if (value.isNull())
                continue;
            text.clear();
            value.appendUtf8(&text);
            grid.setCellUtf8(f, row, text);
            if (widen) {
                grid.setActiveCell(f, row);
                const double needed = grid.textWidthUtf8(text);
                if (grid.colWidth(f) < needed + 1)
                    grid.setColWidth(f, needed + 1);
            }
        }
    }
}

void clsDataObject::fillGrid(GridTarget &grid, const QString &sql, bool captionsAndWidths)
{
    openForReading(sql);
    FillScope fill(grid);
    grid.setMaxCols(rst->fieldCount() - 1);
    grid.setMaxRows(rst->RecordCount());
    if (captionsAndWidths)
        for (int i = 1; i < rst->fieldCount(); ++i)
            grid.setCellText(i, 0, rst->fieldName(i));
    fillRows(grid, 1, captionsAndWidths);
    rstRecordSetclose();
    ConClose();
}

void clsDataObject::FillSpread(GridTarget &grid, const QString &sql) { fillGrid(grid, sql, true); }

void clsDataObject::FillSpreadWithHeader(GridTarget &grid, const QString &sql) { fillGrid(grid, sql, false); }

void clsDataObject::AppendSpread(GridTarget &grid, const QString &sql)
{
    openForReading(sql);
    FillScope fill(grid);
    const int rows = grid.maxRows();
    grid.setMaxRows(rows + 1);
    fillRows(grid, rows + 1, true);
    rstRecordSetclose();
    ConClose();
}

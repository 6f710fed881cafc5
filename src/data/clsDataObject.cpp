#include "clsDataObject.h"

#include "AppError.h"
#include "DbConnection.h"
#include "UpdateDatabase.h"
#include "modExtendedMsgBox.h"

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
    connection_->Provider = QString::fromLatin1(JetProvider);
    connection_->DataSource = LibraryDatabasePath;
    connection_->Password = QString::fromLatin1(LibraryPassword);
}

bool clsDataObject::ConOpen()
{
    try {
        if (connection_ && connection_->state() != DbConnection::adStateClosed)
            connection_ = std::make_unique<DbConnection>();
        Connection();
        connection_->Open();
        return true;
    } catch (const AppError &e) {
        if (!e.description().isEmpty())
            UserMessage(QStringLiteral("Database connection failed"));
        if (e.description().size() >= PathAdvice.size() && e.description().left(PathAdvice.size()) != PathAdvice)
            ConClose();
        return false;
    }
}

void clsDataObject::prepare(const QString &sql)
{
    commandConnection_ = connection_ ? connection_->ConnectionString() : QString();
    commandText_ = sql;
}

void clsDataObject::rstRecordSetOpen()
{
    rstRecordSetclose();
    if (connection_ && connection_->state() == DbConnection::adStateOpen) {
        rst = connection_->Execute(commandText_);
        return;
    }
    // The command opens its own connection from the connection text, and fails as that open fails.
    DbConnection own;
    own.DataSource = LibraryDatabasePath;
    own.Open();
    rst = own.Execute(commandText_);
}

void clsDataObject::ExecuteNonQuery(const QString &sql)
{
    if (ConOpen()) {
        prepare(sql);
        connection_->Execute(sql);
    }
    ConClose();
}

bool clsDataObject::TableExist(const QString &sql)
{
    bool exists = true;
    try {
        ConOpen();
        prepare(sql);
        if (!connection_ || connection_->state() != DbConnection::adStateOpen)
            return false;
        connection_->Execute(sql);
    } catch (const AppError &) {
        exists = false;
    }
    return exists;
}

int clsDataObject::GetData(const QString &sql)
{
    ConOpen();
    prepare(sql);
    rstRecordSetOpen();
    return rst->RecordCount();
}

int clsDataObject::GetDatas(const QString &sql)
{
    ConOpen();
    prepare(sql);
    rstRecordSetOpen();
    return 0;
}

int clsDataObject::GetID(const QString &sql, const QVariant &)
{
    ConOpen();
    prepare(sql);
    rstRecordSetOpen();
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
    ConOpen();
    prepare(sql);
    rstRecordSetOpen();
    for (rst->MoveFirst(); !rst->atEnd(); rst->MoveNext())
        value = rst->field(english ? 1 : 2).value();
    rstRecordSetclose();
    ConClose();
    return value;
}

void clsDataObject::ConClose()
{
    if (connection_ && connection_->state() == DbConnection::adStateOpen)
        connection_->Close();
}

void clsDataObject::rstRecordSetclose() { rst.reset(); }

void clsDataObject::CloseCompact()
{
    rstRecordSetclose();
    ConClose();
}

bool clsDataObject::connectionOpen() const { return connection_ && connection_->state() == DbConnection::adStateOpen; }

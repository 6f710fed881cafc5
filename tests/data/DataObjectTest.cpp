#include "AppError.h"
#include "Clock.h"
#include "ConnectionPool.h"
#include "DbConnection.h"
#include "PostgresDatabase.h"
#include "Recordset.h"
#include "TestDatabases.h"
#include "TestEngine.h"
#include "SchoolDatabase.h"
#include "ErrorReport.h"
#include "DatabaseLocations.h"
#include "clsDataObject.h"

#include <QFile>
#include <QThread>
#include <QUrl>

class DataObjectTest : public DatabaseTest {};

TEST_F(DataObjectTest, GetDataCountsRowsAndLeavesThemForTheCaller)
{
    clsDataObject d;
    EXPECT_EQ(d.GetData("Select * from tblLibCategories"), 0);
    d.CloseCompact();

    d.ExecuteNonQuery(" Insert into tblLibCategories(Category) Values ('Fiction')");
    d.ExecuteNonQuery(" Insert into tblLibCategories(Category) Values ('Reference')");
    EXPECT_FALSE(d.connectionOpen());

    EXPECT_EQ(d.GetData("Select CategoryID,Category from tblLibCategories where PhasedOut = false order by Category"), 2);
    EXPECT_TRUE(d.connectionOpen());
    ASSERT_TRUE(d.rst);
    EXPECT_EQ(d.rst->field("category").toString(), "Fiction");
    EXPECT_EQ(d.rst->field("CATEGORYID").toInt(), 1);
    d.rst->MoveNext();
    EXPECT_EQ(d.rst->field(1).toString(), "Reference");
    d.rst->MoveNext();
    EXPECT_TRUE(d.rst->atEnd());
    EXPECT_THROW(d.rst->field(0), AppError);
    d.CloseCompact();
    EXPECT_FALSE(d.rst);
    EXPECT_FALSE(d.connectionOpen());
}

TEST_F(DataObjectTest, GetAutoAndGetKeywordReadTheLastRow)
{
    clsDataObject d;
    EXPECT_EQ(d.GetAuto("select top 1 ItemID from tblLibItems order by itemid desc"), 0);
    EXPECT_FALSE(d.GetKeyword(" SELECT KeyID, KeywordEng, KeywordAfr FROM tblLibKeywords ", true).isValid());

    library(" Insert into tblLibKeywords (KeywordEng,KeywordAfr) Values('dog','hond')");
    library(" Insert into tblLibKeywords (KeywordEng,KeywordAfr) Values('cat','kat')");
    EXPECT_EQ(d.GetAuto("select KeyID from tblLibKeywords order by KeyID"), 2);
    EXPECT_EQ(d.GetKeyword(" SELECT KeyID, KeywordEng, KeywordAfr FROM tblLibKeywords ", true).toString(), "cat");
    EXPECT_EQ(d.GetKeyword(" SELECT KeyID, KeywordEng, KeywordAfr FROM tblLibKeywords WHERE KeyID = 1", false).toString(), "hond");
    EXPECT_FALSE(d.connectionOpen());
}

TEST_F(DataObjectTest, TableExistAnswersWithoutAReport)
{
    clsDataObject d;
    EXPECT_TRUE(d.TableExist("select KeyID from tblLibKeywords"));
    EXPECT_FALSE(d.TableExist("select Nonsense from tblLibKeywords"));
    EXPECT_FALSE(d.TableExist("select KeyID from tblNoSuchTable"));
    EXPECT_TRUE(messages_->shown().empty());
}

TEST_F(DataObjectTest, AMissingLibraryDatabaseFailsTheOpenWithOneMessage)
{
    LibraryDatabasePath = path("missing.db");
    clsDataObject d;
    EXPECT_FALSE(d.ConOpen());
    ASSERT_EQ(messages_->shown().size(), 1u);
    EXPECT_EQ(messages_->shown()[0].prompt, "Database connection failed");
    EXPECT_EQ(messages_->shown()[0].title, "User Message");
    EXPECT_EQ(messages_->shown()[0].picture, MessagePicture::picmessage);

    // ExecuteNonQuery skips its statement; nothing is created on disk.
    EXPECT_NO_THROW(d.ExecuteNonQuery(" Insert into tblLibCategories(Category) Values ('X')"));
    EXPECT_FALSE(QFile::exists(path("missing.db")));
    // GetData has no trap of its own: the failure reaches the caller.
    EXPECT_THROW(d.GetData("Select * from tblLibCategories"), AppError);
}

TEST_F(DataObjectTest, ANonDatabaseFileIsRefused)
{
    QFile f(path("notes.txt"));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("This is not a database, just some text long enough to be read as a header.........");
    f.close();
    LibraryDatabasePath = path("notes.txt");
    clsDataObject d;
    EXPECT_FALSE(d.ConOpen());
    EXPECT_EQ(messages_->prompts(), QStringList{"Database connection failed"});
    try {
        DbConnection c;
        c.DataSource = path("notes.txt");
        c.Open();
        FAIL();
    } catch (const AppError &e) {
        EXPECT_EQ(e.description(), "Unrecognized database format '" + path("notes.txt") + "'.");
    }
}

TEST_F(DataObjectTest, StatementErrorsCarryTheOriginalTextToTheCaller)
{
    clsDataObject d;
    try {
        d.GetData("Select Nonsense from tblLibItems where Title = 'x'");
        FAIL() << "expected an error";
    } catch (const AppError &e) {
        EXPECT_EQ(e.statement(), "Select Nonsense from tblLibItems where Title = 'x'");
        EXPECT_FALSE(e.description().isEmpty());
    }
    try {
        d.ExecuteNonQuery("Delete * from tblLibCategories; Delete * from tblLibItems");
        FAIL() << "a second statement must be refused";
    } catch (const AppError &e) {
        EXPECT_EQ(e.description(), "Characters found after end of SQL statement.");
    }
}

TEST_F(DataObjectTest, AClosedConnectionRefusesWork)
{
    DbConnection c;
    c.DataSource = libraryPath_;
    c.Open();
    c.Execute("Select * from tblLibItems");
    c.Close();
    EXPECT_EQ(c.state(), DbConnection::adStateClosed);
    try {
        c.Execute("Select * from tblLibItems");
        FAIL();
    } catch (const AppError &e) {
        EXPECT_EQ(e.number(), 3709);
    }
    EXPECT_THROW(c.Close(), AppError);
}

TEST_F(DataObjectTest, ConnectionsComeFromThePool)
{
    ConnectionPool::shared().clear();
    clsDataObject d;
    for (int i = 0; i < 50; ++i) {
        d.GetData("Select * from tblLibCategories");
        d.CloseCompact();
    }
    EXPECT_EQ(ConnectionPool::shared().idleCount(), 1u);
}

TEST_F(DataObjectTest, CurrencyReadsBackAsTheSameValue)
{
    library("Insert into tbllibtransactionfines(transactionid,memberid,membertype,fineamount,datefined)VALUES(1,2,'L',0.1,#2026-11-02#)");
    library("UPDATE tbllibtransactionfines Set fineamount = 0.3, datefined = #2026-11-03# WHERE transactionid = 1");
    clsDataObject d;
    d.GetData("select FineAmount, DateFined, PaymentAmount, FineCancelled, PaymentDate from tblLibTransactionFines");
    EXPECT_EQ(d.rst->field(0).toMoney(), Money::fromUnits(3000));
    EXPECT_EQ(d.rst->field(0).toString(), "0.3");
    EXPECT_EQ(d.rst->field(1).toDate(), QDate(2026, 11, 3));
    EXPECT_EQ(d.rst->field(2).toMoney(), Money());
    EXPECT_EQ(d.rst->field(3).toString(), "False");
    EXPECT_EQ(d.rst->field(3).toInt(), 0);
    EXPECT_TRUE(d.rst->field(4).isNull());
    d.CloseCompact();
}

TEST_F(DataObjectTest, TheDatabaseRefusesLettersInNumberFieldsAndImpossibleDates)
{
    clsDataObject d;
    try {
        d.ExecuteNonQuery("Insert into tblLibItems (Title, ShelfNumber, YearPublished) Values ('T', 'S', 'abc')");
        FAIL();
    } catch (const AppError &e) {
        EXPECT_EQ(e.description(), "Data type mismatch in criteria expression.");
    }
    EXPECT_THROW(d.ExecuteNonQuery("Insert into tblLibItems (Title, ShelfNumber, DateAdded) Values ('T', 'S', #2/30/2026#)"), AppError);
    EXPECT_THROW(d.ExecuteNonQuery("Insert into tblLibItems (Title, ShelfNumber, YearPublished) Values ('T', 'S', 40000)"), AppError);
    d.ExecuteNonQuery("Insert into tblLibItems (Title, ShelfNumber, YearPublished) Values ('T', 'S', '1999')");
    EXPECT_EQ(libraryValue("select YearPublished from tblLibItems"), "1999");
    EXPECT_EQ(libraryCount("select * from tblLibItems"), 1);
}

TEST_F(DataObjectTest, OneOpenLoanPerCopy)
{
    library("Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate)VALUES('A1','L',1,7,#2026-11-01#,#2026-11-08#)");
    EXPECT_THROW(library("Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate)VALUES('A1','E',2,7,#2026-11-01#,#2026-11-08#)"),
                 AppError);
    library("Update tbllibtransactions set returned = true where ItemID = 7");
    EXPECT_NO_THROW(library("Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate)VALUES('A1','E',2,7,#2026-11-01#,#2026-11-08#)"));
}

class SharedConnectionTest : public DatabaseTest {};

TEST_F(SharedConnectionTest, TheSchoolDatabaseIsReadOnly)
{
    central("Insert into general_info(schoolname) values ('Hillview High')");
    SchoolDatabase school;
    EXPECT_EQ(school.query("Select schoolname from general_info")->field("schoolname").toString(), "Hillview High");
    EXPECT_THROW(school.query("Delete * from general_info"), AppError);
    EXPECT_EQ(SchoolQuery("Select count(*) as n from general_info")->field("n").toInt(), 1);
}

TEST_F(SharedConnectionTest, FailedOpensAreReportedFromTheCentralModule)
{
    LibraryDatabasePath = path("gone.db");
    const std::unique_ptr<DbConnection> library = OpenLibraryDatabase();
    ASSERT_EQ(messages_->shown().size(), 1u);
    const ShownMessage &m = messages_->shown()[0];
    EXPECT_TRUE(m.prompt.startsWith("Error Description: Library Database cannot be opened.\r\n"));
    EXPECT_TRUE(m.prompt.endsWith("\r\nLocation: Central Module\r\nProcedure: Database Access Error"));
    EXPECT_EQ(m.title, "Error : -2147467259");
    EXPECT_EQ(m.picture, MessagePicture::picError);
    EXPECT_EQ(m.style, 0);
    EXPECT_EQ(library->state(), DbConnection::adStateClosed);
    EXPECT_THROW(library->Execute("select * from tblLibItems"), AppError);

    messages_->clear();
    CentralDatabasePath = path("gone-too.db");
    SchoolDatabase school;
    ASSERT_EQ(messages_->shown().size(), 1u);
    EXPECT_TRUE(messages_->shown()[0].prompt.startsWith("Error Description: Database cannot be opened.\r\n"));
    EXPECT_THROW(school.query("Select * from general_info"), AppError);
}

TEST_F(SharedConnectionTest, ErrorTitlesHaveALeadingBlankForNonNegativeNumbers)
{
    ReportError("frmIssueSystem", "Either BOF or EOF is True", "cmdIssue_Click", 3021);
    ReportError("frmIssueSystem", "x", "y", -5);
    ASSERT_EQ(messages_->shown().size(), 2u);
    EXPECT_EQ(messages_->shown()[0].title, "Error :  3021");
    EXPECT_EQ(messages_->shown()[0].prompt, "Error Description: Either BOF or EOF is True\r\nLocation: frmIssueSystem\r\nProcedure: cmdIssue_Click");
    EXPECT_EQ(messages_->shown()[1].title, "Error : -5");
}

TEST_F(SharedConnectionTest, TransactionsOnALibraryConnectionRollBack)
{
    {
        const std::unique_ptr<DbConnection> library = OpenLibraryDatabase();
        library->BeginTrans();
        library->Execute("Insert into tblLibSubjectCodes (ClassificationNo) Values ('abcRollback')");
        library->RollbackTrans();
    }
    EXPECT_EQ(libraryCount("select * from tblLibSubjectCodes"), 0);
    if (!TestEngine::onPostgres()) {
        EXPECT_TRUE(QFile::exists(libraryPath_ + "-wal")); // the library database file runs in WAL mode
    }
}

TEST_F(DataObjectTest, ALongListShowsItsFirstRowsBeforeTheRest)
{
    for (int i = 1; i <= 5; ++i)
        library(QString("Insert into tblLibAuthors (AuthorSurname) values ('A%1')").arg(i));
    clsDataObject data;
    QStringList early;
    int calls = 0;
    const int rows = data.GetData("select AuthorSurname from tblLibAuthors order by AuthorID", 2, [&](const Recordset &first) {
        ++calls;
        for (int r = 0; r < first.RecordCount(); ++r)
            early << first.fieldAt(r, 0).toString();
    });
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(early, (QStringList{"A1", "A2"}));
    EXPECT_EQ(rows, 5);
    EXPECT_EQ(data.rst->field(0).toString(), "A1"); // the whole result, from its first row
    data.CloseCompact();
    // A result shorter than the first screenful is only shown whole; the next query shows nothing early.
    EXPECT_EQ(data.GetData("select AuthorSurname from tblLibAuthors", 9, [&](const Recordset &) { ++calls; }), 5);
    EXPECT_EQ(data.GetData("select AuthorSurname from tblLibAuthors"), 5);
    EXPECT_EQ(calls, 1);
    data.CloseCompact();
}

// The server drops the desk's connection (a restart, a cable pulled) in the middle of a transaction:
// one clear message, nothing of the transaction kept, and the next action connects again.
TEST_F(DataObjectTest, ALostServerConnectionIsOneMessageAndTheNextActionReconnects)
{
    if (!TestEngine::onPostgres())
        GTEST_SKIP() << "about a server connection";
    {
        const std::unique_ptr<DbConnection> library = OpenLibraryDatabase();
        library->BeginTrans();
        library->Execute("Insert into tblLibSubjectCodes (ClassificationNo) Values ('half-written')");
        const QString pid = library->Execute("select pg_backend_pid()")->field(0).toString();
        runOn(TestEngine::serverAddress(), "select pg_terminate_backend(" + pid + ")");
        try {
            library->Execute("select count(*) from tblLibItems");
            ADD_FAILURE() << "the statement ran on a dropped connection";
        } catch (const AppError &e) {
            EXPECT_EQ(e.cause(), AppError::Cause::ConnectionLost);
            EXPECT_TRUE(e.description().startsWith("The connection to the library database server was lost.")) << e.description().toStdString();
        }
        EXPECT_NO_THROW(library->RollbackTrans()); // nothing left to undo: the server dropped it
    }
    EXPECT_EQ(libraryCount("select * from tblLibSubjectCodes"), 0);
    clsDataObject data;
    EXPECT_EQ(data.GetData("select * from tblLibItems"), libraryCount("select * from tblLibItems"));
    data.CloseCompact();
}

// The data object's transaction: its operations share one connection and are kept together or not
// at all; after a rollback the desk's clock still holds in the next transaction (each engine).
TEST_F(DataObjectTest, ATransactionKeepsAllItsStatementsOrNone)
{
    clsDataObject data;
    EXPECT_FALSE(data.RunTransaction([&] {
        data.ExecuteNonQuery("Insert into tblLibSubjectCodes (ClassificationNo) Values ('one')");
        EXPECT_EQ(data.GetData("select * from tblLibSubjectCodes"), 1); // its own writes are seen inside
        return false;
    }));
    EXPECT_EQ(libraryCount("select * from tblLibSubjectCodes"), 0);
    EXPECT_THROW(data.RunTransaction([&] {
        data.ExecuteNonQuery("Insert into tblLibSubjectCodes (ClassificationNo) Values ('two')");
        data.ExecuteNonQuery("Insert into tblLibNoSuchTable (x) Values (1)");
        return true;
    }), AppError);
    EXPECT_EQ(libraryCount("select * from tblLibSubjectCodes"), 0);
    EXPECT_FALSE(data.connectionOpen());
    EXPECT_TRUE(data.RunTransaction([&] {
        const qint64 first = data.InsertReturningKey("Insert into tblLibSubjectCodes (ClassificationNo) Values ('three')", "Id");
        EXPECT_EQ(data.InsertReturningKey("Insert into tblLibSubjectCodes (ClassificationNo) Values ('four')", "Id"), first + 1);
        data.ExecuteNonQuery("Update tblLibSubjectCodes set ClassificationNo = 'x' where ClassificationNo = 'three'");
        return true;
    }));
    EXPECT_EQ(libraryRows("select ClassificationNo from tblLibSubjectCodes order by ClassificationNo"), (QStringList{"four", "x"}));

    Clock::setFixed(QDateTime(QDate(2026, 3, 4), QTime(10, 0)));
    QString seen;
    data.RunTransaction([&] {
        data.GetData("select Date() as d from tblLibSubjectCodes");
        return false;
    });
    data.RunTransaction([&] {
        data.GetData("select Date() as d from tblLibSubjectCodes");
        seen = data.rst->field(0).toDate().toString(Qt::ISODate);
        return false;
    });
    Clock::setFixed(QDateTime());
    EXPECT_EQ(seen, "2026-03-04");
}

// The server restarts while a desk is idle: its pooled connections are dead, and the first action
// after it reconnects without a word.
TEST_F(DataObjectTest, AnIdleDeskWorksOnAfterTheServerRestarts)
{
    if (!TestEngine::onPostgres())
        GTEST_SKIP() << "about a server connection";
    library("Insert into tblLibSubjectCodes (ClassificationNo) Values ('before')");
    {
        // Three connections of the desk lie idle in the pool.
        clsDataObject a, b, c;
        for (clsDataObject *d : {&a, &b, &c})
            d->ConOpen();
    }
    const QString database = QUrl(libraryPath_).path().mid(1);
    runOn(TestEngine::serverAddress(), "select pg_terminate_backend(pid) from pg_stat_activity where datname = '" + database + "'");
    QThread::msleep(300);
    clsDataObject data;
    EXPECT_EQ(data.GetData("select * from tblLibSubjectCodes"), 1);
    data.CloseCompact();
    data.ExecuteNonQuery("Insert into tblLibSubjectCodes (ClassificationNo) Values ('after')");
    EXPECT_EQ(libraryCount("select * from tblLibSubjectCodes"), 2);
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join(" | ").toStdString();
}

// Compacting a library on a server vacuums the library's own tables: a desk that is not the
// server's superuser is not warned about the server's catalogues.
TEST_F(DataObjectTest, CompactingOnAServerVacuumsTheLibrarysOwnTablesOnly)
{
    if (!TestEngine::onPostgres())
        GTEST_SKIP() << "about a server database";
    const QString library = TestEngine::makeServerLibraryOwnedBy("shelvora_desk");
    runOn(library, "Insert into tblLibSubjectCodes (ClassificationNo) Values ('kept')");
    EXPECT_EQ(PostgresDatabase::vacuum(library), QStringList());
    EXPECT_EQ(rowsIn(library, "select ClassificationNo from tblLibSubjectCodes"), QStringList{"kept"});
    ConnectionPool::shared().clear();
    TestEngine::dropLibrary(library);
}

#include "AppError.h"
#include "DatabaseSchema.h"
#include "LibraryCopy.h"
#include "TestDatabases.h"
#include "TestEngine.h"

#include <QFile>

namespace {

class LibraryCopyTest : public DatabaseTest {
protected:
    QStringList everything(const QString &location)
    {
        QStringList all;
        for (const char *sql : {"select ItemID, AccessionID, Title, Cost, ReferenceItem, DateAdded, PhasedOut from tblLibItems order by ItemID",
                                "select TransactionID, AccessionID, IssueDate, DueDate, ReturnDate, Returned, Extensions from tblLibTransactions order by TransactionID",
                                "select TransactionID, FineAmount, PaymentAmount, FineCancelled from tblLibTransactionFines order by TransactionID",
                                "select KeyID, KeywordEng, KeywordAfr from tblLibKeywords order by KeyID"})
            all << rowsIn(location, sql);
        return all;
    }
};

} // namespace

// The library goes from this run's engine to a new file and from there to a new server database
// (when there is a server): every row arrives unchanged, counters keep counting after it.
TEST_F(LibraryCopyTest, ALibraryMovesBetweenEnginesWhole)
{
    library("Insert into tblLibItems(ItemID, AccessionID, Title, Cost, ReferenceItem, DateAdded) values (7, 'A7', 'Dié ''kat'' – 猫', 12.5, true, #2026-11-20#)");
    library("Insert into tblLibItems(AccessionID, Title, PhasedOut, DateAdded) values ('A8', 'Plain', false, #2026-11-21 10:15:00#)");
    library("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, ReturnDate, Returned, Extensions) "
            "values ('A7', 'L', 3, 7, #2026-11-01#, #2026-11-15#, #2026-11-18#, true, 1)");
    library("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount, PaymentAmount) values (1, 3, 'L', 1.5, 0.25)");
    library("Insert into tblLibKeywords(KeywordEng, KeywordAfr) values ('cat', 'kat')");
    library("Insert into tblLibKeywords(KeywordEng, KeywordAfr) values ('tab\there', 'line\nbreak \\N back\\slash')");
    const QStringList original = everything(libraryPath_);

    const QString file = path("copy.db");
    const QList<LibraryCopy::TableFigures> tables = LibraryCopy::copy(libraryPath_, file);
    EXPECT_EQ(tables.size(), 23);
    EXPECT_EQ(tables.first().table, "tblLibItems");
    EXPECT_EQ(tables.first().rows, 2);
    EXPECT_EQ(everything(file), original);
    runOn(file, "Insert into tblLibItems(AccessionID, Title) values ('A9', 'Next')");
    EXPECT_EQ(rowsIn(file, "select ItemID from tblLibItems where AccessionID = 'A9'"), QStringList{"9"});

    // A target that already holds a library is refused and left as it was.
    EXPECT_THROW(LibraryCopy::copy(libraryPath_, file), AppError);
    EXPECT_EQ(rowsIn(file, "select count(*) from tblLibItems"), QStringList{"3"});

    if (TestEngine::onPostgres()) {
        const QString server = TestEngine::makeEmptyServerDatabase();
        LibraryCopy::copy(file, server);
        EXPECT_EQ(rowsIn(server, "select count(*) from tblLibItems"), QStringList{"3"});
        runOn(server, "Insert into tblLibItems(AccessionID, Title) values ('A10', 'After')");
        EXPECT_EQ(rowsIn(server, "select ItemID from tblLibItems where AccessionID = 'A10'"), QStringList{"10"});
        EXPECT_THROW(LibraryCopy::copy(file, server), AppError);
        TestEngine::dropLibrary(server);
    }
}

// A copy that fails leaves nothing behind, so the next try is not blocked.
TEST_F(LibraryCopyTest, AFailedCopyLeavesNoFile)
{
    const QString old = path("old.db");
    DatabaseSchema::createDatabase(old, DatabaseSchema::olderReleaseLibraryStatements());
    const QString file = path("copy.db");
    EXPECT_THROW(LibraryCopy::copy(old, file), AppError);
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_FALSE(QFile::exists(file + ".partial"));
    EXPECT_NO_THROW(LibraryCopy::copy(libraryPath_, file));
    EXPECT_TRUE(QFile::exists(file));

    // Into a server database: it is left as it was, without the copy's preparations.
    if (TestEngine::onPostgres()) {
        const QString server = TestEngine::makeEmptyServerDatabase();
        EXPECT_THROW(LibraryCopy::copy(old, server), AppError);
        EXPECT_FALSE(TestEngine::serverHas(server, "SELECT 1 FROM pg_tables WHERE schemaname = current_schema()"));
        EXPECT_FALSE(TestEngine::serverHas(server, "SELECT 1 FROM pg_proc WHERE proname LIKE 'jet%'"));
        EXPECT_FALSE(TestEngine::serverHas(server, "SELECT 1 FROM pg_type WHERE typname IN ('jet_bit', 'jet_currency')"));
        EXPECT_FALSE(TestEngine::serverHas(server, "SELECT 1 FROM pg_extension WHERE extname = 'citext'"));
        EXPECT_NO_THROW(LibraryCopy::copy(file, server)); // and the next try goes through
        TestEngine::dropLibrary(server);
    }
}

// The school's database may sit on the same server; whoever opens it there cannot write it.
TEST_F(LibraryCopyTest, TheSchoolDatabaseOnAServerIsReadOnly)
{
    if (!TestEngine::onPostgres())
        GTEST_SKIP() << "about a server database";
    central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (5, 'L5', 'Dlamini', 'Zola', 8, 1, 'C')");
    const QString server = TestEngine::makeEmptyServerDatabase();
    LibraryCopy::copy(centralPath_, server);
    EXPECT_EQ(rowsIn(server, "select SName, FName from Learner_Info"), QStringList{"Dlamini|Zola"});
    try {
        runOn(server, "Update Learner_Info set SName = 'Changed'");
        ADD_FAILURE() << "the school database was written";
    } catch (const AppError &e) {
        EXPECT_EQ(e.description(), "Cannot update.  Database or object is read-only.");
    }
    EXPECT_EQ(rowsIn(server, "select SName from Learner_Info"), QStringList{"Dlamini"});
    TestEngine::dropLibrary(server);
}

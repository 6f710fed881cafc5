// Structure upgrades by version (each engine): a library of every older structure is brought to
// this release's with its rows, a step that fails leaves the version and data before it, and a
// library of a newer release is opened read-only.
#include "AppError.h"
#include "ConnectionPool.h"
#include "DatabaseSchema.h"
#include "DbConnection.h"
#include "SchemaUpgrade.h"
#include "TestDatabases.h"
#include "TestEngine.h"

namespace {

class SchemaUpgradeTest : public DatabaseTest {
protected:
    void TearDown() override
    {
        for (const QString &location : made_) {
            ConnectionPool::shared().keepReadOnly(location, false);
            TestEngine::dropLibrary(location);
        }
        DatabaseTest::TearDown();
    }
    // A library as the release with that structure left it (no version kept), with a few rows.
    QString olderLibrary(int structure)
    {
        const QString location = TestEngine::onPostgres() ? TestEngine::makeEmptyServerDatabase() : path(QString("v%1.db").arg(structure));
        made_ << location;
        DatabaseSchema::createDatabase(location, DatabaseSchema::structureStatements(structure));
        runOn(location, "Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo) Values ('Sport', 796.5)");
        runOn(location, "Insert into tblLibItems (AccessionID, Title, ClassificationNo) Values ('A1', 'Rugby', 796.5)");
        runOn(location, "Insert into tblLibTransactions (AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) "
                        "Values ('A1', 'L', 12, 1, #2026-11-01#, #2026-11-15#)");
        return location;
    }
    static int versionOf(const QString &location)
    {
        DbConnection db;
        db.DataSource = location;
        db.Open();
        return SchemaUpgrade::version(db);
    }
    QStringList made_;
};

} // namespace

TEST_F(SchemaUpgradeTest, EveryOlderStructureIsUpgradedToTheCurrentWithItsRows)
{
    for (int structure = DatabaseSchema::Oldest; structure <= DatabaseSchema::Current; ++structure) {
        const QString old = olderLibrary(structure);
        const SchemaUpgrade::Outcome outcome = SchemaUpgrade::run(old);
        EXPECT_EQ(outcome.kind, SchemaUpgrade::Outcome::Upgraded) << "structure " << structure;
        EXPECT_EQ(outcome.version, int(DatabaseSchema::Current));
        EXPECT_EQ(versionOf(old), int(DatabaseSchema::Current)) << "structure " << structure;
        for (const char *probe : {"select PhasedOut from tblLibItemLanguages", "select PhasedOut from tblLibSubjectCodes",
                                  "select KeyID, KeywordEng, KeywordAfr from tblLibKeywords", "select KeyID, ItemID from tblLibItemKeywords",
                                  "select Author3, Edition from tblLibItems", "select Body from tblLibNoticeTemplate",
                                  "select StocktakeID, Outcome from tblLibStocktakeScans"})
            EXPECT_NO_THROW(runOn(old, probe)) << probe << " after structure " << structure;
        runOn(old, "Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo) Values ('Poetry', '821.A')");
        EXPECT_EQ(rowsIn(old, "select ClassificationNo from tblLibSubjectCodes order by Id"), (QStringList{"796.5", "821.A"}));
        EXPECT_EQ(rowsIn(old, "select AccessionID, Title, ClassificationNo from tblLibItems"), QStringList{"A1|Rugby|796.5"});
        EXPECT_EQ(rowsIn(old, "select AccessionID, DueDate, Returned from tblLibTransactions"), QStringList{"A1|2026-11-15|False"});
        // A second start finds nothing to do.
        EXPECT_EQ(SchemaUpgrade::run(old).kind, SchemaUpgrade::Outcome::UpToDate);
    }
    // A library made by this release keeps the current version from the start.
    EXPECT_EQ(versionOf(libraryPath_), int(DatabaseSchema::Current));
    EXPECT_EQ(SchemaUpgrade::run(libraryPath_).kind, SchemaUpgrade::Outcome::UpToDate);
}

TEST_F(SchemaUpgradeTest, AFailingStepLeavesThePreviousVersionAndItsDataAndIsTriedAgain)
{
    const QString old = olderLibrary(DatabaseSchema::Notices);
    // Something in the way of the stocktake step's index: its tables are made, then the index fails.
    runOn(old, "CREATE TABLE tblObstacle (x INT)");
    runOn(old, "CREATE INDEX ixStocktakeScansItem ON tblObstacle (x)");
    const SchemaUpgrade::Outcome failed = SchemaUpgrade::run(old);
    EXPECT_EQ(failed.kind, SchemaUpgrade::Outcome::Failed);
    EXPECT_EQ(failed.version, int(DatabaseSchema::Notices));
    EXPECT_EQ(versionOf(old), int(DatabaseSchema::Notices));
    EXPECT_THROW(runOn(old, "select StocktakeID from tblLibStocktakes"), AppError); // the step's first table went with it
    EXPECT_EQ(rowsIn(old, "select AccessionID, Title from tblLibItems"), QStringList{"A1|Rugby"});
    const QString told = SchemaUpgrade::message(failed);
    EXPECT_TRUE(told.contains("stocktake") && told.contains("tries again at the next start")) << told.toStdString();
    EXPECT_FALSE(told.contains("ixStocktakeScansItem"));

    runOn(old, "DROP TABLE tblObstacle");
    EXPECT_EQ(SchemaUpgrade::run(old).kind, SchemaUpgrade::Outcome::Upgraded);
    EXPECT_EQ(versionOf(old), int(DatabaseSchema::Current));
}

TEST_F(SchemaUpgradeTest, ALibraryOfANewerReleaseIsLeftAsItIs)
{
    library(QString("Update tblLibVersion set Version = %1").arg(int(DatabaseSchema::Current) + 1));
    const SchemaUpgrade::Outcome outcome = SchemaUpgrade::run(libraryPath_);
    EXPECT_EQ(outcome.kind, SchemaUpgrade::Outcome::Newer);
    EXPECT_TRUE(SchemaUpgrade::message(outcome).contains("read-only"));
    ConnectionPool::shared().keepReadOnly(libraryPath_);
    made_ << libraryPath_; // read-only is taken back at the end
    DbConnection db;
    db.DataSource = libraryPath_;
    db.Open();
    try {
        db.Execute("Insert into tblLibItems (AccessionID, Title) Values ('N1', 'New')");
        ADD_FAILURE() << "a newer release's library was written";
    } catch (const AppError &e) {
        EXPECT_EQ(e.description(), "Cannot update.  Database or object is read-only.");
    }
}

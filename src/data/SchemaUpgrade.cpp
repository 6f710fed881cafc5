#include "SchemaUpgrade.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "DatabaseSchema.h"
#include "DbConnection.h"
#include "Recordset.h"

#include <functional>
#include <vector>

namespace {

using V = DatabaseSchema::Version;

struct Step {
    int version;
    const char *what;                              // said when the step fails
    std::function<bool(DbConnection &)> needed;   // the probe: true while the database lacks the step
    QStringList repairs;
};

// A probe that fails is a structure still missing.
bool fails(DbConnection &db, const QString &probe)
{
    try {
        db.ExecuteCommand(probe);
        return false;
    } catch (const AppError &) {
        return true;
    }
}

// A text written into a numeric ClassificationNo fails with a type mismatch: then the columns are
// still numbers. The probe's row is rolled back and never kept.
bool numericClassification(DbConnection &db)
{
    bool mismatch = false;
    db.BeginTrans();
    try {
        db.Execute(QStringLiteral("Insert into tblLibSubjectCodes (ClassificationNo) Values ('abcRollback')"));
    } catch (const AppError &e) {
        mismatch = e.number() == AppError::DataTypeMismatch;
    }
    db.RollbackTrans();
    return mismatch;
}

const std::vector<Step> &steps()
{
    auto probe = [](const char *sql) { return [text = QString::fromLatin1(sql)](DbConnection &db) { return fails(db, text); }; };
    static const std::vector<Step> list{
        {V::LanguagesPhasedOut, "removing languages from the list", probe("select PhasedOut from tblLibItemLanguages"),
         {QStringLiteral("ALTER TABLE tblLibItemLanguages ADD PhasedOut Bit")}},
        {V::SubjectCodesPhasedOut, "removing subjects from the list", probe("select PhasedOut from tblLibSubjectCodes"),
         {QStringLiteral("ALTER TABLE tblLibSubjectCodes ADD PhasedOut Bit")}},
        {V::Keywords, "the search keywords", probe("select KeyID from tblLibKeywords"),
         {QStringLiteral("CREATE TABLE tblLibKeywords (KeyID INT IDENTITY UNIQUE,KeywordEng Text(50),KeywordAfr Text(50),")
          + QStringLiteral(" PRIMARY KEY (KeyID))")}},
        {V::ItemKeywords, "the keywords of the items", probe("select KeyID from tblLibItemKeywords"),
         QStringList{QStringLiteral("CREATE TABLE tblLibItemKeywords (KeyID INT,ItemID INT, PRIMARY KEY (KeyID,ItemID))")}
             + DatabaseSchema::keywordIndexes()},
        {V::TextClassification, "classification numbers with letters", numericClassification,
         {QStringLiteral("ALTER TABLE tblLibItems ALTER ClassificationNo TEXT (50)"),
          QStringLiteral("ALTER TABLE tblLibSubjectCodes ALTER ClassificationNo TEXT (50)")}},
        {V::Author3, "a third author", probe("select Author3 from tblLibItems"), {QStringLiteral("ALTER TABLE tblLibItems ADD Author3 INT")}},
        {V::Edition, "the edition of an item", probe("select Edition from tblLibItems"), {QStringLiteral("ALTER TABLE tblLibItems ADD Edition INT")}},
        // Both came with the overdue notices and the statistics: a database without the one lacks the other.
        {V::Notices, "the overdue letters and the statistics", probe("select Body from tblLibNoticeTemplate"),
         QStringList{DatabaseSchema::noticeTemplateTable()} + DatabaseSchema::periodIndexes()},
        {V::Stocktake, "stocktake", probe("select StocktakeID from tblLibStocktakeScans"), DatabaseSchema::stocktakeTables(V::Stocktake)},
        {V::StocktakeResults, "the counts of finished stocktakes", probe("select ScannedCount, ExpectedCount from tblLibStocktakes"),
         DatabaseSchema::stocktakeResultColumns()},
        {V::RecordSources, "finding a book's record by its ISBN", probe("select SourceID from tblLibRecordSources"),
         DatabaseSchema::recordSourceTable()},
        {V::MemberPins, "the members' PINs for the web catalogue", probe("select MemberID from tblLibMemberPins"), DatabaseSchema::memberPinTable()},
    };
    return list;
}

// A library from before versions were kept is given the table, at version 0.
void keepVersions(DbConnection &db)
{
    if (!fails(db, QStringLiteral("select Version from tblLibVersion")))
        return;
    try {
        db.RunTransaction([&] {
            for (const QString &sql : DatabaseSchema::versionTable())
                db.Execute(sql);
            db.Execute(QStringLiteral("Insert into tblLibVersion (Version) Values (0)"));
            return true;
        });
    } catch (const AppError &) {
        // Another desk starting at the same moment made it first.
        if (fails(db, QStringLiteral("select Version from tblLibVersion")))
            throw;
    }
}

} // namespace

int SchemaUpgrade::version(DbConnection &db)
{
    const auto rs = db.Execute(QStringLiteral("select max(Version) from tblLibVersion"));
    return rs->atEnd() || rs->field(0).isNull() ? 0 : rs->field(0).toInt();
}

SchemaUpgrade::Outcome SchemaUpgrade::run(const QString &location)
{
    DbConnection db;
    db.DataSource = location;
    db.Open();
    Outcome outcome;
    try {
        keepVersions(db);
    } catch (const AppError &) {
        outcome.kind = Outcome::Failed;
        outcome.failedStep = QStringLiteral("the record of its structure version");
        return outcome;
    }
    outcome.version = version(db);
    if (outcome.version > V::Current) {
        outcome.kind = Outcome::Newer;
        return outcome;
    }
    for (const Step &step : steps()) {
        if (step.version <= outcome.version)
            continue;
        try {
            const bool needed = step.needed(db);
            db.RunTransaction([&] {
                if (version(db) >= step.version)
                    return false; // another desk did it meanwhile
                if (needed)
                    for (const QString &sql : step.repairs)
                        db.Execute(sql);
                db.Execute(QStringLiteral("Update tblLibVersion set Version = %1").arg(step.version));
                return true;
            });
        } catch (const AppError &) {
            outcome.kind = Outcome::Failed;
            outcome.failedStep = QString::fromLatin1(step.what);
            outcome.version = version(db);
            return outcome;
        }
        outcome.kind = Outcome::Upgraded;
        outcome.version = step.version;
    }
    db.Close();
    // Connections opened before the upgrade may hold statements prepared on the old tables.
    ConnectionPool::shared().closeIdle(location);
    return outcome;
}

QString SchemaUpgrade::message(const Outcome &outcome)
{
    switch (outcome.kind) {
    case Outcome::Failed:
        return QStringLiteral("The library database could not be brought up to date: adding %1 did not work. Everything else works as "
                              "before; Shelvora tries again at the next start.")
            .arg(outcome.failedStep);
    case Outcome::Newer:
        return QStringLiteral("This library database was made by a newer release of Shelvora. It is opened read-only: you can look "
                              "things up, but nothing can be changed until this computer has the newer release.");
    default:
        return QString();
    }
}

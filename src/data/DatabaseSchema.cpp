#include "DatabaseSchema.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "Engine.h"
#include "DbConnection.h"

#include <QHash>
#include <QRegularExpression>

namespace {

// The library's tables as they stood at a structure version (0: the oldest release known; each
// later version is the structure after that upgrade step).
QStringList libraryTables(int version)
{
    using V = DatabaseSchema::Version;
    const QString classification = version < V::TextClassification ? QStringLiteral("DOUBLE") : QStringLiteral("TEXT(50)");
    QStringList s;
    s << QStringLiteral(
        "CREATE TABLE tblLibItems (ItemID COUNTER PRIMARY KEY, AccessionID TEXT(50), CategoryID INT, SubCategoryID INT, "
        "ClassificationNo %1, MainSubject TEXT(255), Title TEXT(255) NOT NULL, ByLine TEXT(255), Author1 INT, Author2 INT, %2"
        "Publisher INT, YearPublished SMALLINT, ItemLanguageID INT, ISBN TEXT(50), Barcode TEXT(50), SeriesID INT, "
        "Cost DOUBLE DEFAULT 0, ReferenceItem BIT DEFAULT false, DatePurchased DATETIME, DateAdded DATETIME, "
        "Restricted BIT DEFAULT false, LoanType TEXT(1) DEFAULT 'N', ShelfNumber TEXT(50), %3"
        "PhasedOut BIT DEFAULT false, PhasedOutDate DATETIME, PhasedOutReason TEXT(50))")
             .arg(classification, version < V::Author3 ? QString() : QStringLiteral("Author3 INT, "),
                  version < V::Edition ? QString() : QStringLiteral("Edition INT, "));
    s << QStringLiteral("CREATE TABLE tblLibCategories (CategoryID COUNTER PRIMARY KEY, Category TEXT(100), "
                        "PhasedOut BIT DEFAULT false, PhasedOutDate DATETIME)");
    s << QStringLiteral("CREATE TABLE tblLibSubCategories (SubCategoryID COUNTER PRIMARY KEY, CategoryID INT, SubCategory TEXT(100), "
                        "PhasedOut BIT DEFAULT false, PhasedOutDate DATETIME)");
    s << QStringLiteral("CREATE TABLE tblLibSubjectCodes (Id COUNTER PRIMARY KEY, SubjectDescription TEXT(255), ClassificationNo %1, "
                        "strSubject TEXT(255)%2)")
             .arg(classification, version < V::SubjectCodesPhasedOut ? QString() : QStringLiteral(", PhasedOut BIT"));
    s << QStringLiteral("CREATE TABLE tblLibItemSubjects (subjectid INT, itemid INT)");
    if (version >= V::Keywords)
        s << QStringLiteral("CREATE TABLE tblLibKeywords (KeyID INT IDENTITY UNIQUE,KeywordEng Text(50),KeywordAfr Text(50), PRIMARY KEY (KeyID))");
    if (version >= V::ItemKeywords)
        s << QStringLiteral("CREATE TABLE tblLibItemKeywords (KeyID INT,ItemID INT, PRIMARY KEY (KeyID,ItemID))");
    s << QStringLiteral("CREATE TABLE tblLibAuthors (AuthorID COUNTER PRIMARY KEY, AuthorSurname TEXT(100), AuthorFirstName TEXT(100), "
                        "AuthorCode TEXT(20), PhasedOut BIT DEFAULT false)");
    s << QStringLiteral("CREATE TABLE tblLibPublishers (PublisherID COUNTER PRIMARY KEY, Publisher TEXT(100), PhasedOut BIT DEFAULT false)");
    s << QStringLiteral("CREATE TABLE tblLibSeries (SeriesID COUNTER PRIMARY KEY, Series TEXT(100), PhasedOut BIT DEFAULT false)");
    s << QStringLiteral("CREATE TABLE tblLibItemLanguages (ItemLanguageID COUNTER PRIMARY KEY, ItemLanguage TEXT(50)%1)")
             .arg(version < V::LanguagesPhasedOut ? QString() : QStringLiteral(", PhasedOut BIT"));
    s << QStringLiteral("CREATE TABLE tblLibMasterCatalogue (CategoryID INT, SubCategoryID INT, Title TEXT(255), Author TEXT(255), "
                        "ContactDetails TEXT(255), Publisher TEXT(255), YearPublished SMALLINT, ItemLanguageID INT, ISBN TEXT(50), "
                        "Barcode TEXT(50), RetailPrice CURRENCY, Grade TEXT(50), MainSubject TEXT(255))");
    s << QStringLiteral("CREATE TABLE tblLibBook (Id COUNTER PRIMARY KEY, Title TEXT(255), ISBNCode TEXT(50), phasedout BIT DEFAULT false)");
    s << QStringLiteral("CREATE TABLE tblLibTransactions (TransactionID COUNTER PRIMARY KEY, AccessionID TEXT(50), MemberType TEXT(1), "
                        "MemberID INT, ItemID INT, IssueDate DATETIME, DueDate DATETIME, ReturnDate DATETIME, "
                        "Returned BIT DEFAULT false, Extensions SMALLINT DEFAULT 0)");
    s << QStringLiteral("CREATE TABLE tblLibTransactionFines (TransactionID INT, MemberID INT, MemberType TEXT(1), "
                        "FineAmount CURRENCY DEFAULT 0, DateFined DATETIME, PaymentAmount CURRENCY DEFAULT 0, PaymentDate DATETIME, "
                        "FineCancelled BIT DEFAULT false)");
    s << QStringLiteral("CREATE TABLE tblLibReserves (ReserveID COUNTER PRIMARY KEY, MemberType TEXT(1), MemberID INT, ItemID INT, "
                        "ReserveDate DATETIME, Canceled BIT DEFAULT false)");
    if (version >= V::Notices)
        s << DatabaseSchema::noticeTemplateTable();
    if (version >= V::Stocktake)
        s << DatabaseSchema::stocktakeTables(version);
    if (version >= V::RecordSources)
        s << DatabaseSchema::recordSourceTable();
    if (version >= V::MemberPins)
        s << DatabaseSchema::memberPinTable();
    s << QStringLiteral("CREATE TABLE tblLibSettings (LoanType TEXT(1) NOT NULL, UserCat TEXT(1) NOT NULL, LoanPeriod SMALLINT, "
                        "FineAmount CURRENCY, FineInterval SMALLINT, MaxItems SMALLINT, ExtDays SMALLINT, MaxExt SMALLINT, "
                        "MaxRes SMALLINT, MaxUserRes SMALLINT, PRIMARY KEY (LoanType, UserCat))");

    // Every look-up the screens and the loan routines make.
    s << QStringLiteral("CREATE INDEX ixItemsAccession ON tblLibItems (AccessionID)");
    s << QStringLiteral("CREATE INDEX ixItemsTitle ON tblLibItems (Title, AccessionID)");
    s << QStringLiteral("CREATE INDEX ixItemsMainSubject ON tblLibItems (MainSubject)");
    s << QStringLiteral("CREATE INDEX ixSubCategoriesCategory ON tblLibSubCategories (CategoryID)");
    s << QStringLiteral("CREATE INDEX ixItemSubjectsItem ON tblLibItemSubjects (itemid)");
    s << QStringLiteral("CREATE INDEX ixTransactionsItem ON tblLibTransactions (ItemID, Returned)");
    s << QStringLiteral("CREATE INDEX ixTransactionsAccession ON tblLibTransactions (AccessionID, Returned)");
    s << QStringLiteral("CREATE INDEX ixTransactionsMember ON tblLibTransactions (MemberID, MemberType, Returned)");

    // Two desks can never lend one copy twice: at most one open loan per item.
    s << QStringLiteral("CREATE UNIQUE INDEX uxTransactionsOpenLoan ON tblLibTransactions (ItemID) WHERE Returned = false");
    s << QStringLiteral("CREATE INDEX ixFinesTransaction ON tblLibTransactionFines (TransactionID, MemberID, MemberType)");
    s << QStringLiteral("CREATE INDEX ixFinesMember ON tblLibTransactionFines (MemberID, MemberType)");
    s << QStringLiteral("CREATE INDEX ixReservesItem ON tblLibReserves (ItemID, ReserveDate)");
    s << QStringLiteral("CREATE INDEX ixReservesMember ON tblLibReserves (MemberID, MemberType)");
    if (version >= V::ItemKeywords)
        s << DatabaseSchema::keywordIndexes();
    if (version >= V::Notices)
        s << DatabaseSchema::periodIndexes();
    return s;
}

} // namespace

QStringList DatabaseSchema::keywordIndexes()
{
    // Quick find by keyword starts from the keywords that begin with the text typed (either language).
    return {QStringLiteral("CREATE INDEX ixItemKeywordsItem ON tblLibItemKeywords (ItemID)"),
            QStringLiteral("CREATE INDEX ixKeywordsEnglish ON tblLibKeywords (KeywordEng)"),
            QStringLiteral("CREATE INDEX ixKeywordsAfrikaans ON tblLibKeywords (KeywordAfr)")};
}

QStringList DatabaseSchema::periodIndexes()
{
    // The statistics of a period read its loans and fines from these, never the whole tables.
    return {QStringLiteral("CREATE INDEX ixTransactionsIssued ON tblLibTransactions (IssueDate, MemberType, MemberID, ItemID, DueDate, Returned, ReturnDate)"),
            QStringLiteral("CREATE INDEX ixFinesFined ON tblLibTransactionFines (DateFined, FineAmount, FineCancelled)"),
            QStringLiteral("CREATE INDEX ixFinesPaid ON tblLibTransactionFines (PaymentDate, PaymentAmount)")};
}

QStringList DatabaseSchema::stocktakeTables(int version)
{
    return {QStringLiteral("CREATE TABLE tblLibStocktakes (StocktakeID COUNTER PRIMARY KEY, StocktakeName TEXT(100), StartDate DATETIME, "
                           "Categories TEXT(255), SubCategories TEXT(255), Finished BIT DEFAULT false%1)")
                .arg(version >= StocktakeResults ? QStringLiteral(", ScannedCount INT, ExpectedCount INT") : QString()),
            QStringLiteral("CREATE TABLE tblLibStocktakeScans (StocktakeID INT NOT NULL, AccessionID TEXT(50) NOT NULL, ItemID INT, "
                           "ScannedAt DATETIME, Outcome TEXT(1), PRIMARY KEY (StocktakeID, AccessionID))"),
            QStringLiteral("CREATE INDEX ixStocktakeScansItem ON tblLibStocktakeScans (StocktakeID, ItemID)")};
}

QStringList DatabaseSchema::stocktakeResultColumns()
{
    return {QStringLiteral("ALTER TABLE tblLibStocktakes ADD ScannedCount INT"), QStringLiteral("ALTER TABLE tblLibStocktakes ADD ExpectedCount INT")};
}

QStringList DatabaseSchema::recordSourceTable()
{
    // The Library of Congress answers anyone, by Z39.50 and by SRU; a school adds its national library's.
    return {QStringLiteral("CREATE TABLE tblLibRecordSources (SourceID COUNTER PRIMARY KEY, SourceName TEXT(100) NOT NULL, "
                           "Address TEXT(255) NOT NULL, Protocol TEXT(6) DEFAULT 'Z39.50', RecordSyntax TEXT(20) DEFAULT 'usmarc', "
                           "CharacterSet TEXT(20), TimeoutSeconds SMALLINT DEFAULT 10, Enabled BIT DEFAULT true)"),
            QStringLiteral("Insert into tblLibRecordSources (SourceName, Address, Protocol, Enabled) values "
                           "('Library of Congress', 'lx2.loc.gov:210/LCDB', 'Z39.50', true)"),
            QStringLiteral("Insert into tblLibRecordSources (SourceName, Address, Protocol, Enabled) values "
                           "('Library of Congress (SRU)', 'http://lx2.loc.gov:210/LCDB', 'SRU', false)")};
}

QStringList DatabaseSchema::memberPinTable()
{
    return {QStringLiteral("CREATE TABLE tblLibMemberPins (MemberType TEXT(1) NOT NULL, MemberID INT NOT NULL, PinHash TEXT(255) NOT NULL, "
                           "PRIMARY KEY (MemberType, MemberID))")};
}

QString DatabaseSchema::noticeTemplateTable()
{
    return QStringLiteral("CREATE TABLE tblLibNoticeTemplate (TemplateID COUNTER PRIMARY KEY, Body MEMO)");
}

QStringList DatabaseSchema::libraryStatements()
{
    return libraryTables(Current) + versionTable() << QStringLiteral("Insert into tblLibVersion (Version) Values (%1)").arg(int(Current));
}

QStringList DatabaseSchema::olderReleaseLibraryStatements() { return libraryTables(Oldest); }

QStringList DatabaseSchema::structureStatements(int version) { return libraryTables(version); }

QStringList DatabaseSchema::versionTable() { return {QStringLiteral("CREATE TABLE tblLibVersion (Version INT NOT NULL)")}; }

QStringList DatabaseSchema::centralStatements()
{
    return {
        QStringLiteral("CREATE TABLE general_info (schoolname TEXT(255))"),
        QStringLiteral("CREATE TABLE SchoolGrades (ID INT PRIMARY KEY, Name TEXT(50), schoolgrade TEXT(3))"),
        QStringLiteral("CREATE TABLE Classes (ClassID COUNTER PRIMARY KEY, ClassName TEXT(50), Grade INT)"),
        QStringLiteral("CREATE TABLE ReasonCodes (ReasonCode INT PRIMARY KEY, ReasonDescription TEXT(100))"),
        QStringLiteral("CREATE TABLE Learner_Info (ID COUNTER PRIMARY KEY, AccessionNo TEXT(20), SName TEXT(50), FName TEXT(50), "
                       "NickName TEXT(50), Grade INT, Class INT, Gender TEXT(1), IDNo TEXT(20), Photoname TEXT(255), Status TEXT(1), "
                       "TSStatusFlag INT, TSReasonCode INT, LuritsIndicator TEXT(10), LuritsFlag INT, LuritsNumber TEXT(20), "
                       "thedate DATETIME)"),
        QStringLiteral("CREATE TABLE Educators (EdID COUNTER PRIMARY KEY, SName TEXT(50), FName TEXT(50), IDNumber TEXT(20), "
                       "[Key] TEXT(20), Status TEXT(1))"),
        QStringLiteral("CREATE TABLE StaffMembers (staffID COUNTER PRIMARY KEY, SName TEXT(50), FName TEXT(50), IDNumber TEXT(20), "
                       "Status TEXT(1))"),
        QStringLiteral("CREATE TABLE Parent_Info (ParentID COUNTER PRIMARY KEY, SName TEXT(50), FName TEXT(50), IDNumber TEXT(20))"),
        QStringLiteral("CREATE INDEX ixLearnerAccession ON Learner_Info (AccessionNo)"),
        QStringLiteral("CREATE INDEX ixLearnerClass ON Learner_Info (Grade, Class)"),
        QStringLiteral("CREATE INDEX ixEducatorIDNumber ON Educators (IDNumber)"),
        QStringLiteral("CREATE INDEX ixStaffIDNumber ON StaffMembers (IDNumber)"),
    };
}

void DatabaseSchema::createDatabase(const QString &path, const QStringList &statements)
{
    (void)EngineRegistry::installed().forLocation(path).create(path);
    DbConnection connection;
    connection.DataSource = path;
    connection.Open();
    connection.BeginTrans();
    for (const QString &sql : statements)
        connection.Execute(sql);
    connection.CommitTrans();
    connection.Close();
    // Its connections learn afresh what the database is (a school database refuses writes).
    ConnectionPool::shared().closeIdle(path);
}

int DatabaseSchema::textColumnSize(const QString &table, const QString &column)
{
    static const QHash<QString, int> sizes = [] {
        QHash<QString, int> found;
        static const QRegularExpression create(QStringLiteral("^CREATE TABLE (\\w+) \\((.*)\\)$"), QRegularExpression::CaseInsensitiveOption);
        static const QRegularExpression text(QStringLiteral("(?:^|,)\\s*(\\w+) TEXT\\s*\\((\\d+)\\)"), QRegularExpression::CaseInsensitiveOption);
        for (const QString &statement : libraryStatements()) {
            const QRegularExpressionMatch t = create.match(statement);
            if (!t.hasMatch())
                continue;
            for (auto it = text.globalMatch(t.captured(2)); it.hasNext();) {
                const QRegularExpressionMatch c = it.next();
                found.insert(t.captured(1).toLower() + QLatin1Char('.') + c.captured(1).toLower(), c.captured(2).toInt());
            }
        }
        return found;
    }();
    return sizes.value(table.toLower() + QLatin1Char('.') + column.toLower());
}

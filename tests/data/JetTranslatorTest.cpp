#include "AppError.h"
#include "JetDate.h"
#include "JetError.h"
#include "Clock.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "SqliteDatabase.h"
#include "PostgresDatabase.h"
#include "TestDatabases.h"
#include "TestEngine.h"
#include "clsDataObject.h"

namespace {

std::string sqlite(const char *jet) { return SqliteDatabase::sharedTranslator().translate(jet).sql; }

} // namespace

TEST(JetTranslation, RewritesJetConstructsForSqlite)
{
    EXPECT_EQ(sqlite("select top 1 ItemID from tblLibItems order by itemid desc"),
              "SELECT ItemID from tblLibItems ORDER BY itemid desc LIMIT 1");
    EXPECT_EQ(sqlite("Delete * from tblLibsettings"), "Delete from tblLibsettings");
    EXPECT_EQ(sqlite("Update t set d =#2026-11-23#, e = #11/3/2026#, f = true where g = false"),
              "Update t set d = '2026-11-23', e = '2026-11-03', f = -1 where g = 0");
    EXPECT_EQ(sqlite("Select a & ', ' & b as c from t order by c"),
              "SELECT ((ifnull(a, '') || ', ' || ifnull(b, '')) COLLATE NOCASE) as c from t ORDER BY c COLLATE NOCASE");
    EXPECT_EQ(sqlite("select (s + ', ' + f) as n, x + 1 from t"), "SELECT ((((s) || (', ') || (f)) COLLATE NOCASE)) as n, x + 1 from t");
    EXPECT_EQ(sqlite("select x from t where isnull(p) = -1 and left(a,2) = 'ab' and ucase(b) = lcase(c)"),
              "SELECT x from t where jet_isnull(p) = - 1 and jet_left(a, 2) = 'ab' and upper(b) = lower(c)");
    EXPECT_EQ(sqlite("select \"it's\" as q"), "SELECT 'it''s' as q");
    // Numeric functions compare numerically with a quoted number, as in Jet.
    EXPECT_EQ(sqlite("select id from t where year(thedate)<= '2026'"), "SELECT id from t where CAST(jet_year(thedate) AS INTEGER) <= '2026'");
    EXPECT_EQ(sqlite("select id from t where len('abc') > '2'"), "SELECT id from t where CAST(length('abc') AS INTEGER) > '2'");
    EXPECT_EQ(sqlite("select * from (select top 3 a from t order by a) as s"),
              "SELECT * from (SELECT a from t ORDER BY a LIMIT 3) as s");
}

TEST(JetTranslation, DateLiteralsInEitherOrder)
{
    std::string iso;
    EXPECT_TRUE(parseJetDate("11/23/2026", &iso));
    EXPECT_EQ(iso, "2026-11-23");
    EXPECT_TRUE(parseJetDate("2026-11-23", &iso));
    EXPECT_EQ(iso, "2026-11-23");
    EXPECT_TRUE(parseJetDate("2/29/2024 1:05:09 PM", &iso));
    EXPECT_EQ(iso, "2024-02-29 13:05:09");
    EXPECT_FALSE(parseJetDate("2/29/2025", &iso));
    EXPECT_FALSE(parseJetDate("13/1/2026", &iso));
    EXPECT_FALSE(parseJetDate("2026-11-23 25:00", &iso));
    EXPECT_FALSE(parseJetDate("tomorrow", &iso));
}

TEST(JetTranslation, RefusesWhatItCannotTranslateKeepingTheText)
{
    for (const char *bad : {"select 1; delete * from t", "select 'unterminated", "select a from t where b = #2/30/2026#",
                            "select a ^ 2 from t", "select * from t where (a = 1", "frobnicate the table"}) {
        try {
            SqliteDatabase::sharedTranslator().translate(bad);
            ADD_FAILURE() << bad;
        } catch (const JetError &e) {
            EXPECT_EQ(e.statement(), bad);
            EXPECT_EQ(e.number(), JetError::SyntaxError);
        }
    }
}

TEST(JetTranslation, AShapeSeenBeforeComesFromTheCache)
{
    JetTranslator &t = SqliteDatabase::sharedTranslator();
    t.clearCache();
    t.translate("select * from tblLibItems where AccessionID = 'A1' and DateAdded > #2026-01-01#");
    EXPECT_EQ(t.cachedShapes(), 1u);
    const auto second = t.translate("select * from tblLibItems where AccessionID = 'B2''s' and DateAdded > #3/4/2025#");
    EXPECT_EQ(t.cachedShapes(), 1u);
    EXPECT_EQ(second.sql, "SELECT * from tblLibItems where AccessionID = 'B2''s' and DateAdded > '2025-03-04'");
    t.translate("select * from tblLibItems where AccessionID = 'A1'");
    EXPECT_EQ(t.cachedShapes(), 2u);
}

// Every statement family run on a real database.
class JetOnSqlite : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        library("Insert into tblLibAuthors(AuthorSurname, AuthorFirstName) values ('Smit', 'Jan')");
        library("Insert into tblLibAuthors(AuthorSurname, AuthorFirstName) values ('du Toit', Null)");
        library("Insert into tblLibCategories(Category) values ('Fiction')");
        library("Insert into tblLibItems(AccessionID, CategoryID, Title, ShelfNumber, Author1, Author2, DateAdded) values ('a1', 1, 'beta', 'F', 1, 2, #2026-11-02#)");
        library("Insert into tblLibItems(AccessionID, CategoryID, Title, ShelfNumber, Author1, DateAdded) values ('A2', 1, 'Alpha', 'F', 2, #2025-01-15#)");
        library("Insert into tblLibItems(AccessionID, CategoryID, Title, ShelfNumber, Author1, DateAdded, PhasedOut) values ('A3', 9, 'gamma', 'F', 1, #2024-06-30#, true)");
    }
    QStringList q(const QString &sql) { return libraryRows(sql); }
};

TEST_F(JetOnSqlite, TextComparesAndSortsWithoutRegardToCase)
{
    EXPECT_EQ(q("select AccessionID from tblLibItems where accessionid = 'A1'"), QStringList{"a1"});
    EXPECT_EQ(q("select Title from TBLLIBITEMS order by title"), (QStringList{"Alpha", "beta", "gamma"}));
    EXPECT_EQ(q("select Title from tblLibItems where Title like 'B%'"), QStringList{"beta"});
    EXPECT_EQ(q("select Title from tblLibItems where Title like '_amm_'"), QStringList{"gamma"});
    EXPECT_EQ(q("select [title] from [tblLibItems] where [AccessionID] = 'a2'"), QStringList{"Alpha"});
    EXPECT_EQ(q("select ucase(Title) & '-' & lcase(AccessionID) as k from tblLibItems order by k desc"),
              (QStringList{"GAMMA-a3", "BETA-a1", "ALPHA-a2"}));
    // Joined texts compare and sort without regard to case too.
    EXPECT_EQ(q("select Title from tblLibItems where Title & '/' & AccessionID = 'BETA/A1'"), QStringList{"beta"});
    EXPECT_EQ(q("select Title & AccessionID as k from tblLibItems order by Title & AccessionID"),
              (QStringList{"AlphaA2", "betaa1", "gammaA3"}));
}

TEST_F(JetOnSqlite, BooleansInEveryWrittenForm)
{
    for (const char *test : {"PhasedOut = 0", "PhasedOut = false", "PhasedOut <> true", "phasedout = False"})
        EXPECT_EQ(q(QString("select AccessionID from tblLibItems where %1 order by AccessionID").arg(test)), (QStringList{"a1", "A2"})) << test;
    EXPECT_EQ(q("select AccessionID from tblLibItems where PhasedOut = -1"), QStringList{"A3"});
    EXPECT_EQ(q("select AccessionID from tblLibItems where PhasedOut = true"), QStringList{"A3"});
}

TEST_F(JetOnSqlite, ConcatenationAndNulls)
{
    EXPECT_EQ(q("select a.AuthorSurname & ', ' & a.AuthorFirstName from tblLibAuthors as a order by a.AuthorID"),
              (QStringList{"Smit, Jan", "du Toit, "}));
    // + propagates Null, as Jet's does.
    EXPECT_EQ(q("select (AuthorSurname + ', ' + AuthorFirstName) as n, IsNull(AuthorFirstName), Nz(AuthorFirstName, '?') from tblLibAuthors order by AuthorID"),
              (QStringList{"Smit, Jan|0|Jan", "|-1|?"}));
    EXPECT_EQ(q("select IIf(IsNull(AuthorFirstName), 'none', AuthorFirstName), Len(AuthorSurname), Left(AuthorSurname, 2), "
                "Mid(AuthorSurname, 2, 3), Trim('  x  ') from tblLibAuthors order by AuthorID"),
              (QStringList{"Jan|4|Sm|mit|x", "none|7|du|u T|x"}));
}

TEST_F(JetOnSqlite, DatesAndDateFunctions)
{
    Clock::setFixed(QDateTime(QDate(2026, 11, 23), QTime(10, 30)));
    EXPECT_EQ(q("select AccessionID from tblLibItems where DateAdded > #1/1/2025# and DateAdded < #2026-12-01# order by DateAdded"),
              (QStringList{"A2", "a1"}));
    EXPECT_EQ(q("select Year(DateAdded), Month(DateAdded), Day(DateAdded) from tblLibItems where AccessionID = 'A2'"), QStringList{"2025|1|15"});
    EXPECT_EQ(q("select Date(), Now(), DateAdd('yyyy', -2, Date()), DateAdd('d', 10, #2026-12-25#), DateAdd('m', 1, #1/31/2026#)"),
              QStringList{"2026-11-23|2026-11-23 10:30:00|2024-11-23|2027-01-04|2026-02-28"});
    EXPECT_EQ(q("select AccessionID from tblLibItems where DateAdded between dateadd('yyyy',-2,date()) and date() order by AccessionID"),
              (QStringList{"a1", "A2"}));
    library("Update tblLibItems set DatePurchased = Date() where AccessionID = 'A2'");
    EXPECT_EQ(q("select DatePurchased from tblLibItems where DatePurchased is not null"), QStringList{"2026-11-23"});
}

// Jet's conversion and date functions give the same answers on every engine.
TEST_F(JetOnSqlite, ConversionsAndDateArithmetic)
{
    EXPECT_EQ(q("select DateDiff('d', #2026-11-01#, #2026-11-23#), DateDiff('m', #2026-01-31#, #2026-03-01#), "
                "DateDiff('yyyy', #2025-12-31#, #2026-01-01#), DateDiff('ww', #2026-11-01#, #2026-11-23#)"),
              QStringList{"22|2|1|3"});
    EXPECT_EQ(q("select Format(#2026-11-03#, 'dd/mm/yyyy'), Format(#2026-11-03 14:05:00#, 'yyyy-mm-dd hh:mm')"),
              QStringList{"03/11/2026|2026-11-03 14:05"});
    EXPECT_EQ(q("select CStr(12.5), CLng(2.5), CLng(3.5), CInt('7'), Val('12abc'), Int(-2.5), IIf(1 > 0, 1, 2.5)"),
              QStringList{"12.5|2|4|7|12|-3|1"});
    EXPECT_EQ(q("select AccessionID from tblLibItems where DateDiff('d', DateAdded, #2026-11-23#) > 300 order by AccessionID"),
              (QStringList{"A2", "A3"}));
}

TEST_F(JetOnSqlite, NestedJoinsTopAndSubqueries)
{
    EXPECT_EQ(q("SELECT i.AccessionID, c.Category, (a1.Authorsurname+', '+a1.Authorfirstname) AS Author1, a2.AuthorSurname "
                "FROM (((tblLibItems AS i LEFT JOIN tblLibCategories AS c ON i.CategoryID=c.CategoryID) "
                "LEFT JOIN tblLibAuthors AS a1 ON (a1.AuthorID = i.Author1)) LEFT JOIN tblLibAuthors as a2 on (a2.AuthorID = i.Author2)) "
                "where i.PhasedOut=False  Order By Title, AccessionID"),
              (QStringList{"A2|Fiction||", "a1|Fiction|Smit, Jan|du Toit"}));
    EXPECT_EQ(q("SELECT c.Category, i.AccessionID FROM tblLibCategories AS c RIGHT JOIN tblLibItems AS i ON i.CategoryID = c.CategoryID "
                "WHERE i.AccessionID = 'A3'"),
              QStringList{"|A3"});
    EXPECT_EQ(q("select top 2 AccessionID from tblLibItems order by DateAdded desc"), (QStringList{"a1", "A2"}));
    EXPECT_EQ(q("SELECT tblLibitems.Title FROM (tblLibitems ) WHERE (title LIKE 'al%')And (tblLibitems.phasedout = false) order by  Title,accessionID"),
              QStringList{"Alpha"});
    EXPECT_EQ(q("select AccessionID from tblLibItems where ItemID in (select max(ItemID) from tblLibItems)"), QStringList{"A3"});
    EXPECT_EQ(q("Select Count(*) as total, Max (ItemID) from tblLibItems where PhasedOut = false"), QStringList{"2|2"});
}

TEST_F(JetOnSqlite, DeleteAndTransactions)
{
    DbConnection c;
    c.DataSource = libraryPath_;
    c.Open();
    c.BeginTrans();
    c.Execute("Delete * from tblLibItems where PhasedOut = true");
    EXPECT_EQ(c.Execute("select * from tblLibItems")->RecordCount(), 2);
    c.RollbackTrans();
    EXPECT_EQ(libraryCount("select * from tblLibItems"), 3);
    int affected = 0;
    c.Execute("Delete tblLibItems.* from tblLibItems where PhasedOut = true", &affected);
    EXPECT_EQ(affected, 1);
}

TEST_F(JetOnSqlite, AlterTableAddsColumnsAndChangesTypesKeepingEveryRow)
{
    library("ALTER TABLE tblLibCategories ADD Sorting INT");
    library("ALTER TABLE tblLibCategories ADD Hidden Bit");
    EXPECT_EQ(q("select Category, Sorting, Hidden from tblLibCategories where Hidden = false"), QStringList{"Fiction||False"});

    // A numeric column becomes text; rows, indexes and the counter survive.
    library("CREATE TABLE tblOld (Id COUNTER PRIMARY KEY, Code DOUBLE, Name TEXT(20))");
    library("CREATE INDEX ixOldName ON tblOld (Name)");
    library("Insert into tblOld (Code, Name) values (796.5, 'art')");
    library("Insert into tblOld (Code, Name) values (12, 'math')");
    library("Insert into tblOld (Code, Name) values (3, 'gone')");
    library("Delete * from tblOld where Name = 'gone'");
    EXPECT_THROW(library("Insert into tblOld (Code) Values ('abcRollback')"), AppError);
    library("ALTER TABLE tblOld ALTER Code TEXT (50)");
    library("Insert into tblOld (Code, Name) Values ('abc', 'letters')");
    EXPECT_EQ(q("select Id, Code, Name from tblOld order by Id"), (QStringList{"1|796.5|art", "2|12|math", "4|abc|letters"}));
    EXPECT_EQ(q("select Name from tblOld where Name = 'ART'"), QStringList{"art"});
    if (!TestEngine::onPostgres()) {
        EXPECT_EQ(libraryValue("select count(*) from sqlite_master where name = 'ixOldName'"), "1"); // the index came back
    }
}

TEST_F(JetOnSqlite, CreateTableWithAnIdentityKey)
{
    library("CREATE TABLE tblKw (KeyID INT IDENTITY UNIQUE,KeywordEng Text(50),KeywordAfr Text(50), PRIMARY KEY (KeyID))");
    library("Insert into tblKw (KeywordEng,KeywordAfr) Values('dog','hond')");
    library("Insert into tblKw (KeywordEng,KeywordAfr) Values('cat','kat')");
    EXPECT_EQ(q("select KeyID, KeywordAfr from tblKw order by KeyID"), (QStringList{"1|hond", "2|kat"}));
    try {
        library(QString("Insert into tblKw (KeywordEng) Values('%1')").arg(QString(51, 'x')));
        FAIL();
    } catch (const AppError &e) {
        EXPECT_TRUE(e.description().startsWith("The field is too small"));
        EXPECT_EQ(e.cause(), AppError::Cause::TooLong);
    }
}

TEST(JetTranslation, OuterJoinsTheWhereClauseRejectsBecomeInnerJoins)
{
    // The quick find by keyword: a keyword's row must exist, so must its link.
    EXPECT_EQ(sqlite("SELECT i.Title FROM (tblLibitems as i LEFT JOIN tblLibItemKeywords on (i.ItemID = tblLibItemKeywords.ItemID))  LEFT JOIN "
                     "tblLibKeywords on (tblLibItemKeywords.KeyID = tblLibKeywords.KeyID)  WHERE ((tblLibKeywords.KeywordEng LIKE 'ho%') OR "
                     "(tblLibKeywords.KeywordAfr LIKE 'ho%'))And (i.phasedout = false) order by Title"),
              "SELECT i.Title FROM (tblLibitems as i inner JOIN tblLibItemKeywords on (i.ItemID = tblLibItemKeywords.ItemID)) inner JOIN "
              "tblLibKeywords on (tblLibItemKeywords.KeyID = tblLibKeywords.KeyID) WHERE ((tblLibKeywords.KeywordEng LIKE 'ho%') OR "
              "(tblLibKeywords.KeywordAfr LIKE 'ho%')) And (i.phasedout = 0) ORDER BY Title");
    EXPECT_EQ(sqlite("select a.x from a left outer join b on a.k = b.k where b.v = 1"), "SELECT a.x from a inner join b on a.k = b.k where b.v = 1");
    // Left as written: a missing row may pass the test.
    for (const char *kept : {"select a.x from a left join b on a.k = b.k where b.v is null",
                             "select a.x from a left join b on a.k = b.k where (b.v = 1 or a.w = 2)",
                             "select a.x from a left join b on a.k = b.k where v = 1",
                             "select a.x from a left join b on a.k = b.k where not (b.v = 1)",
                             "select a.x from a left join b on a.k = b.k where nz(b.v, 0) = 0",
                             "select a.x from a left join b on a.k = b.k left join c on c.k = a.k where c.v = 1 and a.w = 2",
                             "select a.x from a left join (select k, v from b) as s on a.k = s.k where s.v = 1"}) {
        const std::string out = sqlite(kept);
        EXPECT_NE(out.find("left join"), std::string::npos) << out;
    }
}

TEST_F(JetOnSqlite, ReducedJoinsReturnTheSameRows)
{
    library("create table a (k int, w int)");
    library("create table b (k int, v int)");
    library("create table c (k int, v int)");
    library("insert into a values (1, 1)");
    library("insert into a values (2, 1)");
    library("insert into a values (3, 1)");
    library("insert into b values (1, 7)");
    library("insert into b values (2, 8)");
    library("insert into c values (7, 70)");
    EXPECT_EQ(q("select a.k from (a left join b on a.k = b.k) left join c on b.v = c.k where c.v = 70 order by a.k"), QStringList{"1"});
    EXPECT_EQ(q("select a.k from a left join b on a.k = b.k where b.v is null order by a.k"), QStringList{"3"});
    EXPECT_EQ(q("select a.k from a left join b on a.k = b.k where (b.v = 7 or a.w = 1) order by a.k"), (QStringList{"1", "2", "3"}));
}

namespace {
std::string postgres(const char *jet) { return PostgresDatabase::sharedTranslator().translate(jet).sql; }
} // namespace

// The same Jet text for the server: names as the server folds them, Like without regard to case,
// & over any type with Null as empty, dates as timestamps, Mod and brackets round a lone table.
TEST(JetTranslation, RewritesJetConstructsForPostgres)
{
    EXPECT_EQ(postgres("select top 1 [Key], [Fine Amount] from (Educators) where SName like 'du%' order by EdID desc"),
              "SELECT \"key\", \"fine amount\" from Educators where SName ILIKE 'du%' ORDER BY EdID desc LIMIT 1");
    EXPECT_EQ(postgres("Select a & ', ' & b as c from t where d >= #11/3/2026# and ItemID mod 4 = 1 and f = true"),
              "SELECT CAST((COALESCE(CAST(a AS text), '') || ', ' || COALESCE(CAST(b AS text), '')) AS citext) as c from t where d >= "
              "CAST('2026-11-03' AS timestamp(0)) and ItemID % 4 = 1 and f = -1");
    EXPECT_EQ(postgres("select count(*) / 2, isnull(p), dateadd('d', 3, date()), int(x) from t"),
              "SELECT count(*) * 1.0 / 2, jet_isnull(p), jet_dateadd_checked('d', 3, jet_date()), jet_int(x) from t");
    EXPECT_EQ(postgres("CREATE TABLE tblT (ID COUNTER PRIMARY KEY, Title TEXT(20) NOT NULL, Flag BIT, Cost CURRENCY, Due DATETIME)"),
              "CREATE TABLE \"tblt\" (\"id\" integer GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY, \"title\" citext NOT NULL "
              "CONSTRAINT \"size_9865b509\" CHECK (char_length(\"title\") <= 20), \"flag\" jet_bit NOT NULL DEFAULT 0, "
              "\"cost\" jet_currency, \"due\" timestamp(0))");
}

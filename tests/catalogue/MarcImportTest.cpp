// MARC records into the catalogue: the preview, the import in one transaction, and an export
// that imports into an empty library as the same catalogue.
#include "AppError.h"
#include "ConnectionPool.h"
#include "DatabaseLocations.h"
#include "MarcImport.h"
#include "TaskProgress.h"
#include "TestDatabases.h"
#include "TestEngine.h"
#include "ScreenDriver.h"
#include "frmMarcImport.h"
#include "frmRecordSources.h"
#include "frmItemList.h"
#include "ScreenRegistry.h"
#include "SpreadGrid.h"

#include <QFile>

namespace {

class MarcImportTest : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        library("Insert into tblLibCategories (Category) values ('Fiction')");
        library("Insert into tblLibItemLanguages (ItemLanguage) values ('Afrikaans')");
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('Smith', 'Ann')");
        library("Insert into tblLibItems (AccessionID, Title, ISBN, Author1, CategoryID) values ('A0099', 'Held by ISBN', '0-19-852663-6', 0, 1)");
        library("Insert into tblLibItems (AccessionID, Title, Author1, CategoryID) values ('A0100', 'Old Title', 1, 1)");
    }
    static MarcRecord record(const QString &title, const QString &author, const QString &isbn = QString())
    {
        MarcRecord r;
        r.addControl("008", "240115s2023    sa            000 1 afr d");
        if (!isbn.isEmpty())
            r.addData("020", ' ', ' ', {{'a', isbn}});
        if (!author.isEmpty())
            r.addData("100", '1', ' ', {{'a', author + ","}});
        if (!title.isEmpty())
            r.addData("245", '1', '0', {{'a', title + " /"}});
        r.addData("264", ' ', '1', {{'b', "Tafelberg,"}, {'c', "2023."}});
        return r;
    }
    MarcImport::Result take(const QList<MarcImport::Row> &rows, int copies = 1, const QString &loanType = "N")
    {
        TaskProgress progress;
        return MarcImport::take(rows, {"Fiction", loanType, copies}, progress);
    }
};

} // namespace

// The preview says what each record becomes: titles held already (by ISBN in either form, else by
// title and main author) are named, records that cannot be taken give their reason.
TEST_F(MarcImportTest, ThePreviewNamesDuplicatesAndWhatCannotBeTaken)
{
    const QByteArray file = MarcFile::write({record("New Book", "Dlamini, Zola", "9780804429573"), record("Other", "X", "9780198526636"),
                                             record("old title", "Smith, Ann"), record("", "No Title")},
                                            MarcFile::Format::Iso2709)
                            + "not a record at all\x1d";
    const QList<MarcImport::Row> rows = MarcImport::preview(file);
    ASSERT_EQ(rows.size(), 5);
    EXPECT_EQ(rows[0].record.title, "New Book");
    EXPECT_EQ(rows[0].duplicate, "");
    EXPECT_EQ(rows[1].duplicate, "A0099 Held by ISBN");
    EXPECT_EQ(rows[2].duplicate, "A0100 Old Title");
    EXPECT_EQ(rows[3].problem, "no title (245 $a)");
    EXPECT_EQ(rows[4].problem, "broken structure (no record length in the leader)");
    EXPECT_EQ(libraryValue("select count(*) from tblLibItems"), "2") << "the preview wrote";
}

// 500 records, two copies each, in one transaction: accession numbers go on from the newest, each
// new author is added once, the loan type is the one chosen. A write refused half way, or a
// cancel, leaves the catalogue as it was.
TEST_F(MarcImportTest, FiveHundredRecordsGoInTogetherOrNotAtAll)
{
    QList<MarcRecord> records;
    for (int n = 1; n <= 500; ++n)
        records << record(QString("Title %1").arg(n), n % 2 ? "Mokoena, Thabo" : "Smith, Ann");
    const QList<MarcImport::Row> rows = MarcImport::preview(MarcFile::write(records, MarcFile::Format::Iso2709));

    TestEngine::refuse(libraryPath_, "tblLibItems", "INSERT", "NEW.accessionid = 'A0600'");
    EXPECT_THROW(take(rows, 2, "S"), AppError);
    EXPECT_EQ(libraryValue("select count(*) from tblLibItems"), "2");
    EXPECT_EQ(libraryValue("select count(*) from tblLibAuthors"), "1") << "an author of the failed import was kept";
    TestEngine::unrefuse(libraryPath_, "tblLibItems", "INSERT");
    {
        TaskProgress cancelled;
        cancelled.cancel();
        EXPECT_THROW(MarcImport::take(rows, {"Fiction", "S", 2}, cancelled), TaskCancelled);
        EXPECT_EQ(libraryValue("select count(*) from tblLibItems"), "2");
    }
    EXPECT_THROW(MarcImport::take(rows, {"Poetry", "S", 2}, *std::make_unique<TaskProgress>()), AppError);

    const MarcImport::Result result = take(rows, 2, "S");
    EXPECT_EQ(result.titles, 500);
    ASSERT_EQ(result.accessions.size(), 1000);
    EXPECT_EQ(result.accessions.first(), "A0101");
    EXPECT_EQ(result.accessions.last(), "A01100"); // the accession rule keeps its leading zero past A0999
    EXPECT_EQ(libraryValue("select count(*) from tblLibItems where LoanType = 'S' and CategoryID = 1"), "1000");
    EXPECT_EQ(libraryRows("select AuthorSurname, AuthorFirstName from tblLibAuthors order by AuthorID"),
              (QStringList{"Smith|Ann", "Mokoena|Thabo"}));
    EXPECT_EQ(libraryRows("select Title, ByLine, YearPublished, ItemLanguageID from tblLibItems where AccessionID = 'A0102'"),
              QStringList{"Title 1||2023|1"});
}

// The catalogue written as MARC and read into an empty library: the same titles, authors, ISBNs
// and copies (accession numbers kept).
TEST_F(MarcImportTest, AnExportImportsIntoAnEmptyLibraryAsTheSameCatalogue)
{
    library("Insert into tblLibItems (AccessionID, Title, ISBN, Author1, CategoryID) values ('A0101', 'Held by ISBN', '0-19-852663-6', 0, 1)");
    library("Insert into tblLibPublishers (Publisher) values ('Tafelberg')");
    library("Update tblLibItems set Publisher = 1, YearPublished = 2001, ClassificationNo = '823.9'");
    TaskProgress progress;
    const QList<MarcRecord> exported = MarcImport::exportCatalogue(progress);
    ASSERT_EQ(exported.size(), 2) << "one record a title";
    EXPECT_EQ(exported[0].all("852").size(), 2);
    const QString everything = "select i.AccessionID, i.Title, i.ISBN, a.AuthorSurname, a.AuthorFirstName, p.Publisher, i.YearPublished "
                               "from (tblLibItems i left join tblLibAuthors a on i.Author1 = a.AuthorID) left join tblLibPublishers p "
                               "on i.Publisher = p.PublisherID order by i.AccessionID";
    QStringList before;
    for (QString row : libraryRows(everything))
        before << row.replace("0-19-852663-6", "9780198526636");

    for (auto format : {MarcFile::Format::Iso2709, MarcFile::Format::MarcXml}) {
        const QString empty = TestEngine::makeLibrary(path(format == MarcFile::Format::Iso2709 ? "empty1.db" : "empty2.db"));
        runOn(empty, "Insert into tblLibCategories (Category) values ('Fiction')");
        LibraryDatabasePath = empty;
        const QList<MarcImport::Row> rows = MarcImport::preview(MarcFile::write(exported, format));
        EXPECT_EQ(take(rows).titles, 2);
        EXPECT_EQ(rowsIn(empty, everything), before);
        LibraryDatabasePath = libraryPath_;
        TestEngine::dropLibrary(empty);
    }
}

// The screen: a file chosen is previewed with what is held ticked off and what cannot be taken
// locked; the copies box takes numbers only; the ticked records go in and show as held.
TEST_F(MarcImportTest, TheScreenPreviewsAndImportsTheTickedRecords)
{
    const QString file = path("delivery.mrc");
    QFile out(file);
    out.open(QIODevice::WriteOnly);
    out.write(MarcFile::write({record("New Book", "Dlamini, Zola", "9780804429573"), record("Other", "X", "9780198526636"), record("", "Nobody")},
                              MarcFile::Format::Iso2709));
    out.close();
    frmMarcImport screen;
    messages_->queueFileName(file);
    ScreenDriver::click(screen, "cmdChooseFile");
    EXPECT_EQ(ScreenDriver::rows(screen, "gridRecords"),
              (QStringList{"1|New Book|Dlamini, Zola|9780804429573|||1", "2|Other|X|9780198526636||Held already: A0099 Held by ISBN|0",
                           "3||Nobody|||Cannot be taken: no title (245 $a)|0"}));
    ScreenDriver::type(screen, "txtCopies", "x");
    ScreenDriver::click(screen, "cmdImport");
    EXPECT_EQ(messages_->prompts().value(0), "Copies of each title must be a number from 1 to 20.");
    messages_->clear();
    ScreenDriver::type(screen, "txtCopies", "2");
    ScreenDriver::click(screen, "cmdImport");
    EXPECT_EQ(messages_->prompts().value(0), "1 titles imported: 2 copies, accession numbers A0101 to A0102.");
    EXPECT_EQ(libraryRows("select AccessionID from tblLibItems where Title = 'New Book' order by AccessionID"), (QStringList{"A0101", "A0102"}));
    EXPECT_TRUE(ScreenDriver::rows(screen, "gridRecords").value(0).endsWith("|Held already: A0101 New Book|0"));
}

// The record sources are edited in one grid: a line with a bad field is named and nothing is
// saved; a good grid replaces the list.
TEST_F(MarcImportTest, RecordSourcesAreSavedTogetherOrNotAtAll)
{
    frmRecordSources screen;
    EXPECT_EQ(ScreenDriver::rows(screen, "gridSources"),
              (QStringList{"Library of Congress|lx2.loc.gov:210/LCDB|Z39.50|usmarc||10|1", "Library of Congress (SRU)|http://lx2.loc.gov:210/LCDB|SRU|usmarc||10|0"}));
    ScreenDriver::click(screen, "cmdAddSource");
    SpreadGrid &g = *ScreenDriver::child<SpreadGrid>(screen, "gridSources");
    g.setCellText(1, 3, "Provincial 'union' catalogue");
    g.setCellText(2, 3, "z3950.example.org:210/books");
    g.setCellText(6, 3, "ten");
    ScreenDriver::click(screen, "cmdSave");
    EXPECT_EQ(messages_->prompts().value(0), "The timeout must be a number of seconds from 1 to 120 (line 3). Nothing was saved.");
    EXPECT_EQ(libraryValue("select count(*) from tblLibRecordSources"), "2");
    messages_->clear();
    g.setCellText(5, 3, "iso-8859-1");
    g.setCellText(6, 3, "5");
    ScreenDriver::click(screen, "cmdSave");
    EXPECT_EQ(messages_->prompts().value(0), "The record sources are saved.");
    EXPECT_EQ(libraryRows("select SourceName, Address, CharacterSet, TimeoutSeconds, Enabled from tblLibRecordSources order by SourceID").value(2),
              "Provincial 'union' catalogue|z3950.example.org:210/books|iso-8859-1|5|True");
}

// The stock list exports what it lists, and only that.
TEST_F(MarcImportTest, TheStockListExportsTheItemsListed)
{
    ScreenRegistry screens;
    frmItemList list(screens);
    ScreenDriver::type(list, "txtTitle", "Old");
    ScreenDriver::click(list, "cmdSearch");
    ASSERT_EQ(ScreenDriver::rows(list, "fpSpreadStock").size(), 1);
    messages_->queueFileName(path("old.xml"));
    ScreenDriver::click(list, "cmdExportMarc");
    EXPECT_EQ(messages_->prompts().value(0), "The 1 items listed are written to " + path("old.xml") + ".");
    QFile written(path("old.xml"));
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const QList<MarcFile::Entry> records = MarcFile::read(written.readAll());
    ASSERT_EQ(records.size(), 1);
    EXPECT_EQ(records[0].record->first("245", 'a'), "Old Title");
    EXPECT_EQ(records[0].record->first("852", 'p'), "A0100");
}

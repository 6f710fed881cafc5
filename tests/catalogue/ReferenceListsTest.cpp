// The six reference lists, driven through their widgets on a library database the test makes.
#include "CatalogueScreens.h"
#include "DbConnection.h"
#include "ScreenDriver.h"
#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "SpreadGrid.h"
#include "TestDatabases.h"
#include "DatabaseLocations.h"
#include "frmReferenceList.h"

#include <QTest>
#include <QAbstractButton>
#include <QLineEdit>

using namespace ScreenDriver;

namespace {

class ReferenceLists : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        SchoolName = QStringLiteral("Hillview High");
        DbConnection::traceStatements(&sent_);
    }
    void TearDown() override
    {
        DbConnection::traceStatements(nullptr);
        SchoolName.clear();
        DatabaseTest::TearDown();
    }
    static QStringList grid(QWidget &screen) { return ScreenDriver::rows(screen, "fpSpread"); }
    // Clicks the grid row whose first column reads text.
    static void select(QWidget &screen, const QString &text)
    {
        SpreadGrid *g = child<SpreadGrid>(screen, "fpSpread");
        for (int r = 1; r <= g->maxRows(); ++r)
            if (g->cellText(1, r) == text)
                return g->clickCell(1, r);
        ADD_FAILURE() << "no row " << text.toStdString();
    }
    QStringList sent_;
};

} // namespace

TEST_F(ReferenceLists, SeriesAddDuplicateUpdateAndPhaseOut)
{
    library("Insert into tblLibSeries (Series, PhasedOut) values ('Jong Lesers', true)");
    frmSeries screen;
    EXPECT_EQ(screen.windowTitle(), "Maintain Series");
    EXPECT_EQ(child<QAbstractButton>(screen, "cmdAll")->text(), "&All Series");
    EXPECT_TRUE(grid(screen).isEmpty());
    for (const QString &blank : {QString(), QString("   ")}) {
        type(screen, "txtSeries", blank);
        click(screen, "cmdAdd");
    }
    type(screen, "txtSeries", "  Jong Lesers ");
    sent_.clear();
    click(screen, "cmdAdd"); // only the phased-out row has the name
    EXPECT_EQ(sent_[0], "Select * from tblLibSeries where(PhasedOut = False and series = 'Jong Lesers')");
    EXPECT_EQ(sent_[1], "insert into tblLibSeries(Series) values('Jong Lesers')");
    EXPECT_EQ(child<QLineEdit>(screen, "txtSeries")->text(), "");
    type(screen, "txtSeries", "Jong Lesers");
    click(screen, "cmdAdd");
    type(screen, "txtSeries", "O'Brien's Tales ê📚");
    click(screen, "cmdAdd");
    EXPECT_EQ(messages_->prompts(), (QStringList{"No Blanks are allowed.", "No Blanks are allowed.", "Saved Successfully.",
                                                 "This series already exists", "Saved Successfully."}));
    EXPECT_EQ(grid(screen), (QStringList{"Jong Lesers", "O'Brien's Tales ê📚"}));

    messages_->clear();
    click(screen, "cmdModify");
    click(screen, "cmdDelete");
    select(screen, "Jong Lesers");
    EXPECT_GT(screen.selectedID(), 0);
    type(screen, "txtSeries", "Young Readers");
    click(screen, "cmdModify");
    EXPECT_EQ(grid(screen), (QStringList{"O'Brien's Tales ê📚", "Young Readers"}));
    select(screen, "Young Readers");
    messages_->queueAnswer(MessageScript::No);
    click(screen, "cmdDelete");
    messages_->queueAnswer(MessageScript::Yes);
    click(screen, "cmdDelete");
    EXPECT_EQ(messages_->prompts(), (QStringList{"Please select a series to edit", "Please select a series to delete", "Saved Successfully",
                                                 "Do you want to delete the selected item?", "Do you want to delete the selected item?", "Item Phased Out"}));
    EXPECT_EQ(grid(screen), QStringList{"O'Brien's Tales ê📚"});
    EXPECT_EQ(libraryRows("select Series, PhasedOut from tblLibSeries order by SeriesID"),
              (QStringList{"Jong Lesers|True", "Young Readers|True", "O'Brien's Tales ê📚|False"}));
    EXPECT_EQ(screen.selectedID(), 0);

    // The box takes no more than the column holds (100 characters), so a pasted page is cut there.
    messages_->clear();
    type(screen, "txtSeries", QString(10000, 's'));
    click(screen, "cmdAdd");
    EXPECT_EQ(messages_->shown().size(), 1u);
    EXPECT_EQ(messages_->shown().front().title.left(8), "User Mes");
    EXPECT_EQ(libraryValue("select Series from tblLibSeries where Series like 's%'"), QString(100, 's'));
}

TEST_F(ReferenceLists, SearchesContainOrStartWith)
{
    library("Insert into tblLibPublishers (Publisher) values ('Maskew Miller Longman')");
    library("Insert into tblLibItemLanguages (ItemLanguage) values ('English')");
    frmPublisher publishers;
    type(publishers, "txtSearch", "Miller");
    click(publishers, "cmdSeach");
    EXPECT_EQ(grid(publishers), QStringList{"Maskew Miller Longman"});
    frmLanguages languages;
    type(languages, "txtLanguageSearch", "ng");
    click(languages, "cmdSeach");
    EXPECT_TRUE(grid(languages).isEmpty());
    EXPECT_EQ(messages_->prompts(), QStringList{"Match not found"});
    type(languages, "txtLanguageSearch", "Eng");
    click(languages, "cmdSeach");
    EXPECT_EQ(grid(languages), QStringList{"English"});
    click(languages, "cmdAll");
    EXPECT_EQ(grid(languages), QStringList{"English"});
}

TEST_F(ReferenceLists, AuthorsKeepTheCodesTrailingBlank)
{
    frmAuthor screen;
    type(screen, "txtAuthor", "Brink");
    type(screen, "txtAuthorCode", "");
    click(screen, "cmdAdd");
    type(screen, "txtAuthorCode", "BRI");
    sent_.clear();
    click(screen, "cmdAdd");
    EXPECT_EQ(sent_[2], "insert into tblLibAuthors(AuthorSurname,AuthorFirstName,AuthorCode) values('Brink','','BRI ')");
    type(screen, "txtAuthor", "Brink");
    type(screen, "txtAuthorCode", "BRX");
    click(screen, "cmdAdd");
    EXPECT_EQ(messages_->prompts(), (QStringList{"Please complete the author information fields.", "The author has been added to the database.",
                                                 "An author of the same name exists in the database."}));
    EXPECT_EQ(libraryRows("select AuthorCode from tblLibAuthors"), QStringList{"BRI "});
    EXPECT_EQ(grid(screen), QStringList{"Brink||BRI "});
}

TEST_F(ReferenceLists, SubjectsTestClassificationNumbersIncludingPhasedOutOnes)
{
    library("Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo, PhasedOut) values ('Old Sport', '796', true)");
    library("Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo, PhasedOut) values ('History', '900', false)");
    library("Insert into tblLibItems (AccessionID, Title, ClassificationNo, MainSubject) values ('A1', 'Wars', '900', 'History')");
    frmSubjectsList screen;
    EXPECT_EQ(grid(screen), QStringList{"History|900"});
    type(screen, "txtSubject", "Sport");
    click(screen, "cmdAdd");
    type(screen, "txtClassificationNo", "796");
    click(screen, "cmdAdd");
    type(screen, "txtClassificationNo", "796.3");
    click(screen, "cmdAdd");
    select(screen, "History");
    click(screen, "cmdDelete");
    select(screen, "Sport");
    click(screen, "cmdDelete");
    EXPECT_EQ(messages_->prompts(), (QStringList{"Please complete the data fields.", "This classification number already exists",
                                                 "Saved Successfully.", "Item is in use, it cannot be deleted",
                                                 "Do you want to delete the selected item?", "Item Deleted"}));
    EXPECT_EQ(grid(screen), QStringList{"History|900"});
}

TEST_F(ReferenceLists, KeywordsAreRemovedOnlyWhenUnlinked)
{
    frmKeywordList screen;
    click(screen, "cmdAdd");
    type(screen, "txtKeyEng", "river");
    type(screen, "txtKeyAfr", "river");
    click(screen, "cmdAdd");
    type(screen, "txtKeyAfr", "rivier");
    click(screen, "cmdAdd");
    type(screen, "txtKeyEng", "river");
    type(screen, "txtKeyAfr", "stroom");
    click(screen, "cmdAdd");
    type(screen, "txtKeyEng", "mountain");
    type(screen, "txtKeyAfr", "berg");
    click(screen, "cmdAdd");
    EXPECT_EQ(messages_->prompts(), (QStringList{"Both keywords may not be empty",
                                                 "The English and Afrikaans Keywords may not be the same, rather leave one empty.",
                                                 "Saved Successfully", "The keyword\\s already exist.", "Saved Successfully"}));
    EXPECT_EQ(grid(screen), (QStringList{"river|rivier", "mountain|berg"}));

    messages_->clear();
    select(screen, "river");
    click(screen, "cmdModify");
    type(screen, "txtKeyAfr", "river");
    click(screen, "cmdModify");
    EXPECT_EQ(messages_->prompts(), (QStringList{"No changes to save", "The English and Afrikaans Keywords can not be the same, rather leave one empty."}));

    // Linked to an item: kept. Unlinked: really removed.
    library("Insert into tblLibItems (AccessionID, Title) values ('A1', 'Rivers of Africa')");
    library("Insert into tblLibItemKeywords (KeyID, ItemID) values (1, 1)");
    messages_->clear();
    click(screen, "cmdClear");
    select(screen, "river");
    click(screen, "cmdDelete");
    select(screen, "mountain");
    click(screen, "cmdDelete");
    EXPECT_EQ(messages_->prompts(), (QStringList{"Keyword is in use, it cannot be deleted", "Do you want to delete the selected keyword set?",
                                                 "Keyword Set Deleted"}));
    EXPECT_EQ(libraryRows("select KeywordEng from tblLibKeywords"), QStringList{"river"});

    // The search takes what is typed in the entry.
    type(screen, "txtKeyEng", "");
    type(screen, "txtKeyAfr", "rivi");
    click(screen, "cmdSeach");
    EXPECT_EQ(grid(screen), QStringList{"river|rivier"});
}

TEST_F(ReferenceLists, EveryListOpensFromTheMenuRegistryAndPrints)
{
    ScreenRegistry screens;
    SettingsStore settings(path("shelvora.ini"));
    registerCatalogueScreens(screens, settings);
    for (const char *name : {"frmCategories", "frmLabelList", "frmSeries", "frmPublisher", "frmAuthor", "frmLanguages", "frmSubjectsList", "frmKeywordList"})
        EXPECT_TRUE(screens.has(QLatin1String(name))) << name;
    library("Insert into tblLibPublishers (Publisher) values ('Tafelberg')");
    frmPublisher screen;
    messages_->setPrintToPdf(path("publishers.pdf"));
    click(screen, "cmdPrint");
    const QString text = pdfText(path("publishers.pdf"));
    EXPECT_TRUE(text.contains("Hillview High - Publishers")) << text.toStdString();
    EXPECT_TRUE(text.contains("Tafelberg"));
}

TEST_F(ReferenceLists, EnterInAnEntryBoxAddsOrSavesTheChosenEntry)
{
    frmSeries screen;
    QLineEdit *series = child<QLineEdit>(screen, "txtSeries");
    series->setText("Jong Lesers");
    QTest::keyClick(series, Qt::Key_Return);
    EXPECT_EQ(messages_->prompts(), QStringList{"Saved Successfully."});
    click(screen, "cmdAll");
    select(screen, "Jong Lesers");
    series->setText("Jong Lesers II");
    QTest::keyClick(series, Qt::Key_Return);
    click(screen, "cmdAll");
    EXPECT_EQ(libraryRows("select Series from tblLibSeries where PhasedOut = false"), QStringList{"Jong Lesers II"});
}

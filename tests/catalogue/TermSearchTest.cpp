// The subject and keyword searches handing their conditions to the stock list, which runs them.
#include "DbConnection.h"
#include "ScreenDriver.h"
#include "ScreenRegistry.h"
#include "SearchTerms.h"
#include "TestDatabases.h"
#include "frmItemList.h"
#include "frmKeywordSearch.h"
#include "frmSubjectSearch.h"

#include <QComboBox>
#include <QRadioButton>

using namespace ScreenDriver;

namespace {

class TermSearches : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        library("Insert into tblLibCategories (Category) values ('Book')");
        library("Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo, PhasedOut) values ('Poetry', '821', false)");  // 1
        library("Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo, PhasedOut) values ('Physics', '530', false)"); // 2
        library("Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo, PhasedOut) values ('Plants', '580', false)");  // 3
        for (const char *s : {"Geography", "History", "Music", "Art"})
            library(QString("Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo, PhasedOut) values ('%1', '9', false)").arg(s));
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, ClassificationNo) values ('S1', 'Verse', 1, '821')");                  // main subject
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, ClassificationNo) values ('S2', 'Atoms', 1, '530')");                  // linked too
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, ClassificationNo, PhasedOut) values ('S3', 'Old Verse', 1, '821', true)");
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, ClassificationNo) values ('S4', 'Gardens', 1, '580')");
        library("Insert into tblLibItemSubjects (subjectid, itemid) values (1, 2)");
        library("Insert into tblLibItemSubjects (subjectid, itemid) values (2, 2)");
        library("Insert into tblLibKeywords (KeywordEng, KeywordAfr) values ('dog', 'hond')");
        library("Insert into tblLibKeywords (KeywordEng, KeywordAfr) values ('cat', 'kat')");
        library("Insert into tblLibItemKeywords (KeyID, ItemID) values (1, 1)");
        library("Insert into tblLibItemKeywords (KeyID, ItemID) values (2, 1)");
        library("Insert into tblLibItemKeywords (KeyID, ItemID) values (2, 4)");
        library("Insert into tblLibItemKeywords (KeyID, ItemID) values (1, 3)");
        DbConnection::traceStatements(&sent_);
    }
    void TearDown() override
    {
        DbConnection::traceStatements(nullptr);
        DatabaseTest::TearDown();
    }
    static QStringList accessions(frmItemList &list) { return column(list, "fpSpreadStock", 1); }
    ScreenRegistry screens_;
    QStringList sent_;
};

} // namespace

TEST(SearchConditions, AreWrittenTermByTerm)
{
    EXPECT_EQ(SubjectSearchCondition({}), "");
    EXPECT_EQ(SubjectSearchCondition({4, 0, 7}),
              " HAVING ((((tblLibSubjectCodes.ID)=4)) OR (((tblLibSubjectCodeItem.ID)=4))) OR ((((tblLibSubjectCodes.ID)=7)) OR "
              "(((tblLibSubjectCodeItem.ID)=7)))AND (i.Phasedout = False)");
    EXPECT_EQ(KeywordSearchCondition({}), "");
    EXPECT_EQ(KeywordSearchCondition({3, 9}), " Where (tblLibItemKeywords.KeyID = 3 Or tblLibItemKeywords.KeyID = 9) AND (i.Phasedout = False)");
}

TEST_F(TermSearches, SubjectsFindItemsByMainClassificationOrLinkOnceEach)
{
    frmItemList list(screens_);
    bool found = false;
    frmSubjectSearch search([&](const QString &condition, const QString &mode) { return found = list.SearchItems(condition, mode); });
    EXPECT_EQ(search.windowTitle(), "Subject Search");
    EXPECT_EQ(child<QComboBox>(search, "cboSubject")->count(), 7);
    child<QRadioButton>(search, "optTerms")->setChecked(true);
    type(search, "txtsubject", "P");
    click(search, "cmdFillCombo");
    EXPECT_EQ(child<QComboBox>(search, "cboSubject")->count(), 3);
    choose(search, "cboSubject", "Poetry");
    click(search, "cmdSearch");
    EXPECT_TRUE(found);
    EXPECT_EQ(search.result(), QDialog::Accepted);
    EXPECT_TRUE(sent_.last().contains(" GROUP BY i.ItemID, i.Phasedout, tblLibSubjectCodes.ID, tblLibSubjectCodeItem.ID HAVING ((((tblLibSubjectCodes.ID)=1)) "
                                      "OR (((tblLibSubjectCodeItem.ID)=1)))AND (i.Phasedout = False)) Order By Title, AccessionID"))
        << sent_.last().toStdString();
    EXPECT_EQ(accessions(list), (QStringList{"S2", "S1"})); // Atoms by its link, Verse by its classification; the phased-out copy is not listed
    // A copy matching two terms two ways is listed once.
    choose(search, "cboSubject", "Physics");
    click(search, "cmdSearch");
    EXPECT_EQ(accessions(list), (QStringList{"S2", "S1"}));
    // Sorting re-runs the subject statement.
    Q_EMIT child<SpreadGrid>(list, "fpSpreadStock")->headerClicked(1);
    EXPECT_EQ(accessions(list), (QStringList{"S1", "S2"}));
}

TEST_F(TermSearches, FiveSubjectsAtMostAndDoubleClickRemoves)
{
    frmItemList list(screens_);
    frmSubjectSearch search([&](const QString &condition, const QString &mode) { return list.SearchItems(condition, mode); });
    click(search, "cmdSearch"); // no terms: the stock list asks for criteria
    EXPECT_EQ(messages_->prompts(), QStringList{"Please enter or select at least one search criteria"});
    messages_->clear();
    for (const char *s : {"Poetry", "Physics", "Plants", "Geography", "History", "Music"})
        choose(search, "cboSubject", s);
    EXPECT_EQ(messages_->prompts(), QStringList{"You cannot search on more than 5 terms at once"});
    Q_EMIT child<SpreadGrid>(search, "gridSubjects")->cellDoubleClicked(1, 2);
    choose(search, "cboSubject", "Music");
    EXPECT_EQ(rows(search, "gridSubjects"), (QStringList{"Poetry", "Plants", "Geography", "History", "Music"}));
    messages_->clear();
    // Nothing matches Geography..Music, but Poetry and Plants do.
    click(search, "cmdSearch");
    EXPECT_EQ(accessions(list), (QStringList{"S2", "S4", "S1"}));
    EXPECT_TRUE(messages_->prompts().isEmpty());
}

TEST_F(TermSearches, KeywordsFindLinkedItemsAndRefuseDuplicates)
{
    frmItemList list(screens_);
    frmKeywordSearch search([&](const QString &condition, const QString &mode) { return list.SearchItems(condition, mode); });
    EXPECT_EQ(search.windowTitle(), "Keyword Search");
    EXPECT_EQ(child<QComboBox>(search, "cboKeywords")->count(), 4); // cat, dog, hond, kat
    child<QRadioButton>(search, "optStarting")->click();
    type(search, "txtStarting", "h");
    click(search, "cmdGO");
    EXPECT_EQ(child<QComboBox>(search, "cboKeywords")->count(), 1);
    choose(search, "cboKeywords", "hond");
    child<QRadioButton>(search, "optAll")->click();
    choose(search, "cboKeywords", "dog");
    EXPECT_EQ(messages_->prompts(), QStringList{" 'dog - hond' search term is already in the list."});
    EXPECT_EQ(rows(search, "gridKeywords"), QStringList{"dog|hond"});
    click(search, "cmdSearch");
    EXPECT_TRUE(sent_.last().contains("LEFT JOIN tblLibAuthors AS a2 ON a2.AuthorID = i.Author2  Where (tblLibItemKeywords.KeyID = 1) AND (i.Phasedout = False) GROUP BY"))
        << sent_.last().toStdString();
    EXPECT_EQ(accessions(list), QStringList{"S1"});
    choose(search, "cboKeywords", "cat");
    click(search, "cmdSearch");
    EXPECT_EQ(accessions(list), (QStringList{"S4", "S1"})); // either keyword; S1 once although it has both
    EXPECT_EQ(child<QLineEdit>(list, "txtTotalItems")->text(), "2");
}

TEST_F(TermSearches, NoMatchSaysSoAndTheSearchStaysOpen)
{
    library("Insert into tblLibKeywords (KeywordEng, KeywordAfr) values ('fish', 'vis')");
    frmItemList list(screens_);
    frmKeywordSearch search([&](const QString &condition, const QString &mode) { return list.SearchItems(condition, mode); });
    choose(search, "cboKeywords", "fish");
    click(search, "cmdSearch");
    EXPECT_EQ(messages_->prompts(), QStringList{"There were no items that matched the search"});
    EXPECT_EQ(search.result(), QDialog::Rejected);
    EXPECT_EQ(rows(list, "fpSpreadStock").size(), 0);
    EXPECT_EQ(child<QLineEdit>(list, "txtTotalItems")->text(), "0");
}

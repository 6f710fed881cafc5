// Quick find at the counter: is this book in, and if not, who has it until when.
#include "ScreenDriver.h"
#include "TestDatabases.h"
#include "frmQuickFind.h"

using namespace ScreenDriver;

namespace {

class QuickFind : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        central("Insert into Classes(ClassID, ClassName, Grade) values (1, '8A', 8)");
        central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (12, 'L100', 'Botha', 'Anna', 8, 1, 'C')");
        central("Insert into Educators(EdID, SName, FName, IDNumber, Status) values (21, 'Naidoo', 'Ravi', '7001015000081', 'C')");
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('Brink', 'Andre')"); // 1
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('Coetzee', 'JM')");  // 2
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('Brown', 'Third')"); // 3
        library("Insert into tblLibItems (AccessionID, Title, ShelfNumber, Author1) values ('A1', 'Disgrace', 'F COE', 2)");
        library("Insert into tblLibItems (AccessionID, Title, ShelfNumber, Author1, Author2) values ('A2', 'Disgrace', 'F COE', 2, 1)");
        library("Insert into tblLibItems (AccessionID, Title, ShelfNumber, Author1, Author3) values ('A3', 'Dusk', 'F DUS', 2, 3)");
        library("Insert into tblLibTransactions (AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('A1', 'E', 21, 1, #2026-11-01#, #2026-11-22#)");
        library("Insert into tblLibTransactions (AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('A2', 'L', 12, 2, #2026-11-02#, #2026-11-16#)");
        library("Insert into tblLibKeywords (KeywordEng, KeywordAfr) values ('shame', 'skande')");
        library("Insert into tblLibItemKeywords (KeyID, ItemID) values (1, 2)");
    }
};

} // namespace

TEST_F(QuickFind, ShowsWhereEachCopyIs)
{
    frmQuickFind screen;
    EXPECT_EQ(screen.windowTitle(), "Quick Find for Libary Item");
    type(screen, "txttitle", "Dis");
    click(screen, "cmdFind");
    EXPECT_EQ(rows(screen, "gridLocation"), (QStringList{"A1|Out|2026-11-22|F COE|Disgrace|Naidoo, Ravi", "A2|Out|2026-11-16|F COE|Disgrace|Botha, Anna 8A"}));
    type(screen, "txtAccNumber", "A3"); // the accession number wins over the title
    click(screen, "cmdFind");
    EXPECT_EQ(rows(screen, "gridLocation"), QStringList{"A3|Available||F DUS|Dusk|"});

    // A copy marked lost is still found by its number, saying why and since when.
    library("Update tblLibItems set PhasedOut = true, PhasedOutReason = 'Lost', PhasedOutDate = #2026-11-24# where AccessionID = 'A3'");
    click(screen, "cmdFind");
    EXPECT_EQ(rows(screen, "gridLocation"), QStringList{"A3|Removed: Lost, 2026-11-24||F DUS|Dusk|"});
    EXPECT_TRUE(messages_->shown().empty());
}

TEST_F(QuickFind, AuthorsFirstOrSecondAndKeywords)
{
    frmQuickFind screen;
    type(screen, "txtAuthor", "Brin");
    click(screen, "cmdFind");
    EXPECT_EQ(rows(screen, "gridLocation").size(), 1); // A2, by its second author
    type(screen, "txtAuthor", "Brown"); // only a third author: not found
    click(screen, "cmdFind");
    EXPECT_EQ(messages_->prompts(), QStringList{"No Items found with this Author."});
    type(screen, "txtAuthor", "");
    type(screen, "txtKeyword", "skan");
    click(screen, "cmdFind");
    EXPECT_EQ(rows(screen, "gridLocation").value(0).section('|', 0, 0), "A2");
    type(screen, "txtKeyword", "");
    type(screen, "txttitle", "O'Brien's");
    click(screen, "cmdFind");
    EXPECT_EQ(messages_->prompts().last(), "No Items found with this Title.");
}

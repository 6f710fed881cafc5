// The loan and fine settings screen: loading, saving and leaving, on a database the test makes.
#include "SchoolDeskFixture.h"

#include "frmIssueSystem.h"
#include "frmSystemSettings.h"

namespace {

class SettingsScreen : public SchoolDesk {
protected:
    // What a librarian's typing into a value cell does.
    static void edit(frmSystemSettings &screen, int col, int row, const QString &text)
    {
        SpreadGrid *grid = child<SpreadGrid>(screen, "gridsettings");
        grid->model()->setData(grid->model()->index(row - 1, col - 1), text, Qt::EditRole);
    }
    static QString cell(frmSystemSettings &screen, int col, int row) { return child<SpreadGrid>(screen, "gridsettings")->cellText(col, row); }
    static QStringList values(frmSystemSettings &screen, int row)
    {
        QStringList out;
        for (int c = 2; c <= 6; ++c)
            out << cell(screen, c, row);
        return out;
    }
    QStringList settingsRows() { return libraryRows("select LoanType, UserCat, LoanPeriod, MaxItems, FineAmount, FineInterval, ExtDays, MaxExt, MaxRes, MaxUserRes from tblLibSettings"); }
};

} // namespace

TEST_F(SettingsScreen, LaysOutTheGridAndLoadsEveryRule)
{
    frmSystemSettings screen;
    EXPECT_EQ(screen.windowTitle(), "Library System Settings");
    EXPECT_EQ(cell(screen, 1, 1), "LIBRARY SYSTEM SETTINGS");
    EXPECT_EQ(cell(screen, 1, 4), "SHORT LOAN");
    EXPECT_EQ(cell(screen, 2, 5), "Number of days for short loan period");
    EXPECT_EQ(cell(screen, 6, 9), "Number of days for extensions");
    EXPECT_EQ(cell(screen, 3, 13), "Maximum items on long loan");
    EXPECT_EQ(cell(screen, 1, 15), "Staff");
    EXPECT_EQ(cell(screen, 1, 21), "Maximum number of reservations per user");
    EXPECT_EQ(values(screen, 10), (QStringList{"14", "2", "0.50", "7", "7"}));
    EXPECT_EQ(values(screen, 11), (QStringList{"21", "5", "1.25", "1", "7"}));
    EXPECT_EQ(values(screen, 14), (QStringList{"30", "3", "1.00", "7", ""}));
    EXPECT_EQ(values(screen, 6), (QStringList{"", "", "", "", ""}));
    EXPECT_EQ(cell(screen, 4, 19) + cell(screen, 4, 20) + cell(screen, 4, 21), "212");
}

TEST_F(SettingsScreen, AnEducatorRowLandsOnTheRowReadBeforeIt)
{
    library("Delete * from tblLibSettings");
    library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)VALUES('N','L',14,0.5,7,2,7,2,1,2)");
    library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)VALUES('N','E',99,9,9,9,9,3,4,5)");
    frmSystemSettings screen;
    EXPECT_EQ(values(screen, 10), (QStringList{"99", "9", "9.00", "9", "9"}));
    EXPECT_EQ(values(screen, 11), (QStringList{"", "", "", "", ""}));
    EXPECT_EQ(cell(screen, 4, 19) + cell(screen, 4, 20) + cell(screen, 4, 21), "345");
}

TEST_F(SettingsScreen, SavingRewritesTheTableNineRowsWhenEveryPeriodIsFilled)
{
    frmSystemSettings screen;
    const QString shortLoan[] = {"3", "1", "2", "1"};
    for (int c = 2; c <= 5; ++c) {
        edit(screen, c, 6, shortLoan[c - 2]);
        edit(screen, c, 7, shortLoan[c - 2]);
    }
    edit(screen, 4, 19, "4");
    sent_.clear();
    click(screen, "cmdSave");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    ASSERT_EQ(sent_.size(), 10);
    EXPECT_EQ(sent_[0], "Delete * from tblLibsettings");
    EXPECT_EQ(sent_[1], "Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUSerRes)VALUES('S','L',3,2,1,1,7,4,1,2)");
    EXPECT_EQ(sent_[2], "Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUSerRes)VALUES('S','S',3,2,1,1,7,4,1,2)");
    EXPECT_EQ(sent_[3], "Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUSerRes)VALUES('S','E',3,2,1,1,7,4,1,2)");
    EXPECT_EQ(sent_[4], "Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)VALUES('N','L',14,0.5,7,2,7,4,1,2)");
    EXPECT_EQ(settingsRows().size(), 9);

    // A round trip: a fresh screen shows what was saved.
    frmSystemSettings again;
    EXPECT_EQ(values(again, 6), (QStringList{"3", "1", "2.00", "1", ""}));
    EXPECT_EQ(values(again, 7), (QStringList{"3", "1", "2.00", "1", ""}));
    EXPECT_EQ(values(again, 11), (QStringList{"21", "5", "1.25", "1", "7"}));
    EXPECT_EQ(cell(again, 4, 19), "4");
}

TEST_F(SettingsScreen, ABlankPeriodWritesNoRowAndTheDeskFallsBackToItsDefaults)
{
    frmSystemSettings screen;
    edit(screen, 2, 15, "");      // long loans for staff: no period
    edit(screen, 3, 10, "abc");   // not a number: 0
    edit(screen, 4, 10, "1.5xyz"); // a number and then letters: its number
    click(screen, "cmdSave");
    EXPECT_EQ(settingsRows(), (QStringList{"N|L|14|0|1.5|7|7|2|1|2", "N|S|21|5|1.25|1|7|2|1|2", "N|E|21|5|1.25|1|7|2|1|2",
                                           "L|L|30|3|1|7|7|2|1|2"}));
    // An educator borrowing a long-loan item now gets one day and no fine.
    frmIssueSystem desk;
    click(desk, "optEducator");
    type(desk, "txtmemberID", "7001015000081");
    scan(desk, "txtLoanAccession", "L1");
    EXPECT_EQ(loans(), QStringList{"L1|E|21|2026-11-23|2026-11-24|False|0"});
}

TEST_F(SettingsScreen, LeavingWithUnsavedChangesAsksFirst)
{
    frmSystemSettings screen;
    screen.show();
    click(screen, "cmdDone"); // nothing changed: no question
    EXPECT_TRUE(messages_->shown().empty());
    EXPECT_FALSE(screen.isVisible());

    screen.show();
    edit(screen, 2, 10, "10");
    messages_->queueAnswer(MessageScript::No);
    click(screen, "cmdDone");
    EXPECT_EQ(messages_->prompts(), QStringList{"You have not saved your settings. Are you sure you want to Exit without saving?"});
    EXPECT_TRUE(screen.isVisible());
    QTest::keyClick(&screen, Qt::Key_Escape); // Escape keeps the work: no question, still open
    EXPECT_TRUE(screen.isVisible());
    EXPECT_EQ(messages_->prompts().size(), 1);
    messages_->queueAnswer(MessageScript::Yes);
    screen.close(); // the window's close box asks as Done does
    EXPECT_FALSE(screen.isVisible());
    EXPECT_EQ(libraryValue("select LoanPeriod from tblLibSettings where LoanType = 'N' and UserCat = 'L'"), "14");
}

TEST_F(SettingsScreen, PrintsUnderTheSchoolName)
{
    frmSystemSettings screen;
    messages_->setPrintToPdf(path("settings.pdf"));
    click(screen, "cmdprint");
    const QString text = pdfText(path("settings.pdf"));
    EXPECT_TRUE(text.contains("Hillview High - Library Settings")) << text.toStdString();
    EXPECT_TRUE(text.contains("Maximum number of reservations per user")) << text.toStdString();
}

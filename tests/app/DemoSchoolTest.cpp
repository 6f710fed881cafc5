// The demo school keeps its own rules: the settings rows as the settings screen saves them (staff
// and educators alike, after the learners), and nothing paid after today.
#include "Clock.h"
#include "SchoolGenerator.h"
#include "TestDatabases.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(DemoSchool, SettingsInTheSavedOrderAndNoPaymentAfterToday)
{
    QTemporaryDir dir;
    SchoolGenerator(SchoolSize::demo()).write(dir.filePath("library.db"), dir.filePath("central.db"));
    const QStringList rules = rowsIn(dir.filePath("library.db"), "select LoanType, UserCat, LoanPeriod, FineAmount, FineInterval, MaxItems, ExtDays from tblLibSettings");
    ASSERT_EQ(rules.size(), 9);
    for (int section = 0; section < 3; ++section) {
        const QStringList learner = rules[3 * section].split('|'), staff = rules[3 * section + 1].split('|'), educator = rules[3 * section + 2].split('|');
        EXPECT_EQ(learner[1], "L");
        EXPECT_EQ(staff[1], "S");
        EXPECT_EQ(educator[1], "E");
        EXPECT_EQ(staff.mid(2), educator.mid(2)) << section;
        EXPECT_EQ(learner[0], staff[0]);
    }
    const QString today = Clock::today().toString("yyyy-MM-dd");
    EXPECT_EQ(rowsIn(dir.filePath("library.db"), "select count(*) from tblLibTransactionFines where PaymentDate > #" + today + "#"), QStringList{"0"});
    EXPECT_EQ(rowsIn(dir.filePath("library.db"), "select count(*) from tblLibTransactions where ReturnDate > #" + today + "#"), QStringList{"0"});
}

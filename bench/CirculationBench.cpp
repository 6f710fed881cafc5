// The circulation screens on the large school: an issue and a return at the desk against the same
// statements stepped directly through the SQLite C API, a long loan history, and opening each screen.
#include "CirculationBench.h"

#include "BenchTimer.h"
#include "Clock.h"
#include "GuiStall.h"
#include "DbConnection.h"
#include "FrmuserloanHistory.h"
#include "LoanRules.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "Engine.h"
#include "PostgresDatabase.h"
#include "SqliteDatabase.h"
#include "DatabaseLocations.h"
#include "frmFinePayment.h"
#include "frmIssueSystem.h"
#include "frmReservedItems.h"
#include "frmReserves.h"
#include "frmSystemSettings.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>

#include <sqlite3.h>

#include <cstdio>
#include <optional>

namespace {

std::shared_ptr<Recordset> query(const QString &path, const QString &sql)
{
    DbConnection c;
    c.DataSource = path;
    c.Open();
    return c.Execute(sql);
}

void run(const QString &path, const QString &sql)
{
    DbConnection c;
    c.DataSource = path;
    c.Open();
    c.Execute(sql);
}

// Replays the statements a screen sent, translated once, straight through the C API: the school's
// look-ups on its database, the rest on the library's, the writes in one transaction.
class RawReplay {
public:
    RawReplay()
    {
        sqlite3_open_v2(LibraryDatabasePath.toUtf8().constData(), &library_, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_exec(library_, "PRAGMA synchronous=FULL", nullptr, nullptr, nullptr);
        sqlite3_open_v2(CentralDatabasePath.toUtf8().constData(), &central_, SQLITE_OPEN_READONLY, nullptr);
        sqlite3_busy_timeout(library_, 5000);
    }
    ~RawReplay()
    {
        sqlite3_close(library_);
        sqlite3_close(central_);
    }
    void prepare(const QStringList &jet)
    {
        native_.clear();
        for (const QString &s : jet) {
            const QByteArray utf8 = s.toUtf8();
            const std::string sql = SqliteDatabase::sharedTranslator().translate(std::string_view(utf8.constData(), size_t(utf8.size()))).sql;
            const QString lower = s.toLower();
            const bool school = lower.contains(QLatin1String("learner_info")) || lower.contains(QLatin1String("educators"))
                                || lower.contains(QLatin1String("staffmembers"));
            native_.push_back({school ? central_ : library_, sql});
        }
    }
    void run()
    {
        sqlite3_exec(library_, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        for (const auto &[db, sql] : native_) {
            sqlite3_stmt *stmt = nullptr;
            sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr);
            while (sqlite3_step(stmt) == SQLITE_ROW)
                for (int c = 0; c < sqlite3_column_count(stmt); ++c)
                    sqlite3_column_text(stmt, c);
            sqlite3_finalize(stmt);
        }
        sqlite3_exec(library_, "COMMIT", nullptr, nullptr, nullptr);
    }

private:
    sqlite3 *library_ = nullptr;
    sqlite3 *central_ = nullptr;
    std::vector<std::pair<sqlite3 *, std::string>> native_;
};

template <typename T> T *child(QWidget &screen, const char *name) { return screen.findChild<T *>(QLatin1String(name)); }

void benchDesk()
{
    std::printf("Issue desk (frmIssueSystem driven through its widgets)\n");
    // Learners with no open loan, and copies on the shelf that nobody has reserved.
    auto learners = query(CentralDatabasePath, QStringLiteral("select AccessionNo from Learner_Info where Status = 'C' and Grade between 1 and 12"));
    auto items = query(LibraryDatabasePath, QStringLiteral("select top 300 AccessionID, ItemID from tblLibItems i where PhasedOut = false and ReferenceItem = false "
                                                           "and Restricted = false and LoanType = 'N' and not exists (select * from tblLibTransactions t "
                                                           "where t.ItemID = i.ItemID and t.Returned = false) and not exists (select * from tblLibReserves r "
                                                           "where r.ItemID = i.ItemID) order by ItemID"));
    frmIssueSystem desk;
    desk.show();
    QApplication::processEvents();
    SpreadGrid *grid = child<SpreadGrid>(desk, "gridtransactions");
    // On a server the desk's figures stand alone (the yardstick below is the embedded engine's C API).
    const bool server = !EngineRegistry::installed().forLocation(LibraryDatabasePath).isFile();
    std::optional<RawReplay> raw;
    if (!server)
        raw.emplace();
    Samples screenIssue, rawIssue, screenReturn, rawReturn;
    QStringList sent;
    DbConnection::traceStatements(&sent);
    for (; !items->atEnd() && !learners->atEnd(); items->MoveNext(), learners->MoveNext()) {
        const QString accession = items->field(0).toString();
        const QString undoIssue = QStringLiteral("Delete * from tblLibTransactions where AccessionID = '%1' and Returned = false").arg(accession);
        // Issue: the press of "Issue Item" to the row shown.
        sent.clear();
        child<QLineEdit>(desk, "txtmemberID")->setText(learners->field(0).toString());
        child<QLineEdit>(desk, "txtLoanAccession")->setText(accession);
        const int before = grid->maxRows();
        const double issued = Samples::measure([&] { child<QAbstractButton>(desk, "cmdLoanProcess")->click(); });
        if (grid->maxRows() != before + 1)
            continue; // refused (the learner's limit): not a timing of an issue
        screenIssue.add(issued);
        const QStringList issueStatements = sent;
        DbConnection::traceStatements(nullptr);
        if (raw) {
            run(LibraryDatabasePath, undoIssue);
            raw->prepare(issueStatements);
            rawIssue.time([&] { raw->run(); });
        }
        DbConnection::traceStatements(&sent);

        // Return 10 days late: the fine row and the closed loan.
        run(LibraryDatabasePath, QStringLiteral("Update tblLibTransactions set DueDate = #%1# where AccessionID = '%2' and Returned = false")
                                     .arg(SqlDate(Clock::today().addDays(-10)), accession));
        sent.clear();
        child<QLineEdit>(desk, "txtAccessionReturn")->setText(accession);
        screenReturn.time([&] { child<QAbstractButton>(desk, "cmdProcess")->click(); });
        const QStringList returnStatements = sent;
        DbConnection::traceStatements(nullptr);
        const QString transaction = grid->cellText(0, grid->maxRows());
        run(LibraryDatabasePath, QStringLiteral("Delete * from tblLibTransactionFines where TransactionID = ") + transaction);
        run(LibraryDatabasePath, QStringLiteral("Update tblLibTransactions set Returned = false, ReturnDate = Null where TransactionID = ") + transaction);
        if (raw) {
            raw->prepare(returnStatements);
            rawReturn.time([&] { raw->run(); });
        }
        run(LibraryDatabasePath, QStringLiteral("Delete * from tblLibTransactionFines where TransactionID = ") + transaction);
        run(LibraryDatabasePath, QStringLiteral("Delete * from tblLibTransactions where TransactionID = ") + transaction);
        DbConnection::traceStatements(&sent);
    }
    DbConnection::traceStatements(nullptr);
    screenIssue.report("issue: press to row shown");
    if (raw) {
        rawIssue.report("issue: same statements, SQLite C API");
        std::printf("  ratio issue screen / C API: %.2f\n", screenIssue.median() / rawIssue.median());
    }
    screenReturn.report("return with a fine: press to row shown");
    if (raw) {
        rawReturn.report("return: same statements, SQLite C API");
        std::printf("  ratio return screen / C API: %.2f\n", screenReturn.median() / rawReturn.median());
    }
}

void benchLoanHistory()
{
    std::printf("Loan history of the member with the most loans, mode \"H\"\n");
    auto busiest = query(LibraryDatabasePath, QStringLiteral("select top 1 MemberType, MemberID, count(*) as loans from tblLibTransactions "
                                                             "group by MemberType, MemberID order by count(*) desc"));
    const QString type = busiest->field(0).toString();
    const int member = busiest->field(1).toInt();
    // At least 500 loans: older returned loans are added when the school has fewer.
    auto item = query(LibraryDatabasePath, QStringLiteral("select top 1 AccessionID, ItemID from tblLibItems order by ItemID"));
    for (int n = busiest->field(2).toInt(); n < 500; ++n)
        run(LibraryDatabasePath, QStringLiteral("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, ReturnDate, Returned) "
                                                "values ('%1', '%2', %3, %4, #2015-01-05#, #2015-01-19#, #2015-01-18#, true)")
                                     .arg(item->field(0).toString(), type).arg(member).arg(item->field(1).toInt()));
    FrmuserloanHistory history;
    history.setMember(type, member, QStringLiteral("Busiest member"));
    Samples load;
    int rows = 0;
    for (int run = 0; run < 20; ++run) {
        load.time([&] { history.LoadLoanHistory(QStringLiteral("H")); });
        rows = child<SpreadGrid>(history, "gridLoans")->maxRows();
    }
    std::printf("  rows: %d\n", rows);
    load.report("LoadLoanHistory(\"H\") to a filled grid");
}

template <typename Screen> void timeOpening(const char *name)
{
    Samples open;
    for (int run = 0; run < 10; ++run)
        open.time([] {
            Screen screen;
            screen.show();
            QApplication::processEvents();
        });
    open.report(name);
}

} // namespace

void benchCirculationScreens()
{
    benchDesk();
    benchLoanHistory();
    std::printf("Opening each circulation screen (constructed, shown, first paint events)\n");
    timeOpening<frmIssueSystem>("frmIssueSystem");
    timeOpening<frmSystemSettings>("frmSystemSettings");
    timeOpening<frmReserves>("frmReserves");
    timeOpening<frmReservedItems>("frmReservedItems");
    timeOpening<frmFinePayment>("frmFinePayment");
    timeOpening<FrmuserloanHistory>("FrmuserloanHistory");

    // Reservations: a title search that finds thousands of copies, each with its open reservations.
    frmReserves reserves;
    reserves.show();
    reserves.findChild<QLineEdit *>(QStringLiteral("txtTitle"))->setText(QStringLiteral("Letter"));
    Presses search;
    search.press(reserves, "cmdFind", 3);
    std::printf("  reservations, title search \"Letter\": %d copies, %d open reservations\n",
                reserves.findChild<SpreadGrid *>(QStringLiteral("fpSpreadSearch"))->maxRows(),
                reserves.findChild<SpreadGrid *>(QStringLiteral("fpSpreadReserves"))->maxRows());
    search.report("reservations title search to both grids filled", "Reservations title search");

    // View Reservations: every open reservation with its member's name.
    frmReservedItems reserved;
    reserved.show();
    Presses all;
    all.press(reserved, "cmdFindAll", 3);
    std::printf("  view reservations, Find All: %d open reservations\n", reserved.findChild<SpreadGrid *>(QStringLiteral("fpSpreadReserves"))->maxRows());
    all.report("view reservations Find All to filled grid", "View Reservations Find All");
}

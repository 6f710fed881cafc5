// The library users lists, their spreadsheet export, and the outstanding-items report by class over
// 20,000 open loans, on the large school.
#include "MembersReportsBench.h"

#include "BenchTimer.h"
#include "GuiStall.h"
#include "DbConnection.h"
#include "LoanRules.h"
#include "Clock.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "DatabaseLocations.h"
#include "frmLibraryReport.h"
#include "frmLibraryUsers.h"
#include "frmReportViewer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <random>

namespace {

template <typename T> T *child(QWidget &screen, const char *name) { return screen.findChild<T *>(QLatin1String(name)); }

// Open loans to current learners until there are 20,000.
void openLoansForLearners(int wanted)
{
    DbConnection central;
    central.DataSource = CentralDatabasePath;
    central.ReadOnly = true;
    central.Open();
    auto learners = central.Execute(QStringLiteral("select ID from Learner_Info where Status = 'C' and Grade between 1 and 12"));
    std::vector<int> ids;
    for (; !learners->atEnd(); learners->MoveNext())
        ids.push_back(learners->field(0).toInt());
    DbConnection library;
    library.DataSource = LibraryDatabasePath;
    library.Open();
    const int open = library.Execute(QStringLiteral("select count(*) from tblLibTransactions where Returned = false and MemberType = 'L'"))->field(0).toInt();
    auto items = library.Execute(QStringLiteral("select top %1 AccessionID, ItemID from tblLibItems i where not exists (select * from tblLibTransactions t "
                                                "where t.ItemID = i.ItemID and t.Returned = false) order by ItemID")
                                     .arg(std::max(0, wanted - open)));
    std::mt19937 rng(11);
    library.BeginTrans();
    const QString today = SqlDate(Clock::today());
    for (; !items->atEnd(); items->MoveNext())
        library.Execute(QStringLiteral("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('%1', 'L', %2, %3, #%4#, #%4#)")
                            .arg(items->field(0).toString()).arg(ids[rng() % ids.size()]).arg(items->field(1).toInt()).arg(today));
    library.CommitTrans();
}

} // namespace

void benchMembersAndReports()
{
    std::printf("Library users (frmLibraryUsers): the lists and the export\n");
    frmLibraryUsers users;
    Samples learners, archived, educators, exported;
    GuiStall exportStall;
    QTemporaryDir dir;
    for (int run = 0; run < 10; ++run) {
        learners.time([&] { child<QAbstractButton>(users, "cmdShowAllLearners")->click(); });
        archived.time([&] { child<QAbstractButton>(users, "cmdShowAllArchivedLearners")->click(); });
        educators.time([&] { child<QAbstractButton>(users, "cmdShowAllEducators")->click(); });
    }
    child<QAbstractButton>(users, "cmdShowAllLearners")->click();
    SpreadGrid *grid = child<SpreadGrid>(users, "grdLearners");
    std::printf("  current learners: %d rows\n", grid->maxRows());
    for (int run = 0; run < 10; ++run)
        exported.time([&] { exportStall.time([&] { grid->ExportToExcel(dir.filePath(QStringLiteral("learners%1.xlsx").arg(run)), QStringLiteral("Learners"), QString()); }); });
    learners.report("All Current Learners");
    archived.report("All Archived Learners");
    educators.report("All Current Educators");
    exported.report("export of the current learners to .xlsx");
    exportStall.report("Export to .xlsx");

    std::printf("Library reports: Outstanding Items by class over 20,000 open loans\n");
    openLoansForLearners(20000);
    frmLibraryReport screen;
    child<QRadioButton>(screen, "optOSItems")->click();
    Samples firstPage, pdf;
    GuiStall viewStall, pdfStall;
    int rows = 0, pages = 0;
    for (int run = 0; run < 3; ++run) {
        QElapsedTimer clock;
        double shown = 0, saved = 0;
        // Watches for the viewer, which opens once the report has been gathered on the worker thread.
        QTimer watch;
        watch.setInterval(1);
        QObject::connect(&watch, &QTimer::timeout, [&] {
            if (auto *viewer = qobject_cast<frmReportViewer *>(QApplication::activeModalWidget())) {
                watch.stop();
                viewer->repaint(); // the first page drawn
                shown = double(clock.nsecsElapsed()) / 1e6;
                pages = viewer->pageCount();
                saved = Samples::measure([&] { pdfStall.time([&] { viewer->saveAsPdf(dir.filePath(QStringLiteral("report.pdf"))); }); });
                viewer->close();
            }
        });
        watch.start();
        clock.start();
        // The viewer's own loop ends the stall count when it opens: from the press to the viewer's first turn.
        viewStall.time([&] { child<QAbstractButton>(screen, "cmdView")->click(); });
        firstPage.add(shown);
        pdf.add(saved);
        rows = screen.lastReport().rowCount();
    }
    std::printf("  rows: %d, pages: %d\n", rows, pages);
    firstPage.report("View Report to the viewer's first page");
    pdf.report("the report saved as PDF");
    viewStall.report("View Report");
    pdfStall.report("Report to PDF");
}

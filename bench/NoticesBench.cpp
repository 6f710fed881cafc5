#include "NoticesBench.h"

#include "BenchTimer.h"
#include "GuiStall.h"
#include "TaskRunner.h"
#include "Clock.h"
#include "NoticeDocument.h"
#include "OverdueList.h"
#include "Stocktake.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "DatabaseLocations.h"
#include "frmLibraryStatistics.h"
#include "frmReportViewer.h"

#include <QAbstractButton>
#include <QApplication>

#include <QTemporaryDir>

#include <cstdio>
#include <memory>
#include <set>

void benchOverdueNotices()
{
    std::printf("Overdue notices (every learner of the school, as at today)\n");
    OverdueQuery query;
    query.asAt = Clock::today();
    std::vector<OverdueRow> rows;
    Samples list;
    for (int run = 0; run < 7; ++run)
        list.time([&] { rows = OverdueList::load(query); });
    std::set<int> learners;
    for (const OverdueRow &r : rows)
        learners.insert(r.memberID);
    std::printf("  %zu overdue books of %zu learners\n", rows.size(), learners.size());
    list.report("overdue list of the whole school");

    // The first 500 learners' letters, one page each.
    std::vector<OverdueRow> first;
    std::set<int> taken;
    for (const OverdueRow &r : rows) {
        if (!taken.count(r.memberID) && taken.size() == 500)
            continue;
        taken.insert(r.memberID);
        first.push_back(r);
    }
    const NoticeDocument letters(NoticeDocument::Letters, first, QStringLiteral("Large School"), query.asAt, NoticeTemplate::defaultText());
    QTemporaryDir dir;
    frmReportViewer viewer(letters);
    Samples pdf;
    GuiStall pdfStall;
    for (int run = 0; run < 3; ++run)
        pdf.time([&] { pdfStall.time([&] { viewer.saveAsPdf(dir.filePath(QStringLiteral("letters.pdf"))); }); });
    std::printf("  %zu letters (%d pages)\n", taken.size(), viewer.pageCount());
    pdf.report("letters to parents to PDF");
    pdfStall.report("Letters to PDF");

    // The whole school's class lists, a page per class.
    const NoticeDocument classes(NoticeDocument::ClassLists, rows, QStringLiteral("Large School"), query.asAt, NoticeTemplate::defaultText());
    frmReportViewer classViewer(classes);
    Samples classPdf;
    GuiStall classStall;
    for (int run = 0; run < 3; ++run)
        classPdf.time([&] { classStall.time([&] { classViewer.saveAsPdf(dir.filePath(QStringLiteral("classes.pdf"))); }); });
    std::printf("  class lists (%d pages)\n", classViewer.pageCount());
    classPdf.report("class lists to PDF");
    classStall.report("Class lists to PDF");
}

void benchLibraryStatistics()
{
    std::printf("Library statistics (the last twelve months, every chart and table filled)\n");
    Samples open, show;
    GuiStall openStall, showStall;
    for (int run = 0; run < 5; ++run) {
        std::unique_ptr<frmLibraryStatistics> screen;
        open.time([&] { openStall.time([&] { screen = std::make_unique<frmLibraryStatistics>(); }); });
        screen->show();
        QApplication::processEvents();
        auto *button = screen->findChild<QAbstractButton *>(QStringLiteral("cmdShow"));
        show.time([&] {
            showStall.time([&] { button->click(); });
            QApplication::processEvents();
        });
    }
    open.report("screen opened with its figures and charts");
    show.report("\"Show\" pressed to charts drawn");
    openStall.report("Library Statistics opened");
    showStall.report("Library Statistics Show");
}

void benchStocktake()
{
    std::printf("Stocktake of the whole catalogue (a scan recorded with the counts updated; the result)\n");
    Stocktake take = Stocktake::start(QStringLiteral("Benchmark"), Clock::today(), {}, {});
    std::vector<QString> numbers;
    {
        const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
        for (auto rs = db->Execute(QStringLiteral("select AccessionID from tblLibItems where ItemID mod 97 = 0")); !rs->atEnd(); rs->MoveNext())
            numbers.push_back(rs->field(0).toString());
    }
    Samples scans;
    int scanned = 0, expected = 0;
    for (const QString &number : numbers)
        scans.time([&] {
            take.scan(number);
            scanned = take.scannedCount();
            expected = take.expectedCount();
        });
    std::printf("  %d of %d copies scanned\n", scanned, expected);
    scans.report("scan recorded, counts updated");
    Samples result;
    GuiStall resultStall;
    Stocktake::Result r;
    for (int run = 0; run < 5; ++run)
        result.time([&] {
            // As the stocktake screen asks for it: on the worker thread.
            resultStall.time([&] { r = *TaskRunner(nullptr, QStringLiteral("Result")).compute<Stocktake::Result>([&](TaskProgress &) { return take.result(); }); });
        });
    std::printf("  missing %zu, on loan %zu, removed %zu\n", r.missing.size(), r.onLoan.size(), r.phasedOut.size());
    result.report("the result (every list)");
    resultStall.report("Stocktake result");
    take.finish();
}

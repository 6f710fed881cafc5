// The catalogue screens on the large school: a reference list of 20,000 rows loaded into its grid.
#include "CatalogueBench.h"

#include "BenchTimer.h"
#include "GuiStall.h"
#include "TaskRunner.h"
#include "DbConnection.h"
#include "LabelSheet.h"
#include "SpreadGrid.h"
#include "DatabaseLocations.h"
#include "SettingsStore.h"
#include "frmLabelList.h"
#include "frmReferenceList.h"

#include <QPrinter>
#include <QTemporaryDir>

#include <cstdio>

void benchCatalogueScreens()
{
    std::printf("Reference lists: 20,000 publishers and 20,000 authors loaded into the grid\n");
    {
        DbConnection c;
        c.DataSource = LibraryDatabasePath;
        c.Open();
        c.BeginTrans();
        for (int i = 0; i < 20000; ++i) {
            c.Execute(QStringLiteral("insert into tblLibPublishers(Publisher) values('Bench Publisher %1')").arg(i, 5, 10, QLatin1Char('0')));
            c.Execute(QStringLiteral("insert into tblLibAuthors(AuthorSurname,AuthorFirstName,AuthorCode) values('Surname %1','First','C%1')").arg(i));
        }
        c.CommitTrans();
    }
    Samples publishers, authors;
    int rows = 0;
    for (int run = 0; run < 10; ++run) {
        publishers.time([&] {
            frmPublisher screen;
            rows = screen.findChild<SpreadGrid *>(QStringLiteral("fpSpread"))->maxRows();
        });
        authors.time([] { frmAuthor screen; });
    }
    std::printf("  rows: %d publishers\n", rows);
    publishers.report("frmPublisher opened and filled");
    authors.report("frmAuthor opened and filled");
}

void benchLabels()
{
    std::printf("Labels: 500 barcode labels on Avery L7160 sheets to a PDF\n");
    const LabelTemplates templates;
    const LabelStock *stock = templates.find(QStringLiteral("Avery L7160"));
    if (!stock) {
        std::printf("  the glabels templates are not installed\n");
        return;
    }
    QStringList accessions;
    for (int i = 1; i <= 500; ++i)
        accessions << QStringLiteral("LB%1").arg(i, 5, 10, QLatin1Char('0'));
    QTemporaryDir dir;
    Samples sheet;
    GuiStall stall;
    for (int run = 0; run < 5; ++run) {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(QStringLiteral("labels.pdf")));
        // As the label screen prints: on the worker thread.
        sheet.time([&] {
            stall.time([&] {
                TaskRunner(nullptr, QStringLiteral("Labels")).run([&](TaskProgress &progress) {
                    LabelSheet(*stock, LabelSheet::Barcode).print(printer, accessions, 1, progress);
                });
            });
        });
    }
    sheet.report("500 barcode labels (24 sheets) to PDF");
    stall.report("Label sheets");

    // The label list's "Show All": every copy on the shelves, to choose labels from.
    SettingsStore settings(dir.filePath(QStringLiteral("labels.ini")));
    frmLabelList list(settings);
    list.show();
    Presses all;
    all.press(list, "cmdAll", 5);
    std::printf("  label list: %d copies\n", list.findChild<SpreadGrid *>(QStringLiteral("fpSpreadStock"))->maxRows());
    all.report("label list \"Show All\" to filled grid", "Label list Show All");
}

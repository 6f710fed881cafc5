// The catalogue screens on the large school: a reference list of 20,000 rows loaded into its grid.
#include "CatalogueBench.h"

#include "BenchTimer.h"
#include "DbConnection.h"
#include "SpreadGrid.h"
#include "UpdateDatabase.h"
#include "frmReferenceList.h"

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

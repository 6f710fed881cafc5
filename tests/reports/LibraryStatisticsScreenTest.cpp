// The Library Statistics screen driven through its widgets on the school of the statistics tests:
// the figures shown, the charts saved as PNG, the workbooks read back and the printed page.
#include "Clock.h"
#include "LibraryStatistics.h"
#include "ScreenDriver.h"
#include "SpreadGrid.h"
#include "StatisticsCharts.h"
#include "StatisticsSchool.h"
#include "TestDatabases.h"
#include "DatabaseLocations.h"
#include "ViewerPdf.h"
#include "frmLibraryStatistics.h"
#include "frmReportViewer.h"

#include <QApplication>
#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QDateEdit>
#include <QImage>
#include <QProcess>
#include <QTabWidget>
#include <QTest>
#include <QValueAxis>
#include <QXYSeries>

#include <cmath>

using namespace ScreenDriver;

namespace {

class StatisticsScreen : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        writeStatisticsSchool(libraryPath_, centralPath_);
        Clock::setFixed(QDateTime(QDate(2026, 4, 10), QTime(9, 0)));
        SchoolName = "Hillview High";
    }
    void TearDown() override
    {
        SchoolName.clear();
        DatabaseTest::TearDown();
    }
    void quarter(frmLibraryStatistics &screen)
    {
        child<QDateEdit>(screen, "dtFrom")->setDate(QDate(2026, 1, 1));
        child<QDateEdit>(screen, "dtTo")->setDate(QDate(2026, 3, 31));
        click(screen, "cmdShow");
    }
};

} // namespace

TEST_F(StatisticsScreen, TheQuartersFiguresAreShownAndTheDefaultIsTheLastTwelveMonths)
{
    frmLibraryStatistics screen;
    EXPECT_EQ(child<QDateEdit>(screen, "dtFrom")->date(), QDate(2025, 4, 11));
    EXPECT_EQ(child<QDateEdit>(screen, "dtTo")->date(), QDate(2026, 4, 10));
    EXPECT_EQ(child<SpreadGrid>(screen, "gridMonths")->maxRows(), 13); // April 2025 to April 2026
    quarter(screen);
    EXPECT_EQ(rows(screen, "gridMonths"),
              (QStringList{"2026-01|2|0|0|50.0|3.00|0.00|0.00", "2026-02|2|0|0|50.0|0.00|3.00|0.00", "2026-03|0|1|0|100.0|1.50|0.00|1.50"}));
    EXPECT_EQ(rows(screen, "gridTopTitles"), (QStringList{"Book 1|2", "Book 3|2", "Book 2|1"}));
    EXPECT_EQ(rows(screen, "gridTopClasses"), (QStringList{"8A|2", "8B|1", "10A|1"}));
    EXPECT_EQ(rows(screen, "gridUnborrowed"), (QStringList{"F4|Book 4|Fiction", "F5|Book 5|Science"}));

    child<QDateEdit>(screen, "dtFrom")->setDate(QDate(2026, 4, 1));
    click(screen, "cmdShow");
    EXPECT_EQ(messages_->prompts().last(), "The period's first day must not be after its last day.");
    EXPECT_EQ(child<SpreadGrid>(screen, "gridMonths")->maxRows(), 3); // the last figures stay
}

TEST_F(StatisticsScreen, ChartsSaveAsImagesAndFiguresAsWorkbooks)
{
    frmLibraryStatistics screen;
    quarter(screen);
    messages_->queueFileName(path("quarter.png"));
    click(screen, "cmdSaveCharts");
    for (const char *chart : {"loans-per-month", "loans-per-grade", "loans-per-class", "overdue-and-fines", "not-borrowed"}) {
        const QImage image(path(QString("quarter-%1.png").arg(chart)));
        ASSERT_FALSE(image.isNull()) << chart;
        EXPECT_EQ(image.size(), QSize(1000, 600)) << chart;
        // Something was drawn: more than a handful of colours.
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); y += 7)
            for (int x = 0; x < image.width(); x += 7)
                colours.insert(image.pixel(x, y));
        EXPECT_GT(colours.size(), 5) << chart;
    }
    messages_->queueFileName(path("figures"));
    click(screen, "cmdExportFigures");
    EXPECT_EQ(workbookRows(path("figures.xlsx")),
              (QStringList{"Month|Learners|Educators|Staff|Overdue %|Fines Charged|Fines Paid|Fines Cancelled",
                           "2026-01|#2|#0|#0|#50|#3|#0|#0", "2026-02|#2|#0|#0|#50|#0|#3|#0", "2026-03|#0|#1|#0|#100|#1.5|#0|#1.5"}));
    // Always the monthly figures, whichever page is on show.
    child<QTabWidget>(screen, "tabStatistics")->setCurrentIndex(2);
    messages_->queueFileName(path("again"));
    click(screen, "cmdExportFigures");
    EXPECT_EQ(workbookRows(path("again.xlsx")).value(0), "Month|Learners|Educators|Staff|Overdue %|Fines Charged|Fines Paid|Fines Cancelled");
    messages_->queueFileName(path("weeding"));
    click(screen, "cmdExportUnborrowed");
    EXPECT_EQ(workbookRows(path("weeding.xlsx")), (QStringList{"Accession No|Title|Category", "F4|Book 4|Fiction", "F5|Book 5|Science"}));
}

TEST_F(StatisticsScreen, ThePagePrintsWithItsChartsAndFigures)
{
    frmLibraryStatistics screen;
    quarter(screen);
    auto print = [&](const QString &pdf) { return ViewPdf(screen, "cmdPrint", pdf); };
    EXPECT_EQ(print(path("statistics.pdf")), 4);
    const QString text = pdfText(path("statistics.pdf"));
    for (const char *expected : {"Hillview High - Library Statistics", "2026-01-01 to 2026-03-31", "Figures per month", "Most borrowed titles",
                                 "Book 1", "Most active classes", "Copies not borrowed in the period (2)", "Page 4 of 4"})
        EXPECT_TRUE(text.contains(expected)) << expected;
    // The five charts are drawn on the pages as pictures.
    QProcess images;
    images.start("pdfimages", {"-list", path("statistics.pdf")});
    ASSERT_TRUE(images.waitForFinished(30000));
    EXPECT_EQ(QString::fromUtf8(images.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts).size(), 2 + 5); // two heading lines

    // Ten years, the longest period the screen takes: the figures of every month are printed,
    // going on over further pages.
    child<QDateEdit>(screen, "dtFrom")->setDate(QDate(2016, 4, 1));
    click(screen, "cmdShow");
    const int pages = print(path("decade.pdf"));
    EXPECT_GT(pages, 4);
    const QString decade = pdfText(path("decade.pdf"));
    EXPECT_TRUE(decade.contains("Figures per month (continued)"));
    for (const char *month : {"2016-04", "2021-07", "2026-03"})
        EXPECT_TRUE(decade.contains(month)) << month;
    EXPECT_TRUE(decade.contains(QString("Page %1 of %1").arg(pages)));
}

// A whole date typed into "From" is taken; a one-month period draws the overdue and fines chart
// with whole or money-rounded ticks; grades and classes keep their names readable; the charts'
// lettering is at least 8 points.
TEST_F(StatisticsScreen, ChartsReadWellForAnyPeriod)
{
    frmLibraryStatistics screen;
    screen.show();
    QApplication::setActiveWindow(&screen);
    auto *from = child<QDateEdit>(screen, "dtFrom");
    from->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(from, "2026-03-01");
    EXPECT_EQ(from->date(), QDate(2026, 3, 1));
    child<QDateEdit>(screen, "dtTo")->setDate(QDate(2026, 3, 31));
    click(screen, "cmdShow");
    ASSERT_EQ(child<SpreadGrid>(screen, "gridMonths")->maxRows(), 1);

    LibraryStatistics month = LibraryStatistics::compute(QDate(2026, 3, 1), QDate(2026, 3, 31));
    std::unique_ptr<QChart> fines(StatisticsCharts::make(StatisticsCharts::OverdueAndFines, month));
    int shownPoints = 0;
    for (QAbstractSeries *series : fines->series()) {
        if (auto *bars = qobject_cast<QBarSeries *>(series))
            for (QBarSet *set : bars->barSets())
                shownPoints += set->count();
        if (auto *line = qobject_cast<QXYSeries *>(series))
            shownPoints += line->pointsVisible() ? line->count() : 0;
    }
    EXPECT_GE(shownPoints, 2) << "a one-month chart shows its figures";
    for (QAbstractAxis *axis : fines->axes(Qt::Vertical)) {
        auto *values = qobject_cast<QValueAxis *>(axis);
        ASSERT_TRUE(values);
        const double step = (values->max() - values->min()) / std::max(1, values->tickCount() - 1);
        EXPECT_NEAR(step * 100, std::round(step * 100), 1e-6) << "ticks of " << values->titleText().toStdString() << ": " << step;
    }
    for (auto chart : {StatisticsCharts::LoansPerMonth, StatisticsCharts::LoansPerGrade, StatisticsCharts::LoansPerClass,
                       StatisticsCharts::OverdueAndFines, StatisticsCharts::NotBorrowed}) {
        std::unique_ptr<QChart> made(StatisticsCharts::make(chart, month));
        EXPECT_GE(made->titleFont().pointSizeF(), 8) << chart;
        EXPECT_GE(made->legend()->font().pointSizeF(), 8) << chart;
        for (QAbstractAxis *axis : made->axes()) {
            EXPECT_GE(axis->labelsFont().pointSizeF(), 8) << chart;
            // Names of grades, classes and categories are read across, never turned on their side.
            if (qobject_cast<QBarCategoryAxis *>(axis) && chart != StatisticsCharts::LoansPerMonth && chart != StatisticsCharts::OverdueAndFines) {
                EXPECT_EQ(axis->labelsAngle(), 0) << chart;
            }
        }
    }
}

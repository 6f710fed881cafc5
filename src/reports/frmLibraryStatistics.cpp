#include "frmLibraryStatistics.h"
#include "TypedFields.h"
#include "ui_frmLibraryStatistics.h"

#include "Clock.h"
#include "SpreadGrid.h"
#include "StatisticsCharts.h"
#include "StatisticsDocument.h"
#include "TaskRunner.h"
#include "ErrorReport.h"
#include "DatabaseLocations.h"
#include "frmReportViewer.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

#include <QChart>
#include <QChartView>
#include <QFileInfo>
#include <QVBoxLayout>

namespace {
const QString Location = QStringLiteral("frmLibraryStatistics");
const QSize ChartFileSize(1000, 600);

void fillCounts(SpreadGrid &grid, const std::vector<LibraryStatistics::Count> &counts)
{
    grid.beginFill();
    grid.setMaxRows(int(counts.size()));
    for (size_t i = 0; i < counts.size(); ++i) {
        grid.setCellText(1, int(i) + 1, counts[i].name);
        grid.setCellText(2, int(i) + 1, QString::number(counts[i].count));
    }
    grid.endFill();
}
} // namespace

frmLibraryStatistics::frmLibraryStatistics(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmLibraryStatistics>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    const QDate today = Clock::today();
    ui->dtTo->setDate(today);
    ui->dtFrom->setDate(today.addYears(-1).addDays(1));
    ui->gridMonths->defineColumns({{"Month", 8}, {"Learners", 8}, {"Educators", 9}, {"Staff", 6}, {"Overdue %", 9}, {"Fines Charged", 11},
                                   {"Fines Paid", 10}, {"Fines Cancelled", 13}});
    for (int c : {6, 7, 8})
        ui->gridMonths->setColumnMoney(c);
    ui->gridTopClasses->defineColumns({{"Class", 10}, {"Loans", 7}});
    ui->gridTopTitles->defineColumns({{"Title", 50}, {"Loans", 7}});
    ui->gridUnborrowed->defineColumns({{"Accession No", 12}, {"Title", 40}, {"Category", 16}});
    for (SpreadGrid *grid : {ui->gridMonths, ui->gridTopClasses, ui->gridTopTitles, ui->gridUnborrowed})
        for (int c = 1; c <= grid->maxCols(); ++c)
            grid->setColumnLocked(c, true);
    for (QWidget *area : {ui->chartLoansPerMonth, ui->chartLoansPerGrade, ui->chartLoansPerClass, ui->chartOverdueAndFines, ui->chartNotBorrowed}) {
        auto *layout = new QVBoxLayout(area);
        layout->setContentsMargins(0, 0, 0, 0);
        auto *view = new QChartView(area);
        view->setRenderHint(QPainter::Antialiasing);
        view->setMinimumSize(360, 260);
        layout->addWidget(view);
        views_.push_back(view);
    }
    connect(ui->cmdShow, &QPushButton::clicked, this, &frmLibraryStatistics::cmdShow_Click);
    connect(ui->cmdSaveCharts, &QPushButton::clicked, this, &frmLibraryStatistics::cmdSaveCharts_Click);
    connect(ui->cmdExportFigures, &QPushButton::clicked, this, &frmLibraryStatistics::cmdExportFigures_Click);
    connect(ui->cmdExportUnborrowed, &QPushButton::clicked, this, &frmLibraryStatistics::cmdExportUnborrowed_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmLibraryStatistics::cmdPrint_Click);
    connect(ui->cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    cmdShow_Click();
}

frmLibraryStatistics::~frmLibraryStatistics() = default;

bool frmLibraryStatistics::shown() const { return statistics_.from.isValid(); }

void frmLibraryStatistics::cmdShow_Click()
{
    const QDate from = ui->dtFrom->date(), to = ui->dtTo->date();
    if (from > to) {
        UserMessage(QStringLiteral("The period's first day must not be after its last day."));
        ui->dtFrom->setFocus();
        return;
    }
    if (from.daysTo(to) > 3660) {
        UserMessage(QStringLiteral("Please choose a period of at most ten years."));
        ui->dtFrom->setFocus();
        return;
    }
    Trap(Location, QStringLiteral("cmdShow_Click"), [&] {
        // Reading only: Cancel keeps the figures on show.
        auto computed = TaskRunner(this, QStringLiteral("Counting the loans and fines of the period..."), TaskRunner::Cancel::Yes)
                            .compute<LibraryStatistics>([&](TaskProgress &progress) { return LibraryStatistics::compute(from, to, progress); });
        if (!computed)
            return;
        statistics_ = std::move(*computed);
        fillGrids();
        fillCharts();
    });
}

void frmLibraryStatistics::fillGrids()
{
    SpreadGrid &months = *ui->gridMonths;
    months.beginFill();
    months.setMaxRows(int(statistics_.months.size()));
    for (size_t i = 0; i < statistics_.months.size(); ++i) {
        const auto &m = statistics_.months[i];
        const QString cells[] = {m.month, QString::number(m.learners), QString::number(m.educators), QString::number(m.staff),
                                 QString::number(100.0 * m.overdueRate(), 'f', 1), m.charged.toDisplayText(), m.paid.toDisplayText(),
                                 m.cancelled.toDisplayText()};
        for (int c = 0; c < 8; ++c)
            months.setCellText(c + 1, int(i) + 1, cells[c]);
    }
    months.endFill();
    fillCounts(*ui->gridTopClasses, statistics_.topClasses);
    fillCounts(*ui->gridTopTitles, statistics_.topTitles);
    SpreadGrid &unborrowed = *ui->gridUnborrowed;
    unborrowed.beginFill();
    unborrowed.setMaxRows(int(statistics_.unborrowed.size()));
    for (size_t i = 0; i < statistics_.unborrowed.size(); ++i) {
        const auto &u = statistics_.unborrowed[i];
        unborrowed.setCellText(1, int(i) + 1, u.accession);
        unborrowed.setCellText(2, int(i) + 1, u.title);
        unborrowed.setCellText(3, int(i) + 1, u.category);
    }
    unborrowed.endFill();
}

void frmLibraryStatistics::fillCharts()
{
    for (int c = 0; c < StatisticsCharts::Count; ++c) {
        QChart *old = views_[size_t(c)]->chart();
        views_[size_t(c)]->setChart(StatisticsCharts::make(StatisticsCharts::Chart(c), statistics_));
        delete old;
    }
}

void frmLibraryStatistics::cmdSaveCharts_Click()
{
    if (!shown())
        return;
    QString base = ShowSaveFileDialog(this, QStringLiteral("Save Charts as PNG"), QStringLiteral("PNG Images (*.png)"));
    if (base.isEmpty())
        return;
    if (base.endsWith(QLatin1String(".png"), Qt::CaseInsensitive))
        base.chop(4);
    // One file per chart: the name given, then the chart's own name.
    QStringList written;
    for (int c = 0; c < StatisticsCharts::Count; ++c) {
        const auto chart = StatisticsCharts::Chart(c);
        const QString file = base + QLatin1Char('-') + StatisticsCharts::fileName(chart) + QStringLiteral(".png");
        if (!StatisticsCharts::render(chart, statistics_, ChartFileSize).save(file, "PNG")) {
            UserMessage(QStringLiteral("The chart could not be saved as %1.").arg(file));
            return;
        }
        written << QFileInfo(file).fileName();
    }
    UserMessage(QStringLiteral("The charts have been saved: %1.").arg(written.join(QStringLiteral(", "))));
}

void frmLibraryStatistics::cmdExportFigures_Click()
{
    if (!shown())
        return;
    // The monthly figures, whichever page is on show.
    ExportGridToWorkbook(this, *ui->gridMonths, QStringLiteral("Figures"));
}

void frmLibraryStatistics::cmdExportUnborrowed_Click()
{
    if (!shown())
        return;
    if (statistics_.unborrowed.empty()) {
        UserMessage(QStringLiteral("Every copy was borrowed in the period."));
        return;
    }
    ExportGridToWorkbook(this, *ui->gridUnborrowed, QStringLiteral("Not borrowed"));
}

void frmLibraryStatistics::cmdPrint_Click()
{
    if (!shown())
        return;
    const StatisticsDocument page(statistics_, SchoolName);
    frmReportViewer viewer(page, this);
    viewer.exec();
}

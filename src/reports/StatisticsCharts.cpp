#include "StatisticsCharts.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QHorizontalBarSeries>
#include <QLegend>
#include <QChart>
#include <QChartView>
#include <QLineSeries>
#include <QPainter>
#include <QPen>
#include <QStackedBarSeries>
#include <QValueAxis>

#include <algorithm>
#include <cmath>

namespace {

// A count axis whose ticks fall on whole numbers.
QValueAxis *countAxis(int largest)
{
    auto *y = new QValueAxis;
    y->setLabelFormat(QStringLiteral("%d"));
    const int top = std::max(1, largest);
    if (top <= 10) {
        y->setRange(0, top);
        y->setTickCount(top + 1);
    } else {
        y->setRange(0, top);
        y->applyNiceNumbers();
    }
    return y;
}

// Names of grades, classes and categories are read across: their bars lie down, names on the left.
QChart *barChart(const QString &title, const QString &setName, const std::vector<LibraryStatistics::Count> &counts)
{
    auto *chart = new QChart;
    chart->setTitle(title);
    auto *set = new QBarSet(setName);
    QStringList categories;
    int largest = 0;
    // From the top down in the order given.
    for (auto c = counts.rbegin(); c != counts.rend(); ++c) {
        *set << c->count;
        categories << c->name;
        largest = std::max(largest, c->count);
    }
    auto *series = new QHorizontalBarSeries;
    series->append(set);
    chart->addSeries(series);
    auto *names = new QBarCategoryAxis;
    names->append(categories);
    chart->addAxis(names, Qt::AlignLeft);
    series->attachAxis(names);
    auto *x = countAxis(largest);
    chart->addAxis(x, Qt::AlignBottom);
    series->attachAxis(x);
    chart->legend()->setVisible(false);
    return chart;
}

// Lettering that stays readable on paper: nothing under 8 points.
QChart *readable(QChart *chart)
{
    QFont title = chart->titleFont();
    title.setPointSizeF(std::max(11.0, title.pointSizeF()));
    title.setBold(true);
    chart->setTitleFont(title);
    QFont small = chart->legend()->font();
    small.setPointSizeF(std::max(8.0, small.pointSizeF()));
    chart->legend()->setFont(small);
    for (QAbstractAxis *axis : chart->axes()) {
        QFont labels = axis->labelsFont();
        labels.setPointSizeF(std::max(8.0, labels.pointSizeF()));
        axis->setLabelsFont(labels);
        QFont axisTitle = axis->titleFont();
        axisTitle.setPointSizeF(std::max(8.0, axisTitle.pointSizeF()));
        axis->setTitleFont(axisTitle);
    }
    return chart;
}

QStringList monthNames(const LibraryStatistics &s)
{
    QStringList months;
    for (const auto &m : s.months)
        months << m.month;
    return months;
}

} // namespace

QString StatisticsCharts::fileName(Chart chart)
{
    static const char *names[] = {"loans-per-month", "loans-per-grade", "loans-per-class", "overdue-and-fines", "not-borrowed"};
    return QString::fromLatin1(names[chart]);
}

namespace {

QChart *build(StatisticsCharts::Chart which, const LibraryStatistics &s)
{
    using namespace StatisticsCharts;
    switch (which) {
    case LoansPerGrade: return barChart(QStringLiteral("Learners' loans per grade"), QStringLiteral("Loans"), s.loansByGrade);
    case LoansPerClass: return barChart(QStringLiteral("Learners' loans per class"), QStringLiteral("Loans"), s.loansByClass);
    case NotBorrowed:
        return barChart(QStringLiteral("Copies not borrowed in the period, per category"), QStringLiteral("Copies"), s.unborrowedByCategory);
    case LoansPerMonth: {
        auto *chart = new QChart;
        chart->setTitle(QStringLiteral("Loans per month"));
        auto *series = new QStackedBarSeries;
        const char *kinds[] = {"Learners", "Educators", "Staff"};
        int LibraryStatistics::Month::*counts[] = {&LibraryStatistics::Month::learners, &LibraryStatistics::Month::educators,
                                                   &LibraryStatistics::Month::staff};
        for (int k = 0; k < 3; ++k) {
            auto *set = new QBarSet(QString::fromLatin1(kinds[k]));
            for (const auto &m : s.months)
                *set << m.*counts[k];
            series->append(set);
        }
        chart->addSeries(series);
        auto *x = new QBarCategoryAxis;
        x->append(monthNames(s));
        x->setLabelsAngle(-90);
        chart->addAxis(x, Qt::AlignBottom);
        series->attachAxis(x);
        int largest = 0;
        for (const auto &m : s.months)
            largest = std::max(largest, m.loans());
        auto *y = countAxis(largest);
        chart->addAxis(y, Qt::AlignLeft);
        series->attachAxis(y);
        return chart;
    }
    case OverdueAndFines: {
        // Fines as bars and the overdue rate as marked points on a line: a single month shows too.
        auto *chart = new QChart;
        chart->setTitle(QStringLiteral("Overdue rate and fines per month"));
        auto *x = new QBarCategoryAxis;
        x->append(monthNames(s));
        x->setLabelsAngle(-90);
        chart->addAxis(x, Qt::AlignBottom);
        auto *money = new QValueAxis;
        money->setTitleText(QStringLiteral("Fines"));
        chart->addAxis(money, Qt::AlignLeft);
        auto *rate = new QValueAxis;
        rate->setTitleText(QStringLiteral("Overdue %"));
        rate->setRange(0, 100);
        rate->setTickCount(6);
        rate->setLabelFormat(QStringLiteral("%d"));
        rate->setGridLineVisible(false); // the fines' grid is the one drawn
        chart->addAxis(rate, Qt::AlignRight);
        Money LibraryStatistics::Month::*amounts[] = {&LibraryStatistics::Month::charged, &LibraryStatistics::Month::paid,
                                                      &LibraryStatistics::Month::cancelled};
        const char *names[] = {"Fines charged", "Fines paid", "Fines cancelled"};
        auto *bars = new QBarSeries;
        double top = 0;
        for (int k = 0; k < 3; ++k) {
            auto *set = new QBarSet(QString::fromLatin1(names[k]));
            for (const auto &m : s.months) {
                const double v = (m.*amounts[k]).toDouble();
                *set << v;
                top = std::max(top, v);
            }
            bars->append(set);
        }
        chart->addSeries(bars);
        bars->attachAxis(x);
        bars->attachAxis(money);
        // Ticks on whole amounts (or money-rounded ones below one).
        money->setRange(0, std::max(top, 1.0));
        money->applyNiceNumbers();
        const double step = (money->max() - money->min()) / std::max(1, money->tickCount() - 1);
        money->setLabelFormat(step >= 1 && std::abs(step - std::round(step)) < 1e-9 ? QStringLiteral("%.0f") : QStringLiteral("%.2f"));
        auto *overdue = new QLineSeries;
        overdue->setName(QStringLiteral("Overdue rate"));
        overdue->setPointsVisible(true);
        overdue->setPen(QPen(QColor(160, 20, 20), 2.5)); // apart from the bars' colours
        for (size_t i = 0; i < s.months.size(); ++i)
            overdue->append(double(i), 100.0 * s.months[i].overdueRate());
        chart->addSeries(overdue);
        overdue->attachAxis(x);
        overdue->attachAxis(rate);
        return chart;
    }
    }
    return new QChart;
}

} // namespace

QChart *StatisticsCharts::make(Chart which, const LibraryStatistics &s) { return readable(build(which, s)); }

QImage StatisticsCharts::render(Chart chart, const LibraryStatistics &s, const QSize &size)
{
    QChartView view(make(chart, s));
    view.setRenderHint(QPainter::Antialiasing);
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.resize(size);
    view.show();
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    view.render(&painter);
    return image;
}

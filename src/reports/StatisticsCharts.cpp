#include "StatisticsCharts.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QLineSeries>
#include <QPainter>
#include <QStackedBarSeries>
#include <QValueAxis>

#include <algorithm>

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

QChart *barChart(const QString &title, const QString &setName, const std::vector<LibraryStatistics::Count> &counts)
{
    auto *chart = new QChart;
    chart->setTitle(title);
    auto *set = new QBarSet(setName);
    QStringList categories;
    int largest = 0;
    for (const auto &c : counts) {
        *set << c.count;
        categories << c.name;
        largest = std::max(largest, c.count);
    }
    auto *series = new QBarSeries;
    series->append(set);
    chart->addSeries(series);
    auto *x = new QBarCategoryAxis;
    x->append(categories);
    if (categories.size() > 6)
        x->setLabelsAngle(-90); // many classes or categories: upright names stay whole
    chart->addAxis(x, Qt::AlignBottom);
    series->attachAxis(x);
    auto *y = countAxis(largest);
    chart->addAxis(y, Qt::AlignLeft);
    series->attachAxis(y);
    chart->legend()->setVisible(false);
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

QChart *StatisticsCharts::make(Chart which, const LibraryStatistics &s)
{
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
        auto *chart = new QChart;
        chart->setTitle(QStringLiteral("Overdue rate and fines per month"));
        auto *x = new QBarCategoryAxis;
        x->append(monthNames(s));
        x->setLabelsAngle(-90);
        chart->addAxis(x, Qt::AlignBottom);
        auto *money = new QValueAxis;
        money->setTitleText(QStringLiteral("Fines"));
        money->setLabelFormat(QStringLiteral("%.2f"));
        chart->addAxis(money, Qt::AlignLeft);
        auto *rate = new QValueAxis;
        rate->setTitleText(QStringLiteral("Overdue %"));
        rate->setRange(0, 100);
        chart->addAxis(rate, Qt::AlignRight);
        Money LibraryStatistics::Month::*amounts[] = {&LibraryStatistics::Month::charged, &LibraryStatistics::Month::paid,
                                                      &LibraryStatistics::Month::cancelled};
        const char *names[] = {"Fines charged", "Fines paid", "Fines cancelled"};
        double top = 1;
        for (int k = 0; k < 3; ++k) {
            auto *line = new QLineSeries;
            line->setName(QString::fromLatin1(names[k]));
            for (size_t i = 0; i < s.months.size(); ++i) {
                const double v = (s.months[i].*amounts[k]).toDouble();
                line->append(double(i), v);
                top = std::max(top, v);
            }
            chart->addSeries(line);
            line->attachAxis(x);
            line->attachAxis(money);
        }
        money->setRange(0, top * 1.1);
        auto *overdue = new QLineSeries;
        overdue->setName(QStringLiteral("Overdue rate"));
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

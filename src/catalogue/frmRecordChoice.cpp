#include "frmRecordChoice.h"
#include "ui_frmRecordChoice.h"

#include <QKeyEvent>

#include <algorithm>
#include <utility>

frmRecordChoice::frmRecordChoice(QList<Choice> choices, const QStringList &problems, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmRecordChoice>()), choices_(std::move(choices))
{
    ui->setupUi(this);
    std::stable_sort(choices_.begin(), choices_.end(), [](const Choice &a, const Choice &b) { return a.record.year > b.record.year; });
    ui->gridRecords->defineColumns({{"Source", 16}, {"Title", 34}, {"Author", 20}, {"Publisher", 18}, {"Year", 6}, {"Edition", 8}, {"ISBN", 15}});
    for (const Choice &c : choices_)
        ui->gridRecords->appendRow({c.source, c.record.title, c.record.authors.value(0), c.record.publisher, c.record.year, c.record.edition,
                                    c.record.isbns.value(0)});
    ui->gridRecords->selectGridRow(1);
    ui->lblProblems->setText(problems.join(QLatin1Char('\n')));
    ui->lblProblems->setVisible(!problems.isEmpty());
    connect(ui->cmdTake, &QPushButton::clicked, this, &frmRecordChoice::cmdTake_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui->gridRecords, &SpreadGrid::cellDoubleClicked, this, [this] { cmdTake_Click(); });
    ui->gridRecords->setFocus();
}

frmRecordChoice::~frmRecordChoice() = default;

void frmRecordChoice::cmdTake_Click()
{
    const int row = ui->gridRecords->selectedRow();
    if (row < 1 || row > choices_.size())
        return;
    chosen_ = choices_[row - 1].record;
    accept();
}

void frmRecordChoice::keyPressEvent(QKeyEvent *event)
{
    // Enter takes the row under the cursor wherever the focus is.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        cmdTake_Click();
        return;
    }
    QDialog::keyPressEvent(event);
}

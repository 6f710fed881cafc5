#include "frmOverdueNotices.h"
#include "ui_frmOverdueNotices.h"

#include "AppError.h"
#include "Clock.h"
#include "MemberLists.h"
#include "NoticeDocument.h"
#include "Recordset.h"
#include "SchoolDatabase.h"
#include "SpreadGrid.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "DatabaseLocations.h"
#include "TaskRunner.h"
#include "frmReportViewer.h"
#include "mCombo.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

#include <QPlainTextEdit>
#include <QSet>

#include <algorithm>

namespace {
const QString Location = QStringLiteral("frmOverdueNotices");
const QString LeftTheSchool = QStringLiteral("Left the school");
} // namespace

frmOverdueNotices::frmOverdueNotices(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmOverdueNotices>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    SpreadGrid &grid = *ui->gridOverdue;
    grid.defineColumns({{"Member", 24}, {"Class", 6}, {"Accession No", 12}, {"Title", 34}, {"Due Date", 11}, {"Days Overdue", 8}, {"Fine So Far", 9}});
    for (int c = 1; c <= 7; ++c)
        grid.setColumnLocked(c, true);
    grid.setColumnMoney(7);
    connect(ui->cboGrade, &QComboBox::activated, this, &frmOverdueNotices::cboGrade_Click);
    for (QAbstractButton *option : {static_cast<QAbstractButton *>(ui->optLearners), static_cast<QAbstractButton *>(ui->optEducators),
                                    static_cast<QAbstractButton *>(ui->optStaff)})
        connect(option, &QAbstractButton::clicked, this, &frmOverdueNotices::optKind_Click);
    connect(ui->cmdShow, &QPushButton::clicked, this, &frmOverdueNotices::cmdShow_Click);
    connect(ui->cmdClassLists, &QPushButton::clicked, this, &frmOverdueNotices::cmdClassLists_Click);
    connect(ui->cmdLetters, &QPushButton::clicked, this, &frmOverdueNotices::cmdLetters_Click);
    connect(ui->cmdExport, &QPushButton::clicked, this, &frmOverdueNotices::cmdExport_Click);
    connect(ui->cmdSaveTemplate, &QPushButton::clicked, this, &frmOverdueNotices::cmdSaveTemplate_Click);
    connect(ui->cmdDefaultTemplate, &QPushButton::clicked, this, &frmOverdueNotices::cmdDefaultTemplate_Click);
    // Close asks first while the letter's wording has changes not saved.
    connect(ui->cmdClose, &QPushButton::clicked, this, [this] { ConfirmUnsavedClose(ui->cmdSaveTemplate, this); });
    connect(ui->txtTemplate, &QPlainTextEdit::textChanged, this,
            [this] { ui->cmdSaveTemplate->setEnabled(ui->txtTemplate->toPlainText() != savedWording_); });
    Form_Load();
}

frmOverdueNotices::~frmOverdueNotices() = default;

void frmOverdueNotices::Form_Load()
{
    ui->dtAsAt->setDate(Clock::today());
    Trap(Location, QStringLiteral("Form_Load"), [&] {
        ui->cboGrade->clear();
        ui->cboGrade->addItem(QStringLiteral("All grades"), 0);
        for (auto rs = SchoolQuery(QStringLiteral("select ID, Name from SchoolGrades where SchoolGrade = 'Yes' order by ID")); !rs->atEnd(); rs->MoveNext())
            ui->cboGrade->addItem(rs->field(1).toString(), rs->field(0).toInt());
        cboGrade_Click();
        savedWording_ = NoticeTemplate::load();
        ui->txtTemplate->setPlainText(savedWording_);
    });
}

void frmOverdueNotices::cboGrade_Click()
{
    ui->cboClass->clear();
    ui->cboClass->addItem(QStringLiteral("All classes"), 0);
    const int grade = ui->cboGrade->currentData().toInt();
    if (grade == 0)
        return;
    Trap(Location, QStringLiteral("cboGrade_Click"), [&] {
        const auto classes = SchoolQuery(QStringLiteral("select ClassID, ClassName from Classes where Grade = ") + QString::number(grade));
        AddClassesInNaturalOrder(ui->cboClass, *classes, QStringLiteral("ClassName"), QStringLiteral("ClassID"));
    });
}

void frmOverdueNotices::optKind_Click()
{
    const bool learners = ui->optLearners->isChecked();
    for (QWidget *w : {static_cast<QWidget *>(ui->cboGrade), static_cast<QWidget *>(ui->cboClass), static_cast<QWidget *>(ui->cmdLetters)})
        w->setEnabled(learners);
}

QString frmOverdueNotices::kind() const { return MemberKind(ui->optLearners, ui->optEducators); }

std::optional<std::vector<OverdueRow>> frmOverdueNotices::overdue()
{
    std::optional<std::vector<OverdueRow>> found;
    Trap(Location, QStringLiteral("Overdue"), [&] {
        OverdueQuery query;
        query.asAt = ui->dtAsAt->date();
        query.memberType = kind();
        if (query.asAt > Clock::today()) {
            UserMessage(QStringLiteral("The 'as at' date cannot be later than today."));
            ui->dtAsAt->setFocus();
            return;
        }
        const QDate first = OverdueList::firstLoanDay();
        if (!first.isValid() || query.asAt < first) {
            UserMessage(first.isValid() ? QStringLiteral("The first book was lent on %1: please choose an 'as at' date from then on.")
                                              .arg(first.toString(Qt::ISODate))
                                        : QStringLiteral("No book has been lent yet."));
            ui->dtAsAt->setFocus();
            return;
        }
        if (query.memberType == QLatin1String("L")) {
            query.grade = ui->cboGrade->currentData().toInt();
            query.classID = ui->cboClass->currentData().toInt();
            if (query.grade != 0 && ui->cboClass->count() < 2) {
                UserMessage(QStringLiteral("%1 has no classes.").arg(ui->cboGrade->currentText()));
                ui->cboGrade->setFocus();
                return;
            }
        }
        auto loaded = TaskRunner(this, QStringLiteral("Finding the overdue books..."), TaskRunner::Cancel::Yes)
                          .compute<std::vector<OverdueRow>>([&](TaskProgress &) { return OverdueList::load(query); });
        if (!loaded)
            return;
        std::vector<OverdueRow> rows = std::move(*loaded);
        if (rows.empty()) {
            UserMessage(QStringLiteral("Nobody has an overdue book on %1.").arg(query.asAt.toString(Qt::ISODate)));
            return;
        }
        found = std::move(rows);
    });
    return found;
}

void frmOverdueNotices::showRows()
{
    SpreadGrid &grid = *ui->gridOverdue;
    grid.beginFill();
    grid.setMaxRows(int(rows_.size()));
    QSet<int> members;
    for (size_t i = 0; i < rows_.size(); ++i) {
        const OverdueRow &r = rows_[i];
        const int row = int(i) + 1;
        const QString cells[] = {r.memberName, r.leftSchool ? LeftTheSchool : r.className, r.accession, r.title, r.dueDate.toString(Qt::ISODate), QString::number(r.daysOverdue),
                                 r.fine.toDisplayText()};
        for (int c = 0; c < 7; ++c)
            grid.setCellText(c + 1, row, cells[c]);
        members.insert(r.memberID);
    }
    grid.endFill();
    ui->lblCount->setText(rows_.empty() ? QString() : QStringLiteral("%1 overdue books, %2 members").arg(rows_.size()).arg(members.size()));
}

void frmOverdueNotices::cmdShow_Click()
{
    std::optional<std::vector<OverdueRow>> rows = overdue();
    rows_ = rows ? std::move(*rows) : std::vector<OverdueRow>();
    showRows();
}

void frmOverdueNotices::cmdClassLists_Click()
{
    cmdShow_Click();
    if (rows_.empty())
        return;
    if (std::all_of(rows_.begin(), rows_.end(), [](const OverdueRow &r) { return r.leftSchool; })) {
        UserMessage(QStringLiteral("Every overdue book shown is held by a learner who has left the school: no class has a list."));
        return;
    }
    const NoticeDocument lists(NoticeDocument::ClassLists, rows_, SchoolName, ui->dtAsAt->date());
    frmReportViewer viewer(lists, this);
    viewer.exec();
}

void frmOverdueNotices::cmdLetters_Click()
{
    if (kind() != QLatin1String("L")) {
        UserMessage(QStringLiteral("Letters to parents are written for learners."));
        return;
    }
    if (ui->txtTemplate->toPlainText().trimmed().isEmpty()) {
        UserMessage(QStringLiteral("Please write the letter's wording first (or choose Default Wording)."));
        ui->txtTemplate->setFocus();
        return;
    }
    cmdShow_Click();
    if (rows_.empty())
        return;
    const NoticeDocument letters(NoticeDocument::Letters, rows_, SchoolName, ui->dtAsAt->date(), ui->txtTemplate->toPlainText());
    frmReportViewer viewer(letters, this);
    viewer.exec();
}

void frmOverdueNotices::cmdExport_Click()
{
    cmdShow_Click();
    if (!rows_.empty())
        ExportGridToWorkbook(this, *ui->gridOverdue, QStringLiteral("Overdue"));
}

void frmOverdueNotices::cmdSaveTemplate_Click()
{
    const QString text = ui->txtTemplate->toPlainText();
    if (text.trimmed().isEmpty()) {
        UserMessage(QStringLiteral("The letter's wording is empty; nothing was saved."));
        return;
    }
    if (text.contains(QChar(0))) {
        UserMessage(QStringLiteral("The letter's wording holds a character that cannot be kept; nothing was saved."));
        return;
    }
    if (Trap(Location, QStringLiteral("cmdSaveTemplate_Click"), [&] { NoticeTemplate::save(text); })) {
        savedWording_ = text;
        ui->cmdSaveTemplate->setEnabled(false);
        UserMessage(QStringLiteral("The letter's wording has been saved."));
    }
}

void frmOverdueNotices::cmdDefaultTemplate_Click() { ui->txtTemplate->setPlainText(NoticeTemplate::defaultText()); }

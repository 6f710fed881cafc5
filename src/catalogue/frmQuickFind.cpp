#include "frmQuickFind.h"
#include "ui_frmQuickFind.h"

#include "AppError.h"
#include "MemberLists.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "SqlText.h"
#include "TypedFields.h"
#include "UpdateDatabase.h"
#include "clsTSQL.h"
#include "modExtendedMsgBox.h"

frmQuickFind::frmQuickFind(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmQuickFind>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    LimitToColumn(ui->txtAccNumber, "tblLibItems", "AccessionID");
    LimitToColumn(ui->txtAuthor, "tblLibAuthors", "AuthorSurname");
    LimitToColumn(ui->txttitle, "tblLibItems", "Title");
    LimitToColumn(ui->txtKeyword, "tblLibKeywords", "KeywordEng");
    ui->gridLocation->defineColumns({{"AccessionNo", 12}, {"Status", 9}, {"Due Date", 11}, {"Shelf No", 10}, {"Title", 36}, {"User", 28}});
    connect(ui->cmdFind, &QPushButton::clicked, this, &frmQuickFind::cmdFind_Click);
    for (QLineEdit *box : {ui->txtAccNumber, ui->txtAuthor, ui->txttitle, ui->txtKeyword})
        connect(box, &QLineEdit::returnPressed, this, &frmQuickFind::cmdFind_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
}

frmQuickFind::~frmQuickFind() = default;

void frmQuickFind::cmdFind_Click()
{
    const struct {
        QLineEdit *box;
        const char *kind;
        const char *label;
    } searches[] = {{ui->txtAccNumber, "acc", "Accession Number"}, {ui->txtAuthor, "auth", "Author"}, {ui->txttitle, "title", "Title"},
                    {ui->txtKeyword, "keyw", "Keyword"}};
    for (const auto &search : searches) {
        if (search.box->text().isEmpty())
            continue;
        const QString label = QLatin1String(search.label);
        try {
            SpreadGrid &grid = *ui->gridLocation;
            grid.clearRows();
            const int rows = data_.GetData(clsTSQL().spQSItemsFind(QLatin1String(search.kind), Safesql(search.box->text())));
            if (rows < 1) {
                data_.CloseCompact();
                UserMessage(QStringLiteral("No Items found with this ") + label + QStringLiteral("."));
                return;
            }
            const std::shared_ptr<Recordset> found = data_.rst;
            data_.CloseCompact();
            grid.setMaxRows(rows);
            int row = 0;
            for (; !found->atEnd(); found->MoveNext()) {
                ++row;
                grid.setCellText(1, row, found->field(QStringLiteral("accessionID")).toString());
                grid.setCellText(5, row, found->field(QStringLiteral("title")).toString());
                grid.setCellText(4, row, found->field(QStringLiteral("shelfnumber")).toString());
                showAvailability(row, found->field(QStringLiteral("itemid")).toInt());
            }
        } catch (const AppError &e) {
            data_.CloseCompact();
            ReportError(QStringLiteral("frmQuickFind"), QStringLiteral("Find by ") + label, e);
        }
        return; // the first box filled decides the search
    }
}

void frmQuickFind::showAvailability(int row, int itemID)
{
    SpreadGrid &grid = *ui->gridLocation;
    const clsTSQL sql;
    for (const char *kind : {"L", "E", "S"}) {
        const int loans = data_.GetData(sql.spQSTransactions(itemID, QLatin1String(kind)));
        if (loans < 1) {
            data_.CloseCompact();
            continue;
        }
        const QString member = QString::number(data_.rst->field(QStringLiteral("Memberid")).toInt());
        grid.setCellText(2, row, QStringLiteral("Out"));
        grid.setCellText(3, row, data_.rst->field(QStringLiteral("DueDate")).toString());
        data_.CloseCompact();
        const QString who = kind[0] == 'L' ? QStringLiteral("select Learner_Info.SName, (Learner_Info.FName & ' ' & Classes.ClassName) as fname from Learner_info LEFT JOIN Classes ON Learner_Info.Class = Classes.ClassId where learner_info.id = ") + member
                            : kind[0] == 'E' ? QStringLiteral("select sname, FName from Educators where edid = ") + member
                                             : QStringLiteral("select sname, FName from Staffmembers where staffid = ") + member;
        const auto borrower = CentralQuery(who);
        if (!borrower->atEnd())
            grid.setCellText(6, row, borrower->field(QStringLiteral("sname")).toString() + QStringLiteral(", ") + borrower->field(QStringLiteral("fname")).toString());
        return;
    }
    grid.setCellText(2, row, QStringLiteral("Available"));
}

#include "frmQuickFind.h"
#include "ui_frmQuickFind.h"

#include "AppError.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "SqlText.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "clsTSQL.h"
#include "modExtendedMsgBox.h"
#include "SchoolDatabase.h"

#include <QHash>
#include <QSet>

namespace {
constexpr size_t ItemsPerStatement = 2000; // copies per look-up of their loans
}

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
        Trap(QStringLiteral("frmQuickFind"), QStringLiteral("Find by ") + label, [&] {
            SpreadGrid &grid = *ui->gridLocation;
            grid.clearRows();
            const int rows = data_.GetData(clsTSQL().spQSItemsFind(QLatin1String(search.kind), Safesql(search.box->text())));
            if (rows < 1) {
                data_.CloseCompact();
                // A copy removed from the catalogue is still found by its number, with why and when.
                if (search.box != ui->txtAccNumber || !showRemoved(search.box->text()))
                    UserMessage(QStringLiteral("No Items found with this ") + label + QStringLiteral("."));
                return;
            }
            const std::shared_ptr<Recordset> found = data_.rst;
            data_.CloseCompact();
            const FillScope fill(grid);
            grid.setMaxRows(rows);
            std::vector<int> items;
            items.reserve(size_t(rows));
            int row = 0;
            for (; !found->atEnd(); found->MoveNext()) {
                ++row;
                grid.setCellText(1, row, found->field(QStringLiteral("accessionID")).toString());
                grid.setCellText(5, row, found->field(QStringLiteral("title")).toString());
                grid.setCellText(4, row, found->field(QStringLiteral("shelfnumber")).toString());
                items.push_back(found->field(QStringLiteral("itemid")).toInt());
            }
            showAvailability(items);
        }, [&] { data_.CloseCompact(); });
        return; // the first box filled decides the search
    }
}

bool frmQuickFind::showRemoved(const QString &accession)
{
    SpreadGrid &grid = *ui->gridLocation;
    const int rows = data_.GetData(QStringLiteral("select AccessionID, ShelfNumber, Title, PhasedOutReason, PhasedOutDate from tblLibItems where AccessionID = '")
                                   + Safesql(accession) + QStringLiteral("' and PhasedOut = true order by ItemID"));
    if (rows > 0) {
        const FillScope fill(grid);
        grid.setMaxRows(rows);
        int row = 0;
        for (Recordset &rs = *data_.rst; !rs.atEnd(); rs.MoveNext()) {
            ++row;
            grid.setCellText(1, row, rs.field(0).toString());
            grid.setCellText(4, row, rs.field(1).toString());
            grid.setCellText(5, row, rs.field(2).toString());
            QStringList why;
            if (!rs.field(3).toString().isEmpty())
                why << rs.field(3).toString();
            if (!rs.field(4).isNull())
                why << rs.field(4).toDate().toString(Qt::ISODate);
            grid.setCellText(2, row, why.isEmpty() ? QStringLiteral("Removed") : QStringLiteral("Removed: ") + why.join(QStringLiteral(", ")));
        }
    }
    data_.CloseCompact();
    return rows > 0;
}

void frmQuickFind::showAvailability(const std::vector<int> &items)
{
    SpreadGrid &grid = *ui->gridLocation;
    // The open loans of every copy found in one statement, then each borrower kind's names in one
    // more: a long list costs a few statements, not three a row.
    struct Loan {
        QString kind;
        int member = 0;
        QString due;
    };
    QHash<int, Loan> loans;
    for (size_t first = 0; first < items.size(); first += ItemsPerStatement) {
        QStringList ids;
        for (size_t i = first; i < items.size() && i < first + ItemsPerStatement; ++i)
            ids << QString::number(items[i]);
        if (data_.GetData(clsTSQL().spQSOpenLoans(ids)) > 0)
            for (const auto &rs = data_.rst; !rs->atEnd(); rs->MoveNext()) {
                const QString kind = rs->field(QStringLiteral("MemberType")).toString();
                if (kind == QLatin1String("L") || kind == QLatin1String("E") || kind == QLatin1String("S"))
                    loans.insert(rs->field(QStringLiteral("ItemID")).toInt(),
                                 Loan{kind, rs->field(QStringLiteral("Memberid")).toInt(), rs->field(QStringLiteral("DueDate")).toString()});
            }
        data_.CloseCompact();
    }
    QHash<QString, QSet<int>> borrowers;
    for (const Loan &loan : std::as_const(loans))
        borrowers[loan.kind].insert(loan.member);
    QHash<QString, QHash<int, QString>> names; // kind -> member -> "Surname, First Class"
    for (auto it = borrowers.cbegin(); it != borrowers.cend(); ++it) {
        QStringList ids;
        for (int member : it.value())
            ids << QString::number(member);
        const QString list = ids.join(QLatin1Char(','));
        const QString who = it.key() == QLatin1String("L")
                                ? QStringLiteral("select Learner_Info.ID as member, Learner_Info.SName, (Learner_Info.FName & ' ' & Classes.ClassName) as fname from Learner_info LEFT JOIN Classes ON Learner_Info.Class = Classes.ClassId where learner_info.id in (") + list + QStringLiteral(")")
                            : it.key() == QLatin1String("E") ? QStringLiteral("select edid as member, sname, FName from Educators where edid in (") + list + QStringLiteral(")")
                                                             : QStringLiteral("select staffid as member, sname, FName from Staffmembers where staffid in (") + list + QStringLiteral(")");
        QHash<int, QString> &named = names[it.key()];
        for (const auto rs = SchoolQuery(who); !rs->atEnd(); rs->MoveNext())
            named.insert(rs->field(QStringLiteral("member")).toInt(),
                         rs->field(QStringLiteral("sname")).toString() + QStringLiteral(", ") + rs->field(QStringLiteral("fname")).toString());
    }
    for (int row = 1; row <= int(items.size()); ++row) {
        const auto loan = loans.constFind(items[size_t(row - 1)]);
        if (loan == loans.cend()) {
            grid.setCellText(2, row, QStringLiteral("Available"));
            continue;
        }
        grid.setCellText(2, row, QStringLiteral("Out"));
        grid.setCellText(3, row, loan->due);
        grid.setCellText(6, row, names.value(loan->kind).value(loan->member));
    }
}

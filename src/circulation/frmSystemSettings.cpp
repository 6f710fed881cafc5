#include "frmSystemSettings.h"
#include "ui_frmSystemSettings.h"

#include "AppError.h"
#include "SpreadGrid.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

#include <QRegularExpression>

namespace {

const QString Location = QStringLiteral("frmSystemSettings");

// One loan section of the grid: its loan type and the rows of its Learners and Staff values.
struct Section {
    const char *loanType;
    int learnersRow;
    const char *restrictionColumn; // the spelling of MaxUserRes in this section's inserts
};
const Section Sections[] = {{"S", 6, "MaxUSerRes"}, {"N", 10, "MaxUserRes"}, {"L", 14, "MaxUserRes"}};
constexpr int NormalLearnersRow = 10;
constexpr int FineAmountColumn = 4, RestrictionColumn = 4; // the restriction rows keep their numbers in column 4

// The old runtime's Val: the number at the start of the text, 0 when there is none.
QString numericPrefix(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*([-+]?(\\d+(\\.\\d*)?|\\.\\d+))"));
    const QRegularExpressionMatch m = number.match(text);
    if (!m.hasMatch())
        return QStringLiteral("0");
    return QString::number(m.captured(1).toDouble(), 'g', 15);
}

// The message for the first cell a save writes whose number the database cannot hold (days and
// items are 16-bit whole numbers, the fine amount a currency amount); empty when all fit.
QString numberProblem(const SpreadGrid &g)
{
    const auto outOfRange = [&](int col, int row) {
        const double value = numericPrefix(g.cellText(col, row)).toDouble();
        return !(value >= 0 && value <= (col == FineAmountColumn ? 922337203685477.0 : 32767));
    };
    const auto message = [](int col, const QString &caption) {
        return caption + (col == FineAmountColumn ? QStringLiteral(" must be an amount from 0 to 922337203685477.")
                                                  : QStringLiteral(" must be a whole number from 0 to 32767."));
    };
    for (const Section &section : Sections)
        for (int row = section.learnersRow; row <= section.learnersRow + 1; ++row)
            for (int col = 2; col <= (section.learnersRow == NormalLearnersRow ? 6 : 5); ++col)
                if (outOfRange(col, row))
                    return message(col, g.cellText(col, section.learnersRow - 1) + QStringLiteral(" (") + g.cellText(1, row) + QLatin1Char(')'));
    for (int row = 19; row <= 21; ++row)
        if (outOfRange(RestrictionColumn, row))
            return message(RestrictionColumn, g.cellText(1, row));
    return QString();
}

} // namespace

frmSystemSettings::frmSystemSettings(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmSystemSettings>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    layOutGrid();
    connect(ui->cmdSave, &QPushButton::clicked, this, &frmSystemSettings::cmdSave_Click);
    connect(ui->cmdprint, &QPushButton::clicked, this, &frmSystemSettings::cmdprint_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &frmSystemSettings::cmdDone_Click);
    GetSettings();
    connect(ui->gridsettings, &SpreadGrid::cellEdited, this, [this] { unsaved_ = true; });
}

frmSystemSettings::~frmSystemSettings()
{
    ui->gridsettings->blockSignals(true); // an editor still open commits as the window goes
}

void frmSystemSettings::layOutGrid()
{
    SpreadGrid &g = *ui->gridsettings;
    g.setMaxCols(6);
    g.setMaxRows(21);
    // Narrower than the old sheet's columns, with the long labels wrapped, so the whole sheet is in view.
    g.setColWidth(1, 36);
    for (int c = 2; c <= 6; ++c) {
        g.setColWidth(c, 12);
        g.setColumnLocked(c, false);
    }
    g.setSheetEditing();
    g.setWrapText();
    for (int c = 1; c <= 6; ++c)
        g.setCellText(c, 0, QString());
    g.setCellText(1, 1, QStringLiteral("LIBRARY SYSTEM SETTINGS"));
    g.setCellText(1, 3, QStringLiteral("LOAN DETAILS"));
    const char *titles[] = {"SHORT LOAN", "NORMAL LOAN", "LONG LOAN"};
    const char *kinds[] = {"short", "normal", "long"};
    for (int s = 0; s < 3; ++s) {
        const int top = 4 + 4 * s;
        g.setCellText(1, top, QString::fromLatin1(titles[s]));
        g.setCellText(1, top + 1, QStringLiteral("Type of User"));
        g.setCellText(2, top + 1, QStringLiteral("Number of days for %1 loan period").arg(QLatin1String(kinds[s])));
        g.setCellText(3, top + 1, QStringLiteral("Maximum items on %1 loan").arg(QLatin1String(kinds[s])));
        g.setCellText(4, top + 1, QStringLiteral("Fine amount"));
        g.setCellText(5, top + 1, QStringLiteral("Fine interval (number of days)"));
        if (s == 1)
            g.setCellText(6, top + 1, QStringLiteral("Number of days for extensions"));
        g.setCellText(1, top + 2, QStringLiteral("Learners"));
        g.setCellText(1, top + 3, QStringLiteral("Staff"));
    }
    g.setCellText(1, 17, QStringLiteral("ISSUE RESTRICTIONS"));
    g.setCellText(1, 19, QStringLiteral("Maximum number of extensions per item"));
    g.setCellText(1, 20, QStringLiteral("Maximum number of reservations per item"));
    g.setCellText(1, 21, QStringLiteral("Maximum number of reservations per user"));
}

void frmSystemSettings::GetSettings()
{
    Trap(Location, QStringLiteral("Get Settings Routine"), [&] {
        SpreadGrid &g = *ui->gridsettings;
        data_.GetData(QStringLiteral("Select * from tblLibSettings"));
        int row = 0;
        for (Recordset &rs = *data_.rst; !rs.atEnd(); rs.MoveNext()) {
            g.setCellText(4, 19, rs.field(QStringLiteral("maxext")).toString());
            g.setCellText(4, 20, rs.field(QStringLiteral("maxres")).toString());
            g.setCellText(4, 21, rs.field(QStringLiteral("maxuserres")).toString());
            const QString loanType = rs.field(QStringLiteral("loanType")).toString();
            const QString category = rs.field(QStringLiteral("usercat")).toString();
            const int learners = loanType == QLatin1String("S") ? 6 : loanType == QLatin1String("N") ? 10 : loanType == QLatin1String("L") ? 14 : 0;
            // An "E" row has no row of its own: it lands on the row of the settings row read before it.
            if (category == QLatin1String("L"))
                row = learners;
            else if (category == QLatin1String("S"))
                row = learners + 1;
            if (row == 0 || learners == 0)
                continue;
            g.setCellText(2, row, rs.field(QStringLiteral("loanperiod")).toString());
            g.setCellText(3, row, rs.field(QStringLiteral("maxitems")).toString());
            g.setCellText(4, row, rs.field(QStringLiteral("fineamount")).toMoney().toDisplayText());
            g.setCellText(5, row, rs.field(QStringLiteral("fineinterval")).toString());
            if (row == NormalLearnersRow || row == NormalLearnersRow + 1)
                g.setCellText(6, row, rs.field(QStringLiteral("extdays")).toString());
        }
        data_.CloseCompact();
        unsaved_ = false;
    }, [&] { data_.CloseCompact(); });
}

void frmSystemSettings::cmdSave_Click()
{
    Trap(Location, QStringLiteral("Save Settings"), [&] {
        const SpreadGrid &g = *ui->gridsettings;
        // Checked before anything is deleted, so a number the table cannot hold leaves the old rules in place.
        if (const QString problem = numberProblem(g); !problem.isEmpty()) {
            UserMessage(problem);
            return;
        }
        data_.ExecuteNonQuery(QStringLiteral("Delete * from tblLibsettings"));
        const QString maxExt = numericPrefix(g.cellText(4, 19));
        const QString maxRes = numericPrefix(g.cellText(4, 20));
        const QString maxUserRes = numericPrefix(g.cellText(4, 21));
        for (const Section &section : Sections) {
            for (int row = section.learnersRow; row <= section.learnersRow + 1; ++row) {
                const QString period = numericPrefix(g.cellText(2, row));
                if (period == QLatin1String("0"))
                    continue;
                // Only the normal section has an extension cell; the other loan types renew by the same number of days.
                const int extensionRow = NormalLearnersRow + (row - section.learnersRow);
                const QString values = period + QLatin1Char(',') + numericPrefix(g.cellText(4, row)) + QLatin1Char(',')
                                       + numericPrefix(g.cellText(5, row)) + QLatin1Char(',') + numericPrefix(g.cellText(3, row))
                                       + QLatin1Char(',') + numericPrefix(g.cellText(6, extensionRow)) + QLatin1Char(',') + maxExt
                                       + QLatin1Char(',') + maxRes + QLatin1Char(',') + maxUserRes + QLatin1Char(')');
                const QStringList categories = row == section.learnersRow ? QStringList{QStringLiteral("L")}
                                                                          : QStringList{QStringLiteral("S"), QStringLiteral("E")};
                for (const QString &category : categories)
                    data_.ExecuteNonQuery(QStringLiteral("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,")
                                          + QLatin1String(section.restrictionColumn) + QStringLiteral(")VALUES('")
                                          + QLatin1String(section.loanType) + QStringLiteral("','") + category + QStringLiteral("',") + values);
            }
        }
        unsaved_ = false;
    });
}

void frmSystemSettings::cmdprint_Click()
{
    Trap(Location, QStringLiteral("Print Routine"), [&] {
        PrintGridWithHeading(PrintPortrait, QStringLiteral("Library Settings"), *ui->gridsettings);
    });
}

void frmSystemSettings::cmdDone_Click()
{
    if (unsaved_ && !UserQuestion(QStringLiteral("You have not saved your settings. Are you sure you want to Exit without saving?")))
        return;
    QDialog::reject();
}

void frmSystemSettings::reject() { cmdDone_Click(); }

#include "frmRecordSources.h"
#include "ui_frmRecordSources.h"

#include "AppError.h"
#include "ErrorReport.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "SqlText.h"
#include "clsDataObject.h"
#include "modExtendedMsgBox.h"

namespace {
const QString Location = QStringLiteral("frmRecordSources");
enum Column { Name = 1, Address, Protocol, Syntax, Charset, Timeout, On };
QString quoted(const QString &t) { return QLatin1Char('\'') + Safesql(t) + QLatin1Char('\''); }
} // namespace

frmRecordSources::frmRecordSources(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmRecordSources>())
{
    ui->setupUi(this);
    SpreadGrid &g = *ui->gridSources;
    g.defineColumns({{"Name", 26}, {"Address", 34}, {"Protocol", 9}, {"Record syntax", 13}, {"Character set", 13}, {"Timeout (s)", 11}, {"On", 4}});
    g.setColumnLocked(Name, false);
    g.setColumnLocked(Address, false);
    g.setColumnType(Protocol, SpreadModel::CellType::Combo);
    g.setColumnLocked(Protocol, false);
    g.setColumnLocked(Syntax, false);
    g.setColumnLocked(Charset, false);
    g.setColumnLocked(Timeout, false);
    g.setColumnType(On, SpreadModel::CellType::CheckBox);
    connect(ui->cmdAddSource, &QPushButton::clicked, this, &frmRecordSources::cmdAddSource_Click);
    connect(ui->cmdSave, &QPushButton::clicked, this, &frmRecordSources::cmdSave_Click);
    connect(ui->cmdClose, &QPushButton::clicked, this, &QDialog::reject);
    Form_Load();
}

frmRecordSources::~frmRecordSources() = default;

void frmRecordSources::Form_Load()
{
    Trap(Location, QStringLiteral("Form_Load"), [&] {
        clsDataObject data;
        data.GetData(QStringLiteral("select SourceName, Address, Protocol, RecordSyntax, CharacterSet, TimeoutSeconds, Enabled from tblLibRecordSources order by SourceID"));
        SpreadGrid &g = *ui->gridSources;
        g.clearRows();
        for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
            const int row = g.appendRow({rs.field(0).toString(), rs.field(1).toString(), rs.field(2).toString(), rs.field(3).toString(),
                                         rs.field(4).isNull() ? QString() : rs.field(4).toString(),
                                         rs.field(5).isNull() ? QStringLiteral("10") : rs.field(5).toString()});
            g.setCellList(Protocol, row, {QStringLiteral("Z39.50"), QStringLiteral("SRU")});
            g.setChecked(On, row, rs.field(6).toBool());
        }
        data.CloseCompact();
    });
}

void frmRecordSources::cmdAddSource_Click()
{
    SpreadGrid &g = *ui->gridSources;
    const int row = g.appendRow({QString(), QString(), QStringLiteral("Z39.50"), QStringLiteral("usmarc"), QString(), QStringLiteral("10")});
    g.setCellList(Protocol, row, {QStringLiteral("Z39.50"), QStringLiteral("SRU")});
    g.setChecked(On, row, true);
    g.setActiveCell(Name, row);
}

void frmRecordSources::cmdSave_Click()
{
    const SpreadGrid &g = *ui->gridSources;
    QStringList inserts;
    for (int row = 1; row <= g.maxRows(); ++row) {
        const QString name = g.cellText(Name, row).trimmed(), address = g.cellText(Address, row).trimmed();
        if (name.isEmpty() && address.isEmpty())
            continue; // an empty line is no source
        const QString where = QStringLiteral(" (line %1)").arg(row);
        bool number = false;
        const int timeout = g.cellText(Timeout, row).trimmed().toInt(&number);
        QString problem;
        if (name.isEmpty() || name.size() > 100)
            problem = QStringLiteral("The name must be 1 to 100 characters") + where + QLatin1Char('.');
        else if (address.isEmpty() || address.size() > 255 || address.contains(QLatin1Char(' ')))
            problem = QStringLiteral("The address must be host:port/database or an http address, without spaces") + where + QLatin1Char('.');
        else if (g.cellText(Protocol, row) != QLatin1String("Z39.50") && g.cellText(Protocol, row) != QLatin1String("SRU"))
            problem = QStringLiteral("The protocol must be Z39.50 or SRU") + where + QLatin1Char('.');
        else if (!number || timeout < 1 || timeout > 120)
            problem = QStringLiteral("The timeout must be a number of seconds from 1 to 120") + where + QLatin1Char('.');
        if (!problem.isEmpty()) {
            UserMessage(problem + QStringLiteral(" Nothing was saved."));
            return;
        }
        const QString syntax = g.cellText(Syntax, row).trimmed().isEmpty() ? QStringLiteral("usmarc") : g.cellText(Syntax, row).trimmed().left(20);
        inserts << QStringLiteral("Insert into tblLibRecordSources (SourceName, Address, Protocol, RecordSyntax, CharacterSet, TimeoutSeconds, "
                                  "Enabled) values (")
                       + quoted(name) + QLatin1Char(',') + quoted(address) + QLatin1Char(',') + quoted(g.cellText(Protocol, row)) + QLatin1Char(',')
                       + quoted(syntax) + QLatin1Char(',') + quoted(g.cellText(Charset, row).trimmed().left(20)) + QLatin1Char(',')
                       + QString::number(timeout) + QLatin1Char(',')
                       + (g.isChecked(On, row) ? QStringLiteral("true") : QStringLiteral("false")) + QLatin1Char(')');
    }
    Trap(Location, QStringLiteral("cmdSave_Click"), [&] {
        clsDataObject data;
        data.RunTransaction([&] {
            data.ExecuteNonQuery(QStringLiteral("Delete from tblLibRecordSources"));
            for (const QString &sql : inserts)
                data.ExecuteNonQuery(sql);
            return true;
        });
        UserMessage(QStringLiteral("The record sources are saved."));
        Form_Load();
    });
}

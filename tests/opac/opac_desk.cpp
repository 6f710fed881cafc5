// The library desk's side of the web catalogue's browser tests, through the desk's own screens
// (offscreen), on the library a settings file names:
//   shelvora_opac_desk SETTINGS set-pin PIN    the issue desk's member panel gives the first current
//                                              learner this PIN; prints "NUMBER<TAB>what the desk said"
//   shelvora_opac_desk SETTINGS title-out      a title whose every copy is out, the least reserved: "ITEMID<TAB>TITLE"
//   shelvora_opac_desk SETTINGS reservations   the rows "View Reserved Items" lists, one a line
#include "DatabaseLocations.h"
#include "MessageScript.h"
#include "PostgresEngine.h"
#include "Recordset.h"
#include "SchoolDatabase.h"
#include "SettingsStore.h"
#include "SpreadGrid.h"
#include "SqliteEngine.h"
#include "clsDataObject.h"
#include "frmIssueSystem.h"
#include "frmReservedItems.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMap>

#include <cstdio>

namespace {

void say(const QString &line) { std::printf("%s\n", qPrintable(line)); }

int setPin(const QString &pin)
{
    const auto learner = SchoolQuery(QStringLiteral("select AccessionNo from Learner_Info where Status = 'C' order by ID"));
    if (learner->atEnd())
        return 1;
    const QString number = learner->field(0).toString();
    MessageScript script;
    script.queueFileName(pin);
    frmIssueSystem desk;
    auto *member = desk.findChild<QLineEdit *>(QStringLiteral("txtmemberID"));
    member->setText(number);
    Q_EMIT member->returnPressed();
    desk.findChild<QAbstractButton *>(QStringLiteral("cmdSetPin"))->click();
    say(number + QLatin1Char('\t') + script.prompts().join(QLatin1Char(' ')));
    return 0;
}

int titleOut()
{
    clsDataObject data;
    data.GetData(QStringLiteral("select i.ItemID, i.Title, (select count(*) from tblLibTransactions t where t.ItemID = i.ItemID and t.Returned = "
                                "false) as Loans, (select count(*) from tblLibReserves r where r.ItemID = i.ItemID and r.Canceled = false) as Held "
                                "from tblLibItems i where i.PhasedOut = false and i.ReferenceItem = false order by i.Title"));
    struct Title {
        int item = 0, held = 0;
        bool allOut = true;
    };
    QMap<QString, Title> titles;
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        Title &t = titles[rs.field(1).toString()];
        t.item = rs.field(0).toInt();
        t.allOut = t.allOut && rs.field(2).toInt() > 0;
        t.held += rs.field(3).toInt();
    }
    data.CloseCompact();
    QString chosen;
    for (auto t = titles.cbegin(); t != titles.cend(); ++t)
        if (t->allOut && (chosen.isEmpty() || t->held < titles[chosen].held))
            chosen = t.key();
    if (!chosen.isEmpty()) {
        say(QString::number(titles[chosen].item) + QLatin1Char('\t') + chosen);
        return 0;
    }
    return 1;
}

int reservations()
{
    frmReservedItems screen;
    screen.cmdFindAll_Click();
    const SpreadGrid *grid = screen.findChild<SpreadGrid *>(QStringLiteral("fpSpreadReserves"));
    for (int r = 1; r <= grid->maxRows(); ++r) {
        QStringList cells;
        for (int c = 1; c <= grid->maxCols(); ++c)
            cells << grid->cellText(c, r);
        say(cells.join(QLatin1Char('|')));
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    SqliteEngine::install(EngineRegistry::installed());
    PostgresEngine::install(EngineRegistry::installed());
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3)
        return std::fprintf(stderr, "usage: shelvora_opac_desk SETTINGS set-pin PIN | title-out | reservations\n"), 2;
    const SettingsStore settings(args[1]);
    LibraryDatabasePath = settings.value(QLatin1String(SettingsStore::LibraryDatabaseKey));
    CentralDatabasePath = settings.value(QLatin1String(SettingsStore::CentralDatabaseKey));
    const QString command = args[2];
    if (command == QLatin1String("set-pin") && args.size() > 3)
        return setPin(args[3]);
    if (command == QLatin1String("title-out"))
        return titleOut();
    if (command == QLatin1String("reservations"))
        return reservations();
    return 2;
}

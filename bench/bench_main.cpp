// Benchmarks on the large school: Jet translation, the loan engine and the data object.
#include "PostgresEngine.h"
#include "SqliteEngine.h"
#include "AppError.h"
#include "BackupBench.h"
#include "BenchSql.h"
#include "MarcBench.h"
#include "MenuBench.h"
#include "OpacBench.h"
#include "BenchTimer.h"
#include "CatalogueBench.h"
#include "ItemScreensBench.h"
#include "CirculationBench.h"
#include "MembersReportsBench.h"
#include "NoticesBench.h"
#include "PostgresBench.h"
#include "Clock.h"
#include "ConnectionPool.h"
#include "DbConnection.h"
#include "LoanRoutines.h"
#include "MessageScript.h"
#include "Recordset.h"
#include "SchemaUpgrade.h"
#include "CatalogueScreens.h"
#include "MemberScreens.h"
#include "ReportScreens.h"
#include "CirculationScreens.h"
#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "SpreadGrid.h"
#include "SqliteDatabase.h"
#include "DatabaseLocations.h"
#include "clsDataObject.h"
#include "clsTSQL.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdlib>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>

namespace {

// A mix of catalogue statements with varying literals.
QStringList statementMix(int variant)
{
    const clsTSQL sql;
    const QString text = QStringLiteral("ab%1").arg(variant);
    ItemDetails item;
    item.accessionID = QStringLiteral("X%1").arg(variant);
    item.title = QStringLiteral("Title %1").arg(variant);
    item.datePurchased = QDate(2020, 1 + variant % 12, 1 + variant % 28);
    return {sql.spCategoriesSearch(text), sql.spSubCategoriesSearch(variant, text), sql.spItemsGetRecord(variant),
            sql.spItemsInsert(item), sql.spItemsUpdate(variant, item), sql.spItemsList(), sql.spQSItemsFind(QStringLiteral("keyw"), text),
            sql.spQSItemsFind(QStringLiteral("auth"), text), sql.spKeywordList(text), sql.spSubjectsGetListSubjects(text),
            sql.spLearnersListSpesific(QStringLiteral("Grade 8"), QStringLiteral("8A"), QString::number(2000 + variant % 26)),
            sql.spItemsPhasedOut(variant, QDate(2026, 1, 1).addDays(variant % 300), QStringLiteral("Lost")),
            QStringLiteral(" select top 1 * from tbllibreserves  where (itemid = %1 and ([canceled] <> true or [canceled] = false)) order by [reservedate]").arg(variant),
            QStringLiteral("Update tbllibtransactions set returndate =#2026-11-%1#,extensions = 0, returned = true where accessionid = 'A%2' and transactionid =%2")
                .arg(1 + variant % 28).arg(variant),
            ShowAll};
}

void benchTranslation()
{
    std::printf("Jet translation (mix of %d catalogue statements)\n", int(statementMix(0).size()));
    JetTranslator &translator = SqliteDatabase::sharedTranslator();
    std::vector<QByteArray> texts;
    for (int v = 0; v < 2000; ++v)
        for (const QString &s : statementMix(v))
            texts.push_back(s.toUtf8());
    size_t sink = 0;
    const double firstSeen = seconds([&] {
        for (const QByteArray &t : texts) {
            translator.clearCache();
            sink += translator.translate(std::string_view(t.constData(), size_t(t.size()))).sql.size();
        }
    });
    const double cached = seconds([&] {
        for (const QByteArray &t : texts)
            sink += translator.translate(std::string_view(t.constData(), size_t(t.size()))).sql.size();
    });
    std::printf("  first-seen: %10.0f statements/s\n", double(texts.size()) / firstSeen);
    std::printf("  cached:     %10.0f statements/s   (checksum %zu)\n", double(texts.size()) / cached, sink % 10);
}

struct OpenLoan { QString accession; int itemID; int memberID; QString type; };

std::vector<OpenLoan> openLoans(bool overdue)
{
    DbConnection c;
    c.DataSource = LibraryDatabasePath;
    c.Open();
    auto rs = c.Execute(QStringLiteral("select AccessionID, ItemID, MemberID, MemberType from tblLibTransactions where Returned = false and DueDate %1 Date()")
                            .arg(overdue ? QStringLiteral("<") : QStringLiteral(">=")));
    std::vector<OpenLoan> loans;
    for (; !rs->atEnd(); rs->MoveNext())
        loans.push_back({rs->field(0).toString(), rs->field(1).toInt(), rs->field(2).toInt(), rs->field(3).toString()});
    return loans;
}

void benchLoanEngine()
{
    std::printf("Loan engine (working copy of the large school's library database)\n");
    const Money fine = Money::fromUnits(5000);
    const QDate today = Clock::today();
    Samples returns, renewals, checks;
    for (const OpenLoan &loan : openLoans(true)) {
        if (returns.count() >= 400)
            break;
        returns.time([&] { ReturnOrRenewLoan(loan.accession, today, 0, QStringLiteral("return"), QDate(), fine, 7); });
    }
    const std::vector<OpenLoan> current = openLoans(false);
    for (int round = 0; round < 2; ++round)
        for (const OpenLoan &loan : current) {
            if (renewals.count() >= 400)
                break;
            renewals.time([&] { ReturnOrRenewLoan(loan.accession, today, 0, QStringLiteral("renewal"), today.addDays(14), fine, 7); });
        }
    // The issue desk's checks before a loan: member, limit, item, availability, reservation.
    DbConnection central;
    central.DataSource = CentralDatabasePath;
    central.ReadOnly = true;
    central.Open();
    auto learners = central.Execute(QStringLiteral("select AccessionNo from Learner_Info where Status = 'C'"));
    std::vector<QString> admissions;
    for (; !learners->atEnd(); learners->MoveNext())
        admissions.push_back(learners->field(0).toString());
    DbConnection library;
    library.DataSource = LibraryDatabasePath;
    library.Open();
    auto items = library.Execute(QStringLiteral("select top 400 AccessionID from tblLibItems where PhasedOut = false order by ItemID desc"));
    std::mt19937 rng(7);
    for (; !items->atEnd(); items->MoveNext()) {
        const QString accession = items->field(0).toString();
        const QString admission = admissions[rng() % admissions.size()];
        checks.time([&] {
            const int member = GetMemberByIDNo(admission, QStringLiteral("L")).toInt();
            CheckIssue(member, QStringLiteral("L"), 2, accession);
        });
    }
    returns.report("return of an overdue loan");
    renewals.report("renewal");
    checks.report("issue checks (member, limit, item, available, reservation)");
}

void benchGetData()
{
    std::printf("Data object: the stock list's \"Show All\"\n");
    sqlite3 *db = nullptr;
    sqlite3_open_v2(LibraryDatabasePath.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    Samples raw, getData;
    size_t rows = 0;
    int rawRows = 0;
    for (int run = 0; run < 7; ++run) {
        raw.add(stepThroughCApi(db, ShowAll, &rawRows));
        getData.time([&] {
            clsDataObject data;
            rows = size_t(data.GetData(ShowAll));
            data.CloseCompact();
        });
    }
    sqlite3_close(db);
    std::printf("  rows: %zu (raw %d)\n", rows, rawRows);
    raw.report("SQLite C API, same translated SQL");
    getData.report("clsDataObject::GetData");
    std::printf("  ratio GetData / C API: %.2f\n", getData.median() / raw.median());
}

void benchFillSpread()
{
    std::printf("Grid: FillSpread of the stock list's \"Show All\" into a SpreadGrid\n");
    Samples getData, fill;
    int rows = 0;
    for (int run = 0; run < 7; ++run) {
        getData.time([&] {
            clsDataObject data;
            data.GetData(ShowAll);
            data.CloseCompact();
        });
        SpreadGrid grid;
        fill.time([&] {
            clsDataObject data;
            data.FillSpread(grid, ShowAll);
        });
        rows = grid.maxRows();
    }
    std::printf("  rows: %d\n", rows);
    getData.report("clsDataObject::GetData");
    fill.report("clsDataObject::FillSpread");
    std::printf("  ratio FillSpread / GetData: %.2f\n", fill.median() / getData.median());
}

// Process start to the main menu shown, offscreen, on the large school (already upgraded by a first start).
void benchStartUp(const QString &workFolder)
{
    std::printf("Start-up: process start to the main menu shown (offscreen)\n");
    const QString ini = QDir(workFolder).filePath(QStringLiteral("shelvora.ini"));
    SettingsStore settings(ini);
    settings.setValue(QLatin1String(SettingsStore::LibraryDatabaseKey), LibraryDatabasePath);
    settings.setValue(QLatin1String(SettingsStore::CentralDatabaseKey), CentralDatabasePath);
    ConnectionPool::shared().clear();
    Samples startUp;
    for (int run = 0; run < 8; ++run) {
        QProcess shelvora;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        shelvora.setProcessEnvironment(env);
        bool finished = false;
        auto timing = [&] {
            shelvora.start(QStringLiteral(SHELVORA_APP),
                           {QStringLiteral("--settings"), ini, QStringLiteral("--app-folder"), workFolder, QStringLiteral("--quit-after-start")});
            finished = shelvora.waitForFinished(60000) && shelvora.exitCode() == 0;
        };
        if (run == 0)
            timing(); // the first start upgrades nothing on a current database but warms the file cache
        else
            startUp.time(timing);
        if (!finished) {
            std::printf("  start-up did not finish: %s\n", shelvora.readAllStandardError().constData());
            return;
        }
    }
    startUp.report("start-up");
}

// Every screen the main menu opens: constructed, shown and painted once.
void benchOpeningEveryScreen(const QString &workFolder)
{
    std::printf("Opening every registered screen (constructed, shown, first paint events; member lists of the whole school)\n");
    SettingsStore settings(QDir(workFolder).filePath(QStringLiteral("screens.ini")));
    ScreenRegistry screens;
    registerCirculationScreens(screens);
    registerCatalogueScreens(screens, settings);
    registerMemberScreens(screens);
    registerReportScreens(screens);
    for (const QString &name : screens.names()) {
        Samples open;
        for (int run = 0; run < 10; ++run)
            open.time([&] {
                std::unique_ptr<QDialog> screen(screens.make(name, nullptr));
                screen->show();
                QApplication::processEvents();
            });
        open.report(qPrintable(name));
    }
}

} // namespace

int main(int argc, char *argv[])
{
    SqliteEngine::install(EngineRegistry::installed());
    PostgresEngine::install(EngineRegistry::installed());
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s SCHOOL_FOLDER [GROUP]\n", argv[0]);
        return 2;
    }
    const QDir school(QString::fromLocal8Bit(argv[1]));
    // shelvora_bench SCHOOL desk-worker LIBRARY DESK DESKS ITEMS: one desk of the four-desk benchmark.
    if (argc == 7 && QByteArray(argv[2]) == "desk-worker")
        return runDeskWorker(QString::fromLocal8Bit(argv[3]), school.absoluteFilePath(QStringLiteral("central.db")), std::atoi(argv[4]), std::atoi(argv[5]),
                             std::atoi(argv[6]));
    QTemporaryDir work;
    const QString library = work.filePath(QStringLiteral("library.db"));
    if (!QFile::copy(school.absoluteFilePath(QStringLiteral("library.db")), library)) {
        std::fprintf(stderr, "no library.db in %s (run shelvora_make_school first)\n", argv[1]);
        return 1;
    }
    LibraryDatabasePath = library;
    CentralDatabasePath = school.absoluteFilePath(QStringLiteral("central.db"));
    // A school generated by an older release is brought up to date first, as the program does at start.
    SchemaUpgrade::run(library);
    MessageScript quiet; // refusals are counted, not shown
    try {
        const std::pair<const char *, std::function<void()>> groups[] = {
            {"translation", benchTranslation},          {"getdata", benchGetData},   {"fillspread", benchFillSpread},
            {"loans", benchLoanEngine},                 {"circulation", benchCirculationScreens},
            {"references", benchCatalogueScreens},      {"labels", benchLabels},     {"items", benchItemScreens},
            {"members", benchMembersAndReports},        {"overdue", benchOverdueNotices}, {"statistics", benchLibraryStatistics}, {"stocktake", benchStocktake},        {"startup", [&work] { benchStartUp(work.path()); }},
            {"screens", [&work] { benchOpeningEveryScreen(work.path()); }},
            {"marc", benchMarc},
            {"opac", [] { benchOpac("file library"); }},
            {"menu", [&work] { benchMenuWork(work.path()); }},
            {"backups", [&library] { benchBackups(library, QString::fromUtf8(qgetenv("SHELVORA_TEST_POSTGRESQL"))); }},
            {"postgresql", [&school] { benchPostgres(school.absolutePath(), QString::fromUtf8(qgetenv("SHELVORA_TEST_POSTGRESQL"))); }}};
        // An optional third argument runs only the groups whose names contain it (several, separated by commas).
        const QStringList only = argc > 2 ? QString::fromLocal8Bit(argv[2]).split(QLatin1Char(','), Qt::SkipEmptyParts) : QStringList();
        for (const auto &[name, run] : groups)
            if (only.isEmpty() || std::any_of(only.begin(), only.end(), [&](const QString &o) { return QLatin1String(name).contains(o); }))
                run();
    } catch (const AppError &e) {
        std::fprintf(stderr, "benchmark failed: %s\n%s\n", qPrintable(e.description()), qPrintable(e.statement()));
        return 1;
    }
    if (!quiet.shown().empty())
        std::printf("(%zu messages would have been shown; first: %s)\n", quiet.shown().size(), qPrintable(quiet.shown().front().prompt));
    ConnectionPool::shared().clear();
    return 0;
}

#include "PostgresEngine.h"
#include "SqliteEngine.h"
#include "AppError.h"
#include "BackupSchedule.h"
#include "Clock.h"
#include "TaskProgress.h"
#include "CatalogueScreens.h"
#include "MemberScreens.h"
#include "ReportScreens.h"
#include "CirculationScreens.h"
#include "ConnectionPool.h"
#include "LibraryCopy.h"
#include "MarcImport.h"
#include "DatabaseLocations.h"
#include "SchoolGenerator.h"

#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "frmDatabases.h"
#include "frmMainMenu.h"
#include "modExtendedMsgBox.h"

#include <QApplication>
#include <QGuiApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>

#include <unistd.h>

namespace {

// Writes the demo school's databases and learner photos into folder. Throws AppError.
void writeDemoSchool(const QString &folder)
{
    QDir dir(folder);
    if (!dir.mkpath(QStringLiteral(".")))
        throw AppError(AppError::ProviderError, QStringLiteral("Cannot create %1.").arg(folder));
    SchoolGenerator(SchoolSize::demo())
        .write(dir.absoluteFilePath(QStringLiteral("library.db")), dir.absoluteFilePath(QStringLiteral("central.db")),
               dir.absoluteFilePath(QStringLiteral("LearnerPhotos")));
}

// Writes the demo school into folder: both databases, the learner photos and a settings file naming them.
int makeDemo(const QString &folder)
{
    QDir dir(folder);
    if (!dir.mkpath(QStringLiteral(".")))
        return std::fprintf(stderr, "Cannot create %s\n", qPrintable(folder)), 1;
    const QString library = dir.absoluteFilePath(QStringLiteral("library.db"));
    const QString central = dir.absoluteFilePath(QStringLiteral("central.db"));
    if (QFile::exists(library) || QFile::exists(central))
        return std::fprintf(stderr, "%s already holds a school; remove it first.\n", qPrintable(folder)), 1;
    try {
        writeDemoSchool(folder);
    } catch (const AppError &e) {
        return std::fprintf(stderr, "Demo school not written: %s\n", qPrintable(e.description())), 1;
    }
    SettingsStore settings(dir.absoluteFilePath(QStringLiteral("shelvora.ini")));
    settings.setValue(QLatin1String(SettingsStore::LibraryDatabaseKey), library);
    settings.setValue(QLatin1String(SettingsStore::CentralDatabaseKey), central);
    std::printf("Demo school written to %s\n", qPrintable(dir.absolutePath()));
    return 0;
}

// Copies a library (or school) database to another location, between engines; prints what was copied.
int copyLibrary(const QString &from, const QString &to)
{
    try {
        // In a terminal each table is reported as it is done (on stderr: the figures on stdout stay the record).
        LibraryCopy::TableCopied progress;
        if (isatty(STDERR_FILENO))
            progress = [](int done, int total, const LibraryCopy::TableFigures &t) {
                std::fprintf(stderr, "  [%d/%d] %s: %lld rows\n", done, total, qPrintable(t.table), static_cast<long long>(t.rows));
            };
        for (const LibraryCopy::TableFigures &t : LibraryCopy::copy(from, to, progress))
            std::printf("%-24s %10lld rows   sums %s\n", qPrintable(t.table), static_cast<long long>(t.rows), qPrintable(t.sums));
    } catch (const AppError &e) {
        std::fprintf(stderr, "Not copied: %s\n", qPrintable(e.description()));
        return 1;
    }
    ConnectionPool::shared().clear();
    std::printf("Copied %s to %s; every table's rows and sums match.\n", qPrintable(from), qPrintable(to));
    return 0;
}

// The library named for this run (--library) or in the settings.
QString libraryOf(const SettingsStore &settings) { return settings.value(QLatin1String(SettingsStore::LibraryDatabaseKey)); }

QString figuresText(const LibraryFigures &f)
{
    return QStringLiteral("%1 items, %2 open loans, %3 members with fines").arg(f.items).arg(f.openLoans).arg(f.membersWithFines);
}

// Backs the library up into folder (the settings' folders when empty). 0, or 1 with a one-line reason.
int backupLibrary(SettingsStore &settings, const QString &folder)
{
    const QString library = libraryOf(settings);
    if (library.isEmpty())
        return std::fprintf(stderr, "Backup failed: no library database is chosen (use --library or the settings).\n"), 1;
    if (!folder.isEmpty()) {
        settings.overrideForThisRun(QLatin1String(SettingsStore::BackupFolderKey), folder);
        settings.overrideForThisRun(QLatin1String(SettingsStore::SecondBackupFolderKey), QString());
    }
    TaskProgress progress;
    try {
        const LibraryBackup::Taken taken = BackupSchedule(settings, library).run(Clock::now(), progress);
        std::printf("Backed up %s to %s: %s.\n", qPrintable(library), qPrintable(taken.file), qPrintable(figuresText(taken.figures)));
        if (!taken.secondFile.isEmpty())
            std::printf("Copied to %s.\n", qPrintable(taken.secondFile));
        if (!taken.secondProblem.isEmpty())
            return std::fprintf(stderr, "Backup not copied to the second folder: %s\n", qPrintable(taken.secondProblem)), 1;
    } catch (const AppError &e) {
        return std::fprintf(stderr, "Backup failed: %s\n", qPrintable(e.description())), 1;
    }
    ConnectionPool::shared().clear();
    return 0;
}

// Restores the library from file, the library as it was kept in the backup folder. 0, or 1 with a one-line reason.
int restoreLibrary(SettingsStore &settings, const QString &file)
{
    const QString library = libraryOf(settings);
    if (library.isEmpty())
        return std::fprintf(stderr, "Restore failed: no library database is chosen (use --library or the settings).\n"), 1;
    TaskProgress progress;
    try {
        const LibraryFigures figures = LibraryBackup::check(file);
        const QString aside = LibraryBackup::restore(library, file, BackupSchedule(settings, library).folder(), Clock::now(), progress);
        std::printf("Restored %s from %s (%s); the library as it was is kept in %s.\n", qPrintable(library), qPrintable(file),
                    qPrintable(figuresText(figures)), qPrintable(aside));
    } catch (const AppError &e) {
        return std::fprintf(stderr, "Restore failed: %s Nothing was changed.\n", qPrintable(e.description())), 1;
    }
    ConnectionPool::shared().clear();
    return 0;
}

// Imports a supplier's file of MARC records: one line per record, then the total. 1 when nothing could be taken.
int importMarc(const QString &file, const MarcImport::Options &options)
{
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return std::fprintf(stderr, "Import failed: cannot read %s.\n", qPrintable(file)), 1;
    try {
        QList<MarcImport::Row> rows = MarcImport::preview(in.readAll());
        // Titles the catalogue holds already are left for the librarian to decide on the screen.
        for (MarcImport::Row &r : rows)
            if (r.problem.isEmpty() && !r.duplicate.isEmpty())
                r.problem = QStringLiteral("already in the catalogue (%1)").arg(r.duplicate);
        TaskProgress progress;
        const MarcImport::Result result = MarcImport::take(rows, options, progress);
        qsizetype copy = 0;
        for (const MarcImport::Row &r : rows) {
            if (!r.canBeTaken()) {
                std::printf("record %d: skipped: %s\n", r.number, qPrintable(r.problem));
                continue;
            }
            const qsizetype copies = r.record.copies.isEmpty() ? options.copies : r.record.copies.size();
            const QStringList accessions = result.accessions.mid(copy, copies);
            copy += copies;
            std::printf("record %d: taken: %s (%s)\n", r.number, qPrintable(r.record.title), qPrintable(accessions.join(QStringLiteral(", "))));
        }
        std::printf("%d of %lld records taken, %lld copies.\n", result.titles, static_cast<long long>(rows.size()),
                    static_cast<long long>(result.accessions.size()));
        return result.titles > 0 ? 0 : 1;
    } catch (const AppError &e) {
        return std::fprintf(stderr, "Import failed: %s Nothing was written.\n", qPrintable(e.description())), 1;
    }
}

// Writes the whole catalogue as MARC records (MARCXML when the file ends in .xml).
int exportMarc(const QString &file)
{
    try {
        TaskProgress progress;
        const MarcImport::Written written = MarcImport::exportFile(file, progress);
        std::printf("Wrote %lld titles (%lld copies) to %s.\n", static_cast<long long>(written.titles), static_cast<long long>(written.copies),
                    qPrintable(file));
        return 0;
    } catch (const AppError &e) {
        return std::fprintf(stderr, "Export failed: %s\n", qPrintable(e.description())), 1;
    }
}

// Command-line modes that write files and need no window run without a display.
bool runsWithoutWindow(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg == "--make-demo" || arg.startsWith("--make-demo=") || arg == "-make-demo" || arg.startsWith("-make-demo="))
            return true;
        if (arg == "--copy-library" || arg.startsWith("--copy-library=") || arg == "--backup" || arg == "--restore" || arg.startsWith("--restore=")
            || arg == "--import-marc" || arg.startsWith("--import-marc=") || arg == "--export-marc" || arg.startsWith("--export-marc="))
            return true;
        if (arg == "--help" || arg == "-h" || arg == "-?" || arg == "--help-all" || arg == "--version" || arg == "-v")
            return true; // printed and done
    }
    return false;
}

struct Options {
    QCommandLineOption settingsFile{QStringLiteral("settings"), QStringLiteral("Use this settings file instead of the user's settings."), QStringLiteral("file")};
    QCommandLineOption makeDemo{QStringLiteral("make-demo"), QStringLiteral("Write the demo school into a folder and exit."), QStringLiteral("folder")};
    QCommandLineOption appFolder{QStringLiteral("app-folder"), QStringLiteral("Folder for LearnerPhotos and work files."), QStringLiteral("folder")};
    QCommandLineOption library{QStringLiteral("library"), QStringLiteral("Use this library database for this run (nothing is saved)."), QStringLiteral("file")};
    QCommandLineOption central{QStringLiteral("central"), QStringLiteral("Use this school database for this run (nothing is saved)."), QStringLiteral("file")};
    QCommandLineOption copyLibrary{QStringLiteral("copy-library"),
                                   QStringLiteral("Copy a whole library database FROM (a file or a postgresql:// address) to TO (a new file or an "
                                                  "empty server database) and exit."),
                                   QStringLiteral("FROM")};
    QCommandLineOption backup{QStringLiteral("backup"),
                              QStringLiteral("Back the library database up into FOLDER (else the backup folders of the settings), check the "
                                             "backup and exit.")};
    QCommandLineOption restore{QStringLiteral("restore"),
                               QStringLiteral("Restore the library database from a backup FILE (the library as it was is kept in the backup "
                                              "folder) and exit."),
                               QStringLiteral("FILE")};
    QCommandLineOption importMarc{QStringLiteral("import-marc"),
                                  QStringLiteral("Import the MARC records of FILE (ISO 2709 or MARCXML) into the catalogue in one transaction and exit."),
                                  QStringLiteral("FILE")};
    QCommandLineOption category{QStringLiteral("category"), QStringLiteral("With --import-marc: the category of the new copies."), QStringLiteral("NAME")};
    QCommandLineOption loanType{QStringLiteral("loan-type"), QStringLiteral("With --import-marc: S, N (the default) or L."), QStringLiteral("TYPE")};
    QCommandLineOption copies{QStringLiteral("copies"), QStringLiteral("With --import-marc: copies of each title (1 to 20, default 1)."), QStringLiteral("N")};
    QCommandLineOption exportMarc{QStringLiteral("export-marc"),
                                  QStringLiteral("Write the catalogue as MARC records to FILE (MARCXML when it ends in .xml) and exit."),
                                  QStringLiteral("FILE")};
    QCommandLineOption quitAfterStart{QStringLiteral("quit-after-start"), QStringLiteral("Quit as soon as the main menu is shown (start-up timing).")};

    void process(QCommandLineParser &parser, const QCoreApplication &app)
    {
        parser.setApplicationDescription(QStringLiteral("Shelvora school library"));
        parser.addPositionalArgument(QStringLiteral("TO"), QStringLiteral("With --copy-library: where the copy goes. With --backup: the folder."),
                                     QStringLiteral("[TO|FOLDER]"));
        parser.addHelpOption();
        parser.addVersionOption();
        for (const QCommandLineOption *o : {&settingsFile, &makeDemo, &copyLibrary, &backup, &restore, &importMarc, &category, &loanType, &copies, &exportMarc, &appFolder, &library,
                                        &central, &quitAfterStart})
            parser.addOption(*o);
        parser.process(app);
    }
};

void nameApplication()
{
    QCoreApplication::setApplicationName(QStringLiteral("Shelvora"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SHELVORA_VERSION));
}

} // namespace

int main(int argc, char *argv[])
{
    SqliteEngine::install(EngineRegistry::installed());
    PostgresEngine::install(EngineRegistry::installed());
    if (runsWithoutWindow(argc, argv)) {
        // The demo's learner photos are drawn with fonts, which need a GUI application but no screen.
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        QGuiApplication app(argc, argv);
        nameApplication();
        QCommandLineParser parser;
        Options options;
        options.process(parser, app);
        if (parser.isSet(options.copyLibrary)) {
            if (parser.positionalArguments().size() != 1)
                return std::fprintf(stderr, "Usage: shelvora --copy-library FROM TO\n"), 2;
            return copyLibrary(parser.value(options.copyLibrary), parser.positionalArguments().first());
        }
        if (parser.isSet(options.backup) || parser.isSet(options.restore) || parser.isSet(options.importMarc) || parser.isSet(options.exportMarc)) {
            SettingsStore settings(parser.value(options.settingsFile));
            if (parser.isSet(options.library))
                settings.overrideForThisRun(QLatin1String(SettingsStore::LibraryDatabaseKey), parser.value(options.library));
            LibraryDatabasePath = libraryOf(settings);
            if (parser.isSet(options.importMarc)) {
                bool number = true;
                MarcImport::Options o;
                o.category = parser.value(options.category);
                if (parser.isSet(options.loanType))
                    o.loanType = parser.value(options.loanType);
                if (parser.isSet(options.copies))
                    o.copies = parser.value(options.copies).toInt(&number);
                if (!number)
                    return std::fprintf(stderr, "Import failed: --copies takes a number from 1 to 20.\n"), 2;
                return importMarc(parser.value(options.importMarc), o);
            }
            if (parser.isSet(options.exportMarc))
                return exportMarc(parser.value(options.exportMarc));
            if (parser.isSet(options.restore))
                return restoreLibrary(settings, parser.value(options.restore));
            if (parser.positionalArguments().size() > 1)
                return std::fprintf(stderr, "Usage: shelvora --backup [FOLDER]\n"), 2;
            return backupLibrary(settings, parser.positionalArguments().value(0));
        }
        return makeDemo(parser.value(options.makeDemo));
    }

    QApplication app(argc, argv);
    MessageBoxes boxes;
    InstallMessageReporter(&boxes);
    nameApplication();
    QCommandLineParser parser;
    Options options;
    options.process(parser, app);

    SettingsStore settings(parser.value(options.settingsFile));
    if (parser.isSet(options.library))
        settings.overrideForThisRun(QLatin1String(SettingsStore::LibraryDatabaseKey), parser.value(options.library));
    if (parser.isSet(options.central))
        settings.overrideForThisRun(QLatin1String(SettingsStore::CentralDatabaseKey), parser.value(options.central));
    // The program folder: given for this run, or the school's choice (the per-user data folder when none).
    SetApplicationFolder(parser.isSet(options.appFolder) ? parser.value(options.appFolder)
                                                         : settings.value(QLatin1String(SettingsStore::ProgramFolderKey)));

    ScreenRegistry screens;
    registerCirculationScreens(screens);
    registerCatalogueScreens(screens, settings);
    registerMemberScreens(screens);
    registerReportScreens(screens);
    // "Try the demo school" keeps it in the user's own data folder, written the first time.
    const auto demoSchool = [] {
        const QString folder = QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath(QStringLiteral("demo"));
        if (!QFileInfo::exists(QDir(folder).filePath(QStringLiteral("library.db"))))
            writeDemoSchool(folder);
        return folder;
    };
    // Without a screen nobody can answer the setup screen: start-up then says what is missing and ends.
    if (QGuiApplication::platformName() != QLatin1String("offscreen"))
        screens.add(QStringLiteral("frmDatabases"),
                    [&settings, demoSchool](QWidget *parent) { return new frmDatabases(settings, demoSchool, parent); });
    frmMainMenu menu(settings, screens);
    menu.Form_Load();
    if (parser.isSet(options.quitAfterStart))
        QObject::connect(&menu, &frmMainMenu::shown, &app, [] { QTimer::singleShot(0, qApp, &QCoreApplication::quit); });
    menu.show();
    const int rc = app.exec();
    ConnectionPool::shared().clear();
    return rc;
}

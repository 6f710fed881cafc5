#include "AppError.h"
#include "ConnectionPool.h"
#include "SchoolGenerator.h"

#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "frmMainMenu.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTimer>

#include <cstdio>

namespace {

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
        SchoolGenerator(SchoolSize::demo()).write(library, central, dir.absoluteFilePath(QStringLiteral("LearnerPhotos")));
    } catch (const AppError &e) {
        return std::fprintf(stderr, "Demo school not written: %s\n", qPrintable(e.description())), 1;
    }
    SettingsStore settings(dir.absoluteFilePath(QStringLiteral("shelvora.ini")));
    settings.setValue(QLatin1String(SettingsStore::LibraryDatabaseKey), library);
    settings.setValue(QLatin1String(SettingsStore::CentralDatabaseKey), central);
    std::printf("Demo school written to %s\n", qPrintable(dir.absolutePath()));
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Shelvora"));
    QApplication::setApplicationVersion(QStringLiteral(SHELVORA_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shelvora school library"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption settingsFile(QStringLiteral("settings"), QStringLiteral("Use this settings file instead of the user's settings."), QStringLiteral("file"));
    const QCommandLineOption makeDemoOption(QStringLiteral("make-demo"), QStringLiteral("Write the demo school into a folder and exit."), QStringLiteral("folder"));
    const QCommandLineOption appFolder(QStringLiteral("app-folder"), QStringLiteral("Folder for LearnerPhotos and work files."), QStringLiteral("folder"));
    const QCommandLineOption libraryOption(QStringLiteral("library"), QStringLiteral("Use this library database for this run (nothing is saved)."), QStringLiteral("file"));
    const QCommandLineOption centralOption(QStringLiteral("central"), QStringLiteral("Use this school database for this run (nothing is saved)."), QStringLiteral("file"));
    const QCommandLineOption quitAfterStart(QStringLiteral("quit-after-start"), QStringLiteral("Quit as soon as the main menu is shown (start-up timing)."));
    parser.addOption(settingsFile);
    parser.addOption(makeDemoOption);
    parser.addOption(appFolder);
    parser.addOption(libraryOption);
    parser.addOption(centralOption);
    parser.addOption(quitAfterStart);
    parser.process(app);

    if (parser.isSet(makeDemoOption))
        return makeDemo(parser.value(makeDemoOption));

    SettingsStore settings(parser.value(settingsFile));
    if (parser.isSet(libraryOption))
        settings.overrideForThisRun(QLatin1String(SettingsStore::LibraryDatabaseKey), parser.value(libraryOption));
    if (parser.isSet(centralOption))
        settings.overrideForThisRun(QLatin1String(SettingsStore::CentralDatabaseKey), parser.value(centralOption));
    if (parser.isSet(appFolder))
        SetApplicationFolder(parser.value(appFolder));

    ScreenRegistry screens;
    frmMainMenu menu(settings, screens);
    menu.Form_Load();
    if (parser.isSet(quitAfterStart))
        QObject::connect(&menu, &frmMainMenu::shown, &app, [] { QTimer::singleShot(0, qApp, &QCoreApplication::quit); });
    menu.show();
    const int rc = app.exec();
    ConnectionPool::shared().clear();
    return rc;
}

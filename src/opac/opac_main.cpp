// shelvora-opac: the learners' web catalogue over the library database.
#include "PostgresEngine.h"
#include "SqliteEngine.h"
#include "DatabaseLocations.h"
#include "OpacServer.h"
#include "SettingsStore.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <csignal>
#include <cstdio>

namespace {
OpacServer *running = nullptr;
void stopOnSignal(int) { if (running) running->stop(); }
} // namespace

int main(int argc, char *argv[])
{
    SqliteEngine::install(EngineRegistry::installed());
    PostgresEngine::install(EngineRegistry::installed());
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("shelvora-opac"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SHELVORA_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shelvora's web catalogue for learners and teachers"));
    const QCommandLineOption library{QStringLiteral("library"), QStringLiteral("The library database (a file or a postgresql:// address)."), QStringLiteral("PATH")};
    const QCommandLineOption central{QStringLiteral("central"), QStringLiteral("The school database (only ever read)."), QStringLiteral("PATH")};
    const QCommandLineOption listen{QStringLiteral("listen"),
                                    QStringLiteral("ADDRESS:PORT to serve (default 127.0.0.1:8080; 0.0.0.0:8080 serves the school network; port 0 takes a free one)."),
                                    QStringLiteral("ADDRESS:PORT"), QStringLiteral("127.0.0.1:8080")};
    const QCommandLineOption settingsFile{QStringLiteral("settings"),
                                          QStringLiteral("The settings file naming both databases (else the user's settings, as the desk's)."), QStringLiteral("FILE")};
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({library, central, listen, settingsFile});
    parser.process(app);
    // The options name the databases for this run; else the settings do.
    if (parser.isSet(settingsFile) && !QFileInfo::exists(parser.value(settingsFile)))
        return std::fprintf(stderr, "shelvora-opac: there is no settings file %s\n", qPrintable(parser.value(settingsFile))), 2;
    const SettingsStore settings(parser.value(settingsFile));
    LibraryDatabasePath = parser.isSet(library) ? parser.value(library) : settings.value(QLatin1String(SettingsStore::LibraryDatabaseKey));
    CentralDatabasePath = parser.isSet(central) ? parser.value(central) : settings.value(QLatin1String(SettingsStore::CentralDatabaseKey));
    if (LibraryDatabasePath.isEmpty())
        return std::fprintf(stderr, "shelvora-opac: no library database: use --library, or --settings with a file that names one\n"), 2;
    const QString where = parser.value(listen);
    const int colon = int(where.lastIndexOf(QLatin1Char(':')));
    bool number = false;
    const int port = where.mid(colon + 1).toInt(&number);
    if (colon < 1 || !number || port < 0 || port > 65535)
        return std::fprintf(stderr, "shelvora-opac: --listen takes ADDRESS:PORT, e.g. 127.0.0.1:8080\n"), 2;
    OpacServer server;
    const int bound = server.bind(where.left(colon), port);
    if (bound < 0)
        return std::fprintf(stderr, "shelvora-opac: cannot listen on %s (in use, or not an address of this computer)\n", qPrintable(where)), 1;
    running = &server;
    std::signal(SIGTERM, stopOnSignal);
    std::signal(SIGINT, stopOnSignal);
    std::printf("Serving the catalogue of %s on http://%s:%d/\n", qPrintable(LibraryDatabasePath), qPrintable(where.left(colon)), bound);
    std::fflush(stdout);
    server.run();
    return 0;
}

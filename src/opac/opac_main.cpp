// shelvora-opac: the learners' web catalogue over the library database.
#include "PostgresEngine.h"
#include "SqliteEngine.h"
#include "DatabaseLocations.h"
#include "OpacServer.h"

#include <QCommandLineParser>
#include <QCoreApplication>

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
    const QCommandLineOption listen{QStringLiteral("listen"), QStringLiteral("ADDRESS:PORT to serve (default 127.0.0.1:8080; 0.0.0.0:8080 serves the school network)."),
                                    QStringLiteral("ADDRESS:PORT"), QStringLiteral("127.0.0.1:8080")};
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({library, central, listen});
    parser.process(app);
    if (!parser.isSet(library))
        return std::fprintf(stderr, "shelvora-opac: --library is needed\n"), 2;
    LibraryDatabasePath = parser.value(library);
    CentralDatabasePath = parser.value(central);
    const QString where = parser.value(listen);
    const int colon = int(where.lastIndexOf(QLatin1Char(':')));
    bool number = false;
    const int port = where.mid(colon + 1).toInt(&number);
    if (colon < 1 || !number || port < 1 || port > 65535)
        return std::fprintf(stderr, "shelvora-opac: --listen takes ADDRESS:PORT, e.g. 127.0.0.1:8080\n"), 2;
    OpacServer server;
    if (server.bind(where.left(colon), port) < 0)
        return std::fprintf(stderr, "shelvora-opac: cannot listen on %s (in use, or not an address of this computer)\n", qPrintable(where)), 1;
    running = &server;
    std::signal(SIGTERM, stopOnSignal);
    std::signal(SIGINT, stopOnSignal);
    std::printf("Serving the catalogue of %s on http://%s/\n", qPrintable(LibraryDatabasePath), qPrintable(where));
    std::fflush(stdout);
    server.run();
    return 0;
}
